#include "player/win/stage.h"

#include <windowsx.h>

namespace avplayer {

namespace {

constexpr const wchar_t* titles[controlCount] = {L"Waveform and spectrum view", L"Level meter", L"Spectrum analyser"};

Box moved(Box box, int x, int y) {
  box.x -= x;
  box.y -= y;
  return box;
}

RECT rectOf(const Box& box) { return {box.x, box.y, box.right(), box.bottom()}; }

}  // namespace

void Stage::arrange(const WindowLayout& layout, const Theme& theme, Controls& controls) {
  m_theme = &theme;
  m_layout = layout;
  for (const ControlKind kind : allControls) {
    const std::size_t i = indexOf(kind);
    m_layout.captions[i] = moved(layout.captions[i], layout.stage.x, layout.stage.y);
    m_layout.controls[i] = moved(layout.controls[i], layout.stage.x, layout.stage.y);
  }
  place(layout.stage);
  for (HostedControl& control : controls) {
    const Box& box = m_layout.controls[indexOf(control.kind())];
    SetWindowPos(control.container().window(), nullptr, box.x, box.y, box.width, box.height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  }
  redraw();
}

void Stage::select(ControlKind control) {
  m_selected = control;
  redraw();
}

void Stage::drawGround(HDC context, const RECT& rect) const {
  fill(context, rect, colour::stage);
  if (!m_theme) return;
  for (const ControlKind kind : allControls) {
    const bool selected = kind == m_selected;
    RECT caption = rectOf(m_layout.captions[indexOf(kind)]);
    if (caption.right == caption.left) continue;
    drawText(context, selected ? m_theme->bold() : m_theme->text(), selected ? colour::barText : colour::barQuiet,
             titles[indexOf(kind)], caption);
    if (!selected) continue;
    RECT frame = rectOf(m_layout.controls[indexOf(kind)]);
    InflateRect(&frame, m_theme->px(2), m_theme->px(2));
    fill(context, frame, GetFocus() == hwnd() ? colour::barAccent : RGB(45, 84, 138));
  }
}

LRESULT Stage::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: {
      const BufferedPaint paint(hwnd());
      drawGround(paint.context(), paint.client());
      return 0;
    }
    case WM_ERASEBKGND: return 1;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: redraw(); return 0;
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_LBUTTONDOWN:
      selectAt(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
      SetFocus(hwnd());
      return 0;
    case WM_PARENTNOTIFY:  // a press inside of a control
      if (LOWORD(wParam) == WM_LBUTTONDOWN) selectAt(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
      return 0;
    default: return Window::onMessage(message, wParam, lParam);
  }
}

void Stage::selectAt(int x, int y) {
  for (const ControlKind kind : allControls) {
    const std::size_t i = indexOf(kind);
    const bool hit = m_layout.controls[i].contains(x, y) || m_layout.captions[i].contains(x, y);
    if (hit && onSelect) onSelect(kind);
  }
}

}  // namespace avplayer
