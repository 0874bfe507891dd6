#pragma once

#include "common/audio_block.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace av::test {

/// A block together with its bytes, which are exactly as many as its frames need.
struct Pcm {
  AudioFormatBlock format;
  std::vector<std::uint8_t> bytes;

  AudioBlock block() const { return {format, bytes.data(), static_cast<std::int32_t>(bytes.size())}; }
};

inline AudioFormatBlock pcmFormat(int bits, int channels, std::uint32_t sampleRateHz = 48000) {
  AudioFormatBlock format;
  format.wFormatTag = formatTagPcm;
  format.nChannels = static_cast<std::uint16_t>(channels);
  format.nSamplesPerSec = sampleRateHz;
  format.wBitsPerSample = static_cast<std::uint16_t>(bits);
  format.nBlockAlign = static_cast<std::uint16_t>(channels * (bits / 8));
  format.nAvgBytesPerSec = sampleRateHz * format.nBlockAlign;
  return format;
}

/// Interleaved PCM whose stored integer in frame f, channel c is `sample(f, c)` (its low bytes, little-endian).
template <class Sample>
Pcm makePcm(int bits, int channels, int frames, Sample sample) {
  Pcm pcm{pcmFormat(bits, channels), {}};
  for (int frame = 0; frame < frames; ++frame) {
    for (int channel = 0; channel < channels; ++channel) {
      const auto stored = static_cast<std::uint64_t>(static_cast<std::int64_t>(sample(frame, channel)));
      for (int byte = 0; byte < bits / 8; ++byte)
        pcm.bytes.push_back(byte < 8 ? static_cast<std::uint8_t>(stored >> (8 * byte)) : std::uint8_t{0});
    }
  }
  return pcm;
}

inline Pcm silence(int bits, int channels, int frames) {
  return makePcm(bits, channels, frames, [](int, int) { return 0; });
}

}  // namespace av::test
