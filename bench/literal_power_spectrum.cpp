#include "bench/literal_power_spectrum.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace av::bench {

LiteralPowerSpectrum::LiteralPowerSpectrum(std::span<const double> window, double windowPower)
    : m_window(window.begin(), window.end()),
      m_windowPower(windowPower),
      m_even(window.size() / 2),
      m_odd(window.size() / 2),
      m_real(window.size() / 2),
      m_imaginary(window.size() / 2),
      m_reversed(window.size() / 2) {
  for (std::size_t i = 1, reversed = 0; i < m_reversed.size(); ++i) {
    std::size_t bit = m_reversed.size() / 2;
    for (; reversed & bit; bit /= 2) reversed ^= bit;
    reversed ^= bit;
    m_reversed[i] = static_cast<std::uint32_t>(reversed);
  }
}

void LiteralPowerSpectrum::compute(std::span<double> samples, std::span<double> power) noexcept {
  const std::size_t m = m_even.size();
  for (std::size_t i = 0; i < m_window.size(); ++i) samples[i] = samples[i] * m_window[i];
  for (std::size_t k = 0; k < m; ++k) {
    m_even[k] = samples[2 * k];
    m_odd[k] = samples[2 * k + 1];
  }
  transform();
  const double* const R = m_real.data();
  const double* const I = m_imaginary.data();
  const double theta = std::numbers::pi / static_cast<double>(m);
  const double s = static_cast<float>(std::sin(static_cast<double>(static_cast<float>(theta / 2))));
  const double wpi = static_cast<float>(std::sin(static_cast<double>(static_cast<float>(theta))));
  const double wpr = -2 * (s * s);
  double wr = 1 + wpr;
  double wi = wpi;
  for (std::size_t k = 1; k < m / 2; ++k) {
    const std::size_t j = m - k;
    const double a = 0.5 * (I[k] + I[j]);
    const double b = -0.5 * (R[k] - R[j]);
    const double c = 0.5 * (R[k] + R[j]);
    const double d = 0.5 * (I[k] - I[j]);
    const double re1 = c + wr * a - wi * b;
    const double im1 = d + wr * b + wi * a;
    power[k] = re1 * re1 + im1 * im1;
    const double re2 = c - wr * a + wi * b;
    const double im2 = -d + wr * b + wi * a;
    power[j] = re2 * re2 + im2 * im2;
    const double t = wr;
    wr = wr + (wr * wpr - wi * wpi);
    wi = wi + (wi * wpr + t * wpi);
  }
  power[0] = (R[0] + I[0]) * (R[0] + I[0]) + (R[0] - I[0]) * (R[0] - I[0]);
  power[m / 2] = R[m / 2] * R[m / 2] + I[m / 2] * I[m / 2];
  for (std::size_t k = 0; k < m; ++k) power[k] /= m_windowPower;
}

void LiteralPowerSpectrum::transform() noexcept {
  const std::size_t n = m_even.size();
  for (std::size_t i = 0; i < n; ++i) {
    m_real[m_reversed[i]] = m_even[i];
    m_imaginary[m_reversed[i]] = m_odd[i];
  }
  double* const re = m_real.data();
  double* const im = m_imaginary.data();
  for (std::size_t block = 2; block <= n; block *= 2) {
    const std::size_t half = block / 2;
    const double delta = 2 * std::numbers::pi / static_cast<double>(block);
    const double sm2 = std::sin(-2 * delta);
    const double sm1 = std::sin(-delta);
    const double cm2 = std::cos(-2 * delta);
    const double cm1 = std::cos(-delta);
    const double w = 2 * cm1;
    for (std::size_t start = 0; start < n; start += block) {
      double ar2 = cm2;
      double ar1 = cm1;
      double ai2 = sm2;
      double ai1 = sm1;
      for (std::size_t j = start; j < start + half; ++j) {
        const double ar0 = w * ar1 - ar2;
        ar2 = ar1;
        ar1 = ar0;
        const double ai0 = w * ai1 - ai2;
        ai2 = ai1;
        ai1 = ai0;
        const std::size_t k = j + half;
        const double tr = ar0 * re[k] - ai0 * im[k];
        const double ti = ar0 * im[k] + ai0 * re[k];
        re[k] = re[j] - tr;
        im[k] = im[j] - ti;
        re[j] += tr;
        im[j] += ti;
      }
    }
  }
}

}  // namespace av::bench
