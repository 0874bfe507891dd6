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

}  // namespace

void realPowerSpectrum(std::span<const double> real, std::span<const double> imaginary,
                       std::span<double> power) noexcept {
  const std::size_t points = power.size();
  const double theta = std::numbers::pi / static_cast<double>(points);
  const double s = singleSine(theta / 2.0);
  const double wpi = singleSine(theta);
  const double wpr = -2.0 * (s * s);
  double wr = 1.0 + wpr;
  double wi = wpi;
  for (std::size_t k = 1; k < points / 2; ++k) {
    const std::size_t j = points - k;
    const double a = 0.5 * (imaginary[k] + imaginary[j]);
    const double b = -0.5 * (real[k] - real[j]);
    const double c = 0.5 * (real[k] + real[j]);
    const double d = 0.5 * (imaginary[k] - imaginary[j]);
    power[k] = square(c + wr * a - wi * b) + square(d + wr * b + wi * a);
    power[j] = square(c - wr * a + wi * b) + square(-d + wr * b + wi * a);
    const double t = wr;
    wr = wr + (wr * wpr - wi * wpi);
    wi = wi + (wi * wpr + t * wpi);
  }
  power[0] = square(real[0] + imaginary[0]) + square(real[0] - imaginary[0]);
  power[points / 2] = square(real[points / 2]) + square(imaginary[points / 2]);
}

}  // namespace av::dsp
