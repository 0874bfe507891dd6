#pragma once

#include <immintrin.h>

#include <cstdint>

namespace av {

/// While one lives, the thread computes as every program begins: rounding to nearest, denormal numbers as they are, the
/// x87 unit in its full precision, no exceptions trapped. Hosts set their threads otherwise; the same sound has to look
/// the same there, and a division by zero that is meant must not end the process. Afterwards the thread computes as the
/// host left it, with the status flags of SSE that it had.
class StandardArithmetic {
 public:
  StandardArithmetic() noexcept : m_sse(_mm_getcsr()) {
    __asm__ volatile("fnstcw %0" : "=m"(m_x87));
    set(standardX87, standardSse);
  }
  ~StandardArithmetic() { set(m_x87, m_sse); }
  StandardArithmetic(const StandardArithmetic&) = delete;
  StandardArithmetic& operator=(const StandardArithmetic&) = delete;

 private:
  static constexpr unsigned standardSse = 0x1F80;
  static constexpr std::uint16_t standardX87 = 0x37F;

  /// The flags of the x87 unit go first: one that a mode begins to trap would strike at the next instruction.
  static void set(std::uint16_t x87, unsigned sse) noexcept {
    __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(x87) : "memory");
    _mm_setcsr(sse);
  }

  unsigned m_sse;
  std::uint16_t m_x87 = standardX87;
};

}  // namespace av
