#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace av {

/// The kernels of one task for AVX-512, AVX2 and SSE2, in this order: the fastest one first.
template <class Kernel>
using Kernels = std::array<const Kernel*, 3>;

/// How many of them this processor and its operating system cannot run. The last one runs everywhere.
std::size_t unusableKernels() noexcept;

/// Those that can be run here, the fastest one first. There is always one. All of them give the same bits.
template <class Kernel>
std::span<const Kernel* const> usable(const Kernels<Kernel>& kernels) noexcept {
  return std::span<const Kernel* const>(kernels).subspan(unusableKernels());
}

}  // namespace av
