#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

// The spectrum analyser's transform and power spectrum word by word, block by block: what faster versions are compared
// with, bit by bit.

namespace av::test {

struct ComplexVectors {
  std::vector<double> real;
  std::vector<double> imaginary;
};

/// `imaginary` may be empty.
inline ComplexVectors literalFft(bool inverse, const std::vector<double>& real, const std::vector<double>& imaginary) {
  const std::size_t n = real.size();
  std::size_t bits = 0;
  while ((n >> bits & 1) == 0) ++bits;
  ComplexVectors out{std::vector<double>(n), std::vector<double>(n)};
  for (std::size_t i = 0; i < n; ++i) {
    std::size_t j = 0;
    for (std::size_t bit = 0; bit < bits; ++bit)
      if (i >> bit & 1) j |= std::size_t{1} << (bits - 1 - bit);
    out.real[j] = real[i];
    out.imaginary[j] = imaginary.empty() ? 0.0 : imaginary[i];
  }

  const double pi = 3.14159265358979323846;
  const double angle = inverse ? -2.0 * pi : 2.0 * pi;
  for (std::size_t block = 2; block <= n; block *= 2) {
    const std::size_t half = block / 2;
    const double delta = angle / static_cast<double>(block);
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
        const double tr = ar0 * out.real[k] - ai0 * out.imaginary[k];
        const double ti = ar0 * out.imaginary[k] + ai0 * out.real[k];
        out.real[k] = out.real[j] - tr;
        out.imaginary[k] = out.imaginary[j] - ti;
        out.real[j] += tr;
        out.imaginary[j] += ti;
      }
    }
  }
  if (inverse) {
    for (double& value : out.real) value /= static_cast<double>(n);
    for (double& value : out.imaginary) value /= static_cast<double>(n);
  }
  return out;
}

/// The power spectrum of samples that the window has been applied to.
inline std::vector<double> literalPowerSpectrum(const std::vector<double>& samples, double windowPower) {
  const std::size_t m = samples.size() / 2;
  std::vector<double> even(m);
  std::vector<double> odd(m);
  for (std::size_t k = 0; k < m; ++k) {
    even[k] = samples[2 * k];
    odd[k] = samples[2 * k + 1];
  }
  const auto [R, I] = literalFft(false, even, odd);

  const double theta = 3.14159265358979323846 / static_cast<double>(m);
  const float halfAngle = static_cast<float>(theta / 2);
  const float s = static_cast<float>(std::sin(static_cast<double>(halfAngle)));
  const float fullAngle = static_cast<float>(theta);
  const float sine = static_cast<float>(std::sin(static_cast<double>(fullAngle)));
  const double wpr = -2 * (static_cast<double>(s) * static_cast<double>(s));
  const double wpi = sine;
  double wr = 1 + wpr;
  double wi = wpi;
  std::vector<double> power(m);
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
  for (double& bin : power) bin /= windowPower;
  return power;
}

/// |Σ x[n]·e^(2πi·kn/N)|² for one k, in wider precision.
inline long double exactPower(const std::vector<double>& samples, std::size_t k) {
  const std::size_t n = samples.size();
  const long double step = 2 * 3.14159265358979323846264338327950288L / static_cast<long double>(n);
  long double re = 0;
  long double im = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const long double angle = step * static_cast<long double>(i * k % n);
    re += samples[i] * std::cos(angle);
    im += samples[i] * std::sin(angle);
  }
  return re * re + im * im;
}

}  // namespace av::test
