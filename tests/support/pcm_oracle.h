#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace av::oracle {

/// A sample by its definition: the bytes as one little-endian number, less 2^bits when its top bit is set.
inline std::int64_t twosComplementSample(const std::uint8_t* bytes, int bits) {
  std::int64_t value = 0;
  std::int64_t weight = 1;
  for (int i = 0; i < bits / 8; ++i) {
    value += bytes[i] * weight;
    weight *= 256;
  }
  return value >= weight / 2 ? value - weight : value;
}

/// Channel `channel` of `frames` interleaved frames, one sample after the other.
inline std::vector<double> decodedChannel(const std::vector<std::uint8_t>& block, int channels, int bits, int channel,
                                          std::size_t frames, bool invertedEightBit) {
  std::vector<double> result;
  const std::size_t sampleBytes = static_cast<std::size_t>(bits) / 8;
  for (std::size_t frame = 0; frame < frames; ++frame) {
    const std::size_t sample = frame * static_cast<std::size_t>(channels) + static_cast<std::size_t>(channel);
    const std::uint8_t* const bytes = &block.at(sample * sampleBytes);
    if (bits == 8 && invertedEightBit) {
      result.push_back(static_cast<double>(128 - *bytes));
    } else {
      result.push_back(static_cast<double>(twosComplementSample(bytes, bits)));
    }
  }
  return result;
}

}  // namespace av::oracle
