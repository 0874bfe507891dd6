#include "type3/layout.h"

#include "gfx/saturate.h"

#include <algorithm>
#include <string>

namespace av::type3 {
namespace {

/// Room above and below, or left and right of, the texts in their strip.
constexpr int marginPx = 3;

/// What is left of `total` beside a strip; a strip that would leave less than itself is given up.
int roomBeside(int total, int& strip) noexcept {
  if (total - strip < strip) strip = 0;
  return total - strip;
}

/// Room for the widest label that the level scale may have, and for its unit.
int levelTextWidth(const AnalyserSettings& settings, const TextMeasure& measure) {
  const auto digits = static_cast<std::size_t>(decimalLength(std::max(settings.scaleYMin, settings.scaleYMax)));
  std::string widest(digits + 1, '8');
  widest.front() = '-';
  return std::max(measure.measure(widest).widthPx, measure.measure("dB ").widthPx);
}

}  // namespace

AnalyserLayout computeLayout(const AnalyserSettings& settings, Size size, int textHeightPx,
                             const TextMeasure& measure) {
  AnalyserLayout layout;
  layout.size = {std::max(size.widthPx, 0), std::max(size.heightPx, 0)};
  layout.textHeightPx = std::clamp(textHeightPx, 0, largestTextPx);
  if (layout.textHeightPx > 0) {
    if (isTrue(settings.scaleXVisible)) layout.xStripHeightPx = layout.textHeightPx + 2 * marginPx;
    if (isTrue(settings.scaleYVisible)) layout.yStripWidthPx = levelTextWidth(settings, measure) + 2 * marginPx;
  }
  layout.areaHeightPx = roomBeside(layout.size.heightPx, layout.xStripHeightPx);
  layout.areaWidthPx = roomBeside(layout.size.widthPx, layout.yStripWidthPx);
  return layout;
}

ColumnGeometry columnGeometry(const AnalyserSettings& settings, int areaWidthPx) noexcept {
  const std::int64_t count = settings.lineCount;
  const std::int64_t interval = settings.lineIntervalPx;
  const std::int64_t step = areaWidthPx / count;
  return {clampToInt(count), clampToInt(step), clampToInt(step - interval), clampToInt(step * count - interval),
          clampToInt((areaWidthPx - step * count + interval) / 2)};
}

}  // namespace av::type3
