#pragma once

#include <string>

namespace av::bench {

/// Lets a hundred controls of 200 × 100 pixels hear `blocksPerSecond` blocks of the recording (none: silence for ever)
/// for so many seconds, while messages are dispatched, and prints the share of one processor that the process took and
/// how often each of them was painted in a second.
void watchGrid(const std::string& shown, const char* wav, int blocksPerSecond, int seconds);

}  // namespace av::bench
