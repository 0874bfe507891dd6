#pragma once

#include "dsp/radix4_steps.h"

#include <span>
#include <vector>

namespace av::dsp {

/// The unnormalised discrete Hartley transform of a fixed power-of-two length N, in place:
/// H[k] = Σ over n of x[n]·(cos(2πnk/N) + sin(2πnk/N)).
///
/// Decimation in time: bit reversal, one radix-2 stage where log2 N is odd, then radix-4 stages. The twiddle factors are
/// tabled once, each from its own cosine and sine, so the error stays near 1e-16 of the largest |H[k]| for every length.
///
/// Immutable after construction: any number of threads may share one object.
class HartleyTransform {
 public:
  /// `length`: N, a power of two from 2 to 65536. Throws std::invalid_argument for any other number, std::bad_alloc.
  explicit HartleyTransform(int length);

  int length() const noexcept { return m_length; }

  /// Transforms `values` in place; allocates nothing. `values` must hold exactly N elements.
  void transform(std::span<double> values) const noexcept;

 private:
  int m_length;
  std::vector<IndexPair> m_exchanges;      ///< what the bit reversal exchanges
  std::vector<HartleyTwiddle> m_twiddles;  ///< stage after stage
};

}  // namespace av::dsp
