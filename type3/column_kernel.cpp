#include "type3/column_kernel.h"

#include "simd/usable.h"

namespace av::type3 {
namespace {

constexpr Kernels<ColumnKernel> kernels{&avx512ColumnKernel, &avx2ColumnKernel, &sse2ColumnKernel};

}  // namespace

std::span<const ColumnKernel* const> columnKernels() noexcept { return usable(kernels); }

}  // namespace av::type3
