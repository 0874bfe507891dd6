#pragma once

#include <cstdio>
#include <cstdlib>

namespace av::fuzz {

/// Ends the process with a message and the place in the fuzzer where something did not hold; the fuzzer keeps the input.
[[noreturn]] inline void fail(const char* rule, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, rule);
  std::abort();
}

/// A rule that has to hold for every input; `rule` says it in words.
inline void require(bool holds, const char* rule, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (!holds) fail(rule, file, line);
}

}  // namespace av::fuzz
