#include "type1/xy_grid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace av::type1 {
namespace {

constexpr Argb colour = 0xFF123456;

ViewLayout plot(int width, int height, int left = 0, int top = 0) {
  ViewLayout layout;
  layout.client = {left, top, left + width, top + height};
  layout.plotLeft = left;
  layout.plotTop = top;
  layout.plotWidth = width;
  layout.plotHeight = height;
  return layout;
}

std::vector<LineSegment> gridOf(const ViewLayout& layout) {
  std::vector<LineSegment> grid;
  addXyGrid(grid, colour, layout);
  return grid;
}

// Centre (150, 100), the shorter half is 100: radius 90. Divisions of (300 − 10) ÷ 10 = 29 pixels.
TEST(XyGrid, IsACrossItsDiagonalsAndAFrameWithNineTicks) {
  std::vector<LineSegment> expected = {{{60, 100}, {240, 100}, colour}, {{150, 10}, {150, 190}, colour},
                                       {{60, 190}, {240, 10}, colour},  {{240, 190}, {60, 10}, colour},
                                       {{5, 200}, {295, 200}, colour},  {{295, 200}, {295, 210}, colour},
                                       {{295, 210}, {5, 210}, colour},  {{5, 210}, {5, 200}, colour}};
  for (const int x : {34, 63, 92, 121, 150, 179, 208, 237, 266}) expected.push_back({{x, 207}, {x, 210}, colour});
  const std::vector<LineSegment> grid = gridOf(plot(300, 215));
  ASSERT_EQ(expected.size(), grid.size());
  for (std::size_t i = 0; i < grid.size(); ++i) {
    const bool turned = grid[i].from == expected[i].to && grid[i].to == expected[i].from;
    EXPECT_TRUE(grid[i] == expected[i] || (turned && grid[i].colour == colour)) << i;
  }
}

TEST(XyGrid, TakesTheShorterSideForItsRadius) {
  EXPECT_EQ(40 - 10, gridOf(plot(80, 615))[0].to.x - 40);
  EXPECT_EQ(100 - 10, gridOf(plot(900, 215))[0].to.x - 450);
  EXPECT_EQ(-4, gridOf(plot(80, 27))[0].to.x - 40);  // a small view: (27 − 15) ÷ 2 − 10, turned about
}

TEST(XyGrid, MovesWithThePlot) {
  const std::vector<LineSegment> home = gridOf(plot(301, 217));
  const std::vector<LineSegment> moved = gridOf(plot(301, 217, 30, 70));
  ASSERT_EQ(home.size(), moved.size());
  for (std::size_t i = 0; i < home.size(); ++i) {
    EXPECT_EQ((LineSegment{{home[i].from.x + 30, home[i].from.y + 70}, {home[i].to.x + 30, home[i].to.y + 70}, colour}),
              moved[i]);
  }
}

TEST(XyGrid, HasNoFrameInAPlotTooNarrowForOne) {
  EXPECT_EQ(4u, gridOf(plot(10, 100)).size());
  EXPECT_EQ(4u + 4u + 9u, gridOf(plot(11, 100)).size());
}

TEST(XyFrameScale, ReadsAFifthOfTheWayFromZeroToOneAtEveryTick) {
  for (int width = 20; width <= 4000; width += 13) {
    const XyFrame frame(plot(width, 100));
    EXPECT_EQ(frame.left, frame.columnOf(-1));
    EXPECT_EQ(frame.right, frame.columnOf(1));
    for (int k = 1; k <= 9; ++k) EXPECT_EQ(frame.tickColumn(k), frame.columnOf((k - 5) / 5.0)) << width;
    EXPECT_EQ(frame.left, frame.columnOf(-7));
    EXPECT_EQ(frame.right, frame.columnOf(7));
  }
}

TEST(XyFrameScale, RisesEvenlyBetweenTheTicks) {
  for (const int width : {110, 345, 588, 1919}) {
    const XyFrame frame(plot(width, 100));
    int before = frame.left;
    for (int i = -1000; i <= 1000; ++i) {
      const double value = i / 1000.0;
      const int column = frame.columnOf(value);
      EXPECT_GE(column, before);
      before = column;
      // The true place between the two lines around it, to half a pixel.
      const double divisions = (value + 1) * 5;
      const int division = std::min(static_cast<int>(divisions), 9);
      const int from = division == 0 ? frame.left : frame.tickColumn(division);
      const int to = division == 9 ? frame.right : frame.tickColumn(division + 1);
      EXPECT_NEAR(from + (divisions - division) * (to - from), column, 0.5 + 1e-9);
    }
  }
}

}  // namespace
}  // namespace av::type1
