#include "gfx/win/frame_painter.h"

#include "type1/win/resource_ids.h"
#include "unit/gfx/win/frame_painter_fixture.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <span>
#include <vector>

namespace av {
namespace {

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
