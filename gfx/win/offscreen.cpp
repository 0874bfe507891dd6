#include "gfx/win/offscreen.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace av {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

/// Fonts already come in the screen's pixels (their LOGFONT), which are then taken as points. On a picture of the screen's
/// own resolution that would scale them twice: at 192 DPI texts would be four times as high as at 96, not twice.
constexpr REAL pictureDpi = 96;

}  // namespace

OffscreenSurface::~OffscreenSurface() { release(); }

void OffscreenSurface::release() noexcept {
  m_graphics.reset();
  m_bitmap.reset();
  if (m_previousBitmap) SelectObject(m_dc, m_previousBitmap);
  if (m_dc) DeleteDC(m_dc);
  if (m_dib) DeleteObject(m_dib);
  m_dc = nullptr;
  m_dib = nullptr;
  m_previousBitmap = nullptr;
  m_pixels = nullptr;
  m_size = {};
}

bool OffscreenSurface::resize(Size size) noexcept {
  constexpr int longestSidePx = 0x7FFF;  // GDI's own coordinates end there
  if (size.widthPx < 1 || size.heightPx < 1 || size.widthPx > longestSidePx || size.heightPx > longestSidePx) {
    return false;
  }
  if (size == m_size) return true;

  OffscreenSurface made;
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

  GpBitmap* bitmap = nullptr;
  if (GdipCreateBitmapFromScan0(size.widthPx, size.heightPx, size.widthPx * 4, PixelFormat32bppPARGB,
                                static_cast<BYTE*>(bits), &bitmap) != Ok) {
    return false;
  }
  made.m_bitmap.reset(bitmap);
  if (GdipBitmapSetResolution(bitmap, pictureDpi, pictureDpi) != Ok) return false;
  GpGraphics* graphics = nullptr;
  if (GdipGetImageGraphicsContext(bitmap, &graphics) != Ok) return false;
  made.m_graphics.reset(graphics);
  if (GdipSetInterpolationMode(graphics, InterpolationModeLowQuality) != Ok ||
      GdipSetSmoothingMode(graphics, SmoothingModeNone) != Ok) {
    return false;
  }

  std::swap(m_size, made.m_size);
  std::swap(m_dc, made.m_dc);
  std::swap(m_dib, made.m_dib);
  std::swap(m_previousBitmap, made.m_previousBitmap);
  std::swap(m_pixels, made.m_pixels);
  std::swap(m_bitmap, made.m_bitmap);
  std::swap(m_graphics, made.m_graphics);
  return true;
}

std::span<Argb> OffscreenSurface::pixels() noexcept {
  // Both may still hold calls back that touch the shared memory.
  if (m_graphics) GdipFlush(m_graphics.get(), FlushIntentionSync);
  GdiFlush();
  return {m_pixels, static_cast<std::size_t>(m_size.widthPx) * static_cast<std::size_t>(m_size.heightPx)};
}

void OffscreenSurface::clear(Argb colour) noexcept {
  const std::span<Argb> all = pixels();
  std::fill(all.begin(), all.end(), colour);
}

void OffscreenSurface::fill(const Rect& rect, Argb colour) noexcept {
  const int left = std::max(rect.left, 0);
  const int right = std::min(rect.right, m_size.widthPx);
  const int bottom = std::min(rect.bottom, m_size.heightPx);
  if (left >= right) return;
  const std::span<Argb> all = pixels();
  for (int y = std::max(rect.top, 0); y < bottom; ++y) {
    const auto row = all.begin() + static_cast<std::ptrdiff_t>(y) * m_size.widthPx;
    std::fill(row + left, row + right, colour);
  }
}

bool OffscreenSurface::copyTo(HDC target, Point position) const noexcept {
  if (!m_graphics) return false;
  GdipFlush(m_graphics.get(), FlushIntentionSync);
  return BitBlt(target, position.x, position.y, m_size.widthPx, m_size.heightPx, m_dc, 0, 0, SRCCOPY) != 0;
}

}  // namespace av
