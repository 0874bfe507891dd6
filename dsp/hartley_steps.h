#pragma once

#include "simd/vector_lanes.h"

#include <numbers>

// The steps of radix4HartleyStage on vectors, or on plain numbers: lane by lane the same operations.

namespace av::dsp {

/// (a, b) becomes (a + b, a − b).
template <class V>
AV_ALWAYS_INLINE void sumAndDifference(V& a, V& b) noexcept {
  const V difference = a - b;
  a = a + b;
  b = difference;
}

/// (a, b) turned by an angle and mirrored: (a·c + b·s, a·s − b·c).
template <class V, class Factor>
AV_ALWAYS_INLINE void rotate(V& a, V& b, const Factor& c, const Factor& s) noexcept {
  const V turned = a * c + b * s;
  b = a * s - b * c;
  a = turned;
}

/// Index 0 of each quarter.
template <class V>
AV_ALWAYS_INLINE void joinFirst(V& a, V& b, V& c, V& d) noexcept {
  sumAndDifference(a, b);
  sumAndDifference(c, d);
  sumAndDifference(a, c);
  sumAndDifference(b, d);
}

/// The index in the middle of each quarter: an eighth of a turn.
template <class V>
AV_ALWAYS_INLINE void joinMiddle(V& a, V& b, V& c, V& d) noexcept {
  sumAndDifference(a, b);
  c = c * std::numbers::sqrt2;
  d = d * std::numbers::sqrt2;
  sumAndDifference(a, c);
  sumAndDifference(b, d);
}

/// An index k of each quarter, and its mirror image.
template <class V>
struct HartleyGroup {
  V index[4];
  V mirror[4];

  template <class Factor>
  AV_ALWAYS_INLINE void join(const Factor& cos1, const Factor& sin1, const Factor& cos2, const Factor& sin2) noexcept {
    rotate(index[1], mirror[1], cos2, sin2);
    sumAndDifference(index[0], index[1]);
    sumAndDifference(mirror[0], mirror[1]);
    rotate(index[3], mirror[3], cos2, sin2);
    sumAndDifference(index[2], index[3]);
    sumAndDifference(mirror[2], mirror[3]);

    rotate(index[2], mirror[3], cos1, sin1);
    sumAndDifference(index[0], index[2]);
    sumAndDifference(mirror[1], mirror[3]);
    rotate(mirror[2], index[3], sin1, cos1);
    sumAndDifference(mirror[0], mirror[2]);
    sumAndDifference(index[1], index[3]);
  }
};

}  // namespace av::dsp
