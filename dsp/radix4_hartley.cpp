#include "dsp/radix4_hartley.h"

#include <cassert>
#include <cmath>
#include <numbers>

namespace av::dsp {
namespace {

/// k·length/span is a whole number, rounded down where it is none.
HartleyTwiddle twiddle(int k, int length, int span) noexcept {
  const double angle = k * length / span * 2.0 * std::numbers::pi / length;
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  return {c, s, c * c - s * s, 2.0 * c * s};
}

constexpr std::size_t mostTwiddles() noexcept {
  std::size_t count = 0;
  for (int span = 4; span <= Radix4Hartley::maxLength; span *= 4) count += static_cast<std::size_t>(twiddleCount(span));
  return count;
}

}  // namespace

Radix4Hartley::Radix4Hartley() {
  m_exchanges.reserve(maxLength);
  m_twiddles.reserve(mostTwiddles());
}

void Radix4Hartley::makeTables(int length) noexcept {
  m_exchanges.clear();
  m_twiddles.clear();
  appendBitReversal(length, m_exchanges);
  for (int span = 4; span <= length; span *= 4) {
    for (int k = 1; k <= twiddleCount(span); ++k) m_twiddles.push_back(twiddle(k, length, span));
  }
  m_length = length;
}

void Radix4Hartley::transform(std::span<double, bufferLength> buffer, int length) noexcept {
  assert(length >= 0 && length <= maxLength);
  if (length != m_length) makeTables(length);
  double* const x = buffer.data();
  for (const auto& [i, j] : m_exchanges) std::swap(x[i], x[j]);
  const HartleyTwiddle* twiddles = m_twiddles.data();
  for (int span = 4; span <= length; span *= 4) {
    radix4HartleyStage(x, length, span, twiddles);
    twiddles += twiddleCount(span);
  }
}

}  // namespace av::dsp
