#pragma once

#include <cstdint>
#include <limits>

namespace av {

/// `value` truncated toward zero. Never undefined: what lies outside int becomes the nearest limit, NaN becomes 0.
/// Hosts put scale limits up to ±2^31, so pixel formulas leave the range of int before they are clamped to the plot.
constexpr int truncToInt(double value) noexcept {
  if (value >= 2147483648.0) return std::numeric_limits<int>::max();
  if (value <= -2147483649.0) return std::numeric_limits<int>::min();
  return value == value ? static_cast<int>(value) : 0;
}

/// `value`, or the limit of int that it passes.
constexpr int clampToInt(std::int64_t value) noexcept {
  if (value > std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
  if (value < std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

/// Characters of `value` written in decimal, a minus sign included: 1 for 0, 3 for −90.
constexpr int decimalLength(std::int64_t value) noexcept {
  int length = value < 0 ? 2 : 1;
  while (value <= -10 || value >= 10) {
    value /= 10;
    ++length;
  }
  return length;
}

}  // namespace av
