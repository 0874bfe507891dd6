#pragma once

#include "gfx/argb.h"
#include "gfx/frame_parts.h"
#include "gfx/geometry.h"

#include <span>

namespace av {

/// The pixels of a picture, row by row from the top, without padding.
struct Pixels {
  std::span<Argb> all;
  Size size;
};

/// The colours of a prepared column from its top row down, opaque.
using PreparedColumn = std::span<const Argb>;

/// Fills what lies inside the picture of `rect`.
void fillRect(const Pixels& picture, const Rect& rect, Argb colour) noexcept;

/// Fills what lies inside the picture of the fill's rectangle with the rows of `column`. What it asks for beyond the
/// column's rows stays as it is.
void fillFromColumn(const Pixels& picture, const ColumnFill& fill, PreparedColumn column) noexcept;

}  // namespace av
