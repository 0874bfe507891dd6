#include "common/sample_kernel_body.h"

#include <cstring>

#include <immintrin.h>

namespace av {
namespace {

std::int32_t word(const std::uint8_t* at) noexcept {
  std::int32_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

struct Words {
  template <SampleForm form>
  static __m128i read(const std::uint8_t* at) noexcept {
    const __m128i zero = _mm_setzero_si128();
    if constexpr (form == SampleForm::invertedUnsigned8) {
      const __m128i bytes = _mm_unpacklo_epi8(_mm_cvtsi32_si128(word(at)), zero);
      return _mm_sub_epi32(_mm_set1_epi32(128), _mm_unpacklo_epi16(bytes, zero));
    } else if constexpr (form == SampleForm::signed8) {
      // To the top of each word, so that the shift back keeps the sign.
      const __m128i bytes = _mm_unpacklo_epi8(zero, _mm_cvtsi32_si128(word(at)));
      return _mm_srai_epi32(_mm_unpacklo_epi16(zero, bytes), 24);
    } else if constexpr (form == SampleForm::signed16) {
      return _mm_srai_epi32(_mm_unpacklo_epi16(zero, _mm_set_epi32(0, 0, word(at + 4), word(at))), 16);
    } else if constexpr (form == SampleForm::signed24) {
      const __m128i words = _mm_set_epi32(word(at + 9), word(at + 6), word(at + 3), word(at));
      return _mm_srai_epi32(_mm_slli_epi32(words, 8), 8);
    } else {
      return _mm_set_epi32(word(at + 12), word(at + 8), word(at + 4), word(at));
    }
  }

  static __m128i even(__m128i a, __m128i b) noexcept { return shuffled<_MM_SHUFFLE(2, 0, 2, 0)>(a, b); }
  static __m128i odd(__m128i a, __m128i b) noexcept { return shuffled<_MM_SHUFFLE(3, 1, 3, 1)>(a, b); }

  /// The sums of four pairs of samples of 16 bits.
  static __m128i pairSums(const std::uint8_t* at) noexcept {
    return _mm_madd_epi16(_mm_loadu_si128(static_cast<const __m128i*>(address(at))), _mm_set1_epi16(1));
  }

  static void store(double* to, __m128i words) noexcept {
    _mm_storeu_pd(to, _mm_cvtepi32_pd(words));
    _mm_storeu_pd(to + 2, _mm_cvtepi32_pd(upper(words)));
  }

  /// Halves of sums.
  static void storeHalf(double* to, __m128i sums) noexcept {
    const __m128d half = _mm_set1_pd(0.5);
    _mm_storeu_pd(to, _mm_mul_pd(_mm_cvtepi32_pd(sums), half));
    _mm_storeu_pd(to + 2, _mm_mul_pd(_mm_cvtepi32_pd(upper(sums)), half));
  }

  /// `fits`: whether the sums of two samples do so in 32 bits.
  template <bool fits>
  static void storeMean(double* to, __m128i a, __m128i b) noexcept {
    const __m128d half = _mm_set1_pd(0.5);
    _mm_storeu_pd(to, _mm_mul_pd(sum<fits>(a, b), half));
    _mm_storeu_pd(to + 2, _mm_mul_pd(sum<fits>(upper(a), upper(b)), half));
  }

 private:
  static const void* address(const std::uint8_t* at) noexcept { return at; }

  static __m128i upper(__m128i words) noexcept { return _mm_unpackhi_epi64(words, words); }

  template <bool fits>
  static __m128d sum(__m128i a, __m128i b) noexcept {
    if constexpr (fits) return _mm_cvtepi32_pd(_mm_add_epi32(a, b));
    return _mm_add_pd(_mm_cvtepi32_pd(a), _mm_cvtepi32_pd(b));
  }

  template <int order>
  static __m128i shuffled(__m128i a, __m128i b) noexcept {
    return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), order));
  }
};

}  // namespace

constinit const SampleKernel sse2SampleKernel = sampleKernel<Words>("SSE2");

}  // namespace av
