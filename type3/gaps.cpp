#include "type3/gaps.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace av::type3 {

void cutSegmentGaps(std::span<Argb> column, const AnalyserSettings& settings, Argb gapColour, bool mirrored) noexcept {
  // In 64 bits: hosts may put sizes up to 2^31.
  const std::int64_t segment = settings.spotHeightPx;
  const std::int64_t gap = settings.spotIntervalPx;
  if (gap <= 0) return;
  const auto height = static_cast<std::int64_t>(column.size());
  const auto cut = [&](std::int64_t top, std::int64_t bottom) {
    std::ranges::fill(column.subspan(static_cast<std::size_t>(top), static_cast<std::size_t>(bottom - top)), gapColour);
  };

  std::int64_t count = height / (segment + gap);
  if (mirrored) count /= 2;
  std::int64_t y = mirrored ? height / 2 : height;
  for (std::int64_t i = 0; i < count; ++i) {
    const std::int64_t bottom = y - segment;
    if (bottom < 0) return;
    y = std::max<std::int64_t>(bottom - gap, 0);
    cut(y, bottom);
    if (mirrored) cut(height - bottom, height - y);
  }
  if (y > 0 && y >= segment) cut(std::max<std::int64_t>(y - segment - gap, 0), y - segment);
}

}  // namespace av::type3
