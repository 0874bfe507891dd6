#include "simd/usable.h"

namespace av {

std::size_t unusableKernels() noexcept {
  // A library may be asked before the run-time's own initialisers have run.
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return 0;
  // The kernels for AVX2 have fused multiply-adds in them.
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? 1 : 2;
}

}  // namespace av
