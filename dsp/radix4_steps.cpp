#include "dsp/radix4_steps.h"

#include <numbers>

namespace av::dsp {
namespace {

/// (a, b) becomes (a + b, a − b).
inline void sumAndDifference(double& a, double& b) noexcept {
  const double difference = a - b;
  a += b;
  b = difference;
}

/// (a, b) turned by an angle and mirrored: (a·c + b·s, a·s − b·c).
inline void rotate(double& a, double& b, double c, double s) noexcept {
  const double turned = a * c + b * s;
  b = a * s - b * c;
  a = turned;
}

}  // namespace

void appendBitReversal(int length, std::vector<IndexPair>& exchanges) {
  int reversed = 0;
  for (int i = 1; i < length; ++i) {
    int bit = length / 2;
    reversed ^= bit;
    while (bit != 0 && (reversed & bit) == 0) {
      bit /= 2;
      reversed ^= bit;
    }
    if (i > reversed) exchanges.emplace_back(static_cast<std::uint16_t>(i), static_cast<std::uint16_t>(reversed));
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

    sumAndDifference(q0[0], q1[0]);
    sumAndDifference(q2[0], q3[0]);
    sumAndDifference(q0[0], q2[0]);
    sumAndDifference(q1[0], q3[0]);

    if (eighth > 0) {  // k = q − k: an eighth of a turn, where sums of the second pair shrink to one value times √2
      sumAndDifference(q0[eighth], q1[eighth]);
      q2[eighth] *= std::numbers::sqrt2;
      q3[eighth] *= std::numbers::sqrt2;
      sumAndDifference(q0[eighth], q2[eighth]);
      sumAndDifference(q1[eighth], q3[eighth]);
    }

    for (int k = 1; k < eighth; ++k) {
      const int mirror = quarter - k;
      const HartleyTwiddle& t = twiddles[k - 1];
      rotate(q1[k], q1[mirror], t.cos2, t.sin2);
      sumAndDifference(q0[k], q1[k]);
      sumAndDifference(q0[mirror], q1[mirror]);
      rotate(q3[k], q3[mirror], t.cos2, t.sin2);
      sumAndDifference(q2[k], q3[k]);
      sumAndDifference(q2[mirror], q3[mirror]);

      rotate(q2[k], q3[mirror], t.cos1, t.sin1);
      sumAndDifference(q0[k], q2[k]);
      sumAndDifference(q1[mirror], q3[mirror]);
      rotate(q2[mirror], q3[k], t.sin1, t.cos1);
      sumAndDifference(q0[mirror], q2[mirror]);
      sumAndDifference(q1[k], q3[k]);
    }
  }
}

}  // namespace av::dsp
