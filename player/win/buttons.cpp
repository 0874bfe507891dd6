#include "player/win/buttons.h"

#include "player/win/gdiplus_headers.h"
#include "player/win/text.h"

namespace avplayer {

namespace {

using Gdiplus::Color;
using Gdiplus::Graphics;
using Gdiplus::Pen;
using Gdiplus::PointF;
using Gdiplus::REAL;
using Gdiplus::SolidBrush;

Color opaque(COLORREF colour) { return Color(255, GetRValue(colour), GetGValue(colour), GetBValue(colour)); }

struct Rounded {
  COLORREF fill, line;
};

void drawRounded(Graphics& graphics, const RECT& rect, REAL radius, REAL lineWidth, const Rounded& look) {
  const REAL half = lineWidth / 2;
  const REAL left = static_cast<REAL>(rect.left) + half, top = static_cast<REAL>(rect.top) + half;
  const REAL right = static_cast<REAL>(rect.right) - 1 - half + 1 - lineWidth / 2;
  const REAL bottom = static_cast<REAL>(rect.bottom) - lineWidth;
  const REAL d = 2 * radius;
  Gdiplus::GraphicsPath path;
  path.AddArc(left, top, d, d, 180, 90);
  path.AddArc(right - d, top, d, d, 270, 90);
  path.AddArc(right - d, bottom - d, d, d, 0, 90);
  path.AddArc(left, bottom - d, d, d, 90, 90);
  path.CloseFigure();
  const SolidBrush brush(opaque(look.fill));
  graphics.FillPath(&brush, &path);
  const Pen pen(opaque(look.line), lineWidth);
  graphics.DrawPath(&pen, &path);
}

/// Draws icons on a field of 16 by 16 units in the middle of a rectangle.
class IconField {
 public:
  IconField(Graphics& graphics, const RECT& rect, COLORREF colour, int dpi)
      : m_graphics(graphics),
        m_brush(opaque(colour)),
        m_unit(static_cast<REAL>(dpi) / 96),
        m_pen(opaque(colour), 1.6f * m_unit),
        m_x(static_cast<REAL>(rect.left + rect.right) / 2 - 8 * m_unit),
        m_y(static_cast<REAL>(rect.top + rect.bottom) / 2 - 8 * m_unit) {
    m_pen.SetLineJoin(Gdiplus::LineJoinRound);
    m_pen.SetStartCap(Gdiplus::LineCapRound);
    m_pen.SetEndCap(Gdiplus::LineCapRound);
  }

  void box(REAL x, REAL y, REAL width, REAL height) {
    m_graphics.FillRectangle(&m_brush, m_x + x * m_unit, m_y + y * m_unit, width * m_unit, height * m_unit);
  }
  void triangle(PointF a, PointF b, PointF c) {
    const PointF points[] = {at(a), at(b), at(c)};
    m_graphics.FillPolygon(&m_brush, points, 3);
  }
  void line(PointF a, PointF b, PointF c) {
    const PointF points[] = {at(a), at(b), at(c)};
    m_graphics.DrawLines(&m_pen, points, 3);
  }
  void frame(REAL x, REAL y, REAL width, REAL height) {
    m_graphics.DrawRectangle(&m_pen, m_x + x * m_unit, m_y + y * m_unit, width * m_unit, height * m_unit);
  }
  void arc(REAL x, REAL y, REAL size, REAL from, REAL sweep) {
    m_graphics.DrawArc(&m_pen, m_x + x * m_unit, m_y + y * m_unit, size * m_unit, size * m_unit, from, sweep);
  }

 private:
  PointF at(PointF p) const { return {m_x + p.X * m_unit, m_y + p.Y * m_unit}; }

  Graphics& m_graphics;
  SolidBrush m_brush;
  REAL m_unit;
  Pen m_pen;
  REAL m_x, m_y;
};

void drawIcon(IconField& field, Icon icon) {
  switch (icon) {
    case Icon::play: field.triangle({4, 2}, {4, 14}, {14, 8}); break;
    case Icon::pause:
      field.box(3.5f, 2.5f, 3, 11);
      field.box(9.5f, 2.5f, 3, 11);
      break;
    case Icon::toStart:
      field.box(3, 3, 2, 10);
      field.triangle({13, 3}, {13, 13}, {6, 8});
      break;
    case Icon::loop:
      // Two arrows around a long loop.
      field.line({2.5f, 8.5f}, {2.5f, 4.5f}, {11, 4.5f});
      field.line({13.5f, 7.5f}, {13.5f, 11.5f}, {5, 11.5f});
      field.triangle({10.5f, 1.5f}, {10.5f, 7.5f}, {14, 4.5f});
      field.triangle({5.5f, 8.5f}, {5.5f, 14.5f}, {2, 11.5f});
      break;
    case Icon::camera:
      field.frame(1.5f, 4.5f, 13, 9);
      field.line({5, 4.5f}, {6.5f, 2.5f}, {9.5f, 2.5f});
      field.line({9.5f, 2.5f}, {11, 4.5f}, {11, 4.5f});
      field.arc(5.4f, 6.4f, 5.2f, 0, 360);
      break;
    case Icon::fullScreen:
      field.line({2.5f, 6}, {2.5f, 2.5f}, {6, 2.5f});
      field.line({10, 2.5f}, {13.5f, 2.5f}, {13.5f, 6});
      field.line({13.5f, 10}, {13.5f, 13.5f}, {10, 13.5f});
      field.line({6, 13.5f}, {2.5f, 13.5f}, {2.5f, 10});
      break;
  }
}

bool has(const DRAWITEMSTRUCT& item, UINT state) { return (item.itemState & state) != 0; }

}  // namespace

HWND makeButton(HWND parent, int command, const wchar_t* text) {
  return CreateWindowExW(0, L"BUTTON", text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_OWNERDRAW | BS_NOTIFY, 0, 0, 10,
                         10, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(command)), GetModuleHandleW(nullptr),
                         nullptr);
}

