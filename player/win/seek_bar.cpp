#include "player/win/seek_bar.h"

#include "player/win/gdiplus_headers.h"

#include <windowsx.h>

namespace avplayer {

namespace {

constexpr int thumbRadius96 = 6;
constexpr double stepS = 5, pageS = 20;

Gdiplus::Color opaque(COLORREF c) { return Gdiplus::Color(255, GetRValue(c), GetGValue(c), GetBValue(c)); }

int xOf(double place, int width, int radius) { return radius + static_cast<int>(place * (width - 2 * radius) + 0.5); }

}  // namespace

void SeekBar::setPlace(double place) {
  m_place = std::clamp(place, 0.0, 1.0);
  RECT client;
  GetClientRect(hwnd(), &client);
  if (m_theme && xOf(m_place, client.right, m_theme->px(thumbRadius96)) != m_shownX) redraw();
}

LRESULT SeekBar::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: paint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_SIZE:
    case WM_SETFOCUS:
    case WM_KILLFOCUS: redraw(); return 0;
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_LBUTTONDOWN:
      SetFocus(hwnd());
      SetCapture(hwnd());
      seekTo(GET_X_LPARAM(lParam));
      return 0;
    case WM_MOUSEMOVE:
      if (GetCapture() == hwnd()) seekTo(GET_X_LPARAM(lParam));
      return 0;
    case WM_LBUTTONUP: ReleaseCapture(); return 0;
    case WM_KEYDOWN: return onKey(wParam) ? 0 : Window::onMessage(message, wParam, lParam);
    default: return Window::onMessage(message, wParam, lParam);
  }
}

bool SeekBar::onKey(WPARAM key) {
  switch (key) {
    case VK_LEFT:
    case VK_DOWN: onStep(-stepS); return true;
    case VK_RIGHT:
    case VK_UP: onStep(stepS); return true;
    case VK_PRIOR: onStep(pageS); return true;
    case VK_NEXT: onStep(-pageS); return true;
    case VK_HOME: onSeek(0); return true;
    case VK_END: onSeek(1); return true;
    default: return false;
  }
}

void SeekBar::seekTo(int x) {
  RECT client;
  GetClientRect(hwnd(), &client);
  const int radius = m_theme->px(thumbRadius96);
  if (client.right > 2 * radius)
    onSeek(std::clamp(static_cast<double>(x - radius) / (client.right - 2 * radius), 0.0, 1.0));
}

void SeekBar::paint() {
  const BufferedPaint buffer(hwnd());
  const RECT& client = buffer.client();
  fill(buffer.context(), client, colour::bar);
  if (!m_theme) return;
  const int radius = m_theme->px(thumbRadius96);
  const int middle = client.bottom / 2, half = m_theme->px(2);
  m_shownX = xOf(m_place, client.right, radius);
  fill(buffer.context(), {radius, middle - half, client.right - radius, middle + half}, colour::barLine);
  fill(buffer.context(), {radius, middle - half, m_shownX, middle + half}, colour::barAccent);
  Gdiplus::Graphics graphics(buffer.context());
  graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
  const bool focus = GetFocus() == hwnd();
  const Gdiplus::SolidBrush ring(opaque(focus ? colour::barAccent : colour::bar)), thumb(opaque(colour::barText));
  graphics.FillEllipse(&ring, m_shownX - radius, middle - radius, 2 * radius, 2 * radius);
  const int inner = radius - m_theme->px(focus ? 2 : 1);
  graphics.FillEllipse(&thumb, m_shownX - inner, middle - inner, 2 * inner, 2 * inner);
}

}  // namespace avplayer
