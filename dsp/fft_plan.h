#pragma once

#include "dsp/aligned_doubles.h"
#include "dsp/fft_kernel.h"

#include <cstdint>
#include <vector>

namespace av::dsp {

/// All factors of one stage in their order.
struct StageFactors {
  StageFactors(std::uint32_t half, bool inverse);
  std::vector<double> real;
  std::vector<double> imaginary;
};

/// The transform of one length and direction with its tables: the same bits as FFT, faster.
///
/// Holds nothing that a transform changes. Pointers into it are its own, so it can be moved but not copied.
class FftPlan {
 public:
  FftPlan() = default;

  /// For transforms of `length` points by `kernel`, one of fftKernels(). Any length is taken, but only powers of two of at
  /// least shortestKernelTransform points get tables. steps() lack the last `stagesLeft` stages; whoever leaves any does
  /// them himself and does not call transform(). Throws std::bad_alloc.
  FftPlan(std::uint32_t length, bool inverse, const FftKernel& kernel, std::uint32_t stagesLeft = 0);

  FftPlan(const FftPlan&) = delete;
  FftPlan& operator=(const FftPlan&) = delete;
  FftPlan(FftPlan&&) = default;
  FftPlan& operator=(FftPlan&&) = default;
  ~FftPlan() = default;

  /// Null where the length is too short for kernels or no power of two.
  const FftKernel* kernel() const noexcept { return m_steps.passes != nullptr ? m_kernel : nullptr; }

  /// What kernel() needs.
  const FftSteps& steps() const noexcept { return m_steps; }

  /// As FFT of this length and direction, with its end of the process.
  void transform(const double* realIn, const double* imaginaryIn, double* realOut, double* imaginaryOut) const noexcept;

 private:
  void planPasses(std::uint32_t stagesInAll);
  void fillPlaces(std::uint32_t bits);
  void fillFactors();

  std::uint32_t m_length = 0;
  bool m_inverse = false;
  const FftKernel* m_kernel = nullptr;
  std::vector<std::uint32_t> m_places;
  AlignedDoubles m_factors;
  std::vector<FftPass> m_passes;
  FftSteps m_steps{};
};

}  // namespace av::dsp
