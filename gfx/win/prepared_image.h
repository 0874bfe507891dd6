#pragma once

#include "gfx/geometry.h"
#include "gfx/win/column_cache.h"
#include "gfx/win/gdiplus_handles.h"

namespace av {

/// A picture that frames show parts of. Owns a GDI+ object: has to be gone, or released, before the GDI+ token ends.
/// [control thread, under the drawing lock]
class PreparedImage final : public ColumnSource {
 public:
  PreparedImage() = default;
  /// The bitmap resource `id` of a module; empty when it cannot be had.
  PreparedImage(HINSTANCE module, int id) noexcept;

  /// 0 × 0 when empty.
  Size size() const noexcept { return m_size; }

  /// Draws its part `from`, stretched to `to`, as the surface interpolates; false when GDI+ fails.
  bool draw(OffscreenSurface& surface, const Rect& from, const Rect& to) const noexcept;

  /// Draws the whole of itself, stretched to `column`.
  bool drawColumn(OffscreenSurface& surface, const Rect& column) const noexcept override;

  /// Empties it.
  void release() noexcept;

 private:
  BitmapHandle m_bitmap;
  Size m_size;
};

}  // namespace av
