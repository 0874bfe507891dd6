#include "type3/column_images.h"

#include "type3/gaps.h"
#include "type3/zones.h"

#include <algorithm>
#include <cstddef>

namespace av::type3 {
namespace {

ZoneColours zoneColours(std::uint32_t high, std::uint32_t mid, std::uint32_t low) noexcept {
  return {argbFromOleColor(high), argbFromOleColor(mid), argbFromOleColor(low)};
}

void paint(PixelColumn& column, int heightPx, const AnalyserSettings& settings, const ZoneColours& colours,
           bool mirrored) {
  column.assign(static_cast<std::size_t>(heightPx), opaqueBlack);
  if (settings.viewType == 0 || settings.viewType == 2) paintSolidZones(column, settings, colours, mirrored);
  if (settings.viewType == 1 || settings.viewType == 3) paintGradientZones(column, settings, colours, mirrored);
}

}  // namespace

void rebuildColumnImages(ColumnImages& images, const AnalyserSettings& settings, int areaHeightPx) {
  const int height = std::max(areaHeightPx, 0);
  const bool mirrored = settings.alignmentY != 0;
  images.gapColour = argbFromOleColor(settings.backColor);
  paint(images.unlit, height, settings,
        zoneColours(settings.backLineHighColor, settings.backLineMidColor, settings.backLineLowColor), mirrored);
  cutSegmentGaps(images.unlit, settings, images.gapColour, mirrored);

  // Mirrored columns are half a picture and its reflection. Spots are drawn one at a time and need no gaps.
  paint(images.lit, mirrored ? height / 2 : height, settings,
        zoneColours(settings.lineHighColor, settings.lineMidColor, settings.lineLowColor), false);
  if (settings.viewType < 2) cutSegmentGaps(images.lit, settings, images.gapColour, false);
  images.flippedLit.assign(images.lit.rbegin(), images.lit.rend());
}

}  // namespace av::type3
