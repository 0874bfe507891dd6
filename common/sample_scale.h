#pragma once

#include <bit>
#include <cstdint>
#include <limits>

namespace av {

/// 2^`exponent`, exactly; infinite above 1023. `exponent` is 0 or more.
inline double powerOfTwo(int exponent) noexcept {
  if (exponent > 1023) return std::numeric_limits<double>::infinity();
  return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

/// Largest positive sample of a depth of `bitsPerSample` bits (1 or more), 2^(bits − 1) − 1: 127, 32767, 8388607,
/// 2147483647 for the decoded depths, 2047 for 12 bits. Exact up to 54 bits; infinite above 1024, since a header may claim
/// 65535.
inline double fullScaleValue(int bitsPerSample) noexcept { return powerOfTwo(bitsPerSample - 1) - 1.0; }

/// Dynamic range in dB of samples whose largest magnitude is `fullScale`: 20·log10(fullScale), 90.308733622834 for
/// 16 bits. `fullScale` is positive; 1 gives 0, infinity stays infinite. For changes of the format, not for every block.
double dynamicRangeDb(double fullScale) noexcept;

}  // namespace av
