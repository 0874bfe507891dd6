#include "type1/win/view_painter.h"

namespace av::type1 {

bool paintFrame(FramePainter& painter, const ViewFrame& frame, const Gdiplus::GpFont* scaleFont) noexcept {
  return painter.clear(frame.background) && painter.fill(frame.strips) && painter.draw(frame.border) &&
         painter.draw(frame.labels, scaleFont) && painter.draw(frame.grid) && painter.draw(frame.curves);
}

}  // namespace av::type1
