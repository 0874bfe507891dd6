#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace av::soak {

/// Every decision of a run comes from here, so that a run with the same seed decides the same again. (What the clock and
/// the threads make of it differs.)
class RandomSource {
 public:
  explicit RandomSource(std::uint64_t seed) : m_engine(seed) {}

  /// A whole number from `lowest` to `highest`, both included. The same on every platform, unlike the library's
  /// distributions.
  std::int64_t between(std::int64_t lowest, std::int64_t highest) {
    const auto span = static_cast<std::uint64_t>(highest - lowest) + 1;
    return lowest + static_cast<std::int64_t>(span == 0 ? m_engine() : m_engine() % span);
  }
  int upTo(int highest) { return static_cast<int>(between(0, highest)); }
  /// True in `percent` of a hundred cases.
  bool chance(int percent) { return upTo(99) < percent; }
  template <class Value>
  const Value& oneOf(const std::vector<Value>& values) {
    return values[static_cast<std::size_t>(between(0, static_cast<std::int64_t>(values.size()) - 1))];
  }

 private:
  std::mt19937_64 m_engine;
};

}  // namespace av::soak
