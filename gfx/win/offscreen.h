#pragma once

#include "gfx/argb.h"
#include "gfx/geometry.h"
#include "gfx/win/dib_surface.h"
#include "gfx/win/gdiplus_handles.h"

#include <span>

namespace av {

/// An off-screen picture, 32 bits a pixel with premultiplied alpha. GDI+ and GDI share its memory: GDI+ draws, one
/// BitBlt presents, and plain fills are written directly (the same pixels at a hundredth of the cost).
/// [control thread, under the drawing lock]
class OffscreenSurface {
 public:
  OffscreenSurface() = default;
  ~OffscreenSurface();
  OffscreenSurface(const OffscreenSurface&) = delete;
  OffscreenSurface& operator=(const OffscreenSurface&) = delete;

  /// Makes the picture `size` pixels large, at 96 DPI; new pictures are transparent black. Keeps what is there when the size is
  /// the same. False when the size is empty or there is no memory; the old picture is kept then.
  /// A change of size replaces the graphics: whoever keeps it has to ask again.
  bool resize(Size size) noexcept;

  /// Frees the picture. Has to happen before the GDI+ token ends.
  void release() noexcept;

  Size size() const noexcept { return m_dib.size(); }

  /// The drawing surface: low-quality interpolation (1), no smoothing (3). Null before the first resize.
  Gdiplus::GpGraphics* graphics() const noexcept { return m_graphics.get(); }

  /// All pixels, row by row from the top, without padding. Empty before the first resize.
  std::span<Argb> pixels() noexcept;

  /// Sets every pixel to an opaque colour.
  void clear(Argb colour) noexcept;

  /// Fills what lies inside the picture of `rect` with an opaque colour.
  void fill(const Rect& rect, Argb colour) noexcept;

  /// Copies the picture to `target` with its top left corner at `position`, in one call.
  bool copyTo(HDC target, Point position) const noexcept;

 private:
  DibSurface m_dib;
  BitmapHandle m_bitmap;
  GraphicsHandle m_graphics;
};

}  // namespace av
