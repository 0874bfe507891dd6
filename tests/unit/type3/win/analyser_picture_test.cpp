// The analyser's picture against the same picture drawn the slow way with GDI: two bitmaps with their gaps cut by brushes,
// copied column by column.

#include "type3/win/analyser_picture.h"

#include "common/win/critical_section.h"
#include "gfx/win/gdi_text_measure.h"
#include "gfx/win/scale_font.h"
#include "support/allocation_count.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <random>
#include <vector>

namespace av::type3 {
namespace {

/// A bitmap that GDI draws on; none where it would have no area.
class GdiBitmap {
 public:
  GdiBitmap(int width, int height) { m_surface.resize({width, height}); }

  HDC dc() const { return m_surface.dc(); }
  int width() const { return m_surface.size().widthPx; }
  int height() const { return m_surface.size().heightPx; }
  COLORREF at(int x, int y) const {
    return oleColorFromArgb(m_surface.pixels()[static_cast<std::size_t>(y * width() + x)]);
  }

  void fill(int left, int top, int right, int bottom, COLORREF colour) {
    if (left >= right || top >= bottom) return;
    const GdiObject brush(CreateSolidBrush(colour));
    const RECT area{left, top, right, bottom};
    FillRect(dc(), &area, static_cast<HBRUSH>(brush.get()));
  }

  void gradient(int left, int top, int right, int bottom, COLORREF from, COLORREF to) {
    if (left >= right || top >= bottom) return;
    const auto vertex = [](int x, int y, COLORREF colour) {
      const auto channel = [](BYTE value) { return static_cast<COLOR16>(value << 8); };
      return TRIVERTEX{x, y, channel(GetRValue(colour)), channel(GetGValue(colour)), channel(GetBValue(colour)), 0};
    };
    TRIVERTEX corners[] = {vertex(left, top, from), vertex(right, bottom, to)};
    GRADIENT_RECT rect{0, 1};
    GdiGradientFill(dc(), corners, 2, &rect, 1, GRADIENT_FILL_RECT_V);
  }

  void line(COLORREF colour, std::vector<POINT> points) {
    const GdiObject pen(CreatePen(PS_SOLID, 1, colour));
    const GdiSelection selected(dc(), pen.get());
    MoveToEx(dc(), points[0].x, points[0].y, nullptr);
    for (std::size_t i = 1; i < points.size(); ++i) LineTo(dc(), points[i].x, points[i].y);
  }

  void copy(const GdiBitmap& from, int fromX, int fromY, int width, int height, int toX, int toY) {
    if (width > 0 && height > 0) BitBlt(dc(), toX, toY, width, height, from.dc(), fromX, fromY, SRCCOPY);
  }

  /// The same upside down, by a negative height. Systems do not agree on the row that it counts from; `firstRowFromEnd`
  /// is this one's, see flipStart().
  void copyFlipped(const GdiBitmap& from, int fromX, int fromY, int width, int height, int toX, int toY,
                   int firstRowFromEnd) {
    if (width <= 0 || height <= 0) return;
    StretchBlt(dc(), toX, toY, width, height, from.dc(), fromX, fromY + height - firstRowFromEnd, width, -height,
               SRCCOPY);
  }

  static int flipStart() {
    GdiBitmap source(1, 3);
    for (int y = 0; y < 3; ++y) source.fill(0, y, 1, y + 1, RGB(y + 1, 0, 0));
    for (const int start : {0, 1}) {
      GdiBitmap flipped(1, 3);
      flipped.copyFlipped(source, 0, 0, 1, 3, 0, 0, start);
      if (flipped.at(0, 0) == RGB(3, 0, 0) && flipped.at(0, 1) == RGB(2, 0, 0) && flipped.at(0, 2) == RGB(1, 0, 0))
        return start;
    }
    ADD_FAILURE() << "this system does not turn pictures upside down";
    return 0;
  }

