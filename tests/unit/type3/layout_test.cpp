#include "type3/layout.h"

#include "support/made_up_font.h"

#include <gtest/gtest.h>

#include <limits>

namespace av::type3 {
namespace {

constexpr int huge = std::numeric_limits<std::int32_t>::max();

TEST(AnalyserLayout, GivesEachScaleAStripAsWideAsItsTextsNeed) {
  const test::MadeUpFont font(10);
  const AnalyserSettings settings;
  const AnalyserLayout layout = computeLayout(settings, {400, 200}, 10, font);
  EXPECT_EQ(layout.xStripHeightPx, 16);
  EXPECT_EQ(layout.yStripWidthPx, 21 + 6);  // "-100": 0.3 + 0.3 + 3 · 0.5 of the text height
  EXPECT_EQ(layout.areaWidthPx, 400 - 27);
  EXPECT_EQ(layout.areaHeightPx, 200 - 16);
  EXPECT_EQ(layout.textHeightPx, 10);
}

TEST(AnalyserLayout, HasNoScalesInAFontLargerThanAnyScreen) {
  struct LargestFont final : TextMeasure {
    Size measure(std::string_view) const override { return {largestTextPx, largestTextPx}; }
  };
  for (const int textHeight : {largestTextPx, huge - 5, huge}) {
    const AnalyserLayout layout = computeLayout({}, {32767, 32767}, textHeight, LargestFont());
    EXPECT_EQ(layout.areaWidthPx, 32767) << textHeight;
    EXPECT_EQ(layout.areaHeightPx, 32767) << textHeight;
  }
}

TEST(AnalyserLayout, HasTheWholeControlForColumnsWithoutScales) {
  const test::MadeUpFont font(10);
  AnalyserSettings settings;
  settings.scaleXVisible = 1;  // not true
  AnalyserLayout layout = computeLayout(settings, {400, 200}, 10, font);
  EXPECT_EQ(layout.areaHeightPx, 200);
  EXPECT_EQ(layout.xStripHeightPx, 0);
  settings.scaleYVisible = 0;
  layout = computeLayout(settings, {400, 200}, 10, font);
  EXPECT_EQ(layout.areaWidthPx, 400);
  EXPECT_EQ(layout.yStripWidthPx, 0);
}

TEST(AnalyserLayout, WithoutAFontHasNoStrips) {
  const test::MadeUpFont font(0);
  EXPECT_EQ(computeLayout({}, {400, 200}, 0, font).areaHeightPx, 200);
  EXPECT_EQ(computeLayout({}, {400, 200}, -1, font).areaWidthPx, 400);
}

TEST(AnalyserLayout, GivesUpAStripThatWouldLeaveLessThanItself) {
  const test::MadeUpFont font(10);
  EXPECT_EQ(computeLayout({}, {54, 32}, 10, font), (AnalyserLayout{{54, 32}, 10, 16, 27, 27, 16}));
  EXPECT_EQ(computeLayout({}, {53, 31}, 10, font), (AnalyserLayout{{53, 31}, 10, 0, 0, 53, 31}));
  EXPECT_EQ(computeLayout({}, {-3, -1}, 10, font), (AnalyserLayout{{0, 0}, 10, 0, 0, 0, 0}));
}

TEST(AnalyserColumns, AreAsWideAsTheWholeDivisionLeavesThem) {
  AnalyserSettings settings;
  EXPECT_EQ(columnGeometry(settings, 436), (ColumnGeometry{60, 7, 5, 418, 9}));
  EXPECT_EQ(columnGeometry(settings, 420), (ColumnGeometry{60, 7, 5, 418, 1}));
  settings.lineIntervalPx = 0;
  EXPECT_EQ(columnGeometry(settings, 436), (ColumnGeometry{60, 7, 7, 420, 8}));
  settings.lineCount = 4;
  EXPECT_EQ(columnGeometry(settings, 3), (ColumnGeometry{4, 0, 0, 0, 1}));
}

TEST(AnalyserColumns, HaveNoRoomWhereTheIntervalTakesIt) {
  AnalyserSettings settings;
  EXPECT_EQ(columnGeometry(settings, 179).widthPx, 0);  // 2 pixels a column, all of them gap
  EXPECT_EQ(columnGeometry(settings, 180).widthPx, 1);
  settings.lineIntervalPx = huge;
  const ColumnGeometry geometry = columnGeometry(settings, 400);
  EXPECT_LT(geometry.widthPx, 0);
  EXPECT_LT(geometry.blockWidthPx, 0);
}

}  // namespace
}  // namespace av::type3
