// Lines of one pixel, exactly, and wide ones.

#include "support/line_oracle.h"
#include "unit/gfx/win/frame_painter_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <span>
#include <vector>

namespace av {
namespace {

TEST_F(FramePainterTest, DrawsStraightSegmentsWithBothEndPoints) {
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(std::vector<LineSegment>{{{10, 5}, {10, 70}, red}, {{3, 40}, {100, 40}, green}}));
  for (int y = 0; y < 80; ++y) {
    if (y != 40) {
      ASSERT_EQ(y >= 5 && y <= 70 ? red : white, at(10, y)) << y;
    }
  }
  for (int x = 0; x < 120; ++x) ASSERT_EQ(x == 10 || (x >= 3 && x <= 100) ? green : white, at(x, 40)) << x;
}

TEST_F(FramePainterTest, DrawsPolylinesToThePixel) {
  std::mt19937 random(7);
  for (int run = 0; run < 200; ++run) {
    Polylines lines;
    const std::span<Point> points = lines.add(red, 2 + random() % 40);
    for (Point& point : points) point = {static_cast<int>(random() % 160) - 20, static_cast<int>(random() % 120) - 20};
    std::vector<Argb> expected(120 * 80, white);
    test::forEachLinePixel(points, [&](Point p) {
      if (p.x >= 0 && p.x < 120 && p.y >= 0 && p.y < 80) expected[static_cast<std::size_t>(p.y * 120 + p.x)] = red;
    });
    ASSERT_TRUE(painter.clear(white));
    ASSERT_TRUE(painter.draw(lines));
    const std::span<const Argb> actual = surface.pixels();
    int different = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) different += expected[i] != actual[i];
    ASSERT_EQ(0, different) << "run " << run;
  }
}

TEST_F(FramePainterTest, DrawsEachPolylineInItsOwnColour) {
  Polylines lines;
  std::ranges::copy(std::vector<Point>{{0, 10}, {119, 10}}, lines.add(red, 2).begin());
  std::ranges::copy(std::vector<Point>{{0, 20}, {119, 20}}, lines.add(green, 2).begin());
  lines.add(green, 1);  // no line
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(lines));
  EXPECT_EQ(red, at(60, 10));
  EXPECT_EQ(green, at(60, 20));
}

TEST_F(FramePainterTest, DrawsStraightPolylinesExactlyAsWideAsTheySay) {
  for (const int width : {2, 3, 4, 7, 20}) {
    Polylines lines;
    std::ranges::copy(std::vector<Point>{{-50, 40}, {200, 40}}, lines.add(red, 2, width).begin());
    ASSERT_TRUE(painter.clear(white));
    ASSERT_TRUE(painter.draw(lines));
    const Rect box = inkBox(white);
    EXPECT_EQ(0, box.left);
    EXPECT_EQ(120, box.right);
    EXPECT_EQ(width, box.height());
    EXPECT_EQ(40 - width / 2, box.top);
    for (int y = box.top; y < box.bottom; ++y)
      for (int x = 0; x < 120; ++x) ASSERT_EQ(red, at(x, y)) << width << ": " << x << ", " << y;
  }
}

TEST_F(FramePainterTest, DrawsPolylinesOfNoWidthOnePixelWide) {
  const std::vector<Point> points{{3, 70}, {30, 5}, {60, 60}, {115, 10}};
  Polylines one;
  std::ranges::copy(points, one.add(red, points.size()).begin());
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(one));
  const std::vector<Argb> expected(surface.pixels().begin(), surface.pixels().end());
  for (const int width : {0, -1, -1000, std::numeric_limits<int>::min()}) {
    Polylines lines;
    std::ranges::copy(points, lines.add(red, points.size(), width).begin());
    ASSERT_TRUE(painter.clear(white));
    ASSERT_TRUE(painter.draw(lines));
    EXPECT_TRUE(std::ranges::equal(expected, surface.pixels())) << width;
  }
}

/// Where a point lies beside the line between two others.
struct Beside {
  double distancePx;  ///< from the line
  double fromEndsPx;  ///< the closest point of the line, from its nearer end
};

Beside beside(double x, double y, Point from, Point to) {
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const double length = std::hypot(dx, dy);
  const double along = length > 0 ? std::clamp(((x - from.x) * dx + (y - from.y) * dy) / length, 0.0, length) : 0.0;
  const double part = length > 0 ? along / length : 0.0;
  return {std::hypot(x - from.x - part * dx, y - from.y - part * dy), std::min(along, length - along)};
}

TEST_F(FramePainterTest, DrawsWidePolylinesAsTheSetOfPixelsCloseToThem) {
  std::mt19937 random(11);
  int inside = 0;
  for (int run = 0; run < 60; ++run) {
    const int width = 4 + static_cast<int>(random() % 9);
    Polylines lines;
    const std::span<Point> points = lines.add(red, 2 + random() % 40, width);
    for (std::size_t i = 0; i < points.size(); ++i)  // a graph: to the right, with steep peaks
      points[i] = {10 + static_cast<int>(i) * 100 / static_cast<int>(points.size()), static_cast<int>(random() % 80)};
    ASSERT_TRUE(painter.clear(white));
    ASSERT_TRUE(painter.draw(lines));
    for (int y = 0; y < 80; ++y) {
      for (int x = 0; x < 120; ++x) {
        bool has = false;
        double nearest = 1e9;
        for (std::size_t i = 1; i < points.size(); ++i) {
          const Beside place = beside(x, y, points[i - 1], points[i]);
          nearest = std::min(nearest, place.distancePx);
          // Some platforms cut corners, and all cut the ends, off.
          has = has || (place.distancePx < width / 2.0 - 1 && place.fromEndsPx > width);
        }
        inside += has;
        if (has) {
          ASSERT_EQ(red, at(x, y)) << run << ": " << x << ", " << y;
        }
        if (nearest > width / 2.0 + 1) {
          ASSERT_EQ(white, at(x, y)) << run << ": " << x << ", " << y;
        }
      }
    }
  }
  EXPECT_GT(inside, 60 * 500);
}

