#include "dsp/radix4_steps.h"

#include "dsp/hartley_steps.h"

#include <cstddef>
#include <numeric>
#include <utility>

namespace av::dsp {

void fillBitReversedOrder(std::span<std::uint16_t> order) noexcept {
  std::iota(order.begin(), order.end(), std::uint16_t{0});
  std::size_t reversed = 0;
  for (std::size_t i = 1; i < order.size(); ++i) {
    std::size_t bit = order.size() / 2;
    reversed ^= bit;
    while (bit != 0 && (reversed & bit) == 0) {
      bit /= 2;
      reversed ^= bit;
    }
    if (i > reversed) std::swap(order[i], order[reversed]);
  }
}

/// Index k and its mirror q − k are joined together, as each needs the other's values.
void radix4HartleyStage(double* values, int length, int span, const HartleyTwiddle* twiddles) noexcept {
  const int quarter = span / 4;
  const int eighth = span / 8;
  for (int start = 0; start < length; start += span) {
    double* const q0 = values + start;
    double* const q1 = q0 + quarter;
    double* const q2 = q1 + quarter;
    double* const q3 = q2 + quarter;

    joinFirst(q0[0], q1[0], q2[0], q3[0]);
    if (eighth > 0) joinMiddle(q0[eighth], q1[eighth], q2[eighth], q3[eighth]);
    for (int k = 1; k < eighth; ++k) {
      const int mirror = quarter - k;
      HartleyGroup<double> group{{q0[k], q1[k], q2[k], q3[k]}, {q0[mirror], q1[mirror], q2[mirror], q3[mirror]}};
      const HartleyTwiddle& t = twiddles[k - 1];
      group.join(t.cos1, t.sin1, t.cos2, t.sin2);
      double* const quarters[] = {q0, q1, q2, q3};
      for (int n = 0; n < 4; ++n) {
        quarters[n][k] = group.index[n];
        quarters[n][mirror] = group.mirror[n];
      }
    }
  }
}

}  // namespace av::dsp
