#pragma once

#include <cstdint>
#include <span>

namespace av::dsp {

/// Neighbouring stages of a transform that are done in one go over the memory, in place, with the values between them in
/// registers: they join the transforms of `half` points of each group of 2^`stages` neighbours.
struct FftPass {
  std::uint32_t half;
  std::uint32_t stages;
  const double* factors;  ///< in the order of use, real and imaginary parts in turn, a vector of each at a time
};

/// What a kernel needs to know of a transform; see FftPlan.
struct FftSteps {
  std::uint32_t points;
  /// So many neighbouring points stay in the first-level cache: the passes that do not reach beyond them are done for
  /// the first of these blocks, then for the next.
  std::uint32_t blockPoints;
  const std::uint32_t* places;  ///< where the first pass puts the results of its i-th group
  const double* firstFactors;   ///< of the first pass: real and imaginary parts in turn
  const FftPass* passes;        ///< those after the first
  std::uint32_t passCount;
};

/// What a kernel needs to know of the last two stages of a transform of `points` points and the way from there to a power
/// spectrum; see SpectrumPlan.
struct SpectrumSteps {
  std::uint32_t points;
  const double* middleFactors;  ///< of the groups that are their own mirror images
  const double* factors;        ///< of the other ones, in the order of use; of mirror images half in both
  double divisor;
};

/// The transform for one kind of vector registers.
///
/// All kernels give the same bits, those of the plain operations: they do the same multiplications, additions and
/// divisions on the same values, side by side and in another order. (Which of several NaNs comes out is not part of that.)
struct FftKernel {
  const char* name;
  std::uint32_t lanes;        ///< doubles in a vector
  std::uint32_t firstStages;  ///< stages of the first pass
  std::uint32_t mostStages;   ///< that the registers have room for in a pass

  /// Transforms `steps.points` values; `imaginaryIn` may be null. Does not scale.
  void (*transform)(const FftSteps& steps, const double* realIn, const double* imaginaryIn, double* real,
                    double* imaginary) noexcept;

  /// Transforms twice as many `samples`: the even ones are the real input, the odd ones the imaginary input.
  void (*transformSamples)(const FftSteps& steps, const double* samples, double* real, double* imaginary) noexcept;

  /// Multiplies the samples by `window`, in place, and transforms them. The factors that are 1 + 0i, all of the first
  /// stage and half of the second, are not multiplied by. The result is that of transformSamples but for the signs of
  /// zeros, unless a value on the way is not finite; then the result is not finite either.
  void (*transformWindowed)(const FftSteps& steps, double* samples, const double* window, double* real,
                            double* imaginary) noexcept;

  /// Writes `steps.points` bins from a transform that lacks its last two stages. Whether the transform is finite.
  bool (*power)(const SpectrumSteps& steps, const double* real, const double* imaginary, double* power) noexcept;
};

/// Kernels take transforms from so many points on.
inline constexpr std::uint32_t shortestKernelTransform = 128;

extern const FftKernel sse2FftKernel;
extern const FftKernel avx2FftKernel;
extern const FftKernel avx512FftKernel;

/// The kernels that this processor and its operating system can run, the fastest one first. There is always one.
std::span<const FftKernel* const> fftKernels() noexcept;

}  // namespace av::dsp
