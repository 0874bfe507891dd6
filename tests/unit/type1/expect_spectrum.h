#pragma once

#include "support/hartley_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

namespace av::type1 {

/// Bins 1 to N/2 − 1 against an exact transform of what the array held before, and the rest of the array against its
/// raw values.
inline void expectSpectrum(std::span<const double> actual, std::span<const double> before, int windowType,
                           double fullScale) {
  const std::size_t n = before.size();
  ASSERT_EQ(actual.size(), n);
  std::vector<long double> windowed;
  double largest = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    windowed.push_back(before[i] * test::exactWindow(windowType, i, n));
    largest += std::fabs(before[i]);
  }
  const auto hartley = test::exactHartley(std::span<const long double>(windowed));
  for (std::size_t k = 1; k < n / 2; ++k) {
    const auto level = static_cast<double>(test::exactLevelDb(hartley, k, fullScale));
    ASSERT_NEAR(actual[k], level, 1e-9) << "bin " << k;
  }
  const double tolerance = 1e-14 * largest;  // double keeps sixteen digits of the largest sum there can be
  ASSERT_NEAR(actual[0], static_cast<double>(hartley[0]), tolerance);
  for (std::size_t k = n / 2; k < n; ++k) ASSERT_NEAR(actual[k], static_cast<double>(hartley[k]), tolerance) << k;
}

}  // namespace av::type1
