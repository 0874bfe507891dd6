#include "common/pcm_decode.h"

#include <algorithm>

namespace av {

namespace {

// Frames that are split at a time: the source of one tile stays in the first-level cache while channel after channel
// walks over it, so that many channels cost no more memory traffic than one.
constexpr std::size_t tileFrames = 256;

template <class Reader>
void readStrided(const std::uint8_t* source, std::size_t strideBytes, double* target, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) target[i] = Reader::read(source + i * strideBytes);
}

template <class Reader>
void split(const std::uint8_t* samples, std::size_t channelCount, std::size_t start, std::size_t frames,
           std::span<const std::span<double>> channels) noexcept {
  for (std::size_t first = start; first < frames; first += tileFrames) {
    const std::size_t tileEnd = std::min(first + tileFrames, frames);
    for (std::size_t c = 0; c < channels.size(); ++c) {
      const std::size_t end = std::min(tileEnd, channels[c].size());
      if (end <= first) continue;
      readStrided<Reader>(samples + (first * channelCount + c) * Reader::bytes, channelCount * Reader::bytes,
                          channels[c].data() + first, end - first);
    }
  }
}

/// Mono and stereo, which nearly all blocks are. Returns the frames that are done.
std::size_t splitInVectors(const SampleLoops& loops, const std::uint8_t* samples, std::size_t channelCount,
                           std::size_t frames, std::span<const std::span<double>> channels) noexcept {
  if (channels.size() != channelCount) return 0;
  for (const std::span<double> channel : channels)
    if (channel.size() < frames) return 0;
  switch (channelCount) {
    case 1: return loops.read(samples, frames, channels[0].data());
    case 2: return loops.split(samples, frames, channels[0].data(), channels[1].data());
    default: return 0;
  }
}

}  // namespace

bool decodeChannels(const AudioBlock& block, std::size_t frames, EightBitRule eightBitRule,
                    std::span<const std::span<double>> channels, const SampleKernel& kernel) noexcept {
  const std::int32_t held = frameCount(block.format, block.sampleBytes).value_or(0);
  const std::size_t framesToRead = held > 0 ? std::min(frames, static_cast<std::size_t>(held)) : 0;
  const std::size_t channelCount = block.format.nChannels;
  const auto wanted = channels.first(std::min(channels.size(), channelCount));
  return withSampleReader(block.format.wBitsPerSample, eightBitRule, [&](auto reader) {
    using Reader = decltype(reader);
    const std::size_t done = splitInVectors(kernel[Reader::form], block.samples, channelCount, framesToRead, wanted);
    split<Reader>(block.samples, channelCount, done, framesToRead, wanted);
  });
}

}  // namespace av
