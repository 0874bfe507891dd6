#include "player/win/theme.h"

#include <map>

namespace avplayer {

namespace {

int CALLBACK noteFont(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
  *reinterpret_cast<bool*>(found) = true;
  return 0;
}

bool hasFont(const wchar_t* face) {
  LOGFONTW wanted = {};
  wanted.lfCharSet = DEFAULT_CHARSET;
  lstrcpynW(wanted.lfFaceName, face, LF_FACESIZE);
  bool found = false;
  HDC screen = GetDC(nullptr);
  EnumFontFamiliesExW(screen, &wanted, noteFont, reinterpret_cast<LPARAM>(&found), 0);
  ReleaseDC(nullptr, screen);
  return found;
}

HFONT makeFont(int dpi, int weight) {
  constexpr int points = 9;
  const wchar_t* face = hasFont(L"Segoe UI") ? L"Segoe UI" : L"Arial";
  return CreateFontW(-MulDiv(points, dpi, 72), 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                     OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH, face);
}

int lineHeightOf(HFONT font) {
  HDC screen = GetDC(nullptr);
  const HGDIOBJ before = SelectObject(screen, font);
  TEXTMETRICW metric = {};
  GetTextMetricsW(screen, &metric);
  SelectObject(screen, before);
  ReleaseDC(nullptr, screen);
  return metric.tmHeight;
}

}  // namespace

Theme::Theme(int dpi)
    : m_dpi(dpi),
      m_text(makeFont(dpi, FW_NORMAL)),
      m_bold(makeFont(dpi, FW_SEMIBOLD)),
      m_lineHeight(lineHeightOf(m_text)) {}

Theme::~Theme() {
  DeleteObject(m_text);
  DeleteObject(m_bold);
}

HBRUSH brushOf(COLORREF colour) {
  static std::map<COLORREF, HBRUSH> brushes;  // the window's few colours; used on its thread only
  HBRUSH& brush = brushes[colour];
  if (!brush) brush = CreateSolidBrush(colour);
  return brush;
}

void fill(HDC context, const RECT& rect, COLORREF colour) { FillRect(context, &rect, brushOf(colour)); }

void drawText(HDC context, HFONT font, COLORREF colour, const wchar_t* text, RECT rect, UINT format) {
  const HGDIOBJ before = SelectObject(context, font);
  SetBkMode(context, TRANSPARENT);
  SetTextColor(context, colour);
  const UINT lines =
      format & DT_WORDBREAK ? DT_EDITCONTROL | DT_END_ELLIPSIS : DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS;
  DrawTextW(context, text, -1, &rect, format | lines | DT_NOPREFIX);
  SelectObject(context, before);
}

BufferedPaint::BufferedPaint(HWND window) : m_window(window) {
  GetClientRect(window, &m_client);
  m_target = BeginPaint(window, &m_paint);
  m_memory = CreateCompatibleDC(m_target);
  m_bitmap = CreateCompatibleBitmap(m_target, m_client.right > 0 ? m_client.right : 1,
                                    m_client.bottom > 0 ? m_client.bottom : 1);
  m_before = SelectObject(m_memory, m_bitmap);
}

BufferedPaint::~BufferedPaint() {
  BitBlt(m_target, 0, 0, m_client.right, m_client.bottom, m_memory, 0, 0, SRCCOPY);
  SelectObject(m_memory, m_before);
  DeleteObject(m_bitmap);
  DeleteDC(m_memory);
  EndPaint(m_window, &m_paint);
}

int dpiOf(HWND window) {
  // Windows 10 and later know a DPI for each display.
  using GetDpi = UINT(WINAPI*)(HWND);
  static const auto getDpi = reinterpret_cast<GetDpi>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
  const UINT dpi = getDpi && window ? getDpi(window) : 0;
  if (dpi > 0) return static_cast<int>(dpi);
  HDC screen = GetDC(nullptr);
  const int screenDpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return screenDpi;
}

}  // namespace avplayer
