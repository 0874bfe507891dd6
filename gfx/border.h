#pragma once

#include "gfx/frame_parts.h"

#include <cstdint>

namespace av {

/// Appends the border of a control: type 1 a line in `colour` around the outermost pixels of `client`, types 2 and 3
/// two fixed near-black shades, one for the right and bottom edges and one for the left and top ones, whatever `colour`
/// is. Any other type, and an empty rectangle, have none.
void addBorder(Polylines& border, std::int32_t borderType, Argb colour, const Rect& client);

}  // namespace av
