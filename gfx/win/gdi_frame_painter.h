#pragma once

#include "gfx/frame_parts.h"
#include "gfx/pixels.h"
#include "gfx/win/dib_surface.h"

#include <windows.h>

#include <span>

namespace av {

/// Replays frame parts into an off-screen picture with GDI's own pixels, in the order of the calls. Fills are written
/// straight into the picture's memory; what GDI refuses (out of memory, most of all) is left out, and the call returns
/// false.
/// [control thread]
class GdiFramePainter {
 public:
  /// `surface` outlives this object and has been given a size.
  explicit GdiFramePainter(DibSurface& surface) noexcept : m_surface(surface) {}

  void clear(Argb colour) noexcept;
  void fill(std::span<const FilledRect> rects) noexcept;
  /// Rows of `columns`, which the fills number. What a fill asks for of a column that is not there is left as it is.
  void fill(std::span<const ColumnFill> fills, std::span<const PreparedColumn> columns) noexcept;
  /// Lines a pixel wide. As GDI draws them, the last point of each does not belong to it.
  bool draw(const Polylines& lines) noexcept;
  /// Texts in `font`, each on a ground of one colour as large as itself; none without a font.
  bool draw(std::span<const TextRun> texts, HFONT font, Argb background) noexcept;

 private:
  DibSurface& m_surface;
};

}  // namespace av
