#include "gfx/win/gdiplus_text_measure.h"
#include "gfx/win/scale_font.h"
#include "unit/gfx/win/frame_painter_fixture.h"

#include <gtest/gtest.h>

#include <vector>

namespace av {
namespace {

TEST_F(FramePainterTest, CentresTextsInTheirRectangle) {
  const FontHandle font = createScaleFont(createDefaultScaleFont().Get());
  ASSERT_TRUE(font);
  GdiplusTextMeasure measure;
  measure.use(surface.graphics(), font.get());
  const Rect rect{20, 10, 100, 60};
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(std::vector<TextRun>{{"8008", rect, red}}, font.get()));
  const Rect ink = inkBox(white);
  ASSERT_FALSE(ink.isEmpty());
  // The centres agree within a pixel across (the digits' side bearings) and two along (the descent of the cell).
  EXPECT_NEAR(rect.left + rect.right, ink.left + ink.right, 2);
  EXPECT_NEAR(rect.top + rect.bottom, ink.top + ink.bottom, 4);
  const Size size = measure.measure("8008");
  EXPECT_LE(ink.width(), size.widthPx);
  EXPECT_LE(ink.height(), size.heightPx);
  EXPECT_GT(ink.width() * 2, size.widthPx);
}

TEST_F(FramePainterTest, CentresTextsOfAnyLengthAndSizeAlike) {
  for (const int points : {6, 12, 24}) {
    const auto scaleFont = createDefaultScaleFont();
    Microsoft::WRL::ComPtr<IFont> settings;
    ASSERT_EQ(S_OK, scaleFont.As(&settings));
    ASSERT_EQ(S_OK, settings->put_Size(CY{.int64 = points * 10000LL}));
    const FontHandle font = createScaleFont(scaleFont.Get());
    ASSERT_TRUE(font);
    for (const char* text : {"8", "80", "203", "8008", "22050"}) {
      const Rect rect{3, 5, 117, 75};
      ASSERT_TRUE(painter.clear(white));
      ASSERT_TRUE(painter.draw(std::vector<TextRun>{{text, rect, red}}, font.get()));
      const Rect ink = inkBox(white);
      EXPECT_NEAR(rect.left + rect.right, ink.left + ink.right, 3) << text << ", " << points << " points";
    }
  }
}

TEST_F(FramePainterTest, RunsATextOverARectangleThatIsTooNarrowOnBothSides) {
  const FontHandle font = createScaleFont(createDefaultScaleFont().Get());
  ASSERT_TRUE(font);
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(std::vector<TextRun>{{"22050", {58, 20, 62, 40}, red}}, font.get()));
  const Rect ink = inkBox(white);
  EXPECT_LT(ink.left, 55);
  EXPECT_GT(ink.right, 65);
  EXPECT_LE(ink.height(), 20);  // one line
}

TEST_F(FramePainterTest, DrawsNoTextWithoutAFont) {
  ASSERT_TRUE(painter.clear(white));
  EXPECT_TRUE(painter.draw(std::vector<TextRun>{{"8008", {0, 0, 100, 50}, red}}, nullptr));
  EXPECT_TRUE(inkBox(white).isEmpty());
}

}  // namespace
}  // namespace av
