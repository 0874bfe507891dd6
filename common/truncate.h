#pragma once

#include <cstdint>
#include <limits>

namespace av {

/// `value` truncated toward zero; values beyond the 32-bit range give the nearest end of it, NaN gives 0. (The bare
/// conversion is undefined there, and hosts can bring about infinite ranges and levels with hostile formats.)
constexpr std::int32_t truncateToInt32(double value) noexcept {
  using Limits = std::numeric_limits<std::int32_t>;
  if (value >= static_cast<double>(Limits::max())) return Limits::max();
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  return value == value ? static_cast<std::int32_t>(value) : 0;
}

}  // namespace av
