#pragma once

#include <xmmintrin.h>

#include <cstdint>
#include <ostream>

namespace av::test {

/// How a thread computes: the control words of SSE and of the x87 unit, without their status flags.
struct FloatingPointMode {
  const char* name = "";
  unsigned sse = 0x1F80;
  std::uint16_t x87 = 0x37F;

  static FloatingPointMode now() noexcept {
    FloatingPointMode mode{"now", _mm_getcsr() & ~0x3Fu, 0};
    __asm__ volatile("fnstcw %0" : "=m"(mode.x87));
    return mode;
  }
  /// Old flags are dropped, so that no exception that is allowed from now on comes from before.
  void set() const noexcept {
    __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(x87));
    _mm_setcsr(sse);
  }
  friend bool operator==(const FloatingPointMode& a, const FloatingPointMode& b) {
    return a.sse == b.sse && a.x87 == b.x87;
  }
};

inline void PrintTo(const FloatingPointMode& mode, std::ostream* out) {
  *out << mode.name << std::hex << ", SSE " << mode.sse << ", x87 " << mode.x87 << std::dec;
}

/// Modes in which languages, drivers and signal processing leave a thread.
inline constexpr FloatingPointMode hostFloatingPointModes[] = {
    {"DenormalsAreZero", 0x9FC0, 0x37F},  // flush to zero and denormals are zero
    {"RoundingDown", 0x3F80, 0x77F},
    {"RoundingUp", 0x5F80, 0xB7F},
    {"RoundingToZero", 0x7F80, 0xF7F},
    {"SinglePrecision", 0x1F80, 0x07F},
    {"DoublePrecision", 0x1F80, 0x27F},
    {"TrappedExceptions", 0x1900, 0x372},  // invalid operations, divisions by zero and overflows end the process
};

/// Runs `call` in a mode, and the rest of the test in the mode that the thread had. Returns the mode after the call.
template <class Call>
FloatingPointMode runIn(const FloatingPointMode& mode, Call&& call) {
  const FloatingPointMode before = FloatingPointMode::now();
  mode.set();
  call();
  const FloatingPointMode after = FloatingPointMode::now();
  before.set();
  return after;
}

}  // namespace av::test
