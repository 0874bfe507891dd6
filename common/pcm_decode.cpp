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

// Mono and stereo have a loop of their own: with the stride known, the compiler turns it into vector code.
template <class Reader>
void readChannel(const std::uint8_t* source, std::size_t channelCount, double* target, std::size_t count) noexcept {
  switch (channelCount) {
    case 1: readStrided<Reader>(source, Reader::bytes, target, count); break;
    case 2: readStrided<Reader>(source, 2 * Reader::bytes, target, count); break;
    default: readStrided<Reader>(source, channelCount * Reader::bytes, target, count); break;
  }
}

template <class Reader>
void split(const std::uint8_t* samples, std::size_t channelCount, std::size_t frames,
           std::span<const std::span<double>> channels) noexcept {
  for (std::size_t first = 0; first < frames; first += tileFrames) {
    const std::size_t tileEnd = std::min(first + tileFrames, frames);
    for (std::size_t c = 0; c < channels.size(); ++c) {
      const std::size_t end = std::min(tileEnd, channels[c].size());
      if (end <= first) continue;
      readChannel<Reader>(samples + (first * channelCount + c) * Reader::bytes, channelCount,
                          channels[c].data() + first, end - first);
    }
  }
}

}  // namespace

bool decodeChannels(const AudioBlock& block, std::size_t frames, EightBitRule eightBitRule,
                    std::span<const std::span<double>> channels) noexcept {
  const std::int32_t held = frameCount(block.format, block.sampleBytes).value_or(0);
  const std::size_t framesToRead = held > 0 ? std::min(frames, static_cast<std::size_t>(held)) : 0;
  const std::size_t channelCount = block.format.nChannels;
  const auto wanted = channels.first(std::min(channels.size(), channelCount));
  return withSampleReader(block.format.wBitsPerSample, eightBitRule, [&](auto reader) {
    split<decltype(reader)>(block.samples, channelCount, framesToRead, wanted);
  });
}

}  // namespace av
