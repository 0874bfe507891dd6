#pragma once

#include "common/line_list.h"
#include "gfx/frame_parts.h"
#include "type2/draw_mode.h"
#include "type2/geometry.h"
#include "type2/settings.h"

#include <span>
#include <vector>

namespace av::type2 {

/// Appends the bars, or the dots, of all lines: the whole unlit bar, over it what the level lights and, where ticks are
/// visible, the segment at the peak. The colours are those of the prepared columns, so that each segment keeps the colour
/// of its height. Nothing is appended where there is no room.
///
/// The scale is linear from −91 dB, where nothing is lit, to 0 dB, where all is; a level lights every segment that it
/// touches. A value that is no number lights nothing.
void addBars(std::vector<ColumnFill>& segments, const MeterSettings& settings, const DrawMode& mode,
             const MeterGeometry& geometry, std::span<const LineInfo> lines);

}  // namespace av::type2
