#pragma once

#include <cmath>

namespace av {

/// Largest positive sample of a depth of `bitsPerSample` bits, 2^(bits − 1) − 1: 127, 32767, 8388607, 2147483647 for
/// the decoded depths, 2047 for 12 bits. Exact up to 54 bits; infinite above 1024, since a header may claim 65535.
inline double fullScaleValue(int bitsPerSample) noexcept { return std::ldexp(1.0, bitsPerSample - 1) - 1.0; }

/// Dynamic range in dB of samples whose largest magnitude is `fullScale`: 20·log10(fullScale), 90.308733622834 for
/// 16 bits. `fullScale` is positive; 1 gives 0, infinity stays infinite.
inline double dynamicRangeDb(double fullScale) noexcept { return 20.0 * std::log10(fullScale); }

}  // namespace av
