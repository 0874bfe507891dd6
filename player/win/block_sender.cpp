#include "player/win/block_sender.h"

#include "host/audio_buffers.h"

#include <algorithm>

namespace avplayer {

namespace {

/// The meter analyses whatever it gets; its low octaves need long blocks.
constexpr std::int32_t meterFrames = 4096;
/// A block after an FFTLength of 0, 1 or 2, which the analyser takes, would end the process.
constexpr std::int32_t shortestTransform = 4;

std::int32_t blockFrames(const HostedControl& control) {
  switch (control.kind()) {
    case ControlKind::view: return control.number(L"FFTWindowSize");
    case ControlKind::meter: return meterFrames;
    default: return control.number(L"FFTLength");
  }
}

}  // namespace

void BlockSender::send(Controls& controls, const Sound& sound, std::int64_t heardFrame) {
  const auto bytesPerFrame = static_cast<WORD>(sound.channels * sizeof(std::int16_t));
  const WAVEFORMATEX format = {
      WAVE_FORMAT_PCM, sound.channels, sound.sampleRateHz, sound.sampleRateHz * bytesPerFrame, bytesPerFrame, 16, 0};
  for (HostedControl& control : controls) {
    const std::int32_t frames = blockFrames(control);
    if (frames < shortestTransform) continue;
    copyBlock(sound, heardFrame, frames, m_block);
    const auto bytes = static_cast<LONG>(m_block.size() * sizeof m_block[0]);
    control.control().SendAudioData(avhost::audioFrames(format, m_block.data(), bytes).get());
  }
}

}  // namespace avplayer
