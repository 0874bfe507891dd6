#include "player/playback.h"

#include <algorithm>

namespace avplayer {

namespace {

constexpr std::int64_t buffersPerSecond = 25;
/// A device that has sound in its queue and does not move for so long is gone: some are unplugged without a word.
constexpr double standstillMs = 2000;

}  // namespace

Playback::Playback(std::unique_ptr<SoundDevice> device) : m_device(std::move(device)) {
  if (m_device) m_output = Output::device;
}

Playback::~Playback() {
  if (m_deviceOpen) m_device->close();
}

void Playback::load(std::shared_ptr<const Sound> sound, double nowMs) {
  pause(nowMs);
  if (m_deviceOpen) m_device->close();  // the next sound may have another rate
  m_deviceOpen = false;
  if (m_device) m_output = Output::device;  // the next play tries again
  m_sound = std::move(sound);
  m_position = 0;
}

void Playback::setLoop(bool loop, double nowMs) {
  if (loop == m_loop) return;
  updatePosition(nowMs);
  m_loop = loop;
  if (m_playing) start(nowMs);  // what is queued beyond the end would be wrong
}

void Playback::play(double nowMs) {
  if (m_playing || frames() == 0) return;
  if (m_position >= frames()) m_position = 0;
  if (m_device) m_output = Output::device;  // one that was missing or lost may have come back
  m_playing = true;
  start(nowMs);
}

void Playback::pause(double nowMs) {
  if (!m_playing) return;
  updatePosition(nowMs);
  m_playing = false;
  if (!usesDevice() || !m_deviceOpen) return;
  if (m_device->pause()) m_devicePaused = true;
  else loseDevice(nowMs);
}

void Playback::seek(std::int64_t frame, double nowMs) {
  m_position = std::clamp<std::int64_t>(frame, 0, frames());
  if (m_playing) start(nowMs);
}

/// From m_position on.
void Playback::start(double nowMs) {
  m_startFrame = m_nextFrame = m_position;
  m_startMs = m_lastMovedMs = nowMs;
  m_lastPlayed = 0;
  if (!usesDevice()) return;
  if (!m_deviceOpen) {
    m_deviceOpen = m_device->open(m_sound->sampleRateHz);
    m_devicePaused = false;
    if (!m_deviceOpen) m_output = Output::none;
  } else if (!m_device->empty() || (m_devicePaused && !m_device->resume())) {
    loseDevice(nowMs);
  }
  m_devicePaused = false;
  if (usesDevice()) fillQueue(nowMs);
}

void Playback::step(double nowMs) {
  updatePosition(nowMs);
  if (m_playing && usesDevice()) fillQueue(nowMs);
}

void Playback::updatePosition(double nowMs) {
  if (!m_playing) return;
  std::int64_t played = 0;
  if (usesDevice()) {
    const std::optional<std::int64_t> heard = m_device->playedFrames();
    if (!heard) return loseDevice(nowMs);
    played = *heard;
    noticeStandstill(played, nowMs);
    if (!usesDevice()) return;
  } else {
    played = static_cast<std::int64_t>((nowMs - m_startMs) * m_sound->sampleRateHz / 1000);
  }
  const std::int64_t at = m_startFrame + std::max<std::int64_t>(played, 0);
  if (m_loop) {
    m_position = at % frames();
  } else {
    m_position = std::min(at, frames());
    if (at >= frames()) m_playing = false;
  }
}

void Playback::noticeStandstill(std::int64_t played, double nowMs) {
  if (played != m_lastPlayed) {
    m_lastPlayed = played;
    m_lastMovedMs = nowMs;
  } else if (nowMs - m_lastMovedMs > standstillMs) {
    const bool allQueued = !m_loop && m_nextFrame >= frames();
    // Converters swallow a few frames: all was queued and nothing moves, so this was the end.
    if (allQueued) m_startFrame = frames();
    else loseDevice(nowMs);
  }
}

void Playback::fillQueue(double nowMs) {
  const auto bufferFrames = std::max<std::int64_t>(1, m_sound->sampleRateHz / buffersPerSecond);
  int free = m_device->freeBuffers();
  for (; free > 0; --free) {
    if (m_nextFrame >= frames()) {
      if (!m_loop) return;
      m_nextFrame = 0;
    }
    m_nextFrame += copyStereo(*m_sound, m_nextFrame, bufferFrames, m_stereo);
    if (!m_device->write(m_stereo)) return loseDevice(nowMs);
  }
  if (free < 0) loseDevice(nowMs);
}

/// Goes on silently from where it was last heard.
void Playback::loseDevice(double nowMs) {
  if (m_deviceOpen) m_device->close();
  m_deviceOpen = false;
  m_output = Output::lost;
  m_startFrame = m_position;
  m_startMs = nowMs;
}

}  // namespace avplayer
