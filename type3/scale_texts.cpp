#include "type3/scale_texts.h"

#include "type3/frequency_axis.h"
#include "type3/frequency_labels.h"
#include "type3/level_labels.h"
#include "type3/text_strip.h"

#include <algorithm>

namespace av::type3 {

void addScaleTexts(std::vector<TextRun>& texts, const AnalyserSettings& settings, const BandAxis& axis,
                   const AnalyserLayout& layout, const TextMeasure& measure) {
  if (layout.textHeightPx < 1) return;
  const auto [width, height] = layout.size;
  const int gapPx = std::max(layout.textHeightPx / 4, 2);
  if (layout.xStripHeightPx >= 1) {
    const ColumnGeometry geometry = columnGeometry(settings, layout.areaWidthPx);
    TextStrip strip(texts, {0, height - layout.xStripHeightPx, width, height}, gapPx, measure);
    addFrequencyLabels(strip, FrequencyAxis(axis, geometry), layout, geometry);
  }
  if (layout.yStripWidthPx >= 1) {
    TextStrip strip(texts, {width - layout.yStripWidthPx, 0, width, layout.areaHeightPx}, gapPx, measure);
    addLevelLabels(strip, settings, layout);
  }
}

}  // namespace av::type3
