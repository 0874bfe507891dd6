#include "gfx/win/frame_painter.h"

#include "gfx/win/ascii_text.h"

#include <cstddef>
#include <type_traits>

namespace av {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

// Points go to GDI+ as they are: one copy a frame less.
static_assert(sizeof(Point) == sizeof(GpPoint) && std::is_standard_layout_v<Point> && sizeof(int) == sizeof(INT));
static_assert(offsetof(Point, x) == offsetof(GpPoint, X) && offsetof(Point, y) == offsetof(GpPoint, Y));

namespace {

/// Whether a blit is a column of a bar spectrum: the whole of its image in one pixel's width, inside the picture.
bool isColumn(const ImageBlit& blit, const PreparedImage& image, Size picture) noexcept {
  return blit.from == Rect{0, 0, image.size().widthPx, image.size().heightPx} && blit.to.width() == 1 &&
         blit.to.left >= 0 && blit.to.right <= picture.widthPx && blit.to.top >= 0 &&
         blit.to.bottom <= picture.heightPx;
}

}  // namespace

void FramePainter::release() noexcept {
  m_pen.reset();
  m_textBrush.reset();
  m_format.reset();
  m_columns.release();
}

GpPen* FramePainter::pen(Argb colour) noexcept {
  if (!m_pen) {
    m_pen = createPen(colour, 1.0f);
  } else if (colour != m_penColour && GdipSetPenColor(m_pen.get(), colour) != Ok) {
    return nullptr;
  }
  m_penColour = colour;
  return m_pen.get();
}

bool FramePainter::clear(Argb colour) noexcept {
  if (!m_surface.graphics()) return false;
  m_surface.clear(colour);
  return true;
}

bool FramePainter::fill(std::span<const FilledRect> rects) noexcept {
  if (!m_surface.graphics()) return false;
  for (const FilledRect& part : rects) m_surface.fill(part.rect, part.colour);
  return true;
}

bool FramePainter::draw(std::span<const LineSegment> lines) noexcept {
  for (const LineSegment& line : lines) {
    GpPen* const linePen = pen(line.colour);
    if (!linePen ||
        GdipDrawLineI(m_surface.graphics(), linePen, line.from.x, line.from.y, line.to.x, line.to.y) != Ok) {
      return false;
    }
  }
  return true;
}

bool FramePainter::draw(const Polylines& lines) noexcept {
  for (const Polyline& line : lines.lines) {
    if (line.pointCount < 2) continue;
    GpPen* const linePen = pen(line.colour);
    const auto* const points = reinterpret_cast<const GpPoint*>(lines.pointsOf(line).data());
    if (!linePen || GdipDrawLinesI(m_surface.graphics(), linePen, points, static_cast<INT>(line.pointCount)) != Ok) {
      return false;
    }
  }
  return true;
}

bool FramePainter::draw(std::span<const TextRun> texts, const GpFont* font) noexcept {
  if (!font || texts.empty()) return true;
  if (!m_format) m_format = createCentredFormat();
  if (!m_textBrush) m_textBrush = createSolidBrush(texts.front().colour);
  if (!m_format || !m_textBrush) return false;
  for (const TextRun& run : texts) {
    const AsciiText text(run.text);
    // Centred around the rectangle's middle without bounds: within bounds GDI+ leaves out what does not fit.
    const RectF middle(static_cast<REAL>(run.rect.left) + static_cast<REAL>(run.rect.width()) / 2,
                       static_cast<REAL>(run.rect.top) + static_cast<REAL>(run.rect.height()) / 2, 0, 0);
    if (GdipSetSolidFillColor(m_textBrush.get(), run.colour) != Ok ||
        GdipDrawString(m_surface.graphics(), text.data(), text.length(), font, &middle, m_format.get(),
                       m_textBrush.get()) != Ok) {
      return false;
    }
  }
  return true;
}

bool FramePainter::draw(std::span<const ImageBlit> blits, std::span<const PreparedImage> images) noexcept {
  if (!m_surface.graphics()) return blits.empty();
  const PreparedImage* columnImage = nullptr;
  int columnBottom = 0;
  for (const ImageBlit& blit : blits) {
    if (blit.to.isEmpty() || blit.image < 0 || static_cast<std::size_t>(blit.image) >= images.size()) continue;
    const PreparedImage& image = images[static_cast<std::size_t>(blit.image)];
    if (image.size() == Size{}) continue;
    if (blit.flipped) return false;
    if (!isColumn(blit, image, m_surface.size())) {
      if (!image.draw(m_surface, blit.from, blit.to)) return false;
      continue;
    }
    if (columnImage != &image || columnBottom != blit.to.bottom) {
      columnImage = &image;
      columnBottom = blit.to.bottom;
      m_columns.begin(m_surface, image, columnBottom);
    }
    if (!m_columns.draw(blit.to.left, blit.to.top)) return false;
  }
  return true;
}

}  // namespace av
