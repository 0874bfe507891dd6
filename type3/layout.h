#pragma once

#include "gfx/geometry.h"
#include "gfx/text_measure.h"
#include "type3/settings.h"

namespace av::type3 {

/// Where the parts of the control lie, relative to its corner: the column area in the top left corner, the frequency
/// scale's strip along the bottom, the level scale's strip along the right side, both reaching into the corner between
/// them.
struct AnalyserLayout {
  Size size;               ///< of the control
  int textHeightPx = 0;    ///< of the scale font; 0: there are no texts
  int xStripHeightPx = 0;  ///< 0 without a frequency scale
  int yStripWidthPx = 0;   ///< 0 without a level scale
  int areaWidthPx = 0;     ///< of the column area
  int areaHeightPx = 0;

  friend bool operator==(const AnalyserLayout&, const AnalyserLayout&) = default;
};

/// Lays a control of `size` out. The strips are as wide as their texts need: `measure` is the scale font, whose line is
/// `textHeightPx` high; without a font (0) there are no strips. A strip that would leave less room than it takes is given
/// up. Negative sizes count as 0.
AnalyserLayout computeLayout(const AnalyserSettings& settings, Size size, int textHeightPx, const TextMeasure& measure);

/// Where the columns stand in the column area. All divisions are whole-number divisions.
struct ColumnGeometry {
  int count = 0;
  int stepPx = 0;        ///< from one column to the next
  int widthPx = 0;       ///< of a column; 0 or less: there is no room to see them
  int blockWidthPx = 0;  ///< of all columns with the gaps between them; 0 or less: there is no room
  int leftPx = 0;        ///< of the first column

  int columnLeft(int column) const noexcept { return leftPx + column * stepPx; }

  friend bool operator==(const ColumnGeometry&, const ColumnGeometry&) = default;
};

/// Valid for all settings. What the division leaves over stands half left and half right of the columns.
ColumnGeometry columnGeometry(const AnalyserSettings& settings, int areaWidthPx) noexcept;

}  // namespace av::type3
