#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace av::dsp {

/// The unnormalised discrete Hartley transform of a fixed power-of-two length N, in place:
/// H[k] = Σ over n of x[n]·(cos(2πnk/N) + sin(2πnk/N)).
///
/// Decimation in time: bit reversal, one radix-2 stage where log2 N is odd, then radix-4 stages (R. N. Bracewell, "The
/// fast Hartley transform", Proc. IEEE 72 (1984); two radix-2 steps fused). The twiddle factors are tabled once, each
/// from its own cosine and sine, so the error stays near 1e-16 of the largest |H[k]| for every length.
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
  struct Twiddle {
    double cos1, sin1;  ///< of 2πk/L, L being the stage's span
    double cos2, sin2;  ///< of twice that angle
  };

  const Twiddle* radix4Stage(double* values, int span, const Twiddle* twiddles) const noexcept;

  int m_length;
  std::vector<std::pair<std::uint16_t, std::uint16_t>> m_swaps;  ///< index pairs that the bit reversal exchanges
  std::vector<Twiddle> m_twiddles;                               ///< stage after stage, k = 1 to L/8 − 1
};

}  // namespace av::dsp
