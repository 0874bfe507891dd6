#pragma once

#include <windows.h>

namespace av::ole {

/// Pixels to HIMETRIC (1/100 mm) by the screen's logical DPI, rounded, as containers compute it.
SIZEL himetricFromPixels(SIZE pixels) noexcept;

/// HIMETRIC to pixels by the screen's logical DPI, rounded.
SIZE pixelsFromHimetric(SIZEL himetric) noexcept;

}  // namespace av::ole
