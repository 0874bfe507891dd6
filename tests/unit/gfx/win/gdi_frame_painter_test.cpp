#include "gfx/win/gdi_frame_painter.h"

#include "gfx/border.h"
#include "gfx/win/gdi_handles.h"
#include "gfx/win/gdi_text_measure.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

namespace av {
namespace {

constexpr Size size{60, 40};

/// Two pictures of the same ground: one for the painter, one for GDI itself.
class GdiFramePainterTest : public testing::Test {
 protected:
  GdiFramePainterTest() {
    EXPECT_TRUE(painted.resize(size));
    EXPECT_TRUE(expected.resize(size));
    painter.clear(0xFF304050);
    fillRectangle({0, 0, size.widthPx, size.heightPx}, RGB(0x30, 0x40, 0x50));
  }

  void fillRectangle(const Rect& rect, COLORREF colour) {
    const GdiObject brush(CreateSolidBrush(colour));
    const RECT area{rect.left, rect.top, rect.right, rect.bottom};
    FillRect(expected.dc(), &area, static_cast<HBRUSH>(brush.get()));
  }

  void expectSamePixels() {
    const auto a = painted.pixels(), b = expected.pixels();
    for (std::size_t i = 0; i < a.size(); ++i)
      ASSERT_EQ(b[i] & 0xFFFFFF, a[i] & 0xFFFFFF) << i % size.widthPx << ", " << i / size.widthPx;
  }

  DibSurface painted, expected;
  GdiFramePainter painter{painted};
};

TEST_F(GdiFramePainterTest, FillsAreThoseOfFillRect) {
  std::mt19937 random(4711);
  std::uniform_int_distribution<int> x(-10, 70), y(-10, 50);
  for (int round = 0; round < 300; ++round) {
    Rect rect{x(random), y(random), x(random), y(random)};
    if (rect.isEmpty()) continue;  // GDI turns some of these round; frames have none
    const auto value = random() & 0xFFFFFF;
    painter.fill(std::array{FilledRect{rect, argbFromOleColor(value)}});
    fillRectangle(rect, value);
  }
  expectSamePixels();
}

TEST_F(GdiFramePainterTest, BordersAreThoseOfPensWithTheUnresolvedColours) {
  const POINT topRight{59, 0}, bottomRight{59, 39}, bottomLeft{0, 39}, topLeft{0, 0};
  const auto line = [&](COLORREF colour, std::vector<POINT> points) {
    const GdiObject pen(CreatePen(PS_SOLID, 1, colour));
    const GdiSelection selected(expected.dc(), pen.get());
    MoveToEx(expected.dc(), points[0].x, points[0].y, nullptr);
    for (const POINT& point : points) LineTo(expected.dc(), point.x, point.y);
  };
  const auto border = [&](int type) {
    Polylines lines;
    addBorder(lines, type, argbFromRgb(0x12, 0x34, 0x56), {0, 0, size.widthPx, size.heightPx});
    painter.draw(lines);
  };
  border(0);
  expectSamePixels();
  border(1);
  line(RGB(0x12, 0x34, 0x56), {topRight, bottomRight, bottomLeft, topLeft, topRight});
  expectSamePixels();
  border(2);
  line(0x80000014, {topRight, bottomRight, bottomLeft});
  line(0x80000010, {bottomLeft, topLeft, topRight});
  expectSamePixels();
  border(3);
  line(0x80000010, {topRight, bottomRight, bottomLeft});
  line(0x80000014, {bottomLeft, topLeft, topRight});
  expectSamePixels();
}

TEST_F(GdiFramePainterTest, RowsOfAColumnAreThoseOfBitBlt) {
  std::vector<Argb> column(30);
  DibSurface image;
  ASSERT_TRUE(image.resize({12, 30}));
  for (int y = 0; y < 30; ++y) {
    column[static_cast<std::size_t>(y)] = argbFromRgb(static_cast<unsigned>(8 * y), 200, 17);
    fillRect({image.pixels(), image.size()}, {0, y, 12, y + 1}, column[static_cast<std::size_t>(y)]);
  }
  std::mt19937 random(20261121);
  for (int round = 0; round < 200; ++round) {
    const int first = static_cast<int>(random() % 30),
              rows = static_cast<int>(random() % (31 - static_cast<unsigned>(first)));
    const int x = static_cast<int>(random() % 80) - 15, y = static_cast<int>(random() % 60) - 15;
    const int width = static_cast<int>(random() % 12) + 1;
    painter.fill(std::array{ColumnFill{0, first, {x, y, x + width, y + rows}}}, std::array{PreparedColumn(column)});
    BitBlt(expected.dc(), x, y, width, rows, image.dc(), 0, first, SRCCOPY);
    expectSamePixels();
  }
}

TEST_F(GdiFramePainterTest, FillsOfColumnsThatAreNotThereAreLeftOut) {
  const std::vector<Argb> column(10, 0xFFFFFFFF);
  painter.fill(std::array{ColumnFill{1, 0, {0, 0, 10, 10}}, ColumnFill{-1, 0, {0, 0, 10, 10}}},
               std::array{PreparedColumn(column)});
  expectSamePixels();
}

class GdiTexts : public GdiFramePainterTest {
 protected:
  static GdiObject fontOf(int heightPx) {
    LOGFONTW description{};
    description.lfHeight = -heightPx;
    description.lfCharSet = DEFAULT_CHARSET;
    wcscpy(description.lfFaceName, L"Arial");
    return GdiObject(CreateFontIndirectW(&description));
  }

