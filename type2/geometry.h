#pragma once

#include "gfx/geometry.h"
#include "type2/settings.h"

#include <cstdint>

namespace av::type2 {

/// The scale of all lines: empty at −91 dB, full at 0 dB, linear between.
inline constexpr double levelRangeDb = 91.0;

/// Where the lines of the meter stand. All divisions are whole-number divisions.
struct MeterGeometry {
  Rect client;
  Rect inner;             ///< the client less `BorderWidth` + 1 on each side; may be empty or the wrong way round
  int lineCount = 3;      ///< at least 3
  int segmentPx = 0;      ///< height of a segment
  int gapPx = 0;          ///< between two segments
  int pitchPx = 1;        ///< from one segment to the next, at least 1
  int lineWidthPx = 0;    ///< 0 or less: there is no room for bars
  int lineStepPx = 0;     ///< from one line to the next
  int imageHeightPx = 0;  ///< of a bar, whole segments with a gap between any two; 0 or less: there is no room
  Point barsOrigin;       ///< top left corner of the first bar

  bool hasBars() const noexcept { return lineWidthPx > 0 && imageHeightPx > 0; }
  /// Room for the level in pixels; with whole segments there may be less than a pitch left over.
  int barHeightPx() const noexcept { return inner.height(); }
  /// From one point of a graph to the next, in pixels.
  double graphStepPx() const noexcept { return static_cast<double>(inner.width()) / (lineCount - 1); }

  friend bool operator==(const MeterGeometry&, const MeterGeometry&) = default;
};

/// Lays `lineCount` lines (3, if there are fewer) out in `client`, whose sides are at most 32767 pixels long. Valid for
/// all settings: a border width beyond ±32767 counts as that, and sizes beyond reason leave no room.
///
/// The row of bars starts at the inner area's corner. For line types below 4 it is centred without `AutoSize`.
MeterGeometry computeGeometry(const MeterSettings& settings, std::int32_t lineCount, const Rect& client) noexcept;

/// Whether a control of these settings takes the size that `snappedSize` gives: `AutoSize` and a line type below 4.
constexpr bool snapsItsSize(const MeterSettings& settings) noexcept {
  return settings.autoSize != 0 && settings.lineType < 4;
}

/// `size` less what is left over of it beside whole lines and segments. There are at least five segments, and an odd
/// number of them where `AlignmentX` is not 0, so that mirrored bars have one in the centre; lines are at least a pixel
/// wide. A size with no room for that grows. A snapped size snaps to itself.
Size snappedSize(const MeterSettings& settings, std::int32_t lineCount, Size size) noexcept;

}  // namespace av::type2
