#include "gfx/win/frame_painter.h"

#include "gfx/line_clip.h"
#include "gfx/win/ascii_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
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

/// Wide lines are drawn in pieces of so many segments. In one go their cost grows with the square of their length: 2.2 s
/// for 1,600 points on 1600 × 900 pixels, 34 ms in pieces (measured under Wine; the pixels are the same).
constexpr std::size_t segmentsOfAPiece = 16;

/// Half the side of the bounds that texts are centred in. A power of two far above any text's length, yet small enough
/// that positions keep a thousandth of a pixel in single precision.
constexpr REAL textReachPx = 4096;

/// False if no line of that width through the points can touch the picture.
bool comesNear(Size picture, std::span<const Point> points, int widthPx) noexcept {
  const auto [left, right] = std::ranges::minmax(points, {}, &Point::x);
  const auto [top, bottom] = std::ranges::minmax(points, {}, &Point::y);
  const std::int64_t width = widthPx;
  return left.x - width < picture.widthPx && right.x + width >= 0 && top.y - width < picture.heightPx &&
         bottom.y + width >= 0;
}

/// What lines a pixel wide are cut to: the picture and sixteen times its longer side around it. The new end is rounded to
/// a pixel so far away that the line in the picture keeps its place, and scales that show a fraction of full scale have no
/// line cut at all. An X-Y view of samples far beyond full scale, as a short block of a smaller depth leaves them, has
/// lines of millions of pixels, whose whole length Wine draws: 37 s for 1,024 of them.
Rect reachOfLines(Size picture) noexcept {
  const int reach = 16 * std::max(picture.widthPx, picture.heightPx);
  return {-reach, -reach, picture.widthPx + reach, picture.heightPx + reach};
}

}  // namespace

void FramePainter::release() noexcept {
  m_pen.reset();
  m_textBrush.reset();
  m_format.reset();
  m_columns.release();
}

GpPen* FramePainter::pen(Argb colour, int widthPx) noexcept {
  const int shownPx = std::max(widthPx, 1);
  if (!m_pen) {
    m_pen = createPen(colour, static_cast<REAL>(shownPx));
    // Mitred, a steep peak would reach up to five widths above its level.
    if (m_pen && GdipSetPenLineJoin(m_pen.get(), LineJoinRound) != Ok) m_pen.reset();
  } else if ((colour != m_penColour && GdipSetPenColor(m_pen.get(), colour) != Ok) ||
             (shownPx != m_penWidthPx && GdipSetPenWidth(m_pen.get(), static_cast<REAL>(shownPx)) != Ok)) {
    m_pen.reset();  // it may have half of what was asked for
  }
  m_penColour = colour;
  m_penWidthPx = shownPx;
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

bool FramePainter::fill(std::span<const ColumnFill> fills, std::span<const PreparedColumn> columns) noexcept {
  if (!m_surface.graphics()) return false;
  const Pixels picture{m_surface.pixels(), m_surface.size()};
  for (const ColumnFill& part : fills) {
    if (part.column < 0 || static_cast<std::size_t>(part.column) >= columns.size()) continue;
    fillFromColumn(picture, part, columns[static_cast<std::size_t>(part.column)]);
  }
  return true;
}

bool FramePainter::draw(std::span<const LineSegment> lines) noexcept {
  for (const LineSegment& line : lines) {
    GpPen* const linePen = pen(line.colour);
    if (!linePen || !drawClipped(linePen, line.from, line.to)) return false;
  }
  return true;
}

bool FramePainter::draw(const Polylines& lines) noexcept {
  for (const Polyline& line : lines.lines) {
    if (line.pointCount < 2) continue;
    GpPen* const linePen = pen(line.colour, line.widthPx);
    const std::span<const Point> points = lines.pointsOf(line);
    if (!linePen || !(line.widthPx > 1 ? drawWide(linePen, points, line.widthPx) : drawThin(linePen, points)))
      return false;
  }
  return true;
}

bool FramePainter::drawClipped(GpPen* linePen, Point from, Point to) noexcept {
  if (!m_surface.graphics()) return false;
  const std::optional<LineEnds> part = clipLine({from, to}, reachOfLines(m_surface.size()));
  return !part ||
         GdipDrawLineI(m_surface.graphics(), linePen, part->from.x, part->from.y, part->to.x, part->to.y) == Ok;
}

bool FramePainter::drawThin(GpPen* linePen, std::span<const Point> points) noexcept {
  if (liesIn(reachOfLines(m_surface.size()), points)) return drawLines(linePen, points);
  for (std::size_t i = 1; i < points.size(); ++i) {
    if (!drawClipped(linePen, points[i - 1], points[i])) return false;
  }
  return true;
}

bool FramePainter::drawLines(GpPen* linePen, std::span<const Point> points) noexcept {
  return GdipDrawLinesI(m_surface.graphics(), linePen, reinterpret_cast<const GpPoint*>(points.data()),
                        static_cast<INT>(points.size())) == Ok;
}

bool FramePainter::drawWide(GpPen* linePen, std::span<const Point> points, int widthPx) noexcept {
  const Size picture = m_surface.size();
  // Two pieces share a segment, so that the second one has the corner between them; the colour is opaque.
  for (std::size_t first = 0; first + 1 < points.size(); first += segmentsOfAPiece) {
    const std::size_t begin = first > 0 ? first - 1 : 0;
    const std::span<const Point> piece =
        points.subspan(begin, std::min(first + segmentsOfAPiece + 1, points.size()) - begin);
    if (comesNear(picture, piece, widthPx) && !drawLines(linePen, piece)) return false;
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
    // Centred around the rectangle's middle in bounds that are wider than any text: within its own bounds GDI+ leaves out
    // what does not fit, and without any it puts the text as far to the right as the margin that it gives each text.
    const REAL middleX = static_cast<REAL>(run.rect.left) + static_cast<REAL>(run.rect.width()) / 2 + run.fractionPx;
    const REAL middleY = static_cast<REAL>(run.rect.top) + static_cast<REAL>(run.rect.height()) / 2;
    const RectF bounds(middleX - textReachPx, middleY - textReachPx, 2 * textReachPx, 2 * textReachPx);
    if (GdipSetSolidFillColor(m_textBrush.get(), run.colour) != Ok ||
        GdipDrawString(m_surface.graphics(), text.data(), text.length(), font, &bounds, m_format.get(),
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
