#pragma once

#include "dsp/fft_kernel.h"
#include "dsp/vector_lanes.h"

#include <cstddef>

namespace av::dsp {

/// The bins `first` and following, a vector of them, and their mirror images around half the number of points.
template <int lanes>
AV_ALWAYS_INLINE void powerOfMirroredBins(const PowerSteps& steps, std::size_t first, double* power) noexcept {
  using V = Vector<lanes>;
  const std::size_t mirrored = steps.points - first - (lanes - 1);
  const V rk = load<lanes>(steps.real + first);
  const V ik = load<lanes>(steps.imaginary + first);
  const V rj = reversed<lanes>(load<lanes>(steps.real + mirrored));
  const V ij = reversed<lanes>(load<lanes>(steps.imaginary + mirrored));
  const V wr = load<lanes>(steps.factorsReal + first);
  const V wi = load<lanes>(steps.factorsImaginary + first);
  const V a = 0.5 * (ik + ij);
  const V b = -0.5 * (rk - rj);
  const V c = 0.5 * (rk + rj);
  const V d = 0.5 * (ik - ij);
  const V wra = wr * a;
  const V wib = wi * b;
  const V wrb = wr * b;
  const V wia = wi * a;
  const V x = c + wra - wib;
  const V y = d + wrb + wia;
  const V u = c - wra + wib;
  const V v = -d + wrb + wia;
  store<lanes>(power + first, (x * x + y * y) / steps.divisor);
  store<lanes>(power + mirrored, reversed<lanes>((u * u + v * v) / steps.divisor));
}

/// See FftKernel::power.
template <int lanes>
AV_ALWAYS_INLINE void powerPass(const PowerSteps& steps, double* power) noexcept {
  const std::size_t middle = steps.points / 2;
  std::size_t k = 1;
  for (; k + lanes <= middle; k += lanes) powerOfMirroredBins<lanes>(steps, k, power);
  // The last bins below the middle are less than a vector: some are done again.
  powerOfMirroredBins<lanes>(steps, middle - lanes, power);

  const double re = steps.real[0];
  const double im = steps.imaginary[0];
  power[0] = ((re + im) * (re + im) + (re - im) * (re - im)) / steps.divisor;
  const double reMiddle = steps.real[middle];
  const double imMiddle = steps.imaginary[middle];
  power[middle] = (reMiddle * reMiddle + imMiddle * imMiddle) / steps.divisor;
}

}  // namespace av::dsp
