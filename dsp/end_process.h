#pragma once

#include <cstdint>

namespace av::dsp {

/// Writes `format`, a printf format with one %d, and `value` to the standard error stream and ends the process with exit
/// status 1. Never returns.
[[noreturn]] void endProcess(const char* format, std::int32_t value) noexcept;

}  // namespace av::dsp
