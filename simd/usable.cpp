#include "simd/usable.h"

namespace av {

std::size_t unusableKernels() noexcept {
  // A library may be asked before the run-time's own initialisers have run.
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return 0;
  return __builtin_cpu_supports("avx2") ? 1 : 2;
}

}  // namespace av
