#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace av::test {

/// The power of bins 0 to N/2 − 1 of real samples, (2·|X[k]| ÷ N ÷ fullScale)², by the sum that defines the transform, in
/// long double: a sinusoid of amplitude `fullScale` on a bin gives 1. Takes N²/2 steps.
inline std::vector<long double> exactPowers(const std::vector<double>& samples, double fullScale) {
  const std::size_t n = samples.size();
  const long double pi = std::acos(-1.0L);
  std::vector<long double> cosines, sines;
  for (std::size_t i = 0; i < n; ++i) {
    cosines.push_back(std::cos(2 * pi * static_cast<long double>(i) / static_cast<long double>(n)));
    sines.push_back(std::sin(2 * pi * static_cast<long double>(i) / static_cast<long double>(n)));
  }
  std::vector<long double> powers;
  for (std::size_t k = 0; k < n / 2; ++k) {
    long double real = 0, imaginary = 0;
    for (std::size_t i = 0; i < n; ++i) {
      const std::size_t angle = k * i % n;
      real += samples[i] * cosines[angle];
      imaginary += samples[i] * sines[angle];
    }
    const long double scale = 2 / (static_cast<long double>(n) * fullScale);
    powers.push_back((real * real + imaginary * imaginary) * scale * scale);
  }
  return powers;
}

}  // namespace av::test
