#include "gfx/win/dib_surface.h"

#include <cstddef>
#include <utility>

namespace av {

void DibSurface::release() noexcept {
  if (m_previousBitmap) SelectObject(m_dc, m_previousBitmap);
  if (m_dc) DeleteDC(m_dc);
  if (m_dib) DeleteObject(m_dib);
  m_dc = nullptr;
  m_dib = nullptr;
  m_previousBitmap = nullptr;
  m_pixels = nullptr;
  m_size = {};
}

void DibSurface::swap(DibSurface& other) noexcept {
  std::swap(m_size, other.m_size);
  std::swap(m_dc, other.m_dc);
  std::swap(m_dib, other.m_dib);
  std::swap(m_previousBitmap, other.m_previousBitmap);
  std::swap(m_pixels, other.m_pixels);
}

bool DibSurface::resize(Size size) noexcept {
  constexpr int longestSidePx = 0x7FFF;  // GDI's own coordinates end there
  if (size.widthPx < 1 || size.heightPx < 1 || size.widthPx > longestSidePx || size.heightPx > longestSidePx) {
    return false;
  }
  if (size == m_size) return true;

  DibSurface made;
  made.m_dc = CreateCompatibleDC(nullptr);
  if (!made.m_dc) return false;
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = size.widthPx;
  info.bmiHeader.biHeight = -size.heightPx;  // top row first
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  made.m_dib = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (!made.m_dib) return false;
  made.m_previousBitmap = SelectObject(made.m_dc, made.m_dib);
  if (!made.m_previousBitmap) return false;
  made.m_pixels = static_cast<Argb*>(bits);
  made.m_size = size;
  swap(made);
  return true;
}

std::span<Argb> DibSurface::pixels() const noexcept {
  GdiFlush();
  return {m_pixels, static_cast<std::size_t>(m_size.widthPx) * static_cast<std::size_t>(m_size.heightPx)};
}

bool DibSurface::copyTo(HDC target, Point position) const noexcept {
  if (!m_dc) return false;
  return BitBlt(target, position.x, position.y, m_size.widthPx, m_size.heightPx, m_dc, 0, 0, SRCCOPY) != 0;
}

}  // namespace av
