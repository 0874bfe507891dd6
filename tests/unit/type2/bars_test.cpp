#include "type2/bars.h"

#include "support/meter_picture.h"
#include "type2/segments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace av::type2 {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Three lines of 10 × 30 segments of 2 in a control of 36 × 92 pixels.
class MeterBars : public testing::Test {
 protected:
  MeterBars() { settings.tickVisible = 0; }

  void layout(int width, int height) {
    geometry = computeGeometry(settings, static_cast<int>(lines.size()), {0, 0, width, height});
  }

  std::vector<ColumnFill> bars() {
    std::vector<ColumnFill> segments;
    addBars(segments, settings, *drawMode(settings), geometry, lines);
    return segments;
  }
  /// What lights of the first line, from top to bottom, the bar's top being 0; 0 and 0 for nothing.
  std::pair<int, int> litRows(double level) {
    lines[0].value = level;
    for (const ColumnFill& fill : bars()) {
      if (fill.column == litColumn && fill.rect.left == geometry.barsOrigin.x)
        return {fill.rect.top - geometry.barsOrigin.y, fill.rect.bottom - geometry.barsOrigin.y};
    }
    return {0, 0};
  }
  test::PixelGrid painted(int width, int height) {
    SegmentColumns columns;
    fillSegmentColumns(columns, settings, geometry);
    test::PixelGrid picture(width, height, settings.backColor);
    for (const ColumnFill& fill : bars()) {
      for (int y = fill.rect.top; y < fill.rect.bottom; ++y)
        picture.fill(fill.rect.left, y, fill.rect.width(), 1,
                     columns[fill.column].at(static_cast<std::size_t>(fill.firstRow + y - fill.rect.top)));
    }
    return picture;
  }

  MeterSettings settings;
  std::vector<LineInfo> lines = std::vector<LineInfo>(3);
  MeterGeometry geometry = computeGeometry({}, 3, {0, 0, 36, 92});
};

TEST_F(MeterBars, ShowTheWholeUnlitBarAtTheFloorAndTheWholeLitOneAtTheTop) {
  ASSERT_EQ(geometry.imageHeightPx, 89);
  ASSERT_EQ(geometry.barHeightPx(), 90);
  const auto empty = bars();
  ASSERT_EQ(empty.size(), 3u);
  for (int i = 0; i < 3; ++i) {
    const int left = geometry.barsOrigin.x + i * 11;
    EXPECT_EQ(empty[static_cast<std::size_t>(i)], (ColumnFill{unlitColumn, 0, {left, 1, left + 10, 90}}));
  }
  for (LineInfo& line : lines) line.value = 0.0;
  const auto full = bars();
  ASSERT_EQ(full.size(), 6u);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(full[static_cast<std::size_t>(2 * i)].column, unlitColumn);
    EXPECT_EQ(full[static_cast<std::size_t>(2 * i + 1)].column, litColumn);
    EXPECT_EQ(full[static_cast<std::size_t>(2 * i + 1)].rect, full[static_cast<std::size_t>(2 * i)].rect);
  }
}

TEST_F(MeterBars, SnapLevelsToWholeSegments) {
  // y = 90 − (level + 91)·90 ÷ 91, truncated, and one more for the gap: whole pitches of 3 from there down are lit.
  EXPECT_EQ(litRows(-45.5), (std::pair{45, 89}));                         // y = 45
  EXPECT_EQ(litRows(-91.0 + 91.0 / 90), (std::pair{0, 0}));               // y = 89: the last pitch's gap
  EXPECT_EQ(litRows(-91.0 + 2 * 91.0 / 90 + 1e-9), (std::pair{87, 89}));  // y just below 88
  EXPECT_EQ(litRows(-1e-9), (std::pair{0, 89}));
  EXPECT_EQ(litRows(-91.0 * 2 / 90 - 1e-9), (std::pair{3, 89}));  // y just above 2 is row 3
  EXPECT_EQ(litRows(-91.0 * 2 / 90 + 1e-9), (std::pair{0, 89}));
}

TEST_F(MeterBars, StopAtFullScaleAndLightNothingWithoutANumber) {
  for (const double level : {0.1, 6.0, 1e9, std::numeric_limits<double>::infinity()})
    EXPECT_EQ(litRows(level), (std::pair{0, 89}));
  for (const double level : {nan, -91.0, -92.0, -1e9, -std::numeric_limits<double>::infinity()})
    EXPECT_EQ(litRows(level), (std::pair{0, 0}));
}

TEST_F(MeterBars, DrawTheTickAsOneSegmentAtThePeak) {
  settings.tickVisible = 1;
  lines[1].peak = -45.5;
  const auto segments = bars();
  ASSERT_EQ(segments.size(), 4u);
  const int left = geometry.barsOrigin.x + 11;
  EXPECT_EQ(segments[2], (ColumnFill{litColumn, 45, {left, 46, left + 10, 48}}));
  for (const int visible : {-1, 2}) {
    settings.tickVisible = static_cast<std::int16_t>(visible);
    EXPECT_EQ(bars().size(), 4u);
  }
  settings.tickVisible = 0;
  EXPECT_EQ(bars().size(), 3u);
}