 private:
  DibSurface m_surface;
};

struct Zones {
  COLORREF high, mid, low;
};

void solidZones(GdiBitmap& image, const AnalyserSettings& s, const Zones& c, bool mirrored) {
  const int w = image.width(), h = image.height(), hh = mirrored ? h / 2 : h;
  const double high = s.highPointPercent / 100.0;
  const int y1 = static_cast<int>((1 - high) * hh);
  const int y2 = y1 + static_cast<int>((1 - (s.midPointPercent - s.highPointPercent + 100) / 100.0) * hh);
  image.fill(0, 0, w, y1, c.high);
  image.fill(0, y1, w, y2, c.mid);
  image.fill(0, y2, w, hh, c.low);
  if (!mirrored) return;
  const int y3 = h / 2 + static_cast<int>(s.midPointPercent / 100.0 * hh);
  const int y4 = h / 2 + static_cast<int>(high * hh);
  image.fill(0, h / 2, w, y3, c.low);
  image.fill(0, y3, w, y4, c.mid);
  image.fill(0, y4, w, h, c.high);
}

void gradientZones(GdiBitmap& image, const AnalyserSettings& s, const Zones& c, bool mirrored) {
  const int w = image.width(), h = image.height(), hh = mirrored ? h / 2 : h, hb = h / 2;
  const int Hp = s.highPointPercent, Mp = s.midPointPercent;
  const auto d = [hh](int p) { return p * hh / 100; };
  const int ya = d((2 * Hp - 200) / 3 - Hp + 100), yb = d((Mp - Hp) * 2 / 3 - Mp + 100);
  const int yc = d(100 - (Hp - Mp) / 3 - Mp), yd = d(100 - Mp / 3);
  image.fill(0, 0, w, ya, c.high);
  image.gradient(0, ya, w, yb, c.high, c.mid);
  image.fill(0, yb, w, yc, c.mid);
  image.gradient(0, yc, w, yd, c.mid, c.low);
  image.fill(0, yd, w, hh, c.low);
  if (!mirrored) return;
  const auto e = [hb](int p) { return hb + p * hb / 100; };
  const int y1 = e(Mp / 3), y2 = e((Hp - Mp) / 3 + Mp), y3 = e((Hp - Mp) * 2 / 3 + Mp), y4 = e((100 - Hp) * 2 / 3 + Hp);
  image.fill(0, hb, w, y1, c.low);
  image.gradient(0, y1, w, y2, c.low, c.mid);
  image.fill(0, y2, w, y3, c.mid);
  image.gradient(0, y3, w, y4, c.mid, c.high);
  image.fill(0, y4, w, h, c.high);
}

void cutSegments(GdiBitmap& image, const AnalyserSettings& s, bool mirrored) {
  const int w = image.width(), h = image.height(), S = s.spotHeightPx, G = s.spotIntervalPx;
  int count = h / (S + G), y = mirrored ? h / 2 : h;
  if (mirrored) count /= 2;
  for (; count > 0; --count) {
    y -= S;
    if (y < 0) return;
    const int bottom = y;
    y = std::max(y - G, 0);
    image.fill(0, y, w, bottom, s.backColor);
    if (mirrored) image.fill(0, h - bottom, w, h - y, s.backColor);
  }
  if (y > 0 && y - S >= 0) image.fill(0, std::max(y - S - G, 0), w, y - S, s.backColor);
}

/// The whole picture but its texts, in strips of these sizes.
void drawWithGdi(GdiBitmap& picture, const AnalyserSettings& s, const std::vector<LineInfo>& lines, int xStrip,
                 int yStrip) {
  const int W = picture.width(), H = picture.height(), L = s.lineCount, S = s.spotHeightPx;
  const int areaW = W - yStrip, areaH = H - xStrip;
  const int colW = areaW / L, cw = colW - s.lineIntervalPx, bw = colW * L - s.lineIntervalPx;
  const int x0 = (areaW - colW * L + s.lineIntervalPx) / 2;
  const bool mirrored = s.alignmentY == 1, bars = s.viewType < 2, gradients = s.viewType % 2 == 1;

  GdiBitmap unlit(bw, areaH), lit(std::max(1, bw / L), mirrored ? areaH / 2 : areaH);
  const Zones litZones{s.lineHighColor, s.lineMidColor, s.lineLowColor};
  const Zones unlitZones{s.backLineHighColor, s.backLineMidColor, s.backLineLowColor};
  (gradients ? gradientZones : solidZones)(lit, s, litZones, false);
  (gradients ? gradientZones : solidZones)(unlit, s, unlitZones, mirrored);
  if (s.lineIntervalPx != 0) {
    const int p = (bw + s.lineIntervalPx) / L;
    for (int k = 1; k < L; ++k) unlit.fill(k * p - s.lineIntervalPx, 0, k * p, unlit.height(), s.backColor);
  }
  if (s.spotIntervalPx != 0) {
    cutSegments(unlit, s, mirrored);
    if (bars) cutSegments(lit, s, false);
  }

  picture.fill(0, 0, W, H, s.backColor);
  picture.fill(0, H - xStrip, W, H, s.scaleColor);
  picture.fill(W - yStrip, 0, W, H, s.scaleColor);
  picture.copy(unlit, 0, 0, bw, areaH, x0, 0);

  const LONG r = W - 1, b = H - 1;
  if (s.borderType == 1) picture.line(s.borderColor, {{r, 0}, {r, b}, {0, b}, {0, 0}, {r, 0}});
  if (s.borderType >= 2) {
    const COLORREF highlight = 0x80000014, shadow = 0x80000010;
    picture.line(s.borderType == 2 ? highlight : shadow, {{r, 0}, {r, b}, {0, b}});
    picture.line(s.borderType == 2 ? shadow : highlight, {{0, b}, {0, 0}, {r, 0}});
  }

  static const int flipStart = GdiBitmap::flipStart();
  for (int i = 0; i < L; ++i) {
    const int h = static_cast<int>(lines[static_cast<std::size_t>(i)].value), x = x0 + i * colW;
    if (h <= 0) continue;
    const int half = areaH / 2, yt = areaH - h - half;
    if (!mirrored) {
      picture.copy(lit, 0, areaH - h, cw, bars ? h : S, x, areaH - h);
    } else if (bars) {
      picture.copy(lit, 0, yt, cw, h, x, yt);
      picture.copyFlipped(lit, 0, areaH - half - h, cw, h, x, half, flipStart);
    } else {
      picture.copy(lit, 0, yt, cw, S, x, yt);
      picture.copyFlipped(lit, 0, yt, cw, S, x, 2 * half - S - yt, flipStart);
    }
  }
  if (s.tickVisible != -1) return;
  for (int i = 0; i < L; ++i) {
    const int p = static_cast<int>(lines[static_cast<std::size_t>(i)].peak), x = x0 + i * colW;
    if (p <= 0) continue;
    if (!mirrored) {
      const int bottom = std::clamp(areaH - p, 0, areaH);
      picture.fill(x, bottom - S, x + cw, bottom, s.tickColor);
    } else {
      const int upper = std::max(areaH / 2 - p, 0), lower = std::min(p + areaH / 2 + S, areaH);
      picture.fill(x, upper - S, x + cw, upper, s.tickColor);
      picture.fill(x, std::min(p + areaH / 2, lower), x + cw, lower, s.tickColor);
    }
  }
}

class AnalyserPictureTest : public testing::Test {
 protected:
  void setColumns(const std::vector<LineInfo>& values) {
    columns.SetLineCount(static_cast<std::int32_t>(values.size()));
    columns.withLines([&](std::span<LineInfo> lines) { std::ranges::copy(values, lines.begin()); });
  }

