#include "player/win/transport_bar.h"

#include "player/win/commands.h"

#include <commctrl.h>

namespace avplayer {

namespace {

void addTip(HWND tips, HWND button, const wchar_t* text) {
  TTTOOLINFOW tool = {};
  tool.cbSize = sizeof tool;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = GetParent(button);
  tool.uId = reinterpret_cast<UINT_PTR>(button);
  tool.lpszText = const_cast<wchar_t*>(text);
  SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace

bool TransportBar::create(HWND parent) {
  if (!Window::create({.className = L"avplayer.TransportBar", .exStyle = WS_EX_CONTROLPARENT, .parent = parent}))
    return false;
  const HWND own = hwnd();
  // In the order of the tab key.
  m_toStart = makeButton(own, command::toStart, L"To the beginning");
  m_play = makeButton(own, command::playPause, L"Play");
  m_seekBar.create(own);
  m_loop = makeButton(own, command::loop, L"Repeat");
  m_snapshot = makeButton(own, command::snapshot, L"Snapshot");
  m_fullScreen = makeButton(own, command::fullScreen, L"Full screen");
  m_tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0,
                           own, nullptr, GetModuleHandleW(nullptr), nullptr);
  addTip(m_tips, m_toStart, L"To the beginning (Ctrl+Home)");
  addTip(m_tips, m_play, L"Play or pause (Ctrl+P)");
  addTip(m_tips, m_loop, L"Repeat (Ctrl+R)");
  addTip(m_tips, m_snapshot, L"Save a picture of the selected control (F12)");
  addTip(m_tips, m_fullScreen, L"Full screen (F11)");
  return true;
}

void TransportBar::arrange(const WindowLayout& layout, const Theme& theme) {
  setTheme(theme);
  m_layout = layout;
  place(layout.transport);
  const auto put = [&](HWND window, const Box& box) {
    SetWindowPos(window, nullptr, box.x - layout.transport.x, box.y - layout.transport.y, box.width, box.height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  };
  put(m_toStart, layout.toStart);
  put(m_play, layout.play);
  put(m_seekBar.hwnd(), layout.seek);
  put(m_loop, layout.loop);
  put(m_snapshot, layout.snapshot);
  put(m_fullScreen, layout.fullScreen);
  redraw();
}

void TransportBar::setTheme(const Theme& theme) {
  m_theme = &theme;
  m_seekBar.setTheme(theme);
}

void TransportBar::setPlaying(bool playing) {
  if (playing == m_playing) return;
  m_playing = playing;
  SetWindowTextW(m_play, playing ? L"Pause" : L"Play");
  InvalidateRect(m_play, nullptr, FALSE);
}

void TransportBar::setLooping(bool looping) {
  if (looping == m_looping) return;
  m_looping = looping;
  InvalidateRect(m_loop, nullptr, FALSE);
}

void TransportBar::setTime(const std::wstring& time) {
  if (time == m_time) return;
  m_time = time;
  const Box& box = m_layout.time;
  const RECT rect = {box.x, 0, box.right(), m_layout.transport.height};
  InvalidateRect(hwnd(), &rect, FALSE);
}

LRESULT TransportBar::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: paint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_DRAWITEM: drawButton(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
    case WM_COMMAND:
      if (HIWORD(wParam) == BN_CLICKED) SendMessageW(GetParent(hwnd()), WM_COMMAND, LOWORD(wParam), 0);
      return 0;
    default: return Window::onMessage(message, wParam, lParam);
  }
}

void TransportBar::drawButton(const DRAWITEMSTRUCT& item) const {
  if (!m_theme) return;
  Icon icon = m_playing ? Icon::pause : Icon::play;
  if (item.hwndItem == m_toStart) icon = Icon::toStart;
  if (item.hwndItem == m_loop) icon = Icon::loop;
  if (item.hwndItem == m_snapshot) icon = Icon::camera;
  if (item.hwndItem == m_fullScreen) icon = Icon::fullScreen;
  drawIconButton(item, *m_theme, icon, item.hwndItem == m_loop && m_looping);
}

void TransportBar::paint() {
  const BufferedPaint buffer(hwnd());
  const RECT& client = buffer.client();
  fill(buffer.context(), client, colour::bar);
  if (!m_theme) return;
  fill(buffer.context(), {0, 0, client.right, m_theme->px(1)}, colour::barLine);
  const Box& box = m_layout.time;
  if (box.width > 0)
    drawText(buffer.context(), m_theme->text(), colour::barQuiet, m_time.c_str(),
             {box.x, 0, box.right(), client.bottom}, DT_CENTER);
}

}  // namespace avplayer
