#include "type1/layout.h"

#include "gfx/saturate.h"
#include "gfx/text_measure.h"

#include <algorithm>

namespace av::type1 {
namespace {

/// What is left of `total` beside a strip; a strip that would leave less than itself is given up.
int roomBeside(int total, std::int64_t& strip) {
  const std::int64_t room = total - strip;
  if (room < strip) {
    strip = 0;
    return total;
  }
  return static_cast<int>(room);
}

int snapLabelCount(std::int64_t count) {
  if (count >= 20) return 20;
  if (count >= 10) return 10;
  if (count >= 5) return 5;
  if (count >= 2) return 2;
  return count == 1 ? 1 : 0;
}

int horizontalLabelCount(const ViewSettings& settings, std::uint32_t sampleRateHz, int plotWidth, int textHeightPx) {
  const std::int64_t largestLabel =
      settings.visualizationType >= 2 ? std::int64_t{sampleRateHz / 2} : std::int64_t{settings.fftWindowSize};
  const std::int64_t widthPerLabel = (decimalLength(largestLabel) + 1) * std::int64_t{textHeightPx} * 2 / 3;
  if (widthPerLabel < 1) return 0;  // without a font there are no labels
  return snapLabelCount(plotWidth / widthPerLabel);
}

int verticalDivisionCount(std::int64_t range, int plotHeight, int textHeightPx) {
  const std::int64_t count = std::min(plotHeight / (std::int64_t{textHeightPx} + 8), range);
  if (count <= 0) return 0;
  std::int64_t step = range / count;
  if (step >= 10) {
    step = step / 10 * 10;
  } else if (step >= 5) {
    step = 5;
  } else if (step != 4) {
    step = step / 2 * 2;
  }
  step = std::max<std::int64_t>(step, 1);
  return static_cast<int>(std::min<std::int64_t>(range / step, 100));
}

}  // namespace

ViewLayout computeLayout(const ViewSettings& settings, std::uint32_t sampleRateHz, const Rect& client,
                         int textHeightPx) {
  ViewLayout layout;
  layout.client = client;
  if (client.width() < 2 || client.height() < 2) return layout;
  layout.textHeightPx = std::clamp(textHeightPx, 0, largestTextPx);

  const int topLabel = truncToInt(settings.scaleYMax * settings.dynamicRangeDb / 100);
  const int bottomLabel = truncToInt(settings.scaleYMin * settings.dynamicRangeDb / 100);
  std::int64_t xScaleHeight = settings.scaleXVisible ? std::int64_t{layout.textHeightPx} + 10 : 0;
  std::int64_t yScaleWidth =
      settings.scaleYVisible ? (decimalLength(topLabel) + 2) * std::int64_t{layout.textHeightPx} : 0;

  layout.plotLeft = client.left;
  layout.plotTop = client.top;
  layout.plotHeight = roomBeside(client.height(), xScaleHeight);
  layout.plotWidth = roomBeside(client.width(), yScaleWidth);
  layout.xScaleHeightPx = static_cast<int>(xScaleHeight);
  layout.yScaleWidthPx = static_cast<int>(yScaleWidth);
  layout.xLabelCount = horizontalLabelCount(settings, sampleRateHz, layout.plotWidth, layout.textHeightPx);
  layout.yDivisionCount =
      verticalDivisionCount(std::int64_t{topLabel} - bottomLabel, layout.plotHeight, layout.textHeightPx);
  return layout;
}

}  // namespace av::type1
