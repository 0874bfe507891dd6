#include "type2/geometry.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace av::type2 {
namespace {

constexpr int highest = std::numeric_limits<int>::max();
constexpr int lowest = std::numeric_limits<int>::min();

MeterGeometry geometryOf(const MeterSettings& settings, int lineCount, int width, int height) {
  return computeGeometry(settings, lineCount, {0, 0, width, height});
}

TEST(MeterGeometry, OfTheDefaultsFillsTheInnerAreaWithWholeLinesAndSegments) {
  // 398 − 99 gaps = 299 pixels for 100 lines: 2 each. 198 + 1 is 66 pitches of 3: 65 gaps between 66 segments.
  const auto geometry = geometryOf({}, 100, 400, 200);
  EXPECT_EQ(geometry.inner, (Rect{1, 1, 399, 199}));
  EXPECT_EQ(geometry.lineWidthPx, 2);
  EXPECT_EQ(geometry.lineStepPx, 3);
  EXPECT_EQ(geometry.pitchPx, 3);
  EXPECT_EQ(geometry.imageHeightPx, 66 * 3 - 1);
  EXPECT_EQ(geometry.barHeightPx(), 198);
  // 100 lines take 299 pixels, so 101 are left over: (400 + 1 − 300) ÷ 2; of the height one pixel is left over.
  EXPECT_EQ(geometry.barsOrigin, (Point{50, 1}));
  EXPECT_DOUBLE_EQ(geometry.graphStepPx(), 398.0 / 99);
}

TEST(MeterGeometry, SharesWhatIsLeftOfTheHeightAboveAndBelow) {
  MeterSettings settings;
  settings.spotHeightPx = 7;
  settings.spotIntervalPx = 3;
  const auto geometry = geometryOf(settings, 3, 100, 100);
  EXPECT_EQ(geometry.imageHeightPx, 97);  // (98 + 3) ÷ 10 is 10
  EXPECT_EQ(geometry.barsOrigin.y, 1);
  EXPECT_EQ(geometryOf(settings, 3, 100, 104).barsOrigin.y, 1 + (102 - 97) / 2);
}

TEST(MeterGeometry, StartsAtTheInnerCornerWithAutoSizeAndForTypesFromFourOn) {
  MeterSettings settings;
  settings.borderWidthPx = 4;
  EXPECT_EQ(geometryOf(settings, 10, 205, 104).barsOrigin, (Point{8, 6}));  // (206 − 190) ÷ 2; 94 − 92 rows left
  settings.lineType = 4;
  EXPECT_EQ(geometryOf(settings, 10, 205, 104).barsOrigin, (Point{5, 5}));
  settings.lineType = 8;
  EXPECT_EQ(geometryOf(settings, 10, 205, 104).barsOrigin, (Point{5, 5}));
  settings.lineType = 3;
  settings.autoSize = -1;
  EXPECT_EQ(geometryOf(settings, 10, 205, 104).barsOrigin, (Point{5, 5}));
}

TEST(MeterGeometry, CountsFromTheClientsCorner) {
  MeterSettings settings;
  const auto here = computeGeometry(settings, 10, {0, 0, 205, 104});
  const auto there = computeGeometry(settings, 10, {40, 30, 245, 134});
  EXPECT_EQ(there.inner, (Rect{41, 31, 244, 133}));
  EXPECT_EQ(there.lineWidthPx, here.lineWidthPx);
  EXPECT_EQ(there.barsOrigin, (Point{here.barsOrigin.x + 40, here.barsOrigin.y + 30}));
}

TEST(MeterGeometry, HasAPitchOfOneForSegmentsOfNoHeightAndNoGap) {
  MeterSettings settings;
  settings.spotHeightPx = settings.spotIntervalPx = 0;
  const auto geometry = geometryOf(settings, 10, 100, 50);
  EXPECT_EQ(geometry.pitchPx, 1);
  EXPECT_EQ(geometry.imageHeightPx, 48);
}

TEST(MeterGeometry, HasAtLeastThreeLines) {
  for (const int count : {lowest, -1, 0, 1, 2, 3})
    EXPECT_EQ(geometryOf({}, count, 100, 50), geometryOf({}, 3, 100, 50));
}

TEST(MeterGeometry, HasNoBarsWhereThereIsNoRoom) {
  EXPECT_FALSE(geometryOf({}, 100, 200, 100).hasBars());  // 198 − 99 pixels for 100 lines
  EXPECT_TRUE(geometryOf({}, 99, 200, 100).hasBars());
  EXPECT_FALSE(geometryOf({}, 3, 100, 3).hasBars());  // no whole segment
  EXPECT_TRUE(geometryOf({}, 3, 100, 4).hasBars());
  EXPECT_FALSE(geometryOf({}, 3, 0, 0).hasBars());
}

TEST(MeterGeometry, SurvivesEverySettingAndNeverGrowsBeyondReason) {
  std::mt19937 random(5);
  const int limits[] = {0, 1, 2, 3, 7, 100, 32766, 32767, 32768, highest - 1, highest};
  const int signedLimits[] = {0, 1, -1, -2, 5, 32767, -32768, highest, lowest, lowest + 1, 4};
  for (int run = 0; run < 20000; ++run) {
    MeterSettings settings;
    settings.lineInterval = limits[random() % 11];
    settings.spotHeightPx = limits[random() % 11];
    settings.spotIntervalPx = limits[random() % 11];
    settings.borderWidthPx = signedLimits[random() % 11];
    settings.lineType = signedLimits[random() % 11];
    settings.alignmentX = signedLimits[random() % 11];
    settings.autoSize = static_cast<std::int16_t>(random() % 2);
    const int width = static_cast<int>(random() % 32768);
    const int height = static_cast<int>(random() % 32768);
    const int count = random() % 2 ? static_cast<int>(random() % 200) : static_cast<int>(random() % 48001);
    const auto geometry = geometryOf(settings, count, width, height);
    EXPECT_LE(geometry.imageHeightPx, 3 * 32768);
    EXPECT_LE(geometry.lineWidthPx, 32768);
    EXPECT_GE(geometry.pitchPx, 1);
    const Size snapped = snappedSize(settings, count, {width, height});
    EXPECT_GE(snapped.widthPx, -2 * 32767);
    EXPECT_GE(snapped.heightPx, -2 * 32767);
  }
}

TEST(MeterAutoSize, IsForLineTypesBelowFour) {
  MeterSettings settings;
  for (const int type : {-1, 0, 3, 4, 8}) {
    settings.lineType = type;
    settings.autoSize = 0;
    EXPECT_FALSE(snapsItsSize(settings));
    for (const int on : {1, -1}) {
      settings.autoSize = static_cast<std::int16_t>(on);
      EXPECT_EQ(snapsItsSize(settings), type < 4) << type;
    }
  }
}

TEST(MeterAutoSize, LeavesNothingOverBesideWholeLinesAndSegments) {
  MeterSettings settings;
  settings.autoSize = -1;
  // 100 lines of 2 with gaps of 1 and the margins; 66 segments.
  EXPECT_EQ(snappedSize(settings, 100, {400, 200}), (Size{100 * 3 - 1 + 2, 66 * 3 - 1 + 2}));
  settings.borderWidthPx = 3;
  EXPECT_EQ(snappedSize(settings, 10, {110, 61}), (Size{10 * 10 - 1 + 8, 18 * 3 - 1 + 8}));
}

TEST(MeterAutoSize, HasAtLeastFiveSegmentsAndLinesOfAPixel) {
  EXPECT_EQ(snappedSize({}, 100, {50, 10}), (Size{100 * 2 - 1 + 2, 5 * 3 - 1 + 2}));
  EXPECT_EQ(snappedSize({}, 3, {0, 0}), (Size{3 * 2 - 1 + 2, 16}));
}

TEST(MeterAutoSize, HasASegmentInTheCentreOfMirroredBars) {
  MeterSettings settings;
  for (const int alignment : {1, -1, 7}) {
    settings.alignmentX = alignment;
    EXPECT_EQ(snappedSize(settings, 3, {100, 200}).heightPx, 65 * 3 - 1 + 2);
    EXPECT_EQ(snappedSize(settings, 3, {100, 197}).heightPx, 65 * 3 - 1 + 2);
    EXPECT_EQ(snappedSize(settings, 3, {100, 19}).heightPx, 5 * 3 - 1 + 2);  // six would fit
  }
}

TEST(MeterAutoSize, OfASnappedSizeIsThatSize) {
  std::mt19937 random(6);
  for (int run = 0; run < 5000; ++run) {
    MeterSettings settings;
    settings.autoSize = -1;
    settings.lineInterval = static_cast<int>(random() % 9);
    settings.spotHeightPx = static_cast<int>(random() % 9);
    settings.spotIntervalPx = static_cast<int>(random() % 9);
    settings.borderWidthPx = static_cast<int>(random() % 30) - 3;
    settings.alignmentX = static_cast<int>(random() % 2);
    const int count = 3 + static_cast<int>(random() % 100);
    const Size size{static_cast<int>(random() % 1000), static_cast<int>(random() % 700)};
    const Size snapped = snappedSize(settings, count, size);
    EXPECT_EQ(snappedSize(settings, count, snapped), snapped);
    const auto geometry = geometryOf(settings, count, snapped.widthPx, snapped.heightPx);
    EXPECT_EQ(geometry.imageHeightPx, geometry.inner.height());
    EXPECT_EQ(count * geometry.lineStepPx - settings.lineInterval, geometry.inner.width());
  }
}

}  // namespace
}  // namespace av::type2
