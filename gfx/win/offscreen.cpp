#include "gfx/win/offscreen.h"

#include "gfx/pixels.h"

#include <algorithm>
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
  m_dib.release();
}

bool OffscreenSurface::resize(Size size) noexcept {
  if (size == this->size() && m_graphics) return true;

  OffscreenSurface made;
  if (!made.m_dib.resize(size)) return false;
  GpBitmap* bitmap = nullptr;
  if (GdipCreateBitmapFromScan0(size.widthPx, size.heightPx, size.widthPx * 4, PixelFormat32bppPARGB,
                                reinterpret_cast<BYTE*>(made.m_dib.pixels().data()), &bitmap) != Ok) {
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

  m_dib.swap(made.m_dib);
  std::swap(m_bitmap, made.m_bitmap);
  std::swap(m_graphics, made.m_graphics);
  return true;
}

std::span<Argb> OffscreenSurface::pixels() noexcept {
  if (m_graphics) GdipFlush(m_graphics.get(), FlushIntentionSync);  // it may still hold calls back
  return m_dib.pixels();
}

void OffscreenSurface::clear(Argb colour) noexcept { std::ranges::fill(pixels(), colour); }

void OffscreenSurface::fill(const Rect& rect, Argb colour) noexcept { fillRect({pixels(), size()}, rect, colour); }

bool OffscreenSurface::copyTo(HDC target, Point position) const noexcept {
  if (!m_graphics) return false;
  GdipFlush(m_graphics.get(), FlushIntentionSync);
  return m_dib.copyTo(target, position);
}

}  // namespace av
