#pragma once

#include "gfx/frame_parts.h"
#include "gfx/text_measure.h"
#include "type1/layout.h"
#include "type1/settings.h"
#include "type1/view_signal.h"

#include <cstdint>
#include <vector>

namespace av::type1 {

/// What the view shows at one moment, in draw order from top to bottom. Positions are those of the layout's client
/// rectangle; parts may reach beyond it by a pixel and are clipped by the picture.
struct ViewFrame {
  Rect client;
  Argb background = opaqueBlack;  ///< clears the whole picture
  std::vector<FilledRect> strips;
  Polylines border;  ///< lies over the strips
  std::vector<TextRun> labels;
  std::vector<LineSegment> grid;
  Polylines curves;
};

/// Everything but the curves: changes only with the settings, the layout, the sample rate and the font.
void buildFurniture(ViewFrame& reused, const ViewSettings& settings, std::uint32_t sampleRateHz,
                    const ViewLayout& layout, const TextMeasure& measure);

/// The curves alone; none before the first analysed block or in a plot without width.
void buildCurves(ViewFrame& reused, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout);

/// The whole frame. The vectors of `reused` are refilled, so frames of a steady size allocate nothing.
void buildFrame(ViewFrame& reused, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout,
                const TextMeasure& measure);

}  // namespace av::type1
