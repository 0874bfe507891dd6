#pragma once

#include <string>

namespace av::dsp {

/// Writes a message to the standard error stream and ends the process with exit status 1. Never returns.
[[noreturn]] void endProcess(const std::string& message) noexcept;

}  // namespace av::dsp
