#include "common/sample_kernel.h"

#include "simd/usable.h"

namespace av {
namespace {

// Wider vectors than AVX2's gain nothing here: the loops wait for the memory that they write.
constexpr Kernels<SampleKernel> kernels{&avx2SampleKernel, &avx2SampleKernel, &sse2SampleKernel};

}  // namespace

std::span<const SampleKernel* const> sampleKernels() noexcept { return usable(kernels); }

}  // namespace av
