#pragma once

#include "gfx/frame_parts.h"
#include "type1/layout.h"
#include "type1/settings.h"
#include "type1/view_signal.h"

#include <vector>

namespace av::type1 {

/// Appends the X-Y view of type 6, one polyline a pair whose channels hold arrays: sample i of the left and the right
/// channel as the point (R − L, L + R) on axes that point right and up, full scale being the radius. The radius follows
/// the longer side of the plot, that of the grid the shorter one, so curves pass beyond the grid's cross and beyond the
/// plot: hosts know the view so.
void addXyCurves(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout);

/// Appends the X-Y view of type 7: the same points, each joined to the one before it, the first of each pair to the
/// centre, by a segment in the colour of the sample's balance (`balanceColour`). Samples that repeat make segments without
/// length, of which painters draw nothing.
void addBalanceCurves(std::vector<LineSegment>& segments, const ViewSignal& signal, const ViewLayout& layout);

}  // namespace av::type1
