#include "type1/frame.h"

#include "gfx/border.h"
#include "gfx/saturate.h"
#include "type1/bars.h"
#include "type1/correlation_marks.h"
#include "type1/curves.h"
#include "type1/labels.h"
#include "type1/xy_grid.h"
#include "type1/xy_view.h"

namespace av::type1 {
namespace {

/// Each strip starts one pixel beyond the plot's edge, so it ends one pixel beyond the client area.
void addStrips(std::vector<FilledRect>& strips, const ViewSettings& settings, const ViewLayout& layout) {
  const Rect& client = layout.client;
  if (settings.scaleXVisible && layout.xScaleHeightPx > 0) {
    const int top = client.bottom - layout.xScaleHeightPx + 1;
    strips.push_back({{client.left, top, client.right, top + layout.xScaleHeightPx}, settings.scaleColor});
  }
  if (settings.scaleYVisible && layout.yScaleWidthPx > 0) {
    const int left = client.right - layout.yScaleWidthPx + 1;
    strips.push_back({{left, client.top, left + layout.yScaleWidthPx, client.bottom}, settings.scaleColor});
  }
}

void addRulerGrid(std::vector<LineSegment>& grid, const ViewSettings& settings, const ViewLayout& layout) {
  const int bottom = clampToInt(std::int64_t{layout.plotTop} + layout.plotHeight);
  const int right = clampToInt(std::int64_t{layout.plotLeft} + layout.plotWidth);
  for (std::int64_t i = 1; i < layout.xLabelCount; ++i) {
    const int x = clampToInt(layout.client.left + layout.plotWidth * i / layout.xLabelCount);
    grid.push_back({{x, layout.plotTop}, {x, bottom}, settings.gridColor});
  }
  for (std::int64_t j = 1; j < layout.yDivisionCount; ++j) {
    const int y = clampToInt(layout.client.top + layout.plotHeight * j / layout.yDivisionCount);
    grid.push_back({{layout.plotLeft, y}, {right, y}, settings.gridColor});
  }
}

}  // namespace

void buildFurniture(ViewFurniture& reused, const ViewSettings& settings, std::uint32_t sampleRateHz,
                    const ViewLayout& layout, const TextMeasure& measure) {
  reused.client = layout.client;
  reused.background = settings.backColor;
  reused.strips.clear();
  reused.border.clear();
  reused.labels.clear();
  reused.grid.clear();
  addStrips(reused.strips, settings, layout);
  addBorder(reused.border, settings.borderType, settings.borderColor, layout.client);
  addScaleTexts(reused.labels, settings, sampleRateHz, layout, measure);
  if (!settings.gridVisible) return;
  if (settings.visualizationType < 6) addRulerGrid(reused.grid, settings, layout);
  if (isXyView(settings.visualizationType)) addXyGrid(reused.grid, settings.gridColor, layout);
}

void buildCurves(ViewFrame& reused, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout) {
  reused.correlation.clear();
  reused.bars.clear();
  reused.curves.clear();
  reused.balance.clear();
  if (!signal.dataReceived || layout.plotWidth < 1) return;
  switch (settings.visualizationType) {
    case 1: addWaveforms(reused.curves, settings, signal, layout); break;
    case 2:
      // Any other axis is the octave axis, as the pointer reads it.
      if (settings.fftViewType == 1) {
        addLinearSpectra(reused.curves, settings, signal, layout);
      } else {
        addOctaveSpectra(reused.curves, settings, signal, layout);
      }
      break;
    case 3:
    case 4:
    case 5: addBars(reused.bars, settings, signal, layout); break;
    case 6: addXyCurves(reused.curves, settings, signal, layout); break;
    case 7: addBalanceCurves(reused.balance, signal, layout); break;
    default: break;
  }
  if (settings.gridVisible && isXyView(settings.visualizationType)) {
    addCorrelationMarks(reused.correlation, settings, signal, layout);
  }
}

void buildFrame(ViewFrame& reused, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout,
                const TextMeasure& measure) {
  buildFurniture(reused, settings, signal.sampleRateHz, layout, measure);
  buildCurves(reused, settings, signal, layout);
}

}  // namespace av::type1
