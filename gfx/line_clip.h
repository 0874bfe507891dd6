#pragma once

#include "gfx/geometry.h"

#include <optional>
#include <span>

namespace av {

struct LineEnds {
  Point from;
  Point to;

  friend bool operator==(const LineEnds&, const LineEnds&) = default;
};

/// The part of the line that lies in `bounds`, its outermost pixels included, with new ends rounded to the nearest pixel;
/// nothing when no part does. A line that lies in `bounds` comes back as it is.
std::optional<LineEnds> clipLine(const LineEnds& line, const Rect& bounds) noexcept;

/// Whether all points lie in `bounds`.
bool liesIn(const Rect& bounds, std::span<const Point> points) noexcept;

}  // namespace av
