#pragma once

#include "common/line_list.h"
#include "gfx/frame_parts.h"
#include "type2/geometry.h"
#include "type2/settings.h"

#include <span>
#include <vector>

namespace av::type2 {

/// What the meter shows at one moment, in draw order from top to bottom. Parts may reach beyond the client rectangle,
/// which clips them.
struct MeterFrame {
  Rect client;
  Argb background = opaqueBlack;  ///< clears the whole picture
  Polylines border;
  std::vector<ColumnFill> segments;  ///< bars and ticks from the columns that fillSegmentColumns() prepares
  Polylines graphs;
};

/// The frame of `lines` in a control laid out as `geometry`, which is that of the settings. `hasData`: without it there
/// are background and border only. The vectors of `reused` are refilled, so frames of a steady size allocate nothing.
void buildFrame(MeterFrame& reused, const MeterSettings& settings, const MeterGeometry& geometry,
                std::span<const LineInfo> lines, bool hasData);

}  // namespace av::type2
