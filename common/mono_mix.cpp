#include "common/mono_mix.h"

#include <algorithm>
#include <cstddef>

namespace av {

namespace {

template <class Reader>
void mix(const std::uint8_t* samples, std::size_t channelCount, std::span<double> mono) noexcept {
  const auto count = static_cast<double>(channelCount);
  for (double& mean : mono) {
    double sum = 0.0;
    for (std::size_t channel = 0; channel < channelCount; ++channel, samples += Reader::bytes)
      sum += Reader::read(samples);
    mean = sum / count;
  }
}

// Mono and stereo have a loop of their own: with the channel count known, the compiler turns it into vector code.
template <class Reader>
void mixChannels(const std::uint8_t* samples, std::size_t channelCount, std::span<double> mono) noexcept {
  switch (channelCount) {
    case 1: mix<Reader>(samples, 1, mono); break;
    case 2: mix<Reader>(samples, 2, mono); break;
    default: mix<Reader>(samples, channelCount, mono); break;
  }
}

}  // namespace

bool mixToMono(const AudioBlock& block, EightBitRule eightBitRule, std::span<double> mono) noexcept {
  const std::int32_t held = std::max(frameCount(block.format, block.sampleBytes).value_or(0), 0);
  const auto wanted = mono.first(std::min(mono.size(), static_cast<std::size_t>(held)));
  return withSampleReader(block.format.wBitsPerSample, eightBitRule, [&](auto reader) {
    mixChannels<decltype(reader)>(block.samples, block.format.nChannels, wanted);
  });
}

}  // namespace av
