#include "dsp/fft_kernel.h"

#include "simd/usable.h"

namespace av::dsp {
namespace {

constexpr Kernels<FftKernel> kernels{&avx512FftKernel, &avx2FftKernel, &sse2FftKernel};

}  // namespace

std::span<const FftKernel* const> fftKernels() noexcept { return usable(kernels); }

}  // namespace av::dsp
