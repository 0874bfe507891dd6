#pragma once

#include "gfx/frame_parts.h"
#include "type1/layout.h"

#include <vector>

namespace av::type1 {

/// Whether a visualisation type is one of the two X-Y views.
constexpr bool isXyView(int visualizationType) noexcept { return visualizationType == 6 || visualizationType == 7; }

/// Rows at the plot's bottom that the X-Y views leave to the frame.
inline constexpr int xyFrameRoomPx = 15;

/// The frame under the X-Y views: a scale of ten divisions from −1 at its left line to +1 at its right line, with ticks
/// below. The lines belong to the frame. All divisions are equally wide, whole pixels, but for the last one, which takes
/// what is left.
struct XyFrame {
  int left;
  int top;
  int right;
  int bottom;
  int divisionPx;

  explicit XyFrame(const ViewLayout& layout);

  /// False in plots too narrow for it.
  bool hasWidth() const { return right > left; }

  /// The tick behind the first `division` divisions, from 1 to 9.
  int tickColumn(int division) const { return left + division * divisionPx; }

  /// Where a value from −1 to 1 stands among the ticks, in whole pixels: tick k reads −1 + k ÷ 5.
  int columnOf(double value) const;
};

/// Appends the grid of the X-Y views: a cross and its diagonals around the middle of what the frame leaves of the plot,
/// and the frame with its ticks.
void addXyGrid(std::vector<LineSegment>& grid, Argb colour, const ViewLayout& layout);

}  // namespace av::type1
