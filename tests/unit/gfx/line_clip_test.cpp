#include "gfx/line_clip.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace av {
namespace {

constexpr int highest = std::numeric_limits<int>::max();
constexpr int lowest = std::numeric_limits<int>::min();
constexpr Rect bounds{-10, -20, 110, 80};

TEST(ClipLine, LeavesLinesInsideAsTheyAre) {
  for (const LineEnds& line : {LineEnds{{-10, -20}, {109, 79}}, {{5, 5}, {5, 5}}, {{109, -20}, {-10, 79}}}) {
    EXPECT_EQ(line, clipLine(line, bounds));
  }
}

TEST(ClipLine, LeavesNothingOfLinesThatPassBy) {
  for (const LineEnds& line : {LineEnds{{-11, -20}, {-11, 79}},
                               {{110, 0}, {highest, 0}},
                               {{0, 80}, {50, highest}},
                               {{lowest, -21}, {highest, -21}},
                               {{-100, 0}, {0, -100}},
                               {{200, 200}, {200, 200}}}) {
    EXPECT_FALSE(clipLine(line, bounds)) << line.from.x << "," << line.from.y;
  }
  EXPECT_FALSE(clipLine({{0, 0}, {1, 1}}, {}));
}

TEST(ClipLine, CutsAtTheOutermostPixels) {
  EXPECT_EQ((LineEnds{{-10, 7}, {109, 7}}), clipLine({{lowest, 7}, {highest, 7}}, bounds));
  EXPECT_EQ((LineEnds{{3, 79}, {3, -20}}), clipLine({{3, highest}, {3, lowest}}, bounds));
  EXPECT_EQ((LineEnds{{30, 30}, {79, 79}}), clipLine({{30, 30}, {highest, highest}}, bounds));
  EXPECT_EQ((LineEnds{{-10, -10}, {30, 30}}), clipLine({{lowest, lowest}, {30, 30}}, bounds));
}

TEST(ClipLine, KeepsTheLineToHalfAPixel) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> anywhere(lowest, highest);
  std::uniform_int_distribution<int> near(-300, 300);
  int cut = 0;
  for (int i = 0; i < 20000; ++i) {
    const LineEnds line{{near(random), near(random)},
                        i % 2 ? Point{near(random), near(random)} : Point{anywhere(random), anywhere(random)}};
    const std::optional<LineEnds> part = clipLine(line, bounds);
    if (!part) continue;
    const double dx = static_cast<double>(line.to.x) - line.from.x;
    const double dy = static_cast<double>(line.to.y) - line.from.y;
    for (const Point end : {part->from, part->to}) {
      const double across = (end.x - line.from.x) * dy - (end.y - line.from.y) * dx;
      EXPECT_LE(std::abs(across), 0.5001 * (std::abs(dx) + std::abs(dy)));
      EXPECT_TRUE(liesIn(bounds, std::span(&end, 1)));
    }
    cut += *part != line;
  }
  EXPECT_GT(cut, 2000);
}

TEST(LiesIn, ExcludesRightAndBottom) {
  const Point points[] = {{-10, -20}, {109, 79}, {110, 0}, {0, 80}};
  EXPECT_TRUE(liesIn(bounds, std::span(points).first(2)));
  EXPECT_FALSE(liesIn(bounds, std::span(points).first(3)));
  EXPECT_FALSE(liesIn(bounds, std::span(points).last(1)));
  EXPECT_TRUE(liesIn(bounds, {}));
}

}  // namespace
}  // namespace av
