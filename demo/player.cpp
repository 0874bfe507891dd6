#include "demo/player.h"

#include "demo/failure.h"
#include "host/audio_buffers.h"
#include "host/message_pump.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace avdemo {

namespace {

constexpr std::size_t longestSearchS = 30;  // the loudest block is looked for in this much of the recording

/// The samples of block `index`, filled up with silence at the recording's end.
std::vector<std::uint8_t> blockAt(const WavRecording& recording, std::size_t index, std::size_t blockFrames) {
  const std::uint8_t silence = recording.bitsPerSample == 8 ? 128 : 0;
  const std::size_t blockBytes = blockFrames * recording.bytesPerFrame();
  const std::size_t from = std::min(index * blockBytes, recording.samples.size());
  const std::size_t count = std::min(blockBytes, recording.samples.size() - from);
  std::vector<std::uint8_t> block(blockBytes, silence);
  std::copy_n(recording.samples.begin() + static_cast<std::ptrdiff_t>(from), count, block.begin());
  return block;
}

std::size_t loudestBlock(const WavRecording& recording, std::size_t blockFrames) {
  const std::size_t frames = std::min(recording.frameCount(), longestSearchS * recording.sampleRateHz);
  std::size_t loudest = 0;
  double highestEnergy = -1;
  for (std::size_t from = 0; from < frames; from += blockFrames) {
    double energy = 0;
    for (std::size_t frame = from; frame < std::min(from + blockFrames, frames); ++frame) {
      for (std::size_t channel = 0; channel < recording.channels; ++channel) {
        const double value = recording.sample(frame, channel);
        energy += value * value;
      }
    }
    if (energy > highestEnergy) {
      highestEnergy = energy;
      loudest = from / blockFrames;
    }
  }
  return loudest;
}

}  // namespace

void Player::playToLoudestBlock() {
  const std::size_t last = loudestBlock(m_recording, m_blockFrames);
  const std::size_t blocksPerSecond = m_recording.sampleRateHz / m_blockFrames + 1;
  const std::size_t first = last > blocksPerSecond ? last - blocksPerSecond : 0;
  for (std::size_t index = first; index <= last; ++index) play(blockAt(m_recording, index, m_blockFrames));
}

void Player::playSilence(DWORD lengthMs) {
  const std::vector<std::uint8_t> silence = blockAt(m_recording, m_recording.frameCount(), m_blockFrames);
  const ULONGLONG endMs = GetTickCount64() + lengthMs;
  while (GetTickCount64() < endMs) play(silence);
}

void Player::rest(DWORD lengthMs) { avhost::pumpMessages(lengthMs); }

void Player::play(const std::vector<std::uint8_t>& samples) {
  const WAVEFORMATEX& format = *reinterpret_cast<const WAVEFORMATEX*>(m_recording.format.data());
  const avhost::Block block = avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size()));
  require(m_control.SendAudioData(block.get()), L"sending audio");
  const auto nowMs = static_cast<double>(GetTickCount64());
  // Late blocks are not made up for.
  m_dueMs = std::max(m_dueMs, nowMs - 1) + static_cast<double>(m_blockFrames) * 1000 / m_recording.sampleRateHz;
  avhost::pumpMessages(m_dueMs > nowMs ? static_cast<DWORD>(m_dueMs - nowMs) : 0);
}

WavRecording generatedTones() {
  constexpr std::uint32_t sampleRateHz = 44100;
  constexpr double leftHz = 440;
  constexpr double rightHz = 1760;
  constexpr double turn = 6.283185307179586 / sampleRateHz;
  WavRecording recording;
  recording.channels = 2;
  recording.bitsPerSample = recording.fileBitsPerSample = 16;
  recording.sampleRateHz = sampleRateHz;
  const WAVEFORMATEX format = {WAVE_FORMAT_PCM, 2, sampleRateHz, sampleRateHz * 4, 4, 16, 0};
  recording.format.resize(sizeof format);
  std::memcpy(recording.format.data(), &format, sizeof format);
  std::vector<std::int16_t> samples;
  for (std::uint32_t frame = 0; frame < sampleRateHz / 2; ++frame) {
    samples.push_back(static_cast<std::int16_t>(20000 * std::sin(turn * leftHz * frame)));
    samples.push_back(static_cast<std::int16_t>(8000 * std::sin(turn * rightHz * frame)));
  }
  recording.samples.resize(samples.size() * sizeof samples[0]);
  std::memcpy(recording.samples.data(), samples.data(), recording.samples.size());
  return recording;
}

}  // namespace avdemo
