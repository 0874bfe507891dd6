#pragma once

#include "common/audio_block.h"

#include <cstdint>
#include <vector>

namespace av::bench {

/// Interleaved noise of any depth in whole bytes. The same bytes every time.
struct PcmNoise {
  AudioFormatBlock format;
  std::vector<std::uint8_t> bytes;

  PcmNoise(int bits, int channels, int frames) {
    format.wFormatTag = formatTagPcm;
    format.nChannels = static_cast<std::uint16_t>(channels);
    format.nSamplesPerSec = 44100;
    format.wBitsPerSample = static_cast<std::uint16_t>(bits);
    bytes.resize(static_cast<std::size_t>(frames) * static_cast<std::size_t>(channels * bits / 8));
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
      state = state * 1664525u + 1013904223u;
      byte = static_cast<std::uint8_t>(state >> 24);
    }
  }

  AudioBlock block() const { return {format, bytes.data(), static_cast<std::int32_t>(bytes.size())}; }
};

}  // namespace av::bench
