#include "common/sample_kernel_body.h"

#include <immintrin.h>

namespace av {
namespace {

struct Words {
  template <SampleForm form>
  static __m128i read(const std::uint8_t* at) noexcept {
    if constexpr (form == SampleForm::invertedUnsigned8) {
      return _mm_sub_epi32(_mm_set1_epi32(128), _mm_cvtepu8_epi32(_mm_loadu_si32(at)));
    } else if constexpr (form == SampleForm::signed8) {
      return _mm_cvtepi8_epi32(_mm_loadu_si32(at));
    } else if constexpr (form == SampleForm::signed16) {
      return _mm_cvtepi16_epi32(_mm_loadl_epi64(static_cast<const __m128i*>(address(at))));
    } else if constexpr (form == SampleForm::signed24) {
      // To the top of each word, so that the shift back keeps the sign.
      const __m128i places = _mm_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11);
      return _mm_srai_epi32(_mm_shuffle_epi8(_mm_loadu_si128(static_cast<const __m128i*>(address(at))), places), 8);
    } else {
      return _mm_loadu_si128(static_cast<const __m128i*>(address(at)));
    }
  }

  static __m128i even(__m128i a, __m128i b) noexcept { return shuffled<_MM_SHUFFLE(2, 0, 2, 0)>(a, b); }
  static __m128i odd(__m128i a, __m128i b) noexcept { return shuffled<_MM_SHUFFLE(3, 1, 3, 1)>(a, b); }

  /// The sums of four pairs of samples of 16 bits.
  static __m128i pairSums(const std::uint8_t* at) noexcept {
    return _mm_madd_epi16(_mm_loadu_si128(static_cast<const __m128i*>(address(at))), _mm_set1_epi16(1));
  }

  static void store(double* to, __m128i words) noexcept { _mm256_storeu_pd(to, _mm256_cvtepi32_pd(words)); }

  /// Halves of sums.
  static void storeHalf(double* to, __m128i sums) noexcept { storeHalf(to, _mm256_cvtepi32_pd(sums)); }

  /// `fits`: whether the sums of two samples do so in 32 bits.
  template <bool fits>
  static void storeMean(double* to, __m128i a, __m128i b) noexcept {
    if constexpr (fits) {
      storeHalf(to, _mm_add_epi32(a, b));
    } else {
      storeHalf(to, _mm256_add_pd(_mm256_cvtepi32_pd(a), _mm256_cvtepi32_pd(b)));
    }
  }

 private:
  static void storeHalf(double* to, __m256d sums) noexcept {
    _mm256_storeu_pd(to, _mm256_mul_pd(sums, _mm256_set1_pd(0.5)));
  }

  static const void* address(const std::uint8_t* at) noexcept { return at; }

  template <int order>
  static __m128i shuffled(__m128i a, __m128i b) noexcept {
    return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), order));
  }
};

}  // namespace

constinit const SampleKernel avx2SampleKernel = sampleKernel<Words>("AVX2");

}  // namespace av
