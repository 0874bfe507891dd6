#include "dsp/hartley.h"

#include <bit>
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

HartleyTwiddle twiddle(int k, int /*length*/, int span) {
  const double angle = 2.0 * std::numbers::pi * k / span;
  return {std::cos(angle), std::sin(angle), std::cos(2.0 * angle), std::sin(2.0 * angle)};
}

}  // namespace

HartleyTransform::HartleyTransform(int length, std::span<const HartleyKernel* const> kernels)
    : m_length(checkedLength(length)), m_plan(m_length, kernels) {
  const bool oddPower = std::countr_zero(static_cast<unsigned>(length)) % 2 != 0;
  m_plan.prepare({m_length, oddPower, twiddle});
}

}  // namespace av::dsp
