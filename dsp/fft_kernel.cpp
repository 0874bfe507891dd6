#include "dsp/fft_kernel.h"

#include <array>

namespace av::dsp {
namespace {

constexpr std::array<const FftKernel*, 3> kernels{&avx512FftKernel, &avx2FftKernel, &sse2FftKernel};

}  // namespace

std::span<const FftKernel* const> fftKernels() noexcept {
  // A library may be asked before the run-time's own initialisers have run.
  __builtin_cpu_init();
  const std::span all(kernels);
  if (__builtin_cpu_supports("avx512f")) return all;
  if (__builtin_cpu_supports("avx2")) return all.subspan(1);
  return all.subspan(2);
}

}  // namespace av::dsp
