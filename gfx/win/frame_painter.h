#pragma once

#include "gfx/frame_parts.h"
#include "gfx/pixels.h"
#include "gfx/win/column_cache.h"
#include "gfx/win/offscreen.h"
#include "gfx/win/prepared_image.h"

#include <span>

namespace av {

/// Replays frame parts into an off-screen picture, in the order of the calls. Every operation returns false at its first
/// failure in GDI+ (out of memory, most of all) and throws nothing; the caller then keeps the previous picture.
/// Owns GDI+ objects: has to be gone, or released, before the GDI+ token ends.
/// [control thread, under the drawing lock]
class FramePainter {
 public:
  explicit FramePainter(OffscreenSurface& surface) noexcept : m_surface(surface) {}

  bool clear(Argb colour) noexcept;
  bool fill(std::span<const FilledRect> rects) noexcept;
  /// Rows of `columns`, which the fills number, written straight into the picture. What a fill asks for of a column that
  /// is not there, or beyond its rows, is left as it is.
  bool fill(std::span<const ColumnFill> fills, std::span<const PreparedColumn> columns) noexcept;
  /// Lines may end anywhere: what lies far outside of the picture is cut off first.
  bool draw(std::span<const LineSegment> lines) noexcept;
  /// Lines as wide as they say, a pixel at least. Wide ones have round corners; their points lie near the picture.
  bool draw(const Polylines& lines) noexcept;
  /// Texts in `font`; without a font there is nothing to draw and that is no failure.
  bool draw(std::span<const TextRun> texts, const Gdiplus::GpFont* font) noexcept;

  /// Parts of `images`, which the blits number; what shows an image that is empty or not there is left out. Columns one
  /// pixel wide that show a whole image, as bar spectra are made of, are drawn from memory after their first time.
  /// Flipped blits are refused: GDI+ would flip them by a negative height, which loses a row.
  bool draw(std::span<const ImageBlit> blits, std::span<const PreparedImage> images) noexcept;

  /// Lets the GDI+ objects go; the next use makes them anew.
  void release() noexcept;

 private:
  Gdiplus::GpPen* pen(Argb colour, int widthPx = 1) noexcept;
  bool drawClipped(Gdiplus::GpPen* linePen, Point from, Point to) noexcept;
  bool drawThin(Gdiplus::GpPen* linePen, std::span<const Point> points) noexcept;
  bool drawLines(Gdiplus::GpPen* linePen, std::span<const Point> points) noexcept;
  bool drawWide(Gdiplus::GpPen* linePen, std::span<const Point> points, int widthPx) noexcept;

  OffscreenSurface& m_surface;
  PenHandle m_pen;
  Argb m_penColour = opaqueBlack;
  int m_penWidthPx = 1;
  SolidBrushHandle m_textBrush;
  StringFormatHandle m_format;
  ColumnCache m_columns;
};

}  // namespace av
