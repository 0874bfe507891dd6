#include "bench/literal_decode.h"

namespace av::bench {

double literalSample(const std::uint8_t* at, int bits, bool invertedBytes) noexcept {
  switch (bits) {
    case 8: return invertedBytes ? 128.0 - at[0] : static_cast<double>(static_cast<std::int8_t>(at[0]));
    case 16: return static_cast<double>(static_cast<std::int16_t>(at[0] | at[1] << 8));
    case 24: {
      std::int32_t value = at[0] | at[1] << 8 | at[2] << 16;
      if (value & 0x800000) value -= 0x1000000;
      return static_cast<double>(value);
    }
    case 32: {
      const std::uint32_t value =
          std::uint32_t{at[0]} | std::uint32_t{at[1]} << 8 | std::uint32_t{at[2]} << 16 | std::uint32_t{at[3]} << 24;
      return static_cast<double>(static_cast<std::int32_t>(value));
    }
    default: return 0.0;
  }
}

void literalDecode(const AudioBlock& block, std::span<const std::span<double>> channels, bool invertedBytes) noexcept {
  const int bits = block.format.wBitsPerSample;
  const auto bytes = static_cast<std::size_t>(bits / 8);
  const std::uint8_t* at = block.samples;
  for (std::size_t i = 0; i < channels[0].size(); ++i) {
    for (const std::span<double> channel : channels) {
      channel[i] = literalSample(at, bits, invertedBytes);
      at += bytes;
    }
  }
}

void literalMix(const AudioBlock& block, std::span<double> mono, bool invertedBytes) noexcept {
  const int bits = block.format.wBitsPerSample;
  const auto bytes = static_cast<std::size_t>(bits / 8);
  const std::uint8_t* at = block.samples;
  for (double& mean : mono) {
    double sum = 0;
    for (int channel = 0; channel < block.format.nChannels; ++channel) {
      sum += literalSample(at, bits, invertedBytes);
      at += bytes;
    }
    mean = sum / block.format.nChannels;
  }
}

}  // namespace av::bench
