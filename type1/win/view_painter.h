#pragma once

#include "gfx/win/frame_painter.h"
#include "gfx/win/prepared_image.h"
#include "type1/frame.h"

#include <array>
#include <vector>

namespace av::type1 {

/// The gradients that bars are stretched from, of types 3, 4 and 5. One that could not be loaded is empty: its type shows
/// no bars.
using BarGradients = std::array<PreparedImage, gradientHeightPx.size()>;

/// The gradients among the resources of `module`. [control thread]
BarGradients loadBarGradients(HINSTANCE module) noexcept;

/// Replays frames of the view into an off-screen picture. The furniture is drawn when it or the font has changed, and
/// copied from the last time otherwise: it is most of the work of a frame, its texts above all.
/// Owns GDI+ objects: has to be gone, or released, before the GDI+ token ends.
/// [control thread, under the drawing lock]
class ViewPainter {
 public:
  /// Draws into `surface`, bars with the gradients of `module`.
  ViewPainter(OffscreenSurface& surface, HINSTANCE module) noexcept;

  /// Replays the furniture (background, strips, border, labels, grid), then correlation marks, bars, curves and balance
  /// lines. The surface has to have the size of the frame's client rectangle, whose corner lies at (0, 0). False when GDI+
  /// fails; what the surface then holds is not to be shown.
  bool paint(const ViewFrame& frame, const Gdiplus::GpFont* scaleFont) noexcept;

  /// Forgets the furniture: to be called when a font that was painted with goes, since another one may get its address.
  void forgetFurniture() noexcept;

  /// Lets the GDI+ objects go, the gradients for good.
  void release() noexcept;

 private:
  bool paintFurniture(const ViewFurniture& furniture, const Gdiplus::GpFont* scaleFont) noexcept;
  bool replayFurniture(const ViewFurniture& furniture, const Gdiplus::GpFont* scaleFont) noexcept;
  void keepFurniture(const ViewFurniture& furniture, const Gdiplus::GpFont* scaleFont) noexcept;

  OffscreenSurface& m_surface;
  FramePainter m_painter{m_surface};
  BarGradients m_gradients;

  // The furniture as it was drawn last; no pixels: nothing is kept.
  ViewFurniture m_furniture;
  const Gdiplus::GpFont* m_furnitureFont = nullptr;
  std::vector<Argb> m_furniturePixels;
};

}  // namespace av::type1