  BandAxis axis() const { return bandAxis(settings, 512, 44100); }

  void paint(const GdiBitmap& target, Point at, Size size) {
    picture.paint(target.dc(), {at.x, at.y, at.x + size.widthPx, at.y + size.heightPx}, settings, axis(), columns);
  }

  AnalyserLayout layoutOf(Size size) const {
    LOGFONTW description = describeScaleFont(createDefaultScaleFont(9).Get());
    const GdiObject font(CreateFontIndirectW(&description));
    GdiBitmap any(1, 1);
    const GdiSelection selected(any.dc(), font.get());
    const GdiTextMeasure measure(any.dc());
    return computeLayout(settings, size, measure.lineHeightPx(), measure);
  }

  AnalyserSettings settings;
  CriticalSection lock;
  LineList columns{lock};
  AnalyserPicture picture;
};

int farthestChannel(COLORREF a, COLORREF b) {
  return std::max({std::abs(GetRValue(a) - GetRValue(b)), std::abs(GetGValue(a) - GetGValue(b)),
                   std::abs(GetBValue(a) - GetBValue(b))});
}

TEST_F(AnalyserPictureTest, HasThePixelsThatGdiDrawsAtAnyPlace) {
  std::mt19937 random(20261121);
  const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  for (int run = 0; run < 250; ++run) {
    settings.lineCount = 4 + below(run % 2 ? 20 : 197);
    settings.lineIntervalPx = below(5);
    settings.spotHeightPx = 1 + below(6);
    settings.spotIntervalPx = below(4);
    settings.highPointPercent = below(101);
    settings.midPointPercent = below(settings.highPointPercent + 1);  // above it, gradients run backwards
    settings.viewType = below(4);
    settings.alignmentY = below(2);
    settings.borderType = below(4);
    settings.scaleXVisible = static_cast<std::int16_t>(-below(2));
    settings.scaleYVisible = static_cast<std::int16_t>(-below(2));
    settings.tickVisible = static_cast<std::int16_t>(-below(2));
    for (std::uint32_t AnalyserSettings::*colour :
         {&AnalyserSettings::backColor, &AnalyserSettings::backLineHighColor, &AnalyserSettings::backLineMidColor,
          &AnalyserSettings::backLineLowColor, &AnalyserSettings::lineHighColor, &AnalyserSettings::lineMidColor,
          &AnalyserSettings::lineLowColor, &AnalyserSettings::scaleColor, &AnalyserSettings::borderColor,
          &AnalyserSettings::tickColor})
      settings.*colour = random() & 0xFFFFFF;
    const Size size{60 + below(300), 40 + below(160)};
    const Point at = run % 3 ? Point{below(30), below(30)} : Point{};
    const AnalyserLayout layout = layoutOf(size);
    const int highest = (settings.alignmentY ? layout.areaHeightPx / 2 : layout.areaHeightPx) - settings.spotHeightPx;
    std::vector<LineInfo> lines(static_cast<std::size_t>(settings.lineCount));
    for (LineInfo& line : lines) {
      if (random() % 8 == 0) continue;  // fresh
      line.value = settings.spotHeightPx + below(std::max(highest, 1));
      line.peak = line.value + below(20) + (random() % 2 ? 0.5 : 0);
    }
    setColumns(lines);

    GdiBitmap expected(size.widthPx, size.heightPx), target(size.widthPx + 60, size.heightPx + 60);
    drawWithGdi(expected, settings, lines, layout.xStripHeightPx, layout.yStripWidthPx);
    constexpr COLORREF untouched = RGB(1, 2, 3);
    target.fill(0, 0, target.width(), target.height(), untouched);
    // Laid out before, as a control's own picture, or only for this paint.
    AnalyserPicture drawn;
    if (run % 2) drawn.layout(settings, size);
    drawn.paint(target.dc(), {at.x, at.y, at.x + size.widthPx, at.y + size.heightPx}, settings, axis(), columns);

    const int tolerance = settings.viewType % 2;  // GDI's gradients may round either way
    for (int y = 0; y < target.height(); ++y) {
      for (int x = 0; x < target.width(); ++x) {
        const int inX = x - at.x, inY = y - at.y;
        const bool inside = inX >= 0 && inX < size.widthPx && inY >= 0 && inY < size.heightPx;
        if (!inside) {
          ASSERT_EQ(untouched, target.at(x, y)) << x << ", " << y;
          continue;
        }
        const bool border = inX == 0 || inY == 0 || inX == size.widthPx - 1 || inY == size.heightPx - 1;
        const bool strip = inX >= layout.areaWidthPx || inY >= layout.areaHeightPx;
        if (strip && !(border && settings.borderType)) continue;  // texts
        ASSERT_LE(farthestChannel(expected.at(inX, inY), target.at(x, y)), tolerance)
            << "(" << inX << ", " << inY << ") of " << size.widthPx << " x " << size.heightPx << ", run " << run
            << ", view " << settings.viewType << ", mirrored " << settings.alignmentY << ", border "
            << settings.borderType << ", segments " << settings.spotHeightPx << " + " << settings.spotIntervalPx
            << ", columns " << settings.lineCount << " + " << settings.lineIntervalPx << std::hex << ": expected "
            << expected.at(inX, inY) << ", drawn " << target.at(x, y);
      }
    }
  }
}

TEST_F(AnalyserPictureTest, StripsHoldNothingButTheirColourAndBlackTexts) {
  settings.scaleColor = RGB(0xF0, 0x60, 0xF0);
  setColumns(std::vector<LineInfo>(60));
  const Size size{400, 200};
  const AnalyserLayout layout = layoutOf(size);
  GdiBitmap target(size.widthPx, size.heightPx);
  picture.layout(settings, size);
  paint(target, {}, size);
  int text = 0, ground = 0;
  for (int y = 0; y < size.heightPx; ++y)
    for (int x = 0; x < size.widthPx; ++x) {
      if (x < layout.areaWidthPx && y < layout.areaHeightPx) continue;
      const COLORREF colour = target.at(x, y);
      // Smoothed letters are shades between both.
      ASSERT_LE(GetGValue(colour), 0x60);
      ++(colour == settings.scaleColor ? ground : text);
    }
  EXPECT_GT(text, 200);
  EXPECT_GT(ground, 4 * text);
}

TEST_F(AnalyserPictureTest, FurnitureThatIsKeptLooksAsWhenItIsDrawnAnew) {
  const Size size{300, 150};
  std::vector<LineInfo> lines(60);
  for (std::size_t i = 0; i < lines.size(); ++i) lines[i].value = lines[i].peak = static_cast<double>(i);
  setColumns(lines);
  picture.layout(settings, size);
  GdiBitmap kept(size.widthPx, size.heightPx), anew(size.widthPx, size.heightPx);
  const auto expectSame = [&](const char* what) {
    paint(kept, {}, size);
    AnalyserPicture fresh;
    fresh.layout(settings, size);
    fresh.paint(anew.dc(), {0, 0, size.widthPx, size.heightPx}, settings, axis(), columns);
    for (int y = 0; y < size.heightPx; ++y)
      for (int x = 0; x < size.widthPx; ++x) ASSERT_EQ(anew.at(x, y), kept.at(x, y)) << what << " " << x << ", " << y;
  };
  expectSame("first");
  expectSame("second");
  settings.scaleColor = RGB(200, 100, 50);
  expectSame("ScaleColor");
  settings.borderType = 1;
  expectSame("BorderType");
  settings.borderColor = RGB(20, 200, 20);
  expectSame("BorderColor");
  settings.xScaleType = 1;
  expectSame("XScaleType");
  settings.alignmentX = 1;
  expectSame("AlignmentX");
  settings.tickColor = RGB(250, 250, 250);
  expectSame("TickColor");
  settings.backLineLowColor = RGB(9, 99, 9);
  picture.rebuild(settings);
  expectSame("a rebuild");
  settings.scaleYMax = 60;
  picture.layout(settings, size);
  expectSame("a layout");
}

TEST_F(AnalyserPictureTest, ANewSampleRateIsLabelledAtOnce) {
  const Size size{400, 150};
  settings.scaleColor = RGB(255, 255, 255);
  setColumns(std::vector<LineInfo>(60));
  picture.layout(settings, size);
  GdiBitmap at44(size.widthPx, size.heightPx), at96(size.widthPx, size.heightPx);
  paint(at44, {}, size);
  picture.paint(at96.dc(), {0, 0, size.widthPx, size.heightPx}, settings, bandAxis(settings, 512, 96000), columns);
  int different = 0;
  for (int y = 0; y < size.heightPx; ++y)
    for (int x = 0; x < size.widthPx; ++x) different += at44.at(x, y) != at96.at(x, y);
  EXPECT_GT(different, 20);
}

TEST_F(AnalyserPictureTest, APictureOfAnotherSizeScalesTheColumnsToItsOwnHeight) {
  settings.scaleXVisible = settings.scaleYVisible = 0;
  settings.spotIntervalPx = 0;
  settings.lineCount = 4;
  settings.tickVisible = 0;
  settings.lineHighColor = settings.lineMidColor = settings.lineLowColor = RGB(255, 255, 255);
  std::vector<LineInfo> lines(4);
  for (LineInfo& line : lines) line.value = line.peak = 50;
  setColumns(lines);
  picture.layout(settings, {80, 100});
  GdiBitmap twice(160, 200);
  paint(twice, {}, {160, 200});
  int lit = 0;
  for (int y = 0; y < 200; ++y) lit += twice.at(20, y) == RGB(255, 255, 255);
  EXPECT_EQ(100, lit);
  EXPECT_EQ(100, picture.columnAreaHeightPx());  // the own picture stays what it was
}

TEST_F(AnalyserPictureTest, PaintingASteadyPictureAllocatesNothing) {
  const Size size{400, 200};
  std::vector<LineInfo> lines(60);
  for (std::size_t i = 0; i < lines.size(); ++i) lines[i].value = lines[i].peak = static_cast<double>(2 * i);
  setColumns(lines);
  GdiBitmap target(size.widthPx, size.heightPx);
  picture.layout(settings, size);
  for (int i = 0; i < 3; ++i) paint(target, {}, size);
  const auto before = test::allocationCount();
  for (int i = 0; i < 20; ++i) paint(target, {}, size);
  EXPECT_EQ(before, test::allocationCount());
}

TEST_F(AnalyserPictureTest, SizesWithoutAreaAndBeyondGdiDrawNothing) {
  GdiBitmap target(10, 10);
  target.fill(0, 0, 10, 10, RGB(1, 2, 3));
  setColumns(std::vector<LineInfo>(60));
  for (const Size size : {Size{0, 0}, Size{0, 10}, Size{10, 0}, Size{-5, 10}, Size{40000, 10}}) {
    picture.layout(settings, size);
    paint(target, {}, size);
    EXPECT_EQ(RGB(1, 2, 3), target.at(0, 0)) << size.widthPx << " x " << size.heightPx;
  }
}

}  // namespace
}  // namespace av::type3
