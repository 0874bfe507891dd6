#include "gfx/win/gdi_frame_painter.h"

#include "gfx/win/ascii_text.h"
#include "gfx/win/gdi_handles.h"

#include <algorithm>
#include <cstddef>

namespace av {

namespace {

static_assert(sizeof(Point) == sizeof(POINT), "points of frames are handed to GDI as they are");

COLORREF gdiColour(Argb colour) noexcept { return oleColorFromArgb(colour); }

}  // namespace

void GdiFramePainter::clear(Argb colour) noexcept { std::ranges::fill(m_surface.pixels(), colour); }

void GdiFramePainter::fill(std::span<const FilledRect> rects) noexcept {
  const Pixels picture{m_surface.pixels(), m_surface.size()};
  for (const FilledRect& part : rects) fillRect(picture, part.rect, part.colour);
}

void GdiFramePainter::fill(std::span<const ColumnFill> fills, std::span<const PreparedColumn> columns) noexcept {
  const Pixels picture{m_surface.pixels(), m_surface.size()};
  for (const ColumnFill& part : fills) {
    if (part.column < 0 || static_cast<std::size_t>(part.column) >= columns.size()) continue;
    fillFromColumn(picture, part, columns[static_cast<std::size_t>(part.column)]);
  }
}

bool GdiFramePainter::draw(const Polylines& lines) noexcept {
  bool complete = true;
  for (const Polyline& line : lines.lines) {
    const GdiObject pen(CreatePen(PS_SOLID, 1, gdiColour(line.colour)));
    const GdiSelection selected(m_surface.dc(), pen.get());
    const std::span<const Point> points = lines.pointsOf(line);
    if (!pen || !selected ||
        !::Polyline(m_surface.dc(), reinterpret_cast<const POINT*>(points.data()), static_cast<int>(points.size())))
      complete = false;
  }
  return complete;
}

bool GdiFramePainter::draw(std::span<const TextRun> texts, HFONT font, Argb background) noexcept {
  if (!font || texts.empty()) return true;
  const HDC dc = m_surface.dc();
  const GdiSelection selected(dc, font);
  if (!selected) return false;
  bool complete = true;
  SetBkMode(dc, OPAQUE);
  SetBkColor(dc, gdiColour(background));
  for (const TextRun& run : texts) {
    SetTextColor(dc, gdiColour(run.colour));
    const AsciiText text(run.text);
    RECT rect{run.rect.left, run.rect.top, run.rect.right, run.rect.bottom};
    if (!DrawTextW(dc, text.data(), text.length(), &rect,
                   DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOCLIP | DT_NOPREFIX))
      complete = false;
  }
  return complete;
}

}  // namespace av
