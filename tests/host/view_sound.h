#pragma once

#include "host/audio_buffers.h"

#include <windows.h>

#include <mmreg.h>

#include <cstdint>
#include <vector>

namespace av::test {

/// Sends a control `frames` frames of a 16-bit stereo square wave, 32 frames a half.
template <class Control>
HRESULT sendSquareWave(Control* control, int frames = 1024, std::int16_t amplitude = 20000) {
  const WAVEFORMATEX format{WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
  std::vector<std::int16_t> samples;
  for (int i = 0; i < frames; ++i) {
    const auto sample = static_cast<std::int16_t>(i / 32 % 2 == 0 ? amplitude : -amplitude);
    samples.insert(samples.end(), 2, sample);
  }
  return control->SendAudioData(
      avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * sizeof samples[0])).get());
}

}  // namespace av::test
