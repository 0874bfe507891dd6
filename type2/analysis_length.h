#pragma once

#include <cstdint>

namespace av::type2 {

/// How many of a block's frames are analysed: 4 to the power of ln F / ln 4, in double precision, truncated. That is F
/// itself for most F and F − 1 for some (1100 gives 1099), and which of the two is up to the last bits of the build's
/// own pow and log; it is not rounded to a power of four, on purpose. 0 for 0 frames and fewer; blocks of more than
/// 48000 frames count as 48000.
int analysisLength(std::int32_t frames) noexcept;

}  // namespace av::type2
