#pragma once

#include "dsp/fft_kernel.h"
#include "dsp/vector_lanes.h"

#include <cstddef>
#include <cstdint>

namespace av::dsp {

// The passes of a transform for any width of vectors. Included by the kernels' files only, each of which is compiled for
// its processor and uses its own number of lanes; see vector_lanes.h.

constexpr std::size_t reversedBits(std::size_t index, int bits) noexcept {
  std::size_t reversed = 0;
  for (int bit = 0; bit < bits; ++bit) reversed |= (index >> bit & 1) << (bits - 1 - bit);
  return reversed;
}

/// Neighbouring stages on values in registers. `factors` gives the vectors of twiddle factors by their number.
template <int lanes, int legs, int half = 1, class Factors>
AV_ALWAYS_INLINE void joinInRegisters(Vector<lanes> (&real)[legs], Vector<lanes> (&imaginary)[legs],
                                      Factors factors) noexcept {
  if constexpr (half < legs) {
    unrolled<half>([&]<int m>() AV_INLINED {
      const auto ar = factors.real(half - 1 + m);
      const auto ai = factors.imaginary(half - 1 + m);
      unrolled<legs / (2 * half)>([&]<int block>() AV_INLINED {
        constexpr int j = m + 2 * half * block;
        constexpr int k = j + half;
        const Vector<lanes> tr = ar * real[k] - ai * imaginary[k];
        const Vector<lanes> ti = ar * imaginary[k] + ai * real[k];
        real[k] = real[j] - tr;
        imaginary[k] = imaginary[j] - ti;
        real[j] += tr;
        imaginary[j] += ti;
      });
    });
    joinInRegisters<lanes, legs, 2 * half>(real, imaginary, factors);
  }
}

/// Factors that are the same for all lanes.
struct UniformFactors {
  const double* at;
  AV_ALWAYS_INLINE double real(std::size_t n) const noexcept { return at[2 * n]; }
  AV_ALWAYS_INLINE double imaginary(std::size_t n) const noexcept { return at[2 * n + 1]; }
};

template <int lanes>
struct LaneFactors {
  const double* at;
  AV_ALWAYS_INLINE Vector<lanes> real(std::size_t n) const noexcept { return load<lanes>(at + 2 * n * lanes); }
  AV_ALWAYS_INLINE Vector<lanes> imaginary(std::size_t n) const noexcept {
    return load<lanes>(at + (2 * n + 1) * lanes);
  }
};

/// Input of two arrays; or of one, as real part.
template <int lanes, bool withImaginary>
struct PlainInput {
  const double* m_real;
  const double* m_imaginary;
  AV_ALWAYS_INLINE void read(std::size_t at, Vector<lanes>& real, Vector<lanes>& imaginary) const noexcept {
    real = load<lanes>(m_real + at);
    imaginary = withImaginary ? load<lanes>(m_imaginary + at) : Vector<lanes>{};
  }
  static constexpr std::size_t positionOf(std::size_t lane) noexcept { return lane; }
};

/// Real samples that are multiplied by the window on their way, the even ones as real and the odd ones as imaginary part.
template <int lanes>
struct WindowedInput {
  double* samples;
  const double* window;
  AV_ALWAYS_INLINE void read(std::size_t at, Vector<lanes>& real, Vector<lanes>& imaginary) const noexcept {
    real = windowed(2 * at);
    imaginary = windowed(2 * at + lanes);
    exchange<1>(real, imaginary, LaneNumbers<lanes>());
  }
  /// Exchanging neighbours is one instruction and leaves the values in this order, which costs nothing to follow.
  static constexpr std::size_t positionOf(std::size_t lane) noexcept { return lane / 2 + lane % 2 * (lanes / 2); }

 private:
  AV_ALWAYS_INLINE Vector<lanes> windowed(std::size_t at) const noexcept {
    const Vector<lanes> product = load<lanes>(samples + at) * load<lanes>(window + at);
    store<lanes>(samples + at, product);
    return product;
  }
};

/// The first stages, on as many neighbouring groups as a vector has lanes. Their values stand far apart in the input and
/// side by side in the result: reading and writing bring them into bit-reversed order.
template <int lanes, int stages, class Input>
AV_ALWAYS_INLINE void firstPass(const FftSteps& steps, Input input, double* real, double* imaginary) noexcept {
  constexpr int legs = 1 << stages;
  const std::size_t groups = steps.points >> stages;
  for (std::size_t group = 0; group < groups; group += lanes) {
    Vector<lanes> re[legs];
    Vector<lanes> im[legs];
    unrolled<legs>([&]<int leg>()
                       AV_INLINED { input.read(group + groups * reversedBits(leg, stages), re[leg], im[leg]); });
    joinInRegisters<lanes, legs>(re, im, UniformFactors{steps.firstFactors});
    unrolled<legs / lanes>([&]<int part>() AV_INLINED {
      constexpr int first = part * lanes;
      transpose<lanes>(&re[first]);
      transpose<lanes>(&im[first]);
      unrolled<lanes>([&]<int lane>() AV_INLINED {
        const std::size_t place = steps.places[group + Input::positionOf(lane)] + first;
        store<lanes>(real + place, re[first + lane]);
        store<lanes>(imaginary + place, im[first + lane]);
      });
    });
  }
}

/// One pass after the first over `points` points.
template <int lanes, int stages>
AV_ALWAYS_INLINE void joiningPass(const FftPass& pass, std::size_t points, double* real, double* imaginary) noexcept {
  constexpr int legs = 1 << stages;
  const std::size_t half = pass.half;
  for (std::size_t start = 0; start < points; start += half << stages) {
    const double* factors = pass.factors;
    for (std::size_t j = start; j < start + half; j += lanes) {
      Vector<lanes> re[legs];
      Vector<lanes> im[legs];
      unrolled<legs>([&]<int leg>() AV_INLINED {
        re[leg] = load<lanes>(real + j + leg * half);
        im[leg] = load<lanes>(imaginary + j + leg * half);
      });
      joinInRegisters<lanes, legs>(re, im, LaneFactors<lanes>{factors});
      unrolled<legs>([&]<int leg>() AV_INLINED {
        store<lanes>(real + j + leg * half, re[leg]);
        store<lanes>(imaginary + j + leg * half, im[leg]);
      });
      factors += std::size_t{2} * (legs - 1) * lanes;
    }
  }
}

/// All passes after the first.
template <int lanes, int mostStages>
AV_ALWAYS_INLINE void laterPasses(const FftSteps& steps, double* real, double* imaginary) noexcept {
  const auto run = [](const FftPass& pass, std::size_t points, double* re, double* im) AV_INLINED {
    if constexpr (mostStages == 3) {
      if (pass.stages == 3) {
        joiningPass<lanes, 3>(pass, points, re, im);
        return;
      }
    }
    if (pass.stages == 2) {
      joiningPass<lanes, 2>(pass, points, re, im);
    } else {
      joiningPass<lanes, 1>(pass, points, re, im);
    }
  };
  const auto isInner = [&](std::uint32_t pass) {
    return pass < steps.passCount && steps.passes[pass].half << steps.passes[pass].stages <= steps.blockPoints;
  };
  std::uint32_t outer = 0;
  while (isInner(outer)) ++outer;
  for (std::size_t start = 0; start < steps.points; start += steps.blockPoints)
    for (std::uint32_t pass = 0; pass < outer; ++pass)
      run(steps.passes[pass], steps.blockPoints, real + start, imaginary + start);
  for (; outer < steps.passCount; ++outer) run(steps.passes[outer], steps.points, real, imaginary);
}

}  // namespace av::dsp
