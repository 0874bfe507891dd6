#include "type2/frame.h"

#include "type2/segments.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace av::type2 {
namespace {

class MeterFrameTest : public testing::Test {
 protected:
  void build(bool hasData = true, int width = 200, int height = 100) {
    const auto geometry = computeGeometry(settings, static_cast<int>(lines.size()), {0, 0, width, height});
    buildFrame(frame, settings, geometry, lines, hasData);
  }

  MeterSettings settings;
  std::vector<LineInfo> lines = std::vector<LineInfo>(20);
  MeterFrame frame;
};

TEST_F(MeterFrameTest, HasBackgroundAndBorderOnlyWithoutData) {
  settings.backColor = 0xFF123456;
  settings.borderType = 1;
  settings.borderColor = 0xFF654321;
  for (const int type : {0, 4}) {
    settings.lineType = type;
    build(false);
    EXPECT_EQ(frame.client, (Rect{0, 0, 200, 100}));
    EXPECT_EQ(frame.background, 0xFF123456);
    ASSERT_EQ(frame.border.lines.size(), 1u);
    EXPECT_EQ(frame.border.lines[0].colour, 0xFF654321);
    EXPECT_TRUE(frame.segments.empty());
    EXPECT_TRUE(frame.graphs.lines.empty());
  }
}

TEST_F(MeterFrameTest, HasBarsOrAGraph) {
  build();
  EXPECT_EQ(frame.segments.size(), 20u);
  EXPECT_TRUE(frame.graphs.lines.empty());
  settings.lineType = 4;
  build();
  EXPECT_TRUE(frame.segments.empty());
  EXPECT_EQ(frame.graphs.lines.size(), 2u);
}

TEST_F(MeterFrameTest, HasNothingButTheBorderInModesThatDoNotExist) {
  settings.borderType = 2;
  for (const int type : {7, 15, 16, -1}) {
    settings.lineType = type;
    build();
    EXPECT_EQ(frame.border.lines.size(), 2u);
    EXPECT_TRUE(frame.segments.empty());
    EXPECT_TRUE(frame.graphs.lines.empty());
  }
}

TEST_F(MeterFrameTest, BevelsTheBorderInTwoFixedShadesWhateverItsColourAndWidth) {
  settings.borderColor = 0xFF445566;
  settings.borderWidthPx = 9;
  for (const auto& [type, first, second] : {std::tuple{2, 0xFF140000, 0xFF100000}, {3, 0xFF100000, 0xFF140000}}) {
    settings.borderType = type;
    build();
    ASSERT_EQ(frame.border.lines.size(), 2u);
    EXPECT_EQ(frame.border.lines[0], (Polyline{0, 3, first, 1}));
    EXPECT_EQ(frame.border.lines[1], (Polyline{3, 3, second, 1}));
    EXPECT_EQ(frame.border.points, (std::vector<Point>{{199, 0}, {199, 99}, {0, 99}, {0, 99}, {0, 0}, {199, 0}}));
  }
  for (const int type : {0, 4, -1}) {
    settings.borderType = type;
    build();
    EXPECT_TRUE(frame.border.lines.empty()) << type;
  }
}

TEST_F(MeterFrameTest, RefillsItsVectorsInPlace) {
  settings.borderType = 1;
  build();
  settings.lineType = 5;
  build();
  settings.lineType = 0;
  build();
  const void* const before[] = {frame.border.points.data(), frame.segments.data(), frame.graphs.points.data()};
  build();
  settings.lineType = 5;
  build();
  EXPECT_EQ(before[0], frame.border.points.data());
  EXPECT_EQ(before[1], frame.segments.data());
  EXPECT_EQ(before[2], frame.graphs.points.data());
}

// Nothing to compare with here: the sanitizers watch that no setting leads to undefined arithmetic, and every fill stays
// within its column.
TEST_F(MeterFrameTest, SurvivesAbsurdSettingsAndLevels) {
  std::mt19937 random(41);
  const int highest = std::numeric_limits<int>::max();
  const int lowest = std::numeric_limits<int>::min();
  const int limits[] = {0, 1, 2, 3, 5, 10, 50, 1000, highest, highest - 1};
  const int signedLimits[] = {0, 1, -1, 2, -5, 40, highest, lowest, -40000, 40000};
  const double levels[] = {-91.0,
                           0.0,
                           -45.0,
                           1e300,
                           -1e300,
                           4.9e-324,
                           std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN(),
                           -90.999};
  for (int run = 0; run < 4000; ++run) {
    settings.lineType = random() % 8 ? static_cast<int>(random() % 16) : signedLimits[random() % 10];
    settings.alignmentX = random() % 8 ? static_cast<int>(random() % 2) : signedLimits[random() % 10];
    settings.lineInterval = limits[random() % 10];
    settings.spotHeightPx = limits[random() % 10];
    settings.spotIntervalPx = limits[random() % 10];
    settings.borderWidthPx = signedLimits[random() % 10];
    settings.borderType = static_cast<int>(random() % 5);
    settings.autoSize = static_cast<std::int16_t>(random() % 2);
    settings.midPointPercent = static_cast<int>(random() % 101);
    settings.highPointPercent = static_cast<int>(random() % 101);
    lines.assign(random() % 60, {});
    for (LineInfo& line : lines) {
      line.value = levels[random() % 10];
      line.peak = levels[random() % 9];
    }
    const int width = static_cast<int>(random() % 900);
    const int height = static_cast<int>(random() % 500);
    const auto geometry = computeGeometry(settings, static_cast<int>(lines.size()), {0, 0, width, height});
    buildFrame(frame, settings, geometry, lines, true);
    SegmentColumns columns;
    fillSegmentColumns(columns, settings, geometry);
    for (const ColumnFill& fill : frame.segments) {
      ASSERT_GE(fill.firstRow, 0);
      ASSERT_LE(static_cast<std::size_t>(fill.firstRow + fill.rect.height()), columns[fill.column].size());
      ASSERT_GT(fill.rect.width(), 0);
    }
    for (const Point& point : frame.graphs.points) {
      ASSERT_GE(point.y, geometry.inner.top);
      ASSERT_LE(point.y, geometry.inner.bottom);
    }
  }
}

}  // namespace
}  // namespace av::type2
