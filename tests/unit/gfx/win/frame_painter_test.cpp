#include "gfx/win/frame_painter.h"

#include "gfx/win/gdiplus_text_measure.h"
#include "gfx/win/gdiplus_token.h"
#include "gfx/win/scale_font.h"
#include "support/line_oracle.h"
#include "type1/win/resource_ids.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <span>
#include <vector>

namespace av {
namespace {

constexpr Argb white = 0xFFFFFFFF;
constexpr Argb red = 0xFFFF0000;
constexpr Argb green = 0xFF00FF00;

class FramePainterTest : public testing::Test {
 protected:
  FramePainterTest() { surface.resize({120, 80}); }

  Argb at(int x, int y) {
    return surface.pixels()[static_cast<std::size_t>(y) * static_cast<std::size_t>(surface.size().widthPx) +
                            static_cast<std::size_t>(x)];
  }

  /// The smallest rectangle that holds every pixel that differs from `background`.
  Rect inkBox(Argb background) {
    Rect box{surface.size().widthPx, surface.size().heightPx, 0, 0};
    for (int y = 0; y < surface.size().heightPx; ++y) {
      for (int x = 0; x < surface.size().widthPx; ++x) {
        if (at(x, y) == background) continue;
        box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), std::max(box.bottom, y + 1)};
      }
    }
    return box;
  }

  /// Another picture of the same size, for what the platform draws by itself.
  void openReference(Argb background) {
    ASSERT_TRUE(reference.resize(surface.size()));
    reference.clear(background);
  }

  bool looksLikeTheReference() { return std::ranges::equal(reference.pixels(), surface.pixels()); }

  GdiplusToken token;
  OffscreenSurface surface;
  OffscreenSurface reference;
  FramePainter painter{surface};
};

TEST_F(FramePainterTest, ClearsEveryPixel) {
  ASSERT_TRUE(painter.clear(0xFF123456));
  for (const Argb pixel : surface.pixels()) ASSERT_EQ(0xFF123456, pixel);
}

TEST_F(FramePainterTest, FillsExactlyTheRectangleWithoutItsRightAndBottom) {
  const Rect rect{10, 20, 30, 25};
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.fill(std::vector<FilledRect>{{rect, red}}));
  for (int y = 0; y < 80; ++y) {
    for (int x = 0; x < 120; ++x) {
      const bool inside = x >= 10 && x < 30 && y >= 20 && y < 25;
      ASSERT_EQ(inside ? red : white, at(x, y)) << x << ", " << y;
    }
  }
}

TEST_F(FramePainterTest, FillsTheSamePixelsAsThePlatformClippedAtEveryEdge) {
  openReference(white);
  const SolidBrushHandle brush = createSolidBrush(red);
  for (const Rect& rect : {Rect{-5, -5, 10, 10}, Rect{100, 70, 200, 200}, Rect{-10, 30, 500, 31}, Rect{5, 5, 5, 9},
                           Rect{200, 5, 300, 9}, Rect{5, -20, 9, -10}, Rect{0, 0, 120, 80}}) {
    ASSERT_TRUE(painter.clear(white));
    reference.clear(white);
    ASSERT_TRUE(painter.fill(std::vector<FilledRect>{{rect, red}}));
    if (!rect.isEmpty()) {
      ASSERT_EQ(Gdiplus::Ok, Gdiplus::DllExports::GdipFillRectangleI(reference.graphics(), brush.get(), rect.left,
                                                                     rect.top, rect.width(), rect.height()));
    }
    ASSERT_TRUE(looksLikeTheReference()) << rect.left << " " << rect.top;
  }
}

TEST_F(FramePainterTest, DrawsLaterPartsOverEarlierOnes) {
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.fill(std::vector<FilledRect>{{{0, 0, 20, 20}, red}, {{10, 10, 30, 30}, green}}));
  EXPECT_EQ(red, at(9, 9));
  EXPECT_EQ(green, at(10, 10));
  EXPECT_EQ(green, at(19, 19));
}

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

