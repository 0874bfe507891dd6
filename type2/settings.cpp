#include "type2/settings.h"

#include <algorithm>

namespace av::type2 {

std::int32_t clampLineCount(const MeterSettings& settings, std::int32_t value, int widthPx) noexcept {
  std::int64_t limit = mostLines;
  if (widthPx > 0) {
    const std::int64_t innerPx = widthPx - (2 * std::int64_t{settings.borderWidthPx} + 2);
    const std::int64_t interval = settings.lineInterval;
    limit = std::min(limit, interval > 0 ? innerPx / interval / 2 : innerPx);
  }
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(value, fewestLines, std::max<std::int64_t>(limit, fewestLines)));
}

}  // namespace av::type2
