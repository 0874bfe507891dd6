#pragma once

#include "gfx/argb.h"
#include "type2/draw_mode.h"
#include "type2/geometry.h"
#include "type2/settings.h"

#include <vector>

namespace av::type2 {

/// The colours of a bar from its top row to its bottom row. A bar is the same in every column, so one column of it says
/// all; gaps between segments show the background.
using SegmentColumn = std::vector<Argb>;

/// Which of the two prepared columns a `ColumnFill` takes its colours from.
enum SegmentColumnId : int { unlitColumn, litColumn };

struct SegmentColumns {
  SegmentColumn unlit;  ///< in the `BackLine...` colours
  SegmentColumn lit;    ///< in the `Line...` colours

  const SegmentColumn& operator[](int id) const noexcept { return id == litColumn ? lit : unlit; }
};

/// The colours of the three zones.
struct ZoneColours {
  Argb low;
  Argb mid;
  Argb high;
};

/// Fills `column` anew: `geometry.imageHeightPx` rows, none where the mode has no bars or there is no room.
///
/// Segments are laid from the bottom up, y being a segment's bottom edge, and take the low, the middle and the high colour
/// as y passes (100 − `MidPoint`)·h/100 and (100 − `HighPoint`)·h/100, h being the bar's height. With gradients each
/// colour runs into the next one over a third of either zone; rows beyond a gradient's ends have the colour of that end.
/// Mirrored, the upper half is laid from the centre up, by the same limits against the full height, and reflected below.
void fillSegmentColumn(SegmentColumn& column, const MeterSettings& settings, const MeterGeometry& geometry,
                       const ZoneColours& zones);

/// Both columns for these settings.
void fillSegmentColumns(SegmentColumns& columns, const MeterSettings& settings, const MeterGeometry& geometry);

/// Bottom edge of the lowest segment of the upper half of a mirrored bar; an odd number of segments has the centre one in
/// it.
constexpr int upperHalfPx(const MeterGeometry& geometry) noexcept {
  const int pitchesBelow = (geometry.imageHeightPx - geometry.gapPx) / geometry.pitchPx / 2;
  return (pitchesBelow + 1) * geometry.pitchPx - geometry.gapPx;
}

}  // namespace av::type2
