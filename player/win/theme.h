#pragma once

#include "player/window_layout.h"

#include <windows.h>

namespace avplayer {

/// The colours of the window: a dark stage and transport bar, light panel and status line.
namespace colour {
inline constexpr COLORREF stage = RGB(9, 12, 17);
inline constexpr COLORREF bar = RGB(22, 27, 34);
inline constexpr COLORREF barLine = RGB(48, 54, 61);
inline constexpr COLORREF barText = RGB(230, 237, 243);
inline constexpr COLORREF barQuiet = RGB(139, 148, 158);
inline constexpr COLORREF barAccent = RGB(56, 139, 253);
inline constexpr COLORREF panel = RGB(255, 255, 255);
inline constexpr COLORREF panelLine = RGB(216, 222, 228);
inline constexpr COLORREF panelSoft = RGB(246, 248, 250);
inline constexpr COLORREF text = RGB(31, 35, 40);
inline constexpr COLORREF quiet = RGB(89, 99, 110);
inline constexpr COLORREF accent = RGB(9, 105, 218);
inline constexpr COLORREF fieldLine = RGB(190, 197, 205);
inline constexpr COLORREF marked = RGB(221, 236, 252);
inline constexpr COLORREF bad = RGB(190, 24, 38);
}  // namespace colour

/// The fonts for a display of that many DPI.
class Theme {
 public:
  explicit Theme(int dpi);
  ~Theme();
  Theme(const Theme&) = delete;
  Theme& operator=(const Theme&) = delete;

  int dpi() const noexcept { return m_dpi; }
  int px(int length96) const noexcept { return scaled(length96, m_dpi); }
  HFONT text() const noexcept { return m_text; }
  HFONT bold() const noexcept { return m_bold; }
  /// Height of a line of text, in pixels.
  int lineHeight() const noexcept { return m_lineHeight; }

 private:
  int m_dpi;
  HFONT m_text;
  HFONT m_bold;
  int m_lineHeight;
};

/// A brush of a plain colour, kept for the program's life.
HBRUSH brushOf(COLORREF colour);

void fill(HDC context, const RECT& rect, COLORREF colour);

/// One line, cut short with an ellipsis; `format` as of DrawText.
void drawText(HDC context, HFONT font, COLORREF colour, const wchar_t* text, RECT rect, UINT format = DT_LEFT);

/// Draws into a picture beside the window and copies it in one piece, so that nothing flickers.
class BufferedPaint {
 public:
  explicit BufferedPaint(HWND window);
  ~BufferedPaint();
  BufferedPaint(const BufferedPaint&) = delete;
  BufferedPaint& operator=(const BufferedPaint&) = delete;

  HDC context() const noexcept { return m_memory; }
  const RECT& client() const noexcept { return m_client; }

 private:
  HWND m_window;
  PAINTSTRUCT m_paint = {};
  HDC m_target;
  HDC m_memory;
  HBITMAP m_bitmap;
  HGDIOBJ m_before;
  RECT m_client = {};
};

/// DPI of the display that the window is on; of the screen where the system knows no difference.
int dpiOf(HWND window);

}  // namespace avplayer
