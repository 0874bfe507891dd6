#pragma once

#include "dsp/radix4_steps.h"

#include <cstdint>
#include <span>

namespace av::dsp {

/// A radix-4 stage that joins quarters of `span` elements, as radix4HartleyStage does.
struct HartleyStage {
  std::uint32_t span;
  /// For each vector of indices k, in the order of use: cos1, sin1, cos2 and sin2 of its lanes. The last vector of indices
  /// comes first; see HartleyKernel::stages.
  const double* factors;
};

/// What a kernel needs to know of a transform; see HartleyPlan.
struct HartleySteps {
  std::uint32_t length;
  std::uint32_t blockSpan;              ///< the largest span of the stages that are done in one go: 64, or 32
  bool powerOfTwo;                      ///< so that the order is a plain bit reversal
  const std::uint16_t* order;           ///< which element goes to each place
  const HartleyTwiddle* blockTwiddles;  ///< of the stages up to `blockSpan`, stage after stage
  const HartleyStage* stages;           ///< those after them; there is at least one
  std::uint32_t stageCount;
};

/// The fast Hartley transform for one kind of vector registers.
///
/// All kernels give the same bits, those of radix4HartleyStage: the same multiplications and additions of the same
/// values, side by side and in another order. (Which of several NaNs comes out is not part of that.)
struct HartleyKernel {
  const char* name;
  std::uint32_t lanes;  ///< doubles in a vector

  /// Reorders the values into `to`, multiplied by `window` if that is not null (only where the length is a power of two),
  /// and does the stages up to `blockSpan`, for the whole blocks of `blockSpan` elements.
  /// There are at least as many of them as lanes. What is left over at the end is the caller's.
  void (*blocks)(const HartleySteps& steps, const double* values, const double* window, double* to) noexcept;

  /// Does the stages after them: `work` is changed, the last one writes to `values`.
  void (*stages)(const HartleySteps& steps, double* work, double* values) noexcept;
};

extern const HartleyKernel sse2HartleyKernel;
extern const HartleyKernel avx2HartleyKernel;
extern const HartleyKernel avx512HartleyKernel;

/// The kernels that this processor and its operating system can run, the fastest one first. There is always one.
std::span<const HartleyKernel* const> hartleyKernels() noexcept;

}  // namespace av::dsp
