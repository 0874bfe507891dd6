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

/// Mono and stereo, which nearly all blocks are. Returns the frames that are done.
std::size_t mixInVectors(const SampleLoops& loops, const std::uint8_t* samples, std::size_t channelCount,
                         std::span<double> mono) noexcept {
  switch (channelCount) {
    case 1: return loops.read(samples, mono.size(), mono.data());
    case 2: return loops.mix(samples, mono.size(), mono.data());
    default: return 0;
  }
}

}  // namespace

bool mixToMono(const AudioBlock& block, EightBitRule eightBitRule, std::span<double> mono,
               const SampleKernel& kernel) noexcept {
  const std::int32_t held = std::max(frameCount(block.format, block.sampleBytes).value_or(0), 0);
  const auto wanted = mono.first(std::min(mono.size(), static_cast<std::size_t>(held)));
  const std::size_t channelCount = block.format.nChannels;
  return withSampleReader(block.format.wBitsPerSample, eightBitRule, [&](auto reader) {
    using Reader = decltype(reader);
    const std::size_t done = mixInVectors(kernel[Reader::form], block.samples, channelCount, wanted);
    mix<Reader>(block.samples + done * channelCount * Reader::bytes, channelCount, wanted.subspan(done));
  });
}

}  // namespace av
