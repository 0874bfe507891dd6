#include "dsp/real_spectrum.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace av::dsp {
namespace {

constexpr double square(double x) noexcept { return x * x; }

/// The sine of an angle, both rounded to single precision.
double singleSine(double angle) noexcept {
  const double rounded = static_cast<float>(angle);
  return static_cast<float>(std::sin(rounded));
}

/// The factors that take the transform apart into those of even and odd samples, for k = 1, 2, ... in turn.
class MirrorFactors {
 public:
  explicit MirrorFactors(std::size_t points) noexcept : MirrorFactors(std::numbers::pi / static_cast<double>(points)) {}

  double real() const noexcept { return m_real; }
  double imaginary() const noexcept { return m_imaginary; }

  void advance() noexcept {
    const double t = m_real;
    m_real = m_real + (m_real * m_stepReal - m_imaginary * m_stepImaginary);
    m_imaginary = m_imaginary + (m_imaginary * m_stepReal + t * m_stepImaginary);
  }

 private:
  explicit MirrorFactors(double theta) noexcept
      : m_stepReal(-2.0 * square(singleSine(theta / 2.0))),
        m_stepImaginary(singleSine(theta)),
        m_real(1.0 + m_stepReal),
        m_imaginary(m_stepImaginary) {}

  double m_stepReal;
  double m_stepImaginary;
  double m_real;
  double m_imaginary;
};

}  // namespace

void fillMirrorFactors(std::span<double> real, std::span<double> imaginary) noexcept {
  MirrorFactors factors(2 * real.size());
  for (std::size_t k = 1; k < real.size(); ++k, factors.advance()) {
    real[k] = factors.real();
    imaginary[k] = factors.imaginary();
  }
}

void realPowerSpectrum(std::span<const double> real, std::span<const double> imaginary,
                       std::span<double> power) noexcept {
  const std::size_t points = power.size();
  MirrorFactors factors(points);
  for (std::size_t k = 1; k < points / 2; ++k, factors.advance()) {
    const std::size_t j = points - k;
    const double wr = factors.real();
    const double wi = factors.imaginary();
    const double a = 0.5 * (imaginary[k] + imaginary[j]);
    const double b = -0.5 * (real[k] - real[j]);
    const double c = 0.5 * (real[k] + real[j]);
    const double d = 0.5 * (imaginary[k] - imaginary[j]);
    power[k] = square(c + wr * a - wi * b) + square(d + wr * b + wi * a);
    power[j] = square(c - wr * a + wi * b) + square(-d + wr * b + wi * a);
  }
  power[0] = square(real[0] + imaginary[0]) + square(real[0] - imaginary[0]);
  power[points / 2] = square(real[points / 2]) + square(imaginary[points / 2]);
}

}  // namespace av::dsp
