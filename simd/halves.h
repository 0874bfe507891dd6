#pragma once

#include "simd/vector_lanes.h"

#if defined(__FMA__) || defined(__AVX512F__)
#include <immintrin.h>
#endif

namespace av {

// The half of a number is exact unless it is denormal, so that one fused operation rounds as a product and a sum do: these
// have the same bits with and without it, but where the half of a denormal number counts.

/// a + b/2
template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> plusHalf(Vector<lanes> a, Vector<lanes> b) noexcept {
#ifdef __FMA__
  if constexpr (lanes == 4) return _mm256_fmadd_pd(b, _mm256_set1_pd(0.5), a);
#endif
#ifdef __AVX512F__
  if constexpr (lanes == 8) return _mm512_fmadd_pd(b, _mm512_set1_pd(0.5), a);
#endif
  return a + 0.5 * b;
}

/// a − b/2
template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> minusHalf(Vector<lanes> a, Vector<lanes> b) noexcept {
#ifdef __FMA__
  if constexpr (lanes == 4) return _mm256_fnmadd_pd(b, _mm256_set1_pd(0.5), a);
#endif
#ifdef __AVX512F__
  if constexpr (lanes == 8) return _mm512_fnmadd_pd(b, _mm512_set1_pd(0.5), a);
#endif
  return a - 0.5 * b;
}

}  // namespace av
