#pragma once

#include "common/sample_kernel.h"

namespace av {

/// The loops over samples of one form. `Words` has the operations on four 32-bit numbers; it belongs to one file only, so
/// that nothing that is made of it stands in for another file's.
template <class Words, SampleForm form>
struct SampleLoopsBody {
  static constexpr std::size_t bytes = form == SampleForm::signed32   ? 4
                                       : form == SampleForm::signed24 ? 3
                                       : form == SampleForm::signed16 ? 2
                                                                      : 1;

  /// Fours of frames. Samples of 24 bits are loaded with four bytes too many.
  static constexpr std::size_t whole(std::size_t frames) noexcept {
    if (form != SampleForm::signed24) return frames / 4 * 4;
    return frames < 2 ? 0 : (frames - 2) / 4 * 4;
  }

  static auto four(const std::uint8_t* samples, std::size_t first) noexcept {
    return Words::template read<form>(samples + first * bytes);
  }

  static std::size_t read(const std::uint8_t* samples, std::size_t frames, double* to) noexcept {
    const std::size_t end = whole(frames);
    for (std::size_t i = 0; i < end; i += 4) Words::store(to + i, four(samples, i));
    return end;
  }

  static std::size_t split(const std::uint8_t* samples, std::size_t frames, double* left, double* right) noexcept {
    const std::size_t end = whole(frames);
    for (std::size_t i = 0; i < end; i += 4) {
      const auto first = four(samples, 2 * i);
      const auto second = four(samples, 2 * i + 4);
      Words::store(left + i, Words::even(first, second));
      Words::store(right + i, Words::odd(first, second));
    }
    return end;
  }

  static std::size_t mix(const std::uint8_t* samples, std::size_t frames, double* mean) noexcept {
    const std::size_t end = whole(frames);
#pragma GCC unroll 4  // few operations beside those of the loop itself
    for (std::size_t i = 0; i < end; i += 4) {
      if constexpr (form == SampleForm::signed16) {
        Words::storeHalf(mean + i, Words::pairSums(samples + 2 * i * bytes));
      } else {
        const auto first = four(samples, 2 * i);
        const auto second = four(samples, 2 * i + 4);
        Words::template storeMean<bytes != 4>(mean + i, Words::even(first, second), Words::odd(first, second));
      }
    }
    return end;
  }

  static constexpr SampleLoops loops() noexcept { return {read, split, mix}; }
};

template <class Words>
constexpr SampleKernel sampleKernel(const char* name) noexcept {
  return {
      name,
      {SampleLoopsBody<Words, SampleForm::invertedUnsigned8>::loops(),
       SampleLoopsBody<Words, SampleForm::signed8>::loops(), SampleLoopsBody<Words, SampleForm::signed16>::loops(),
       SampleLoopsBody<Words, SampleForm::signed24>::loops(), SampleLoopsBody<Words, SampleForm::signed32>::loops()}};
}

}  // namespace av
