#include "type2/segments.h"

#include "support/meter_picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace av::type2 {
namespace {

constexpr Argb back = 0xFF010203;
constexpr Argb low = 0xFF00FF00;
constexpr Argb mid = 0xFFFFFF00;
constexpr Argb high = 0xFFFF0000;

class MeterSegments : public testing::Test {
 protected:
  MeterSegments() { settings.backColor = back; }

  /// A bar of `segments` segments.
  SegmentColumn columnOf(int segments) {
    const int inner = segments * (settings.spotHeightPx + settings.spotIntervalPx) - settings.spotIntervalPx;
    SegmentColumn column;
    fillSegmentColumn(column, settings, computeGeometry(settings, 3, {0, 0, 50, inner + 2}), {low, mid, high});
    return column;
  }

  MeterSettings settings;
};

TEST_F(MeterSegments, OfAHundredHaveTheirZonesAtSixtyAndEightyPercent) {
  const auto column = columnOf(100);
  ASSERT_EQ(column.size(), 299u);
  EXPECT_EQ(std::ranges::count(column, low), 2 * 60);
  EXPECT_EQ(std::ranges::count(column, mid), 2 * 20);
  EXPECT_EQ(std::ranges::count(column, high), 2 * 20);
  EXPECT_EQ(std::ranges::count(column, back), 99);
  EXPECT_EQ(SegmentColumn(column.end() - 5, column.end()), (SegmentColumn{low, low, back, low, low}));
  EXPECT_EQ(SegmentColumn(column.begin(), column.begin() + 5), (SegmentColumn{high, high, back, high, high}));
}

TEST_F(MeterSegments, ChangeColourWhereTheirBottomEdgePassesTheLimit) {
  settings.spotHeightPx = 10;
  settings.spotIntervalPx = 0;
  // h = 100: bottom edges 100, 90, ... 10; limits at 40 and 20, of which the edge itself belongs to the zone above.
  const auto column = columnOf(10);
  for (int row = 0; row < 100; ++row) {
    const int bottom = row / 10 * 10 + 10;
    EXPECT_EQ(column[static_cast<std::size_t>(row)], bottom > 40 ? low : bottom > 20 ? mid : high) << row;
  }
}

TEST_F(MeterSegments, OfMirroredBarsAreTheSameAboveAndBelow) {
  settings.alignmentX = 1;
  for (const int segments : {1, 2, 9, 10}) {
    auto column = columnOf(segments);
    auto upsideDown = column;
    std::ranges::reverse(upsideDown);
    EXPECT_EQ(column, upsideDown) << segments;
    EXPECT_EQ(std::ranges::count(column, back), segments - 1) << segments;
  }
  // The limits count from the full height, so of the upper half's 50 % the lowest 10 are low: 40 % and 20 % of 299.
  const auto column = columnOf(100);
  EXPECT_EQ(std::ranges::count(column, low), 2 * 2 * 10);
  EXPECT_EQ(std::ranges::count(column, mid), 2 * 2 * 20);
  EXPECT_EQ(std::ranges::count(column, high), 2 * 2 * 20);
}

TEST_F(MeterSegments, WithGradientsRunFromColourToColourOverAThirdOfEitherZone) {
  settings.lineType = 1;
  settings.spotHeightPx = 1;
  settings.spotIntervalPx = 0;
  // h = 100: solid low above 80, gradient to 34, solid mid to 27, gradient to 7 (100 − 80 − 2·20/3), solid high.
  const auto column = columnOf(100);
  for (int row = 80; row < 100; ++row) EXPECT_EQ(column[static_cast<std::size_t>(row)], low) << row;
  for (int row = 34; row < 79; ++row) {
    const Argb here = column[static_cast<std::size_t>(row)];
    EXPECT_EQ(here & 0xFF00FFFF, 0xFF00FF00u) << row;  // only the red rises
    EXPECT_GT(here, column[static_cast<std::size_t>(row) + 1]) << row;
  }
  EXPECT_EQ(column[33], mid);
  EXPECT_EQ(column[27], mid);
  for (int row = 7; row < 26; ++row)
    EXPECT_LT(column[static_cast<std::size_t>(row)], column[static_cast<std::size_t>(row) + 1]);
  for (int row = 0; row <= 7; ++row) EXPECT_EQ(column[static_cast<std::size_t>(row)], high) << row;
}

TEST_F(MeterSegments, WithoutAWayForAGradientHaveItsEndColour) {
  settings.lineType = 1;
  settings.spotHeightPx = 5;
  settings.spotIntervalPx = 0;
  settings.midPointPercent = settings.highPointPercent = 0;
  const auto all = columnOf(20);
  // Nothing below the limits: everything from the bottom up is on the way from mid to high.
  EXPECT_EQ(std::ranges::count(all, low), 0);
  settings.midPointPercent = settings.highPointPercent = 100;
  EXPECT_EQ(std::ranges::count(columnOf(20), high), 0);
}

TEST_F(MeterSegments, AreThoseOfTheLiteralImageForAnySettings) {
  std::mt19937 random(12);
  const int modes[] = {0, 1, 2, 3, 8, 9, 10, 11};
  for (int run = 0; run < 4000; ++run) {
    const int mode = modes[random() % 8];
    settings.lineType = mode & 7;
    settings.alignmentX = mode / 8;
    settings.spotHeightPx = static_cast<int>(random() % 12);
    settings.spotIntervalPx = static_cast<int>(random() % 12);
    settings.midPointPercent = static_cast<int>(random() % 101);
    settings.highPointPercent = static_cast<int>(random() % 101);
    const ZoneColours zones{0xFF000000 | (static_cast<Argb>(random()) & 0xFFFFFF),
                            0xFF000000 | (static_cast<Argb>(random()) & 0xFFFFFF),
                            0xFF000000 | (static_cast<Argb>(random()) & 0xFFFFFF)};
    const auto geometry = computeGeometry(settings, 3, {0, 0, 50, static_cast<int>(random() % 300)});
    SegmentColumn column;
    fillSegmentColumn(column, settings, geometry, zones);
    if (!geometry.hasBars()) {
      ASSERT_TRUE(column.empty());
      continue;
    }
    const auto image = test::segmentImage(settings, mode, 1, geometry.imageHeightPx, zones.low, zones.mid, zones.high);
    ASSERT_EQ(column.size(), static_cast<std::size_t>(geometry.imageHeightPx));
    for (int row = 0; row < geometry.imageHeightPx; ++row)
      ASSERT_EQ(column[static_cast<std::size_t>(row)], image.at(0, row)) << "mode " << mode << ", row " << row;
  }
}

TEST_F(MeterSegments, AreNoneInGraphsAndUnknownModes) {
  for (const int type : {4, 5, 6, 7, 12, 13, 14, 15, 99, -1}) {
    settings.lineType = type;
    EXPECT_TRUE(columnOf(10).empty()) << type;
  }
}

TEST_F(MeterSegments, ComeInTheColoursOfLitAndUnlitLines) {
  SegmentColumns columns;
  fillSegmentColumns(columns, settings, computeGeometry(settings, 3, {0, 0, 50, 101}));
  EXPECT_EQ(columns[unlitColumn].back(), 0xFF005500);
  EXPECT_EQ(columns[unlitColumn].front(), 0xFF550000);
  EXPECT_EQ(columns[litColumn].back(), 0xFF00FF00);
  EXPECT_EQ(columns[litColumn].front(), 0xFFFF0000);
  EXPECT_EQ(std::ranges::count(columns.unlit, 0xFF555500u), std::ranges::count(columns.lit, 0xFFFFFF00u));
}

TEST_F(MeterSegments, RefillTheirMemory) {
  SegmentColumns columns;
  const auto geometry = computeGeometry(settings, 3, {0, 0, 50, 101});
  fillSegmentColumns(columns, settings, geometry);
  const Argb* const before = columns.lit.data();
  fillSegmentColumns(columns, settings, geometry);
  EXPECT_EQ(columns.lit.data(), before);
}

}  // namespace
}  // namespace av::type2
