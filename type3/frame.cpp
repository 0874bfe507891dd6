#include "type3/frame.h"

#include "gfx/border.h"
#include "gfx/saturate.h"
#include "type3/scale_texts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace av::type3 {
namespace {

/// The lit columns of one frame.
class Columns {
 public:
  Columns(std::vector<ColumnFill>& fills, const AnalyserSettings& settings, int areaHeightPx,
          const ColumnImages& images, const ColumnGeometry& geometry) noexcept
      : m_fills(fills),
        m_geometry(geometry),
        m_imageHeight(static_cast<int>(images.lit.size())),
        m_area(areaHeightPx),
        m_spot(settings.viewType >= 2 ? settings.spotHeightPx : -1),
        m_mirrored(settings.alignmentY != 0) {}

  void add(int column, std::int64_t height) {
    if (height <= 0) return;
    m_left = m_geometry.columnLeft(column);
    const std::int64_t rows = m_spot >= 0 ? m_spot : height;
    const std::int64_t half = m_mirrored ? m_area / 2 : 0;
    const std::int64_t top = m_area - half - height;
    copy(litColumn, top, rows, top);
    if (!m_mirrored) return;
    // What stands in rows a to b − 1 of the picture stands upside down in rows height − b to height − a − 1 of the
    // flipped one.
    copy(flippedLitColumn, m_imageHeight - top - rows, rows, m_spot >= 0 ? 2 * half - m_spot - top : half);
  }

 private:
  /// Copies `rows` rows from row `first` of a picture to row `to` of the frame. What lies outside the picture is not
  /// copied, and its place stays as it is.
  void copy(ColumnImageId image, std::int64_t first, std::int64_t rows, std::int64_t to) {
    const std::int64_t begin = std::max<std::int64_t>(first, 0);
    const std::int64_t end = std::min<std::int64_t>(first + rows, m_imageHeight);
    if (begin >= end) return;
    const int top = clampToInt(to + (begin - first));
    const int bottom = clampToInt(to + (end - first));
    m_fills.push_back({image, static_cast<int>(begin), {m_left, top, m_left + m_geometry.widthPx, bottom}});
  }

  std::vector<ColumnFill>& m_fills;
  const ColumnGeometry& m_geometry;
  const std::int64_t m_imageHeight;
  const std::int64_t m_area;
  const std::int64_t m_spot;  // rows of a spot; −1 for whole columns
  const bool m_mirrored;
  int m_left = 0;
};

void addTick(std::vector<FilledRect>& ticks, const AnalyserSettings& settings, int areaHeightPx, int left, int width,
             std::int64_t peak) {
  if (peak <= 0) return;
  const std::int64_t area = areaHeightPx;
  const std::int64_t spot = settings.spotHeightPx;
  const auto add = [&](std::int64_t top, std::int64_t bottom) {
    if (top < bottom)
      ticks.push_back(
          {{left, clampToInt(top), left + width, clampToInt(bottom)}, argbFromOleColor(settings.tickColor)});
  };
  if (settings.alignmentY == 0) {
    const std::int64_t bottom = std::clamp<std::int64_t>(area - peak, 0, area);
    add(bottom - spot, bottom);
    return;
  }
  const std::int64_t upper = std::max<std::int64_t>(area / 2 - peak, 0);
  add(upper - spot, upper);
  const std::int64_t lower = std::min(peak + area / 2 + spot, area);
  add(std::min(peak + area / 2, lower), lower);
}

void addUnlitColumns(AnalyserFrame& frame, const AnalyserSettings& settings, int areaHeightPx,
                     const ColumnImages& images, const ColumnGeometry& geometry) {
  const int height = std::min(areaHeightPx, static_cast<int>(images.unlit.size()));
  if (geometry.blockWidthPx <= 0 || height <= 0) return;
  const int left = geometry.leftPx;
  const int end = left + geometry.blockWidthPx;
  frame.unlit.push_back({unlitColumn, 0, {left, 0, end, height}});
  if (settings.lineIntervalPx == 0) return;
  for (int column = 1; column < geometry.count; ++column) {
    // Gaps wider than the step from column to column reach beyond the block at both ends; what stands there is not theirs.
    const int right = geometry.columnLeft(column);
    frame.gaps.push_back(
        {{std::max(right - settings.lineIntervalPx, left), 0, std::min(right, end), height}, images.gapColour});
  }
}

}  // namespace

void buildFurniture(AnalyserFrame& reused, const AnalyserSettings& settings, const AnalyserLayout& layout,
                    const ColumnImages& images, const BandAxis& axis, const TextMeasure& measure) {
  const auto [width, height] = layout.size;
  reused.size = layout.size;
  reused.background = argbFromOleColor(settings.backColor);
  reused.textBackground = argbFromOleColor(settings.scaleColor);
  reused.strips.clear();
  reused.unlit.clear();
  reused.gaps.clear();
  reused.texts.clear();
  reused.border.clear();
  if (layout.xStripHeightPx > 0)
    reused.strips.push_back({{0, height - layout.xStripHeightPx, width, height}, reused.textBackground});
  if (layout.yStripWidthPx > 0)
    reused.strips.push_back({{width - layout.yStripWidthPx, 0, width, height}, reused.textBackground});
  addUnlitColumns(reused, settings, layout.areaHeightPx, images, columnGeometry(settings, layout.areaWidthPx));
  addScaleTexts(reused.texts, settings, axis, layout, measure);
  addBorder(reused.border, settings.borderType, argbFromOleColor(settings.borderColor), {0, 0, width, height});
}

void buildColumns(AnalyserFrame& reused, const AnalyserSettings& settings, const AnalyserLayout& layout,
                  const ColumnImages& images, std::span<const LineInfo> columns) {
  reused.columns.clear();
  reused.ticks.clear();
  const ColumnGeometry geometry = columnGeometry(settings, layout.areaWidthPx);
  if (geometry.widthPx <= 0) return;
  Columns lit(reused.columns, settings, layout.areaHeightPx, images, geometry);
  const bool ticks = isTrue(settings.tickVisible);
  const auto count = std::min(columns.size(), static_cast<std::size_t>(geometry.count));
  for (std::size_t i = 0; i < count; ++i) {
    const int column = static_cast<int>(i);
    lit.add(column, truncToInt(columns[i].value));
    if (ticks) {
      addTick(reused.ticks, settings, layout.areaHeightPx, geometry.columnLeft(column), geometry.widthPx,
              truncToInt(columns[i].peak));
    }
  }
}

}  // namespace av::type3