TEST_F(FramePainterTest, DrawsLongWideLinesToTheSamePixelsAsThePlatformInOneGo) {
  std::mt19937 random(12);
  openReference(white);
  for (const int width : {2, 3, 5, 12}) {
    const PenHandle platformPen = createPen(red, static_cast<float>(width));
    ASSERT_EQ(Gdiplus::Ok, Gdiplus::DllExports::GdipSetPenLineJoin(platformPen.get(), Gdiplus::LineJoinRound));
    for (const std::size_t count : {2u, 3u, 16u, 17u, 18u, 33u, 34u, 300u}) {
      Polylines lines;
      std::vector<Gdiplus::Point> same;
      for (Point& point : lines.add(red, count, width)) {
        point = {static_cast<int>(random() % 400) - 140, static_cast<int>(random() % 240) - 80};
        same.emplace_back(point.x, point.y);
      }
      ASSERT_TRUE(painter.clear(white));
      ASSERT_TRUE(painter.draw(lines));
      reference.clear(white);
      ASSERT_EQ(Gdiplus::Ok, Gdiplus::DllExports::GdipDrawLinesI(reference.graphics(), platformPen.get(), same.data(),
                                                                 static_cast<INT>(count)));
      ASSERT_TRUE(looksLikeTheReference()) << width << " " << count;
    }
  }
}

TEST_F(FramePainterTest, ReturnsToThinLinesAfterWideOnes) {
  Polylines lines;
  std::ranges::copy(std::vector<Point>{{0, 20}, {119, 20}}, lines.add(red, 2, 9).begin());
  std::ranges::copy(std::vector<Point>{{0, 50}, {119, 50}}, lines.add(red, 2).begin());
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(lines));
  ASSERT_TRUE(painter.draw(std::vector<LineSegment>{{{0, 60}, {119, 60}, red}}));
  for (int y = 40; y < 80; ++y) ASSERT_EQ(y == 50 || y == 60 ? red : white, at(60, y)) << y;
  lines.lines.front().widthPx = 1;
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(lines));
  for (int y = 0; y < 80; ++y) ASSERT_EQ(y == 20 || y == 50 ? red : white, at(60, y)) << y;
}

TEST_F(FramePainterTest, TakesLinesThatReachFarBeyondThePictureAndPensWiderThanIt) {
  Polylines wide;
  std::ranges::copy(std::vector<Point>{{-40000, 40}, {40000, 40}, {80000, -32767}}, wide.add(red, 3, 32767).begin());
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(wide));
  for (const Argb pixel : surface.pixels()) ASSERT_EQ(red, pixel);

  Polylines distant;
  const std::span<Point> points = distant.add(green, 400, 4);
  for (std::size_t i = 0; i < points.size(); ++i)
    points[i] = {static_cast<int>(i) * 160 - 32000, i % 2 ? -32767 : 65534};
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(distant));
  EXPECT_FALSE(inkBox(white).isEmpty());
}

TEST_F(FramePainterTest, DrawsThePartOfThinLinesThatIsInThePicture) {
  constexpr int lowest = std::numeric_limits<int>::min();
  constexpr int highest = std::numeric_limits<int>::max();
  const std::vector<Point> points{{lowest, 40}, {highest, 40}, {highest, highest}, {10, 10}, {10, lowest}};
  Polylines line;
  std::ranges::copy(points, line.add(red, points.size()).begin());
  std::vector<LineSegment> segments;
  for (std::size_t i = 1; i < points.size(); ++i) segments.push_back({points[i - 1], points[i], red});
  for (const bool connected : {true, false}) {
    ASSERT_TRUE(painter.clear(white));
    ASSERT_TRUE(connected ? painter.draw(line) : painter.draw(segments));
    for (int y = 0; y < 80; ++y) {
      for (int x = 0; x < 120; ++x) {
        const bool onLine = y == 40 || (x == y && x >= 10) || (x == 10 && y <= 10);
        ASSERT_EQ(onLine ? red : white, at(x, y)) << x << ", " << y;
      }
    }
  }
}

TEST_F(FramePainterTest, ThinLinesCostNoMoreThanWhatIsSeenOfThem) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> anywhere(-2000000, 2000000);
  Polylines line;
  for (Point& point : line.add(red, 200)) point = {anywhere(random), anywhere(random)};
  const ULONGLONG begin = GetTickCount64();
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(line));
  EXPECT_LT(GetTickCount64() - begin, 1000u);  // 0 here; 2,700 where their whole length is drawn
}

}  // namespace
}  // namespace av