void drawIconButton(const DRAWITEMSTRUCT& item, const Theme& theme, Icon icon, bool on) {
  fill(item.hDC, item.rcItem, colour::bar);
  Graphics graphics(item.hDC);
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  const REAL unit = static_cast<REAL>(theme.dpi()) / 96;
  const COLORREF ground = has(item, ODS_SELECTED) ? colour::barLine : colour::bar;
  const COLORREF line = has(item, ODS_FOCUS) ? colour::barAccent : ground;
  drawRounded(graphics, item.rcItem, 5 * unit, 1.5f * unit, {ground, line});
  IconField field(graphics, item.rcItem, on ? colour::barAccent : colour::barText, theme.dpi());
  drawIcon(field, icon);
}

void drawTextButton(const DRAWITEMSTRUCT& item, const Theme& theme, ButtonLook look) {
  fill(item.hDC, item.rcItem, colour::panel);
  Graphics graphics(item.hDC);
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  const REAL unit = static_cast<REAL>(theme.dpi()) / 96;
  const bool selected = look == ButtonLook::tabSelected;
  const bool down = has(item, ODS_SELECTED);
  const COLORREF ground = selected ? colour::accent : down ? colour::panelLine : colour::panelSoft;
  const COLORREF line = has(item, ODS_FOCUS) ? (selected ? colour::text : colour::accent)
                        : selected           ? colour::accent
                                             : colour::panelLine;
  drawRounded(graphics, item.rcItem, 4 * unit, has(item, ODS_FOCUS) ? 2 * unit : unit, {ground, line});
  const COLORREF text = selected ? RGB(255, 255, 255) : has(item, ODS_DISABLED) ? colour::quiet : colour::text;
  RECT rect = item.rcItem;
  InflateRect(&rect, -theme.px(6), 0);
  drawText(item.hDC, selected ? theme.bold() : theme.text(), text, textOf(item.hwndItem).c_str(), rect,
           look == ButtonLook::left ? DT_LEFT : DT_CENTER);
}

void drawFieldFrame(HDC context, const Theme& theme, const Box& box, bool focus) {
  Graphics graphics(context);
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  const REAL unit = static_cast<REAL>(theme.dpi()) / 96;
  const RECT rect = {box.x, box.y, box.right(), box.bottom()};
  drawRounded(graphics, rect, 4 * unit, focus ? 2 * unit : unit,
              {colour::panel, focus ? colour::accent : colour::fieldLine});
}

Box textPlace(const Theme& theme, const Box& frame) {
  const int inset = theme.px(7);
  const int height = theme.lineHeight();
  return {frame.x + inset, frame.y + (frame.height - height) / 2, frame.width - 2 * inset, height};
}

void drawListItem(const DRAWITEMSTRUCT& item, const Theme& theme) {
  const bool closed = has(item, ODS_COMBOBOXEDIT);
  const bool marked = has(item, ODS_SELECTED);
  fill(item.hDC, item.rcItem, marked ? colour::marked : colour::panel);
  if (item.itemID == static_cast<UINT>(-1)) return;
  wchar_t text[128] = {};
  if (SendMessageW(item.hwndItem, CB_GETLBTEXTLEN, item.itemID, 0) >= static_cast<LRESULT>(ARRAYSIZE(text))) return;
  SendMessageW(item.hwndItem, CB_GETLBTEXT, item.itemID, reinterpret_cast<LPARAM>(text));
  RECT rect = item.rcItem;
  rect.left += theme.px(closed ? 4 : 7);
  drawText(item.hDC, theme.text(), colour::text, text, rect);
}

void drawSwatch(const DRAWITEMSTRUCT& item, const Theme& theme, COLORREF shown) {
  fill(item.hDC, item.rcItem, colour::panel);
  Graphics graphics(item.hDC);
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  const REAL unit = static_cast<REAL>(theme.dpi()) / 96;
  const bool focus = has(item, ODS_FOCUS);
  drawRounded(graphics, item.rcItem, 4 * unit, focus ? 2 * unit : unit,
              {shown, focus ? colour::accent : colour::panelLine});
}

}  // namespace avplayer
