#include "type2/graph.h"

#include "support/line_oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <span>
#include <utility>
#include <vector>

namespace av::type2 {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

class MeterGraph : public testing::Test {
 protected:
  MeterGraph() {
    settings.lineType = 4;
    settings.tickVisible = 0;
  }

  void build(int width, int height) {
    graphs.clear();
    geometry = computeGeometry(settings, static_cast<int>(lines.size()), {0, 0, width, height});
    addGraph(graphs, settings, *drawMode(settings), geometry, lines);
  }
  void setLevels(std::initializer_list<double> levels) {
    lines.assign(levels.size(), {});
    std::size_t i = 0;
    for (const double level : levels) lines[i++].value = level;
  }
  std::vector<Point> points(std::size_t index) {
    const auto span = graphs.pointsOf(graphs.lines.at(index));
    return {span.begin(), span.end()};
  }

  MeterSettings settings;
  std::vector<LineInfo> lines;
  MeterGeometry geometry;
  Polylines graphs;
};

TEST_F(MeterGraph, HasAPointForEveryLineFromEdgeToEdgeOfTheInnerArea) {
  setLevels({-91.0, 0.0, -45.5, -22.75});
  build(93, 193);  // inner 1 to 92 and 1 to 192: a step of 91 ÷ 3
  ASSERT_EQ(graphs.lines.size(), 1u);
  EXPECT_EQ(points(0), (std::vector<Point>{{1, 192}, {31, 1}, {61, 96}, {92, 48}}));
  EXPECT_EQ(graphs.lines[0].colour, settings.lineLowColor);
  EXPECT_EQ(graphs.lines[0].widthPx, 2);
}

TEST_F(MeterGraph, DrawsThePeaksFirstWhereTicksAreVisible) {
  setLevels({-50.0, -60.0, -70.0});
  for (LineInfo& line : lines) line.peak = -10.0;
  settings.tickVisible = 1;
  settings.lineHighColor = 0xFF778899;
  build(100, 93);
  ASSERT_EQ(graphs.lines.size(), 2u);
  EXPECT_EQ(graphs.lines[0].colour, 0xFF778899);
  EXPECT_EQ(graphs.lines[1].colour, settings.lineLowColor);
  EXPECT_EQ(points(0), (std::vector<Point>{{1, 11}, {50, 11}, {99, 11}}));
  EXPECT_EQ(points(1), (std::vector<Point>{{1, 51}, {50, 61}, {99, 71}}));
}

TEST_F(MeterGraph, IsAsWideAsASegmentIsHighAtLeastAPixelAndAtMostWhatCoversTheControl) {
  setLevels({0, 0, 0});
  for (const auto& [spotHeight, width] :
       {std::pair{0, 1}, {1, 1}, {5, 5}, {400, 400}, {401, 400}, {std::numeric_limits<int>::max(), 400}}) {
    settings.spotHeightPx = spotHeight;
    build(100, 100);
    EXPECT_EQ(graphs.lines.at(0).widthPx, width);
  }
}

TEST_F(MeterGraph, StaysInTheInnerAreaWhateverTheLevels) {
  setLevels({nan, -1e9, 7.0, std::numeric_limits<double>::infinity()});
  build(93, 193);
  EXPECT_EQ(points(0), (std::vector<Point>{{1, 192}, {31, 192}, {61, 1}, {92, 1}}));
}

TEST_F(MeterGraph, MirroredIsDrawnOnceUpwardAndOnceDownwardFromTheCentreLine) {
  settings.lineType = 12;
  settings.tickVisible = -1;
  setLevels({-91.0, 0.0, -45.5});
  for (LineInfo& line : lines) line.peak = 0.0;
  build(102, 102);
  ASSERT_EQ(graphs.lines.size(), 4u);
  EXPECT_EQ(points(0), (std::vector<Point>{{1, 1}, {51, 1}, {101, 1}}));
  EXPECT_EQ(points(1), (std::vector<Point>{{1, 51}, {51, 1}, {101, 26}}));
  EXPECT_EQ(points(2), (std::vector<Point>{{1, 101}, {51, 101}, {101, 101}}));
  EXPECT_EQ(points(3), (std::vector<Point>{{1, 51}, {51, 101}, {101, 76}}));
  EXPECT_EQ(graphs.lines[0].colour, settings.lineHighColor);
  EXPECT_EQ(graphs.lines[1].colour, settings.lineLowColor);
  EXPECT_EQ(graphs.lines[2].colour, settings.lineHighColor);
  EXPECT_EQ(graphs.lines[3].colour, settings.lineLowColor);
}

TEST_F(MeterGraph, SmoothedHasAsManyMorePointsAsThereArePixelsBetweenTwoLines) {
  setLevels({-50, -10, -70, -30, -30});
  for (const int type : {5, 6, 13, 14}) {
    settings.lineType = type;
    build(60, 100);  // (58 − 4) ÷ 5 is 10, and 1 for the gap
    ASSERT_EQ(geometry.lineStepPx, 11);
    EXPECT_EQ(graphs.lines.at(0).pointCount, 5u + 4 * 11) << type;
    build(14, 100);  // a step of 2: as without smoothing
    ASSERT_EQ(geometry.lineStepPx, 2);
    EXPECT_EQ(graphs.lines.at(0).pointCount, 5u) << type;
    build(17, 100);
    ASSERT_EQ(geometry.lineStepPx, 3);
    EXPECT_EQ(graphs.lines.at(0).pointCount, 5u + 4 * 3) << type;
  }
}

TEST_F(MeterGraph, SmoothedHasNoMorePointsThanPixelsHoweverWideTheGapsAre) {
  settings.lineType = 5;
  setLevels({-50, -10, -70});
  for (const int interval : {60, 1000, std::numeric_limits<int>::max()}) {
    settings.lineInterval = interval;
    build(100, 100);  // 98 pixels: 49 from point to point
    EXPECT_LE(graphs.lines.at(0).pointCount, 3u + 2 * 49) << interval;
  }
}

TEST_F(MeterGraph, SmoothedKeepsEveryLevelInItsPlace) {
  setLevels({-50, -10, -70, -30, -30, 0, -91});
  settings.lineType = 4;
  build(200, 300);
  const auto straight = points(0);
  settings.lineType = 5;
  build(200, 300);
  const auto smooth = points(0);
  const auto inserted = static_cast<std::size_t>(geometry.lineStepPx);
  for (std::size_t i = 0; i < straight.size(); ++i) EXPECT_EQ(smooth[i * (inserted + 1)], straight[i]);
}

TEST_F(MeterGraph, SmoothedNeverLeavesTheRangeBetweenTwoNeighboursAndTurnsOnlyAtThem) {
  std::mt19937 random(3);
  settings.lineType = 5;
  for (int run = 0; run < 300; ++run) {
    lines.assign(12, {});
    for (LineInfo& line : lines) line.value = random() % 9 ? -static_cast<double>(random() % 91) : nan;
    build(400, 600);
    const auto curve = points(0);
    const auto span = static_cast<std::size_t>(geometry.lineStepPx) + 1;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
      const bool falls = curve[i * span].y < curve[(i + 1) * span].y;
      for (std::size_t k = i * span; k < (i + 1) * span; ++k) {
        ASSERT_LT(curve[k].x, curve[k + 1].x);
        if (falls) {
          ASSERT_LE(curve[k].y, curve[k + 1].y);
        } else {
          ASSERT_GE(curve[k].y, curve[k + 1].y);
        }
      }
    }
  }
}