TEST_F(MeterBars, OfTypesTwoAndThreeAreASingleSegmentAtTheLevel) {
  for (const int type : {2, 3}) {
    settings.lineType = type;
    EXPECT_EQ(litRows(-45.5), (std::pair{45, 47}));
    EXPECT_EQ(litRows(0.0), (std::pair{0, 2}));
    EXPECT_EQ(litRows(-91.0), (std::pair{0, 0}));
  }
}

TEST_F(MeterBars, MirroredGrowFromTheCentreBothWays) {
  settings.alignmentX = 1;
  // 30 segments, 15 in the upper half: its lowest ends at row 44, its mirror begins at 45.
  EXPECT_EQ(litRows(0.0), (std::pair{0, 89}));
  EXPECT_EQ(litRows(-91.0), (std::pair{0, 0}));
  EXPECT_EQ(litRows(-91.0 + 91.0 * 2 / 44), (std::pair{42, 47}));  // one segment either side: y = 42
  EXPECT_EQ(litRows(-45.5), (std::pair{21, 68}));                  // y = 22, row 21
}

TEST_F(MeterBars, MirroredWithAnOddNumberOfSegmentsHaveOneInTheCentre) {
  settings.alignmentX = 1;
  layout(36, 89);
  ASSERT_EQ(geometry.imageHeightPx, 86);  // 29 segments
  EXPECT_EQ(litRows(-91.0), (std::pair{0, 0}));
  EXPECT_EQ(litRows(-90.9), (std::pair{42, 44}));
  EXPECT_EQ(litRows(-91.0 + 91.0 * 2 / 44), (std::pair{42, 44}));
  settings.tickVisible = -1;
  lines[0].value = -91.0;
  lines[0].peak = -91.0 + 91.0 * 2 / 44;
  EXPECT_EQ(bars().size(), 3u + 1u);  // the centre segment is its own mirror
  lines[0].peak = -45.5;
  const auto segments = bars();
  ASSERT_EQ(segments.size(), 3u + 2u);
  EXPECT_EQ(segments[1].rect, (Rect{geometry.barsOrigin.x, 1 + 21, geometry.barsOrigin.x + 10, 1 + 23}));
  EXPECT_EQ(segments[2].rect, (Rect{geometry.barsOrigin.x, 1 + 63, geometry.barsOrigin.x + 10, 1 + 65}));
}

TEST_F(MeterBars, AreNoneWithoutRoom) {
  layout(3, 92);
  EXPECT_TRUE(bars().empty());
  layout(36, 3);
  EXPECT_TRUE(bars().empty());
}

TEST_F(MeterBars, DrawNoMoreLinesThanThereAre) {
  layout(36, 92);
  lines.resize(2);
  EXPECT_EQ(bars().size(), 2u);
  lines.resize(9);
  EXPECT_EQ(bars().size(), 3u);
}

TEST_F(MeterBars, ArePixelForPixelThoseOfCopiedImages) {
  std::mt19937 random(77);
  const int modes[] = {0, 1, 2, 3, 8, 9, 10, 11};
  for (int run = 0; run < 3000; ++run) {
    const int mode = modes[random() % 8];
    settings.lineType = random() % 2 ? mode & 7 : mode;
    settings.alignmentX = settings.lineType == mode ? 0 : mode / 8;
    settings.lineInterval = static_cast<int>(random() % 6);
    settings.spotHeightPx = static_cast<int>(random() % 7);
    settings.spotIntervalPx = static_cast<int>(random() % 7);
    settings.borderWidthPx = static_cast<int>(random() % 8) - 2;
    settings.autoSize = static_cast<std::int16_t>(random() % 2);
    settings.tickVisible = static_cast<std::int16_t>(random() % 3);
    settings.midPointPercent = static_cast<int>(random() % 101);
    settings.highPointPercent = static_cast<int>(random() % 101);
    lines.assign(3 + random() % 8, {});
    for (LineInfo& line : lines) {
      const double special[] = {nan, -91.0, 0.0, 3.5, -200.0, -45.5};
      line.value = random() % 4 ? -static_cast<double>(random() % 91000) / 1000 : special[random() % 6];
      line.peak = random() % 4 ? -static_cast<double>(random() % 95000) / 1000 : special[1 + random() % 5];
    }
    const int width = 1 + static_cast<int>(random() % 120);
    const int height = 1 + static_cast<int>(random() % 120);
    layout(width, height);
    ASSERT_EQ(painted(width, height), test::meterBars(settings, lines, width, height))
        << "mode " << mode << ", " << width << " x " << height << ", run " << run;
  }
}

}  // namespace
}  // namespace av::type2
