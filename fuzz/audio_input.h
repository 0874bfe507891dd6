#pragma once

#include "common/audio_block.h"
#include "fuzz/input.h"
#include "support/pcm.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace av::fuzz {

/// A wave format with plausible or with any fields.
inline AudioFormatBlock anyFormat(Input& input) {
  static constexpr std::uint16_t tags[] = {1, 1, 1, 0xFFFE, 3, 0};
  static constexpr std::uint16_t depths[] = {16, 8, 24, 32, 12, 20, 64, 7, 0, 1024, 1025, 0xFFFF};
  static constexpr std::uint16_t channels[] = {2, 1, 0, 3, 6, 17, 18, 19, 0xFFFF};
  const bool usual = input.ConsumeBool();
  AudioFormatBlock format;
  format.wFormatTag = usual ? input.PickValueInArray(tags) : input.ConsumeIntegral<std::uint16_t>();
  format.nChannels = usual ? input.PickValueInArray(channels) : input.ConsumeIntegral<std::uint16_t>();
  format.wBitsPerSample = usual ? input.PickValueInArray(depths) : input.ConsumeIntegral<std::uint16_t>();
  format.nSamplesPerSec = anySampleRate(input);
  format.nAvgBytesPerSec = input.ConsumeIntegral<std::uint32_t>();
  format.nBlockAlign = input.ConsumeIntegral<std::uint16_t>();
  format.cbSize = input.ConsumeIntegral<std::uint16_t>();
  return format;
}

/// Fills the samples of a block: nothing, one byte, extremes in turn, noise.
inline void fillSamples(std::vector<std::uint8_t>& bytes, Input& input) {
  const int kind = input.ConsumeIntegralInRange<int>(0, 3);
  const auto seed = input.ConsumeIntegral<std::uint32_t>();
  std::uint32_t state = seed | 1;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    switch (kind) {
      case 0: bytes[i] = 0; break;
      case 1: bytes[i] = static_cast<std::uint8_t>(seed); break;
      case 2: bytes[i] = (i >> (seed % 12)) % 2 != 0 ? 0x7F : 0x80; break;
      default:
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        bytes[i] = static_cast<std::uint8_t>(state >> 11);
        break;
    }
  }
}

/// A block of up to `mostFrames` frames and `mostChannels` channels, of a decoded depth more often than not, and of a
/// format that is refused now and then. Its memory ends with its last byte.
inline test::Pcm anyBlock(Input& input, int mostFrames, int mostChannels) {
  static constexpr int depths[] = {16, 8, 24, 32, 16, 12, 40, 2048, 4};
  static constexpr std::uint16_t tags[] = {1, 1, 1, 1, 1, 1, 0xFFFE, 3};
  const int bits = input.PickValueInArray(depths);
  const int channels =
      input.ConsumeIntegralInRange<int>(input.ConsumeProbability<float>() < 0.05F ? 0 : 1, mostChannels);
  const int frames = input.ConsumeIntegralInRange<int>(0, mostFrames);
  test::Pcm pcm;
  pcm.format = test::pcmFormat(bits, channels, anySampleRate(input));
  pcm.format.wFormatTag = input.PickValueInArray(tags);
  // No more memory for depths that nobody reads than for those that are read.
  const int storedBytes = std::min(bits / 8, 8);
  pcm.bytes.resize(static_cast<std::size_t>(frames) * static_cast<std::size_t>(channels) *
                       static_cast<std::size_t>(storedBytes) +
                   input.ConsumeIntegralInRange<std::size_t>(0, 3));
  fillSamples(pcm.bytes, input);
  return pcm;
}

}  // namespace av::fuzz
