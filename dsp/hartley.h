#pragma once

#include "dsp/hartley_plan.h"

#include <cassert>
#include <span>

namespace av::dsp {

/// The unnormalised discrete Hartley transform of a fixed power-of-two length N, in place:
/// H[k] = Σ over n of x[n]·(cos(2πnk/N) + sin(2πnk/N)).
///
/// Decimation in time: bit reversal, one radix-2 stage where log2 N is odd, then radix-4 stages. The twiddle factors are
/// tabled once, each from its own cosine and sine, so the error stays near 1e-16 of the largest |H[k]| for every length.
///
/// Not for use by two threads at once: it has working memory.
class HartleyTransform {
 public:
  /// `length`: N, a power of two from 2 to 65536. Throws std::invalid_argument for any other number, std::bad_alloc.
  /// The bits are the same with all `kernels`.
  explicit HartleyTransform(int length, std::span<const HartleyKernel* const> kernels = hartleyKernels());

  int length() const noexcept { return m_length; }

  /// Transforms `values` in place, multiplied by `window` if that is not empty; allocates nothing. `values` must hold exactly N elements.
  void transform(std::span<double> values, std::span<const double> window = {}) noexcept {
    assert(values.size() == static_cast<std::size_t>(m_length));
    m_plan.transform(values.data(), window);
  }

 private:
  int m_length;
  HartleyPlan m_plan;
};

}  // namespace av::dsp
