#pragma once

#include "simd/vector_lanes.h"

#include <immintrin.h>

namespace av {

template <int lanes>
struct VectorOfFloatsOf {
  using type [[gnu::vector_size(lanes * sizeof(float))]] = float;
};

template <int lanes>
struct VectorOfIntsOf {
  using type [[gnu::vector_size(lanes * sizeof(int))]] = int;
};

// GCC 12 makes halves of the widest vectors where it converts them, and warns of the intrinsics without a mask.

/// Each lane rounded to single precision.
template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> roundedToSingle(Vector<lanes> x) noexcept {
  using Floats = typename VectorOfFloatsOf<lanes>::type;
  if constexpr (lanes == 8) {
    return _mm512_maskz_cvtps_pd(0xFF, _mm512_maskz_cvtpd_ps(0xFF, x));
  } else {
    return __builtin_convertvector(__builtin_convertvector(x, Floats), Vector<lanes>);
  }
}

/// The whole part of each lane, which lies in the range of int.
template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> truncated(Vector<lanes> x) noexcept {
  using Ints = typename VectorOfIntsOf<lanes>::type;
  if constexpr (lanes == 8) {
    return _mm512_maskz_cvtepi32_pd(0xFF, _mm512_maskz_cvttpd_epi32(0xFF, x));
  } else {
    return __builtin_convertvector(__builtin_convertvector(x, Ints), Vector<lanes>);
  }
}

/// The square root of each lane.
template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> squareRoot(Vector<lanes> x) noexcept {
  if constexpr (lanes == 8) {
    return _mm512_maskz_sqrt_pd(0xFF, x);
  } else if constexpr (lanes == 4) {
    return _mm256_sqrt_pd(x);
  } else {
    return _mm_sqrt_pd(x);
  }
}

}  // namespace av
