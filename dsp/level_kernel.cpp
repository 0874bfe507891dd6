#include "dsp/level_kernel.h"

#include "simd/usable.h"

namespace av::dsp {
namespace {

constexpr Kernels<LevelKernel> kernels{&avx512LevelKernel, &avx2LevelKernel, &sse2LevelKernel};

}  // namespace

std::span<const LevelKernel* const> levelKernels() noexcept { return usable(kernels); }

}  // namespace av::dsp
