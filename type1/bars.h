#pragma once

#include "gfx/frame_parts.h"
#include "type1/layout.h"
#include "type1/settings.h"
#include "type1/view_signal.h"

#include <array>
#include <vector>

namespace av::type1 {

/// Heights in pixels of the gradient images that bars of types 3, 4 and 5 are stretched from; each is one pixel wide.
inline constexpr std::array<int, 3> gradientHeightPx = {185, 185, 186};

/// Appends the bar spectrum of types 3, 4 and 5: for every pixel column from the plot's left edge to its right edge, both
/// included, the mean level of all channels that hold an array, as a part of the type's gradient stretched from the
/// level's row (`PlotScale::aboveBar`) to the plot's bottom. Columns without a bar have no part.
///
/// The linear axis shows one bin a column: x·(N/2 − 1) ÷ width, cut to a whole number; bin 0, which holds no level, reads
/// as bin 1. The octave axis shows in each column what the octave curve (`OctaveAxis`) draws there: the loudest of the
/// bins whose points lie in it; where none does, the same as in the column before. So a bar stands from its bin's point to
/// the next one's, no peak is lost where bins lie closer than pixels, and the first octave's width, where the curve runs
/// flat, shows bin 1. Bins that the curve draws right of the plot count in the last column.
///
/// Nothing is appended for other types, on a scale that spans nothing, or where the dynamic range is not positive.
void addBars(std::vector<ImageBlit>& bars, const ViewSettings& settings, const ViewSignal& signal,
             const ViewLayout& layout);

}  // namespace av::type1
