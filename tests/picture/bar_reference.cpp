#include "picture/bar_reference.h"

#include <objidl.h>
#include <propidl.h>

#include <gdiplus.h>
#include <gtest/gtest.h>

namespace av::test {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

std::vector<std::uint32_t> gradientOf(HMODULE dll, int type) {
  const HRSRC place = FindResourceW(dll, MAKEINTRESOURCEW(99 + type), RT_BITMAP);
  const HGLOBAL loaded = place ? LoadResource(dll, place) : nullptr;
  const auto* const header = static_cast<const BITMAPINFOHEADER*>(loaded ? LockResource(loaded) : nullptr);
  if (!header || header->biBitCount != 24 || header->biWidth != 1 || header->biHeight < 1) return {};
  constexpr int rowBytes = 4;  // three of a pixel and one that fills up
  const auto* const rows = reinterpret_cast<const std::uint8_t*>(header) + header->biSize;
  std::vector<std::uint32_t> colours;
  for (int row = header->biHeight - 1; row >= 0; --row) {  // the lowest comes first
    const std::uint8_t* const pixel = rows + row * rowBytes;
    colours.push_back(static_cast<std::uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]));
  }
  return colours;
}

BarReference::BarReference(HMODULE dll) : m_dll(dll) {
  const GdiplusStartupInput input;
  EXPECT_EQ(Ok, GdiplusStartup(&m_token, &input, nullptr));
}

BarReference::~BarReference() { GdiplusShutdown(m_token); }

void BarReference::draw(Canvas& canvas, int type, const std::vector<BarColumn>& columns, int bottom) const {
  std::vector<std::uint32_t> gradient = gradientOf(m_dll, type);
  ASSERT_FALSE(gradient.empty());
  const int imageHeight = static_cast<int>(gradient.size());
  std::vector<std::uint32_t> pixels = canvas.pixels();
  for (std::uint32_t& pixel : pixels) pixel |= 0xFF000000u;

  GpBitmap* image = nullptr;
  GpBitmap* picture = nullptr;
  GpGraphics* graphics = nullptr;
  ASSERT_EQ(Ok, GdipCreateBitmapFromScan0(1, imageHeight, 4, PixelFormat32bppRGB,
                                          reinterpret_cast<BYTE*>(gradient.data()), &image));
  ASSERT_EQ(Ok, GdipCreateBitmapFromScan0(canvas.width(), canvas.height(), canvas.width() * 4, PixelFormat32bppPARGB,
                                          reinterpret_cast<BYTE*>(pixels.data()), &picture));
  ASSERT_EQ(Ok, GdipGetImageGraphicsContext(picture, &graphics));
  ASSERT_EQ(Ok, GdipSetInterpolationMode(graphics, static_cast<InterpolationMode>(1)));
  ASSERT_EQ(Ok, GdipSetSmoothingMode(graphics, static_cast<SmoothingMode>(3)));
  for (const auto& [x, top] : columns) {
    if (top >= bottom) continue;
    ASSERT_EQ(Ok, GdipDrawImageRectRectI(graphics, image, x, top, 1, bottom - top, 0, 0, 1, imageHeight, UnitPixel,
                                         nullptr, nullptr, nullptr));
  }
  GdipDeleteGraphics(graphics);
  GdipDisposeImage(picture);
  GdipDisposeImage(image);

  for (int y = 0; y < canvas.height(); ++y) {
    for (int x = 0; x < canvas.width(); ++x)
      canvas.set(x, y, pixels[static_cast<std::size_t>(y * canvas.width() + x)] & 0xFFFFFFu);
  }
}

}  // namespace av::test
