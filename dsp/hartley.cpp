#include "dsp/hartley.h"

#include <bit>
#include <cassert>
#include <cmath>
#include <numbers>
#include <stdexcept>

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

int checkedLength(int length) {
  if (length < 2 || length > 65536 || !std::has_single_bit(static_cast<unsigned>(length)))
    throw std::invalid_argument("a Hartley transform needs a power of two from 2 to 65536");
  return length;
}

/// Odd powers of two start with a radix-2 stage of span 2, even ones with a radix-4 stage of span 4.
int firstRadix4Span(int length) noexcept { return std::countr_zero(static_cast<unsigned>(length)) % 2 != 0 ? 8 : 4; }

}  // namespace

HartleyTransform::HartleyTransform(int length) : m_length(checkedLength(length)) {
  int reversed = 0;
  for (int i = 1; i < m_length; ++i) {
    int bit = m_length / 2;
    for (; (reversed & bit) != 0; bit /= 2) reversed ^= bit;
    reversed ^= bit;
    if (i < reversed) m_swaps.emplace_back(static_cast<std::uint16_t>(i), static_cast<std::uint16_t>(reversed));
  }
  for (int span = firstRadix4Span(m_length); span <= m_length; span *= 4) {
    for (int k = 1; k < span / 8; ++k) {
      const double angle = 2.0 * std::numbers::pi * k / span;
      m_twiddles.push_back({std::cos(angle), std::sin(angle), std::cos(2.0 * angle), std::sin(2.0 * angle)});
    }
  }
}

void HartleyTransform::transform(std::span<double> values) const noexcept {
  assert(values.size() == static_cast<std::size_t>(m_length));
  double* const x = values.data();
  for (const auto& [i, j] : m_swaps) std::swap(x[i], x[j]);

  int span = firstRadix4Span(m_length);
  if (span == 8) {
    for (int i = 0; i < m_length; i += 2) sumAndDifference(x[i], x[i + 1]);
  }
  for (const Twiddle* twiddles = m_twiddles.data(); span <= m_length; span *= 4)
    twiddles = radix4Stage(x, span, twiddles);
}

/// Joins four transforms of a quarter of `span` (of the samples 4n, 4n + 2, 4n + 1, 4n + 3) into one, in every block.
/// Index k and its mirror q − k are joined together, as each needs the other's values.
auto HartleyTransform::radix4Stage(double* values, int span, const Twiddle* twiddles) const noexcept -> const Twiddle* {
  const int quarter = span / 4;
  const int eighth = span / 8;
  for (int start = 0; start < m_length; start += span) {
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
      const Twiddle& t = twiddles[k - 1];
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
  return eighth > 1 ? twiddles + (eighth - 1) : twiddles;
}

}  // namespace av::dsp
