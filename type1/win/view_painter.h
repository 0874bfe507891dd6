#pragma once

#include "gfx/win/frame_painter.h"
#include "type1/frame.h"

namespace av::type1 {

/// Replays the frame: background, strips, border, labels, grid, curves. The surface has to have the size of the frame's
/// client rectangle, whose corner lies at (0, 0). False when GDI+ fails; what the surface then holds is not to be shown.
/// [control thread, under the drawing lock]
bool paintFrame(FramePainter& painter, const ViewFrame& frame, const Gdiplus::GpFont* scaleFont) noexcept;

}  // namespace av::type1
