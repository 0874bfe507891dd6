#include "player/win/sound_thread.h"

#include "player/win/wave_out_device.h"

#include <chrono>

namespace avplayer {

namespace {

constexpr DWORD longestStepMs = 20;

std::unique_ptr<SoundDevice> makeDevice(bool silent, HANDLE bufferDone) {
  if (silent) return nullptr;
  return std::make_unique<WaveOutDevice>(bufferDone);
}

}  // namespace

double SoundThread::nowMs() {
  using namespace std::chrono;
  return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

SoundThread::SoundThread(bool silent)
    : m_wake(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      m_playback(makeDevice(silent, m_wake)),
      m_thread([this] { run(); }) {}

SoundThread::~SoundThread() {
  {
    const std::lock_guard lock(m_lock);
    m_ending = true;
  }
  SetEvent(m_wake);
  m_thread.join();
  // The device goes after the thread and before the event that it sets.
  {
    const std::lock_guard lock(m_lock);
    m_playback.load(nullptr, nowMs());
  }
  CloseHandle(m_wake);
}

void SoundThread::run() {
  for (;;) {
    WaitForSingleObject(m_wake, longestStepMs);
    const std::lock_guard lock(m_lock);
    if (m_ending) return;
    m_playback.step(nowMs());
  }
}

SoundThread::State SoundThread::state() {
  const std::lock_guard lock(m_lock);
  m_playback.step(nowMs());
  return {m_playback.isPlaying(), m_playback.isLooping(), m_playback.output(), m_playback.position()};
}

void SoundThread::load(std::shared_ptr<const Sound> sound) {
  const std::lock_guard lock(m_lock);
  m_playback.load(std::move(sound), nowMs());
}

void SoundThread::setLoop(bool loop) {
  const std::lock_guard lock(m_lock);
  m_playback.setLoop(loop, nowMs());
}

void SoundThread::play() {
  const std::lock_guard lock(m_lock);
  m_playback.play(nowMs());
}

void SoundThread::pause() {
  const std::lock_guard lock(m_lock);
  m_playback.pause(nowMs());
}

void SoundThread::seek(std::int64_t frame) {
  const std::lock_guard lock(m_lock);
  m_playback.seek(frame, nowMs());
}

}  // namespace avplayer
