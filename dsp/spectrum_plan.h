#pragma once

#include "dsp/aligned_doubles.h"
#include "dsp/fft_plan.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace av::dsp {

/// The way from N real samples to a power spectrum, with its tables and working memory: the transform of M = N/2 points
/// and realPowerSpectrum, with the same bits as these, faster.
class SpectrumPlan {
 public:
  SpectrumPlan() = default;

  /// For transforms of `points` points by `kernel`, one of fftKernels(). Throws std::bad_alloc.
  SpectrumPlan(std::uint32_t points, const FftKernel& kernel);

  /// False for lengths that kernels do not take: those below shortestKernelTransform, and those that are no power of two.
  bool isUsable() const noexcept { return m_transform.kernel() != nullptr; }

  /// Multiplies 2·M `samples` by `window`, in place, and writes their M bins, divided by `divisor`. Usable plans only.
  void compute(double* samples, const double* window, double divisor, double* power) noexcept;

 private:
  void fillFactors(std::uint32_t points);

  FftPlan m_transform;
  bool m_onesAreExact = false;  ///< in the first two stages; depends on the library's sine and cosine
  AlignedDoubles m_factors;
  AlignedDoubles m_values;
};

}  // namespace av::dsp
