#pragma once

#include "common/line_list.h"
#include "gfx/win/frame_painter.h"
#include "gfx/win/gdiplus_token.h"
#include "gfx/win/offscreen.h"
#include "type2/frame.h"
#include "type2/geometry.h"
#include "type2/segments.h"
#include "type2/settings.h"

#include <windows.h>

#include <cstdint>
#include <vector>

namespace av::type2 {

/// The meter's picture: GDI+, the geometry of the window with its segment columns, and the off-screen surface that every
/// paint goes through. [control thread, or the audio thread that pushes a block; under the drawing lock]
class MeterPicture {
 public:
  /// Starts GDI+ for this control.
  MeterPicture() noexcept = default;

  /// Computes geometry and segment columns of the control's window, `client` pixels large. Throws std::bad_alloc; until the
  /// next layout every paint then has its own.
  void layout(const MeterSettings& settings, std::int32_t lineCount, SIZE client);

  /// Draws the frame of this moment and copies it to `bounds` of `target` in one piece. `inWindow`: into the control's own
  /// window, by what was laid out for it; elsewhere geometry and columns are those of the rectangle.
  /// The lines are copied under their lock and drawn without it. If GDI+ fails, what the target shows stays.
  /// Throws std::bad_alloc, with nothing drawn.
  void paint(HDC target, const RECT& bounds, bool inWindow, const MeterSettings& settings, LineList& lines,
             bool hasData);

  /// Lets all drawing resources go: the control is at its end.
  void discard() noexcept;

 private:
  /// How the lines are drawn in one place.
  struct Layout {
    MeterGeometry geometry;
    SegmentColumns columns;

    void compute(const MeterSettings& settings, std::int32_t lineCount, const Rect& client);
  };

  GdiplusToken m_token;  // before everything that GDI+ owns
  OffscreenSurface m_surface;
  FramePainter m_painter{m_surface};
  Layout m_window;
  Layout m_elsewhere;
  std::vector<LineInfo> m_lines;
  MeterFrame m_frame;
};

}  // namespace av::type2
