#pragma once

#include <cstdint>

namespace av::type3 {

/// The numbers 1, 2, 5, 10, 20, 50, … in their order; what scales are divided by. The last one is 5·10^12.
class RoundNumbers {
 public:
  static constexpr std::int64_t most = 5'000'000'000'000;

  std::int64_t value() const noexcept { return m_value; }
  bool atEnd() const noexcept { return m_value > most; }
  void next() noexcept {
    m_value = m_digit == 2 ? m_value / 2 * 5 : m_value * 2;
    m_digit = m_digit == 1 ? 2 : m_digit == 2 ? 5 : 1;
  }

 private:
  std::int64_t m_value = 1;
  int m_digit = 1;
};

}  // namespace av::type3
