#include "dsp/hartley_kernel.h"

#include "simd/usable.h"

namespace av::dsp {
namespace {

constexpr Kernels<HartleyKernel> kernels{&avx512HartleyKernel, &avx2HartleyKernel, &sse2HartleyKernel};

}  // namespace

std::span<const HartleyKernel* const> hartleyKernels() noexcept { return usable(kernels); }

}  // namespace av::dsp
