#pragma once

#include "common/line_list.h"
#include "gfx/frame_parts.h"
#include "type2/draw_mode.h"
#include "type2/geometry.h"
#include "type2/settings.h"

#include <span>

namespace av::type2 {

/// Appends the graph: where ticks are visible the polyline of the peaks in the high colour, over it that of the values in
/// the low colour, as wide as a segment is high (at least a pixel, at most what covers the control); mirrored, both once
/// upward and once downward from the centre line. Nothing is appended where the inner area is empty.
///
/// There is one point a line, from the inner area's left edge to its right one; levels stop at its bottom (−91 dB and
/// less, and values that are no number) and at its top (0 dB and more). Where more than four lines share a pixel column,
/// points that others hide are left out.
///
/// The smoothed graph has as many points more between any two as there are pixels from one line to the next, if these are
/// at least 3. They lie on piecewise cubics that keep the levels and never leave the range between two neighbours
/// (F. N. Fritsch, J. Butland, "A method for constructing local monotone piecewise cubic interpolants", 1984).
void addGraph(Polylines& graphs, const MeterSettings& settings, const DrawMode& mode, const MeterGeometry& geometry,
              std::span<const LineInfo> lines);

}  // namespace av::type2
