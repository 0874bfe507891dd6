#pragma once

#include "simd/vector_lanes.h"

#include <cfloat>
#include <limits>

namespace av {

template <int lanes>
struct VectorOfWordsOf {
  using type [[gnu::vector_size(lanes * sizeof(unsigned long long))]] = unsigned long long;
};

/// As many 64-bit words as a vector of doubles has lanes.
template <int lanes>
using VectorOfWords = typename VectorOfWordsOf<lanes>::type;

/// The same bits as another type.
template <class To, class From>
AV_ALWAYS_INLINE To bitsAs(const From& from) noexcept {
  static_assert(sizeof(To) == sizeof(From));
  To to;
  __builtin_memcpy(&to, &from, sizeof to);
  return to;
}

/// Which numbers a logarithm is taken of.
enum class LogarithmOf {
  any,
  /// Positive numbers below DBL_MIN, and 0, give some level below −3000 dB.
  normal
};

/// 10·log10(x) of each lane, within 3 units in the last place; −∞ for 0, ∞ for ∞, NaN for NaN. Lanes below 0 are not
/// meant. Every build and every number of lanes gives the same bits: nothing of the maths library is used.
///
/// x = 2^e·m with m from √½ to √2, and ln m = 2·artanh(s), s = (m − 1)/(m + 1). The polynomial in s² is
/// 10/ln 10·2·artanh(s)/s, interpolated at the Chebyshev points of the range of s²: off by 3e-17 of it at most, of which
/// all but a tenth is the rounding of its first coefficient.
template <int lanes, LogarithmOf numbers = LogarithmOf::any>
AV_ALWAYS_INLINE Vector<lanes> decibels(Vector<lanes> x) noexcept {
  using V = Vector<lanes>;
  using W = VectorOfWords<lanes>;
  constexpr unsigned long long rootOfHalf = 0x3fe6a09e667f3bcd;
  constexpr unsigned long long one = 0x3ff0000000000000;
  constexpr unsigned long long mantissa = 0x000fffffffffffff;
  constexpr unsigned long long wholeNumbers = 0x4330000000000000;  // 2^52: words below 2^52 are added to it by an or
  constexpr double liftOfTiny = 54;
  constexpr double perOctave = 3.010299956639812;  // 10·log10(2)

  constexpr bool lifts = numbers == LogarithmOf::any;
  V normal = x;
  if constexpr (lifts) normal = x < DBL_MIN ? x * 0x1p54 : x;
  const W bits = bitsAs<W>(normal) + (one - rootOfHalf);
  V octaves = bitsAs<V>((bits >> 52) | wholeNumbers) - (0x1p52 + 1023);
  if constexpr (lifts) octaves = x < DBL_MIN ? octaves - liftOfTiny : octaves;
  const V m = bitsAs<V>((bits & mantissa) + rootOfHalf);
  const V s = (m - 1.0) / (m + 1.0);
  const V z = s * s;
  V series = 0x1.547cccc807dafp-1 + z * 0x1.494e91536c123p-1;
  series = 0x1.945439bdcc763p-1 + z * series;
  series = 0x1.ee214b04c7e93p-1 + z * series;
  series = 0x1.3da7c7f075602p+0 + z * series;
  series = 0x1.bcb7b1524d007p+0 + z * series;
  series = 0x1.729913c4b1496p+1 + z * series;
  series = 0x1.15f2ced384f29p+3 + z * series;
  V level = octaves * perOctave + s * series;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  if constexpr (lifts) level = x == 0.0 ? V{} - infinity : level;
  return x < infinity ? level : x;
}

/// 10·log10(x) of one number, with the bits of all others.
double decibels(double x) noexcept;

}  // namespace av
