#pragma once

#include "gfx/geometry.h"

#include <optional>

namespace av::type1 {

/// The smallest size that the view asks its container for.
inline constexpr Size minimumSize{80, 50};

/// What a view that is `size` large should grow to; none if it is large enough.
std::optional<Size> grownSize(Size size) noexcept;

}  // namespace av::type1
