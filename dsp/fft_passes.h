#pragma once

#include "dsp/fft_kernel.h"
#include "simd/vector_lanes.h"

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

/// Whether the factors that are 1 in the first two stages are multiplied by; see FftKernel::transformWindowed.
enum class Ones { multiplied, skipped };

/// Neighbouring stages on values in registers. `factors` gives the vectors of twiddle factors by their number.
template <int lanes, int legs, Ones ones = Ones::multiplied, int half = 1, class Factors>
AV_ALWAYS_INLINE void joinInRegisters(Vector<lanes> (&real)[legs], Vector<lanes> (&imaginary)[legs],
                                      Factors factors) noexcept {
  if constexpr (half < legs) {
    unrolled<half>([&]<int m>() AV_INLINED {
      constexpr bool isOne = ones == Ones::skipped && m == 0 && half <= 2;
      unrolled<legs / (2 * half)>([&]<int block>() AV_INLINED {
        constexpr int j = m + 2 * half * block;
        constexpr int k = j + half;
        Vector<lanes> tr = real[k];
        Vector<lanes> ti = imaginary[k];
        if constexpr (!isOne) {
          const auto ar = factors.real(half - 1 + m);
          const auto ai = factors.imaginary(half - 1 + m);
          tr = ar * real[k] - ai * imaginary[k];
          ti = ar * imaginary[k] + ai * real[k];
        }
        real[k] = real[j] - tr;
        imaginary[k] = imaginary[j] - ti;
        real[j] += tr;
        imaginary[j] += ti;
      });
    });
    joinInRegisters<lanes, legs, ones, 2 * half>(real, imaginary, factors);
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

/// Where leg `leg` of a group begins, of 2^`stages` legs that stand `groups` values apart.
template <int stages>
AV_ALWAYS_INLINE std::size_t legOf(std::size_t leg, std::size_t groups) noexcept {
  return groups * reversedBits(leg, stages);
}

/// Input of two arrays; or of one, as real part.
template <int lanes, bool withImaginary>
struct PlainInput {
  const double* m_real;
  const double* m_imaginary;

  static constexpr Ones ones = Ones::multiplied;

  /// The legs of `lanes` groups from `group` on.
  template <int stages>
  AV_ALWAYS_INLINE void read(std::size_t group, std::size_t groups, Vector<lanes>* real,
                             Vector<lanes>* imaginary) const noexcept {
    unrolled<1 << stages>([&]<int leg>() AV_INLINED {
      const std::size_t at = group + legOf<stages>(leg, groups);
      real[leg] = load<lanes>(m_real + at);
      imaginary[leg] = withImaginary ? load<lanes>(m_imaginary + at) : Vector<lanes>{};
    });
  }

  /// Which of the groups a lane holds.
  static constexpr std::size_t positionOf(std::size_t lane) noexcept { return lane; }
};

/// Real samples that are multiplied by the window on their way, the even ones as real and the odd ones as imaginary part.
template <int lanes>
struct WindowedInput {
  double* samples;
  const double* window;

  static constexpr Ones ones = Ones::skipped;

  template <int stages>
  AV_ALWAYS_INLINE void read(std::size_t group, std::size_t groups, Vector<lanes>* real,
                             Vector<lanes>* imaginary) const noexcept {
    const auto multiply = [&](std::size_t at)
                              AV_INLINED { return load<lanes>(samples + at) * load<lanes>(window + at); };
    unrolled<1 << stages>([&]<int leg>() AV_INLINED {
      const std::size_t at = 2 * (group + legOf<stages>(leg, groups));
      real[leg] = multiply(at);
      imaginary[leg] = multiply(at + lanes);
    });
    // Only when all legs have been read: they often stand a multiple of 4 KB apart, where processors take a load for one
    // of what was stored just before, and wait.
    unrolled<1 << stages>([&]<int leg>() AV_INLINED {
      const std::size_t at = 2 * (group + legOf<stages>(leg, groups));
      store<lanes>(samples + at, real[leg]);
      store<lanes>(samples + at + lanes, imaginary[leg]);
      exchange<1>(real[leg], imaginary[leg], LaneNumbers<lanes>());
    });
  }

  /// Exchanging neighbours is one instruction and leaves the values in this order, which costs nothing to follow.
  static constexpr std::size_t positionOf(std::size_t lane) noexcept { return lane / 2 + lane % 2 * (lanes / 2); }
};

/// Real samples that the window has been applied to.
template <int lanes>
struct SampleInput {
  const double* samples;

  static constexpr Ones ones = Ones::multiplied;

  template <int stages>
  AV_ALWAYS_INLINE void read(std::size_t group, std::size_t groups, Vector<lanes>* real,
                             Vector<lanes>* imaginary) const noexcept {
    unrolled<1 << stages>([&]<int leg>() AV_INLINED {
      const std::size_t at = 2 * (group + legOf<stages>(leg, groups));
      real[leg] = load<lanes>(samples + at);
      imaginary[leg] = load<lanes>(samples + at + lanes);
      exchange<1>(real[leg], imaginary[leg], LaneNumbers<lanes>());
    });
  }

  static constexpr std::size_t positionOf(std::size_t lane) noexcept { return WindowedInput<lanes>::positionOf(lane); }
};

/// The first stages of as many neighbouring groups as a vector has lanes.
template <int lanes, int stages, class Input>
AV_ALWAYS_INLINE void firstStages(FftSteps steps, Input input, std::size_t group, double* real,
                                  double* imaginary) noexcept {
  constexpr int legs = 1 << stages;
  Vector<lanes> re[legs];
  Vector<lanes> im[legs];
  input.template read<stages>(group, steps.points >> stages, &re[0], &im[0]);
  joinInRegisters<lanes, legs, Input::ones>(re, im, UniformFactors{steps.firstFactors});
  unrolled<legs / lanes>([&]<int part>() AV_INLINED {
    transpose<lanes>(&re[part * lanes]);
    transpose<lanes>(&im[part * lanes]);
  });
  unrolled<lanes>([&]<int lane>() AV_INLINED {
    const std::size_t place = steps.places[group + Input::positionOf(lane)];
    unrolled<legs / lanes>([&]<int part>() AV_INLINED {
      constexpr int first = part * lanes;
      store<lanes>(real + place + first, re[first + lane]);
      store<lanes>(imaginary + place + first, im[first + lane]);
    });
  });
}

/// The first pass. The values of a group stand far apart in the input and side by side in the result: reading and writing
/// bring them into bit-reversed order.
template <int lanes, int stages, class Input>
AV_ALWAYS_INLINE void firstPass(FftSteps steps, Input input, double* real, double* imaginary) noexcept {
  const std::size_t groups = steps.points >> stages;
  const auto run = [&](std::size_t from, std::size_t to) AV_INLINED {
    for (std::size_t group = from; group < to; group += lanes)
      firstStages<lanes, stages>(steps, input, group, real, imaginary);
  };
  if constexpr (stages == 2) {
    // A group is half a cache line in the result, and the other half is that of the group half the way on. Where these
    // two read a multiple of 4 KB apart the second one would be taken for what the first one has just stored, and wait:
    // there it comes some groups later.
    const std::size_t lag = groups < 512 ? 0 : 64;
    const std::size_t second = groups / 2 - lag;
    run(0, lag);
    for (std::size_t group = lag; group < groups / 2; group += lanes) {
      firstStages<lanes, stages>(steps, input, group, real, imaginary);
      firstStages<lanes, stages>(steps, input, group + second, real, imaginary);
    }
    run(groups - lag, groups);
  } else {
    run(0, groups);
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
