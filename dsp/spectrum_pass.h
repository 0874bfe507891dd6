#pragma once

#include "dsp/fft_kernel.h"
#include "dsp/fft_passes.h"
#include "simd/halves.h"
#include "simd/vector_lanes.h"

#include <cstddef>

namespace av::dsp {

// The last two stages of a transform and the power of what they give, without writing that down. Bins k and M − k of the
// power need each other, so two vectors of groups are joined at a time: those from j on, and those up to M/4 − j. For
// kernels' files only; see fft_passes.h.

/// A vector for each of four legs.
template <int lanes>
struct FourBins {
  Vector<lanes> real[4];
  Vector<lanes> imaginary[4];
};

/// The bins j, j + M/4, j + M/2 and j + 3M/4 for a vector of j.
template <int lanes, class Factors>
AV_ALWAYS_INLINE FourBins<lanes> lastStages(const double* real, const double* imaginary, std::size_t quarter,
                                            Factors factors) noexcept {
  FourBins<lanes> bins{};
  unrolled<4>([&]<int leg>() AV_INLINED {
    bins.real[leg] = load<lanes>(real + leg * quarter);
    bins.imaginary[leg] = load<lanes>(imaginary + leg * quarter);
  });
  joinInRegisters<lanes, 4>(bins.real, bins.imaginary, factors);
  return bins;
}

/// The powers of a bin below the middle and of its mirror image, not divided.
template <class V>
struct MirroredPowers {
  V power;
  V mirrored;
  V check;  ///< finite only if the transform is, in these bins
};

/// From the transform in bins k (`rk`, `ik`) and M − k. `wr` and `wi` are half of the bins' factors, which stands for
/// halving what they are multiplied by. Halves that are denormal do not show: nothing that small has a square.
template <int lanes, class V = Vector<lanes>>
AV_ALWAYS_INLINE MirroredPowers<V> mirroredPowers(V rk, V ik, V rj, V ij, V wr, V wi) noexcept {
  const V a = ik + ij;
  const V b = rj - rk;
  const V c = rk + rj;
  const V d = ik - ij;
  const V wra = wr * a;
  const V wib = wi * b;
  const V wrb = wr * b;
  const V wia = wi * a;
  const V x = plusHalf<lanes>(wra, c) - wib;
  const V y = plusHalf<lanes>(wrb, d) + wia;
  const V u = wib - minusHalf<lanes>(wra, c);
  const V v = minusHalf<lanes>(wrb, d) + wia;
  return {x * x + y * y, u * u + v * v, x};
}

/// The powers of the bins whose groups are their own mirror images: those of j = 0 and of j = M/8. Returns a sum that is
/// finite only if the transform is in these bins.
template <int lanes>
AV_ALWAYS_INLINE double powerOfMiddleBins(const SpectrumSteps& steps, const double* real, const double* imaginary,
                                          double* power) noexcept {
  using V = Vector<lanes>;
  const std::size_t quarter = steps.points / 4;
  const std::size_t eighth = steps.points / 8;
  // One group fills a vector with copies of itself: the same code, and too little to matter.
  const auto join = [&](std::size_t j, const double* factors) AV_INLINED {
    FourBins<lanes> bins{};
    unrolled<4>([&]<int leg>() AV_INLINED {
      bins.real[leg] = V{} + real[j + leg * quarter];
      bins.imaginary[leg] = V{} + imaginary[j + leg * quarter];
    });
    joinInRegisters<lanes, 4>(bins.real, bins.imaginary, UniformFactors{factors});
    return bins;
  };
  double check = 0.0;
  const auto pair = [&](const FourBins<lanes>& bins, int k, int j, std::size_t first, const double* mirror) AV_INLINED {
    const auto powers = mirroredPowers<lanes>(bins.real[k], bins.imaginary[k], bins.real[j], bins.imaginary[j],
                                              V{} + mirror[0], V{} + mirror[1]);
    power[first] = powers.power[0] / steps.divisor;
    power[steps.points - first] = powers.mirrored[0] / steps.divisor;
    check += powers.check[0];
  };
  const double* const factors = steps.middleFactors;
  const FourBins<lanes> zero = join(0, factors);
  const FourBins<lanes> middle = join(eighth, factors + 6);
  pair(zero, 1, 3, quarter, factors + 12);
  pair(middle, 0, 3, eighth, factors + 14);
  pair(middle, 1, 2, eighth + quarter, factors + 16);

  const double re = zero.real[0][0];
  const double im = zero.imaginary[0][0];
  const double reHalf = zero.real[2][0];
  const double imHalf = zero.imaginary[2][0];
  power[0] = ((re + im) * (re + im) + (re - im) * (re - im)) / steps.divisor;
  power[2 * quarter] = (reHalf * reHalf + imHalf * imHalf) / steps.divisor;
  return check + re + im + reHalf + imHalf;
}

/// Writes the power spectrum from a transform that lacks its last two stages. Whether the transform is finite.
template <int lanes>
AV_ALWAYS_INLINE bool spectrumPass(const SpectrumSteps& steps, const double* real, const double* imaginary,
                                   double* power) noexcept {
  using V = Vector<lanes>;
  const std::size_t quarter = steps.points / 4;
  const std::size_t eighth = steps.points / 8;
  const double divisor = steps.divisor;
  const double* factors = steps.factors;
  double sum = powerOfMiddleBins<lanes>(steps, real, imaginary, power);
  V check{};
  for (std::size_t next = 1; next < eighth; next += lanes) {
    // The last vector goes back over groups that have been done: nothing that is read changes.
    const std::size_t j = next + lanes <= eighth ? next : eighth - lanes;
    const std::size_t mirrored = quarter - j - (lanes - 1);
    FourBins<lanes> up = lastStages<lanes>(real + mirrored, imaginary + mirrored, quarter,
                                           LaneFactors<lanes>{factors + std::size_t{6} * lanes});
    unrolled<4>([&]<int leg>() AV_INLINED {
      up.real[leg] = reversed<lanes>(up.real[leg]);
      up.imaginary[leg] = reversed<lanes>(up.imaginary[leg]);
    });
    const FourBins<lanes> down = lastStages<lanes>(real + j, imaginary + j, quarter, LaneFactors<lanes>{factors});
    const LaneFactors<lanes> mirror{factors + std::size_t{12} * lanes};
    unrolled<2>([&]<int leg>() AV_INLINED {
      // Bin j + leg·M/4 and its mirror image, then the same with the mirrored groups' bins below the middle.
      const auto lower = mirroredPowers<lanes>(down.real[leg], down.imaginary[leg], up.real[3 - leg],
                                               up.imaginary[3 - leg], mirror.real(leg), mirror.imaginary(leg));
      store<lanes>(power + j + leg * quarter, lower.power / divisor);
      store<lanes>(power + mirrored + (3 - leg) * quarter, reversed<lanes>(lower.mirrored / divisor));
      const auto upper =
          mirroredPowers<lanes>(up.real[leg], up.imaginary[leg], down.real[3 - leg], down.imaginary[3 - leg],
                                mirror.real(2 + leg), mirror.imaginary(2 + leg));
      store<lanes>(power + mirrored + leg * quarter, reversed<lanes>(upper.power / divisor));
      store<lanes>(power + j + (3 - leg) * quarter, upper.mirrored / divisor);
      check += lower.check + upper.check;
    });
    factors += std::size_t{20} * lanes;
  }
  for (int lane = 0; lane < lanes; ++lane) sum += check[lane];
  return sum - sum == 0.0;
}

}  // namespace av::dsp
