// The rows' places: laying them out, scrolling, and what is painted between the fields.

#include "player/win/buttons.h"
#include "player/win/property_rows.h"

#include <algorithm>

namespace avplayer {

namespace {

/// What the system's frame adds to the line of a closed list, at any DPI.
constexpr int listFrame = 6;

}  // namespace

void PropertyRows::arrange() {
  if (!m_theme) return;
  std::vector<RowKind> kinds;
  for (const Row& row : m_rows)
    if (row.visible) kinds.push_back(row.setting ? RowKind::property : RowKind::heading);
  RECT client;
  GetClientRect(hwnd(), &client);
  RowsLayout layout = layOutRows(kinds, client.right, m_theme->dpi());
  m_layouts = std::move(layout.rows);
  m_height = layout.heightPx;
  SCROLLINFO info = {
      sizeof info, SIF_RANGE | SIF_PAGE, 0, std::max(0, m_height - 1), static_cast<UINT>(client.bottom), 0, 0};
  SetScrollInfo(hwnd(), SB_VERT, &info, TRUE);
  m_scroll = std::clamp(m_scroll, 0, std::max(0, m_height - static_cast<int>(client.bottom)));
  SetScrollPos(hwnd(), SB_VERT, m_scroll, TRUE);
  std::size_t at = 0;
  for (Row& row : m_rows) {
    for (HWND window : {row.label, row.main, row.extra})
      if (window) ShowWindow(window, row.visible ? SW_SHOWNA : SW_HIDE);
    if (row.visible) placeRow(row, m_layouts[at++]);
  }
  InvalidateRect(hwnd(), nullptr, TRUE);
}

void PropertyRows::placeRow(Row& row, const RowLayout& layout) const {
  const auto put = [this](HWND window, const Box& box) {
    if (window)
      SetWindowPos(window, nullptr, box.x, box.y - m_scroll, box.width, box.height, SWP_NOZORDER | SWP_NOACTIVATE);
  };
  put(row.label, layout.label);
  Box field = layout.editor;
  Box extra = field;
  if (row.field == Field::number) {
    extra.width = m_theme->px(18);
    extra.x = field.right() - extra.width - m_theme->px(2);
    extra.y += m_theme->px(2);
    extra.height -= m_theme->px(4);
    field.width -= extra.width;
  } else if (row.field == Field::colour) {
    extra.width = m_theme->px(36);
  } else if (row.field == Field::list) {
    // A list's height is that of its closed part and its open one; the closed one follows from the line's height.
    const int line = field.height - listFrame;
    if (SendMessageW(row.main, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0) != line)
      SendMessageW(row.main, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), line);
    field.height += m_theme->px(240);
  }
  if (hasFrame(row)) field = textPlace(*m_theme, row.field == Field::number ? field : frameOf(row, layout));
  if (row.field == Field::fixed) field = textPlace(*m_theme, field);
  put(row.main, field);
  put(row.extra, extra);
}

bool PropertyRows::hasFrame(const Row& row) {
  return row.field == Field::number || row.field == Field::colour || row.field == Field::text;
}

/// The frame around a field's text, relative to the top of the list.
Box PropertyRows::frameOf(const Row& row, const RowLayout& layout) const {
  Box box = layout.editor;
  if (row.field == Field::colour) {
    const int swatch = m_theme->px(36 + 4);
    box.x += swatch;
    box.width -= swatch;
  }
  return box;
}

void PropertyRows::scrollTo(int position) {
  RECT client;
  GetClientRect(hwnd(), &client);
  const int wanted = std::clamp(position, 0, std::max(0, m_height - static_cast<int>(client.bottom)));
  if (wanted == m_scroll) return;
  const int by = m_scroll - wanted;
  m_scroll = wanted;
  SetScrollPos(hwnd(), SB_VERT, m_scroll, TRUE);
  ScrollWindowEx(hwnd(), 0, by, nullptr, nullptr, nullptr, nullptr, SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
  UpdateWindow(hwnd());
}

void PropertyRows::onScrollBar(WORD request) {
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_ALL;
  GetScrollInfo(hwnd(), SB_VERT, &info);
  const int line = m_theme ? m_theme->px(30) : 30;
  switch (request) {
    case SB_LINEUP: scrollTo(m_scroll - line); break;
    case SB_LINEDOWN: scrollTo(m_scroll + line); break;
    case SB_PAGEUP: scrollTo(m_scroll - static_cast<int>(info.nPage)); break;
    case SB_PAGEDOWN: scrollTo(m_scroll + static_cast<int>(info.nPage)); break;
    case SB_TOP: scrollTo(0); break;
    case SB_BOTTOM: scrollTo(m_height); break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: scrollTo(info.nTrackPos); break;
    default: break;
  }
}

void PropertyRows::showRow(const Row& row) {
  std::size_t at = 0;
  for (const Row& other : m_rows) {
    if (&other == &row) break;
    at += other.visible ? 1 : 0;
  }
  RECT client;
  GetClientRect(hwnd(), &client);
  if (at < m_layouts.size()) scrollTo(scrollToShow(m_layouts[at].row, m_scroll, client.bottom));
}

void PropertyRows::paint() {
  PAINTSTRUCT paint;
  HDC context = BeginPaint(hwnd(), &paint);
  fill(context, paint.rcPaint, colour::panel);
  if (m_theme) {
    std::size_t at = 0;
    for (const Row& row : m_rows) {
      if (!row.visible) continue;
      const RowLayout& layout = m_layouts[at++];
      const Box& box = layout.row;
      if (hasFrame(row)) {
        Box frame = frameOf(row, layout);
        frame.y -= m_scroll;
        drawFieldFrame(context, *m_theme, frame, GetFocus() == row.main);
      }
      if (row.setting) continue;
      const int y = box.bottom() - m_scroll - m_theme->px(5);
      fill(context, {m_theme->px(12), y, box.right() - m_theme->px(12), y + m_theme->px(1)}, colour::panelLine);
    }
  }
  EndPaint(hwnd(), &paint);
}

}  // namespace avplayer
