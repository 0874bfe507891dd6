#include "ole/extent.h"

namespace av::ole {

namespace {

constexpr int himetricPerInch = 2540;

SIZE screenDpi() noexcept {
  SIZE dpi{96, 96};
  if (HDC screen = GetDC(nullptr)) {
    dpi = {GetDeviceCaps(screen, LOGPIXELSX), GetDeviceCaps(screen, LOGPIXELSY)};
    ReleaseDC(nullptr, screen);
  }
  return dpi;
}

}  // namespace

SIZEL himetricFromPixels(SIZE pixels) noexcept {
  const SIZE dpi = screenDpi();
  return {MulDiv(pixels.cx, himetricPerInch, dpi.cx), MulDiv(pixels.cy, himetricPerInch, dpi.cy)};
}

SIZE pixelsFromHimetric(SIZEL himetric) noexcept {
  const SIZE dpi = screenDpi();
  return {MulDiv(himetric.cx, dpi.cx, himetricPerInch), MulDiv(himetric.cy, dpi.cy, himetricPerInch)};
}

}  // namespace av::ole