TEST_F(MeterGraph, SmoothedIsRoundAtPeaksWhereTheStraightOneIsSharp) {
  settings.lineType = 5;
  setLevels({-91, -1, -91});
  build(302, 302);
  const auto curve = points(0);
  const auto span = static_cast<std::size_t>(geometry.lineStepPx) + 1;
  // Flat in the middle: next to the peak the curve has lost far less than its share of the way.
  EXPECT_LE(curve[span + 5].y - curve[span].y, 2);
  EXPECT_GT(curve[span / 2].y - curve[span].y, 50);
}

TEST_F(MeterGraph, SmoothedIsAStraightLineThroughLevelsOnALine) {
  settings.lineType = 5;
  setLevels({-80, -60, -40, -20, 0});
  build(402, 402);
  const auto curve = points(0);
  for (const Point& point : curve) {
    // 401 rows from 0 dB to −91 dB, 80 dB over the 400 pixels of the width; both ends are truncated.
    const double expected = 1 + (401 - point.x) * 0.2 * 400 / 91;
    EXPECT_NEAR(point.y, expected, 2.0) << point.x;
  }
}

/// Every pixel of the first graph's polyline.
std::set<std::pair<int, int>> inkOf(std::span<const Point> points) {
  std::set<std::pair<int, int>> ink;
  test::forEachLinePixel(points, [&](Point p) { ink.insert({p.x, p.y}); });
  return ink;
}

TEST_F(MeterGraph, OfMoreLinesThanPixelsHasFourPointsAColumnAndTheSamePixels) {
  std::mt19937 random(6);
  for (const std::size_t count : {150u, 450u, 5000u, 48000u}) {
    lines.assign(count, {});
    for (LineInfo& line : lines) line.value = -static_cast<double>(random() % 9100) / 100;
    settings.lineInterval = 0;
    build(102, 202);
    const auto drawn = points(0);
    EXPECT_LE(drawn.size(), std::min<std::size_t>(count, 4 * 101));
    std::vector<Point> all;  // inner area: 1 to 101 and 1 to 201
    for (std::size_t i = 0; i < count; ++i) {
      const double step = 100.0 / static_cast<double>(count - 1);
      all.push_back({static_cast<int>(static_cast<double>(i) * step + 1),
                     static_cast<int>(201 - (lines[i].value + 91) * 200 / 91)});
    }
    EXPECT_EQ(all.front(), drawn.front());
    EXPECT_EQ(all.back(), drawn.back());
    EXPECT_EQ(inkOf(all), inkOf(drawn)) << count;
  }
}

TEST_F(MeterGraph, KeepsBothPolylinesOfACrowdedGraphApart) {
  settings.tickVisible = 1;
  settings.lineInterval = 0;
  lines.assign(3000, {});
  for (LineInfo& line : lines) line.peak = -10;
  build(102, 202);
  ASSERT_EQ(graphs.lines.size(), 2u);
  EXPECT_EQ(graphs.lines[1].firstPoint, graphs.lines[0].pointCount);
  EXPECT_EQ(graphs.points.size(), graphs.lines[0].pointCount + graphs.lines[1].pointCount);
  for (const Point& point : points(0)) EXPECT_EQ(point.y, 22);  // 201 − 81 · 200 ÷ 91 = 22.98
  for (const Point& point : points(1)) EXPECT_EQ(point.y, 201);
}

TEST_F(MeterGraph, IsNoneWithoutRoomOrLines) {
  setLevels({0, 0, 0});
  build(2, 100);
  EXPECT_TRUE(graphs.lines.empty());
  build(100, 2);
  EXPECT_TRUE(graphs.lines.empty());
  lines.clear();
  build(100, 100);
  EXPECT_TRUE(graphs.lines.empty());
}

}  // namespace
}  // namespace av::type2
