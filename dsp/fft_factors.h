#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

namespace av::dsp {

/// The twiddle factors of one stage in their order, each from the two before it. They depend on the stage only: begun
/// once for a stage rather than once for a block of it, or kept in a table, they keep their bits, and so do results.
class FftFactors {
 public:
  /// Of the stage that joins transforms of `half` points.
  FftFactors(std::uint32_t half, bool inverse) noexcept
      : FftFactors((inverse ? -2.0 : 2.0) * std::numbers::pi / (2.0 * static_cast<double>(half))) {}

  void next(double& real, double& imaginary) noexcept {
    real = m_step * m_real - m_realBefore;
    m_realBefore = m_real;
    m_real = real;
    imaginary = m_step * m_imaginary - m_imaginaryBefore;
    m_imaginaryBefore = m_imaginary;
    m_imaginary = imaginary;
  }

 private:
  explicit FftFactors(double delta) noexcept
      : m_imaginaryBefore(std::sin(-2.0 * delta)),
        m_imaginary(std::sin(-delta)),
        m_realBefore(std::cos(-2.0 * delta)),
        m_real(std::cos(-delta)),
        m_step(2.0 * m_real) {}

  double m_imaginaryBefore;
  double m_imaginary;
  double m_realBefore;
  double m_real;
  double m_step;
};

}  // namespace av::dsp
