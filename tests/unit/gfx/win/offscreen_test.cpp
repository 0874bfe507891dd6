#include "gfx/win/offscreen.h"

#include "gfx/win/gdiplus_token.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace av {
namespace {

TEST(GdiplusToken, CountsItself) {
  const long before = GdiplusToken::liveCount();
  {
    const GdiplusToken first;
    EXPECT_TRUE(first.started());
    const GdiplusToken second;
    EXPECT_EQ(before + 2, GdiplusToken::liveCount());
  }
  EXPECT_EQ(before, GdiplusToken::liveCount());
}

class OffscreenSurfaceTest : public testing::Test {
 protected:
  GdiplusToken token;
  OffscreenSurface surface;
};

TEST_F(OffscreenSurfaceTest, StartsEmptyAndPresentsNothing) {
  EXPECT_EQ(nullptr, surface.graphics());
  EXPECT_TRUE(surface.pixels().empty());
  EXPECT_FALSE(surface.copyTo(nullptr, {0, 0}));
}

TEST_F(OffscreenSurfaceTest, DrawsWithLowQualityInterpolationAndNoSmoothing) {
  ASSERT_TRUE(surface.resize({20, 10}));
  Gdiplus::InterpolationMode interpolation{};
  Gdiplus::SmoothingMode smoothing{};
  Gdiplus::DllExports::GdipGetInterpolationMode(surface.graphics(), &interpolation);
  Gdiplus::DllExports::GdipGetSmoothingMode(surface.graphics(), &smoothing);
  EXPECT_EQ(Gdiplus::InterpolationModeBilinear, interpolation);  // what low quality stands for on reading back
  EXPECT_EQ(3, smoothing);
}

TEST_F(OffscreenSurfaceTest, KeepsThePictureWhileTheSizeStays) {
  ASSERT_TRUE(surface.resize({20, 10}));
  surface.clear(0xFF112233);
  const auto* const graphics = surface.graphics();
  ASSERT_TRUE(surface.resize({20, 10}));
  EXPECT_EQ(graphics, surface.graphics());
  EXPECT_EQ(0xFF112233, surface.pixels()[0]);
  ASSERT_TRUE(surface.resize({21, 10}));
  EXPECT_EQ(0u, surface.pixels()[0]);
  EXPECT_EQ(210u, surface.pixels().size());
}

TEST_F(OffscreenSurfaceTest, KeepsThePictureWhenTheNewSizeCannotBeHad) {
  ASSERT_TRUE(surface.resize({20, 10}));
  surface.clear(0xFF112233);
  for (const Size size : {Size{0, 10}, Size{20, 0}, Size{-1, -1}, Size{40000, 40000}}) {
    EXPECT_FALSE(surface.resize(size));
    EXPECT_EQ((Size{20, 10}), surface.size());
    EXPECT_EQ(0xFF112233, surface.pixels()[199]);
  }
}

TEST_F(OffscreenSurfaceTest, CopiesItselfToAPositionAndTouchesNothingElse) {
  ASSERT_TRUE(surface.resize({20, 10}));
  surface.clear(0xFF0000FF);
  surface.fill({3, 4, 5, 6}, 0xFFFF0000);
  const HDC dc = CreateCompatibleDC(nullptr);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, 60, -40, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ previous = SelectObject(dc, bitmap);
  ASSERT_TRUE(surface.copyTo(dc, {30, 15}));
  GdiFlush();
  const auto* const pixels = static_cast<const std::uint32_t*>(bits);
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 60; ++x) {
      const bool inside = x >= 30 && x < 50 && y >= 15 && y < 25;
      const bool patch = x >= 33 && x < 35 && y >= 19 && y < 21;
      const std::uint32_t expected = !inside ? 0u : patch ? 0xFF0000u : 0x0000FFu;
      ASSERT_EQ(expected, pixels[y * 60 + x] & 0xFFFFFFu) << x << ", " << y;
    }
  }
  SelectObject(dc, previous);
  DeleteObject(bitmap);
  DeleteDC(dc);
}

// The usual counters of GDI objects stay at zero here, so the handles themselves are looked at: a leak of two objects a
// resize exhausts the process's 16-bit handle space long before the end.
TEST_F(OffscreenSurfaceTest, SurvivesMoreResizesThanThereAreHandles) {
  for (int i = 0; i < 40000; ++i) ASSERT_TRUE(surface.resize({8 + i % 2, 8})) << i;
}

}  // namespace
}  // namespace av
