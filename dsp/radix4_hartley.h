#pragma once

#include "dsp/hartley_plan.h"

#include <cstddef>
#include <span>

namespace av::dsp {

/// The level meter's transform: bit reversal and radix-4 Hartley stages of the spans 4, 16, 64, ... up to the length,
/// in place, for any length.
///
/// For powers of four it is the discrete Hartley transform H[k] = Σ x[n]·(cos(2πnk/N) + sin(2πnk/N)). For any other
/// length it is what those stages make of the samples, which is no transform at all (a power of two keeps a factor of two
/// undone), and which is kept on purpose: hosts send blocks of every length and know the pictures. The bits of both
/// follow from the order of operations, rotation factors included: cos and sin of θ = ⌊k·N/span⌋·2π/N, and those of 2θ
/// by the double-angle formulas.
///
/// Not for use by two threads at once: the tables of the last length are kept.
class Radix4Hartley {
 public:
  static constexpr int maxLength = 48000;
  /// The last block of a stage may reach beyond the length: up to the next multiple of the largest span, 16384.
  static constexpr std::size_t bufferLength = 49152;  // 3 * 4^7

  /// Reserves the tables of the largest length. Throws std::bad_alloc. The bits are the same with all `kernels`.
  explicit Radix4Hartley(std::span<const HartleyKernel* const> kernels = hartleyKernels());

  /// Transforms the first `length` elements (0 to 48000) in place, multiplied by `window` (so many weights) if that is not
  /// empty; allocates nothing. Elements beyond them take part
  /// where a stage's last block reaches that far: they go in as they are and come out changed.
  void transform(std::span<double, bufferLength> buffer, int length, std::span<const double> window = {}) noexcept {
    if (length != m_length) prepare(length);
    m_plan.transform(buffer.data(), window);
  }

 private:
  void prepare(int length) noexcept;

  int m_length = 0;
  HartleyPlan m_plan;
};

}  // namespace av::dsp
