#pragma once

#include <cstddef>
#include <span>

namespace av::dsp {

/// What H[k] and H[N − k] become: the level 10·log10((H[k]² + H[N − k]²)·`gain`) + `offsetDb`.
struct LevelScale {
  double gain;
  double offsetDb;
  double emptyDb;  ///< the level of a bin whose squares are exactly 0
  double floorDb;  ///< what lower levels become, and those that are no number; −∞ leaves all of them as they are
};

/// Levels from Hartley transforms, for one kind of vector registers. All kernels give the same bits.
struct LevelKernel {
  const char* name;
  /// Writes the levels of the bins 1 to length/2 − 1 over the transform's elements, of `length` ones.
  void (*levels)(double* hartley, std::size_t length, const LevelScale& scale) noexcept;
};

extern const LevelKernel sse2LevelKernel;
extern const LevelKernel avx2LevelKernel;
extern const LevelKernel avx512LevelKernel;

/// The kernels that this processor and its operating system can run, the fastest one first. There is always one.
std::span<const LevelKernel* const> levelKernels() noexcept;

}  // namespace av::dsp
