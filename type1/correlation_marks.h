#pragma once

#include "gfx/frame_parts.h"
#include "type1/layout.h"
#include "type1/settings.h"
#include "type1/view_signal.h"

#include <vector>

namespace av::type1 {

/// Appends what the frame under the X-Y views shows: the correlation of each pair of channels (`dsp::correlation` of the
/// window's samples) on the frame's scale from −1 to +1. One pair is a bar from the zero line to its value, several pairs
/// are a mark each, later ones over earlier ones. Their colours are those of the curves above: the pair's line colour, on
/// type 7 the balance colour of the value. The zero line comes first, in the grid's colour. All lie inside the frame, a
/// pixel clear of its lines and ticks. Pairs without arrays are left out.
void addCorrelationMarks(std::vector<FilledRect>& marks, const ViewSettings& settings, const ViewSignal& signal,
                         const ViewLayout& layout);

}  // namespace av::type1
