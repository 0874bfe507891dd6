#include "type2/frame.h"

#include "gfx/border.h"
#include "type2/bars.h"
#include "type2/draw_mode.h"
#include "type2/graph.h"

namespace av::type2 {

void buildFrame(MeterFrame& reused, const MeterSettings& settings, const MeterGeometry& geometry,
                std::span<const LineInfo> lines, bool hasData) {
  reused.client = geometry.client;
  reused.background = settings.backColor;
  reused.border.clear();
  reused.segments.clear();
  reused.graphs.clear();
  addBorder(reused.border, settings.borderType, settings.borderColor, geometry.client);
  const auto mode = drawMode(settings);
  if (!hasData || !mode) return;
  if (mode->isGraph()) {
    addGraph(reused.graphs, settings, *mode, geometry, lines);
  } else {
    addBars(reused.segments, settings, *mode, geometry, lines);
  }
}

}  // namespace av::type2
