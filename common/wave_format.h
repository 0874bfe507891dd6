#pragma once

#include <cstddef>
#include <cstdint>

namespace av {

/// The wave format as a host delivers it: the standard 18-byte header (little-endian, as every supported machine is)
/// followed by room for extra format bytes, which no control interprets. Cleared to zero at the start of every block.
struct AudioFormatBlock {
  std::uint16_t wFormatTag = 0;
  std::uint16_t nChannels = 0;
  std::uint32_t nSamplesPerSec = 0;  ///< frames per second
  std::uint32_t nAvgBytesPerSec = 0;
  std::uint16_t nBlockAlign = 0;
  std::uint16_t wBitsPerSample = 0;
  std::uint16_t cbSize = 0;  ///< count of extra format bytes behind the first 18
  std::uint8_t extra[162] = {};
};

static_assert(sizeof(AudioFormatBlock) == 180);
static_assert(offsetof(AudioFormatBlock, wFormatTag) == 0);
static_assert(offsetof(AudioFormatBlock, nChannels) == 2);
static_assert(offsetof(AudioFormatBlock, nSamplesPerSec) == 4);
static_assert(offsetof(AudioFormatBlock, nAvgBytesPerSec) == 8);
static_assert(offsetof(AudioFormatBlock, nBlockAlign) == 12);
static_assert(offsetof(AudioFormatBlock, wBitsPerSample) == 14);
static_assert(offsetof(AudioFormatBlock, cbSize) == 16);
static_assert(offsetof(AudioFormatBlock, extra) == 18);

inline constexpr std::size_t waveHeaderBytes = 18;
inline constexpr std::uint16_t formatTagPcm = 1;
inline constexpr std::uint16_t formatTagExtensible = 0xFFFE;

/// Whether blocks of this format are decoded at all: integer PCM, plain or under the extensible tag.
constexpr bool isAcceptedFormatTag(std::uint16_t tag) noexcept {
  return tag == formatTagPcm || tag == formatTagExtensible;
}

}  // namespace av
