#include "picture/view_picture_fixture.h"

#include <objidl.h>

#include <gdiplus.h>

namespace av::test {

int defaultScaleTextHeightPx() {
  using namespace Gdiplus;
  ULONG_PTR token = 0;
  const GdiplusStartupInput input;
  if (GdiplusStartup(&token, &input, nullptr) != Ok) return 0;
  int height = 0;
  {
    // 6 points are 8 pixels of a LOGFONT at 96 DPI, and the view takes its pixels for points.
    const Font font(L"Arial", 8.0f, FontStyleRegular, UnitPoint);
    Bitmap bitmap(8, 8, PixelFormat32bppPARGB);
    const Graphics graphics(&bitmap);
    height = static_cast<int>(std::floor(font.GetHeight(&graphics) + 0.5f));
  }
  GdiplusShutdown(token);
  return height;
}

}  // namespace av::test
