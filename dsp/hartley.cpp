#include "dsp/hartley.h"

#include <bit>
#include <cassert>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace av::dsp {
namespace {

int checkedLength(int length) {
  if (length < 2 || length > 65536 || !std::has_single_bit(static_cast<unsigned>(length)))
    throw std::invalid_argument("a Hartley transform needs a power of two from 2 to 65536");
  return length;
}

/// Odd powers of two start with a radix-2 stage of span 2, even ones with a radix-4 stage of span 4.
int firstRadix4Span(int length) noexcept { return std::countr_zero(static_cast<unsigned>(length)) % 2 != 0 ? 8 : 4; }

}  // namespace

HartleyTransform::HartleyTransform(int length) : m_length(checkedLength(length)) {
  appendBitReversal(m_length, m_exchanges);
  for (int span = firstRadix4Span(m_length); span <= m_length; span *= 4) {
    for (int k = 1; k <= twiddleCount(span); ++k) {
      const double angle = 2.0 * std::numbers::pi * k / span;
      m_twiddles.push_back({std::cos(angle), std::sin(angle), std::cos(2.0 * angle), std::sin(2.0 * angle)});
    }
  }
}

void HartleyTransform::transform(std::span<double> values) const noexcept {
  assert(values.size() == static_cast<std::size_t>(m_length));
  double* const x = values.data();
  for (const auto& [i, j] : m_exchanges) std::swap(x[i], x[j]);

  int span = firstRadix4Span(m_length);
  if (span == 8) {
    for (int i = 0; i < m_length; i += 2) {
      const double difference = x[i] - x[i + 1];
      x[i] += x[i + 1];
      x[i + 1] = difference;
    }
  }
  for (const HartleyTwiddle* twiddles = m_twiddles.data(); span <= m_length; span *= 4) {
    radix4HartleyStage(x, m_length, span, twiddles);
    twiddles += twiddleCount(span);
  }
}

}  // namespace av::dsp
