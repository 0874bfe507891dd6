#include "player/win/picture.h"

#include "player/win/gdiplus_headers.h"

namespace avplayer {

namespace {

constexpr CLSID pngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

}  // namespace

GdiplusSession::GdiplusSession() {
  const Gdiplus::GdiplusStartupInput input;
  Gdiplus::GdiplusStartup(&m_token, &input, nullptr);
}

GdiplusSession::~GdiplusSession() { Gdiplus::GdiplusShutdown(m_token); }

Picture::Picture(int width, int height) : m_width(width), m_height(height), m_context(CreateCompatibleDC(nullptr)) {
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top row first
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  m_bitmap = CreateDIBSection(m_context, &info, DIB_RGB_COLORS, &m_bits, nullptr, 0);
  if (m_bitmap) m_before = SelectObject(m_context, m_bitmap);
}

Picture::~Picture() {
  if (m_before) SelectObject(m_context, m_before);
  if (m_bitmap) DeleteObject(m_bitmap);
  DeleteDC(m_context);
}

bool Picture::savePng(const std::filesystem::path& file) const {
  if (!m_bits) return false;
  GdiFlush();
  Gdiplus::Bitmap bitmap(m_width, m_height, m_width * 4, PixelFormat32bppRGB, static_cast<BYTE*>(m_bits));
  return bitmap.Save(file.c_str(), &pngEncoder, nullptr) == Gdiplus::Ok;
}

}  // namespace avplayer
