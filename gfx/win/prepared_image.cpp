#include "gfx/win/prepared_image.h"

namespace av {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

PreparedImage::PreparedImage(HINSTANCE module, int id) noexcept {
  GpBitmap* bitmap = nullptr;
  UINT width = 0;
  UINT height = 0;
  if (GdipCreateBitmapFromResource(module, MAKEINTRESOURCEW(id), &bitmap) != Ok) return;
  m_bitmap.reset(bitmap);
  if (GdipGetImageWidth(bitmap, &width) == Ok && GdipGetImageHeight(bitmap, &height) == Ok) {
    m_size = {static_cast<int>(width), static_cast<int>(height)};
  } else {
    m_bitmap.reset();
  }
}

bool PreparedImage::draw(OffscreenSurface& surface, const Rect& from, const Rect& to) const noexcept {
  return GdipDrawImageRectRectI(surface.graphics(), m_bitmap.get(), to.left, to.top, to.width(), to.height(), from.left,
                                from.top, from.width(), from.height(), UnitPixel, nullptr, nullptr, nullptr) == Ok;
}

bool PreparedImage::drawColumn(OffscreenSurface& surface, const Rect& column) const noexcept {
  return draw(surface, {0, 0, m_size.widthPx, m_size.heightPx}, column);
}

void PreparedImage::release() noexcept {
  m_bitmap.reset();
  m_size = {};
}

}  // namespace av