  Size measured(HFONT font, const char* text) {
    const GdiSelection selected(painted.dc(), font);
    return GdiTextMeasure(painted.dc()).measure(text);
  }

  /// The smallest rectangle around the pixels that differ from the ground.
  Rect inked() {
    Rect box{size.widthPx, size.heightPx, 0, 0};
    const auto pixels = painted.pixels();
    for (int y = 0; y < size.heightPx; ++y)
      for (int x = 0; x < size.widthPx; ++x) {
        if ((pixels[static_cast<std::size_t>(y * size.widthPx + x)] & 0xFFFFFF) == 0x304050) continue;
        box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), std::max(box.bottom, y + 1)};
      }
    return box;
  }
};

TEST_F(GdiTexts, StandCentredOnAGroundAsLargeAsTheyMeasure) {
  const GdiObject font = fontOf(12);
  const auto handle = static_cast<HFONT>(font.get());
  const Size text = measured(handle, "-40");
  ASSERT_GT(text.widthPx, 10);
  ASSERT_GT(text.heightPx, 10);
  painter.draw(std::array{TextRun{"-40", {10, 5, 51, 36}, argbFromRgb(0, 0, 0)}}, handle, argbFromRgb(255, 255, 0));
  const int left = 10 + (41 - text.widthPx) / 2, top = 5 + (31 - text.heightPx) / 2;
  EXPECT_EQ((Rect{left, top, left + text.widthPx, top + text.heightPx}), inked());
  EXPECT_EQ(0xFFFF00u, painted.pixels()[static_cast<std::size_t>(top * size.widthPx + left)] & 0xFFFFFF);
}

TEST_F(GdiTexts, MayBeLargerThanTheirRectangle) {
  const GdiObject font = fontOf(12);
  const auto handle = static_cast<HFONT>(font.get());
  const Size text = measured(handle, "-40");
  painter.draw(std::array{TextRun{"-40", {30, 20, 31, 21}, argbFromRgb(0, 0, 0)}}, handle, argbFromRgb(255, 255, 0));
  EXPECT_EQ(text.widthPx, inked().width());
  EXPECT_EQ(text.heightPx, inked().height());
}

TEST_F(GdiTexts, AmpersandsAreLetters) {
  const GdiObject font = fontOf(12);
  const auto handle = static_cast<HFONT>(font.get());
  painter.draw(std::array{TextRun{"&&", {0, 0, 60, 40}, argbFromRgb(0, 0, 0)}}, handle, argbFromRgb(255, 255, 0));
  EXPECT_EQ(measured(handle, "&&").widthPx, inked().width());
}

TEST_F(GdiTexts, WithoutAFontThereAreNone) {
  painter.draw(std::array{TextRun{"-40", {0, 0, 60, 40}, argbFromRgb(0, 0, 0)}}, nullptr, argbFromRgb(255, 255, 0));
  expectSamePixels();
}

TEST_F(GdiTexts, ALineIsAsHighAsItsMetricsSay) {
  const GdiObject font = fontOf(20);
  const GdiSelection selected(painted.dc(), font.get());
  const GdiTextMeasure measure(painted.dc());
  EXPECT_EQ(measure.measure("0").heightPx, measure.lineHeightPx());
  EXPECT_GE(measure.lineHeightPx(), 20);
}

}  // namespace
}  // namespace av