/// Columns as long as the tests' picture is high, no two rows of them alike.
std::array<std::vector<Argb>, 2> twoColumns(std::size_t rows) {
  std::array<std::vector<Argb>, 2> columns{std::vector<Argb>(rows), std::vector<Argb>(rows)};
  for (std::size_t row = 0; row < rows; ++row) {
    columns[0][row] = 0xFF000000 | static_cast<Argb>(row * 0x10101);
    columns[1][row] = 0xFF800000 | static_cast<Argb>(row);
  }
  return columns;
}

TEST_F(FramePainterTest, FillsRectanglesWithRowsOfThePreparedColumns) {
  const auto columns = twoColumns(40);
  const std::array<PreparedColumn, 2> prepared{columns[0], columns[1]};
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.fill(std::vector<ColumnFill>{{0, 0, {10, 20, 17, 60}}, {1, 30, {12, 50, 15, 60}}}, prepared));
  for (int y = 0; y < 80; ++y) {
    for (int x = 0; x < 120; ++x) {
      Argb expected = white;
      if (x >= 10 && x < 17 && y >= 20 && y < 60) expected = columns[0][static_cast<std::size_t>(y - 20)];
      if (x >= 12 && x < 15 && y >= 50 && y < 60) expected = columns[1][static_cast<std::size_t>(y - 50 + 30)];
      ASSERT_EQ(expected, at(x, y)) << x << ", " << y;
    }
  }
}

TEST_F(FramePainterTest, ClipsColumnsAtThePictureAndAtTheirOwnEnds) {
  const auto columns = twoColumns(90);
  const std::array<PreparedColumn, 2> prepared{columns[0], columns[1]};
  constexpr int lowest = std::numeric_limits<int>::min();
  constexpr int highest = std::numeric_limits<int>::max();
  for (const ColumnFill& fill :
       {ColumnFill{0, 0, {-5, -5, 10, 10}}, ColumnFill{1, 3, {110, 70, 200, 157}},
        ColumnFill{0, 80, {-10, 30, 500, 60}}, ColumnFill{0, -7, {3, 20, 6, 50}}, ColumnFill{1, 95, {3, 20, 6, 50}},
        ColumnFill{0, 0, {9, 9, 9, 20}}, ColumnFill{0, 0, {9, 20, 12, 9}}, ColumnFill{0, 0, {200, 0, 300, 20}},
        ColumnFill{0, 0, {0, 90, 20, 99}}, ColumnFill{1, 0, {lowest, lowest, highest, highest}},
        ColumnFill{1, highest, {0, lowest, highest, highest}}, ColumnFill{0, lowest, {lowest, 0, highest, highest}},
        ColumnFill{2, 0, {0, 0, 9, 9}}, ColumnFill{-1, 0, {0, 0, 9, 9}}}) {
    ASSERT_TRUE(painter.clear(white));
    ASSERT_TRUE(painter.fill(std::span(&fill, 1), prepared));
    for (int y = 0; y < 80; ++y) {
      for (int x = 0; x < 120; ++x) {
        const Rect& r = fill.rect;
        const long long row = static_cast<long long>(y) - r.top + fill.firstRow;
        const bool inside = fill.column >= 0 && fill.column < 2 && x >= r.left && x < r.right && y >= r.top &&
                            y < r.bottom && row >= 0 && row < 90;
        const Argb expected =
            inside ? columns[static_cast<std::size_t>(fill.column)][static_cast<std::size_t>(row)] : white;
        ASSERT_EQ(expected, at(x, y)) << x << ", " << y << " of " << r.left << " " << r.top << " " << fill.firstRow;
      }
    }
  }
  ASSERT_TRUE(painter.fill(std::vector<ColumnFill>{{0, 0, {0, 0, 9, 9}}}, {}));
}

