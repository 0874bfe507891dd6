#pragma once

#include "common/sample_kernel.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

// One reader a stored form of a sample: `bytes` is its size in the block, `read(p)` its value on the sample's own
// integer scale, `form` the name of the kernels' loops over many of them. Readers load byte-wise or through memcpy, so `p` needs no alignment, and they touch exactly `bytes`
// bytes. All machines of this library are little-endian, as the samples are.

namespace av {

/// How a depth of 8 bits is read. The rules differ by control and one of them inverts the sign: pictures depend on it.
enum class EightBitRule {
  invertedUnsigned,  ///< 128 − byte, the byte unsigned: silence (128) reads 0
  signedAsStored,    ///< the byte as a signed number as it stands: silence (128) reads −128
};

/// Depths that are decoded at all. Other depths are accepted in a header, but their samples are not read.
constexpr bool isDecodedDepth(int bitsPerSample) noexcept {
  return bitsPerSample == 8 || bitsPerSample == 16 || bitsPerSample == 24 || bitsPerSample == 32;
}

struct InvertedUnsigned8 {
  static constexpr SampleForm form = SampleForm::invertedUnsigned8;
  static constexpr std::size_t bytes = 1;
  static double read(const std::uint8_t* p) noexcept { return 128 - *p; }
};

struct Signed8 {
  static constexpr SampleForm form = SampleForm::signed8;
  static constexpr std::size_t bytes = 1;
  static double read(const std::uint8_t* p) noexcept { return static_cast<std::int8_t>(*p); }
};

struct Signed16 {
  static constexpr SampleForm form = SampleForm::signed16;
  static constexpr std::size_t bytes = 2;
  static double read(const std::uint8_t* p) noexcept {
    std::int16_t value;
    std::memcpy(&value, p, sizeof value);
    return value;
  }
};

struct Signed24 {
  static constexpr SampleForm form = SampleForm::signed24;
  static constexpr std::size_t bytes = 3;
  static double read(const std::uint8_t* p) noexcept {
    // The three bytes go to the top of a word, so that its sign is bit 23's; the shift back keeps it.
    const std::uint32_t word = std::uint32_t{p[0]} << 8 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 24;
    return static_cast<std::int32_t>(word) >> 8;
  }
};

struct Signed32 {
  static constexpr SampleForm form = SampleForm::signed32;
  static constexpr std::size_t bytes = 4;
  static double read(const std::uint8_t* p) noexcept {
    std::int32_t value;
    std::memcpy(&value, p, sizeof value);
    return value;
  }
};

/// Calls `use` with the reader of a depth, as `use(Signed16{})`, so that the loop inside is compiled for that reader.
/// False, without a call, for a depth that is not decoded.
template <class Use>
bool withSampleReader(int bitsPerSample, EightBitRule eightBitRule, Use&& use) {
  switch (bitsPerSample) {
    case 8:
      if (eightBitRule == EightBitRule::invertedUnsigned) {
        std::forward<Use>(use)(InvertedUnsigned8{});
      } else {
        std::forward<Use>(use)(Signed8{});
      }
      return true;
    case 16: std::forward<Use>(use)(Signed16{}); return true;
    case 24: std::forward<Use>(use)(Signed24{}); return true;
    case 32: std::forward<Use>(use)(Signed32{}); return true;
    default: return false;
  }
}

}  // namespace av
