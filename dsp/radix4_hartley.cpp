#include "dsp/radix4_hartley.h"

#include <cassert>
#include <cmath>
#include <numbers>

namespace av::dsp {
namespace {

/// k·length/span is a whole number, rounded down where it is none.
HartleyTwiddle twiddle(int k, int length, int span) {
  const double angle = k * length / span * 2.0 * std::numbers::pi / length;
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  return {c, s, c * c - s * s, 2.0 * c * s};
}

}  // namespace

Radix4Hartley::Radix4Hartley(std::span<const HartleyKernel* const> kernels) : m_plan(maxLength, kernels) {}

void Radix4Hartley::prepare(int length) noexcept {
  assert(length >= 0 && length <= maxLength);
  m_plan.prepare({length, false, twiddle});
  m_length = length;
}

}  // namespace av::dsp