TEST_F(FramePainterTest, FillsNoColumnsWithoutAPicture) {
  OffscreenSurface none;
  FramePainter painterOfNothing(none);
  EXPECT_FALSE(painterOfNothing.fill(std::vector<ColumnFill>{{0, 0, {0, 0, 9, 9}}}, {}));
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

/// Two gradients and one that could not be loaded.
std::array<PreparedImage, 3> someGradients() {
  const HINSTANCE module = GetModuleHandleW(nullptr);
  return {PreparedImage(module, AV_BITMAP_BARS_TYPE3), PreparedImage(module, AV_BITMAP_BARS_TYPE5),
          PreparedImage(module, 9999)};
}

TEST_F(FramePainterTest, DrawsPartsOfImagesAsThePlatformDoes) {
  const auto images = someGradients();
  ASSERT_EQ((Size{1, 185}), images[0].size());
  ASSERT_EQ((Size{1, 186}), images[1].size());
  ASSERT_EQ((Size{}), images[2].size());
  const Rect whole0{0, 0, 1, 185};
  const Rect whole1{0, 0, 1, 186};
  const std::vector<ImageBlit> blits = {
      {0, whole0, {3, 10, 4, 70}},       {0, whole0, {4, 69, 5, 70}},     {1, whole1, {5, 0, 6, 80}},
      {1, {0, 3, 1, 99}, {7, 2, 8, 70}},  // a part of the image
      {0, whole0, {10, 5, 13, 70}},       // wider than a column
      {1, whole1, {119, 20, 120, 70}},   {1, whole1, {120, 20, 121, 70}}, {0, whole0, {-1, 20, 0, 70}},
      {0, whole0, {20, -8, 21, 70}},     {0, whole0, {21, 30, 22, 95}},  // cut off above and below
      {0, whole0, {22, 30, 23, 30}},     {0, whole0, {23, 31, 24, 30}},  // empty
      {2, whole0, {30, 10, 31, 70}},     {3, whole0, {31, 10, 32, 70}},   {-1, whole0, {32, 10, 33, 70}},
  };
  openReference(green);
  for (const ImageBlit& blit : blits) {
    if (blit.image != 0 && blit.image != 1) continue;
    if (blit.to.isEmpty()) continue;
    ASSERT_TRUE(images[static_cast<std::size_t>(blit.image)].draw(reference, blit.from, blit.to));
  }
  for (int round = 0; round < 3; ++round) {  // from the second round on, columns come from memory
    ASSERT_TRUE(painter.clear(green));
    ASSERT_TRUE(painter.draw(blits, images));
    EXPECT_TRUE(looksLikeTheReference()) << round;
  }
  EXPECT_NE(green, at(3, 40));
  EXPECT_EQ(green, at(22, 30));
  EXPECT_EQ(green, at(30, 40));
}

TEST_F(FramePainterTest, RefusesToFlipImages) {
  const auto images = someGradients();
  EXPECT_FALSE(painter.draw(std::vector<ImageBlit>{{0, {0, 0, 1, 185}, {3, 10, 4, 70}, true}}, images));
}

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

TEST_F(FramePainterTest, FailsWithoutAPicture) {
  OffscreenSurface none;
  FramePainter lost(none);
  EXPECT_FALSE(lost.clear(white));
  EXPECT_FALSE(lost.fill(std::vector<FilledRect>{{{0, 0, 1, 1}, red}}));
  EXPECT_FALSE(lost.draw(std::vector<LineSegment>{{{0, 0}, {5, 5}, red}}));
  Polylines lines;
  lines.add(red, 2)[1] = {5, 5};
  EXPECT_FALSE(lost.draw(lines));
  EXPECT_FALSE(lost.draw(std::vector<ImageBlit>{{0, {0, 0, 1, 185}, {0, 0, 1, 1}}}, someGradients()));
}

TEST_F(FramePainterTest, DrawsAgainAfterItsObjectsWereReleased) {
  ASSERT_TRUE(painter.clear(white));
  ASSERT_TRUE(painter.draw(std::vector<LineSegment>{{{0, 0}, {5, 0}, red}}));
  painter.release();
  ASSERT_TRUE(painter.draw(std::vector<LineSegment>{{{0, 1}, {5, 1}, green}}));
  EXPECT_EQ(red, at(3, 0));
  EXPECT_EQ(green, at(3, 1));
}

}  // namespace
}  // namespace av
