#include "type1/win/view_painter.h"

#include "gfx/win/gdiplus_text_measure.h"
#include "gfx/win/gdiplus_token.h"
#include "gfx/win/scale_font.h"
#include "support/line_oracle.h"
#include "support/win/save_png.h"

#include <gtest/gtest.h>

#include <olectl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

namespace av::type1 {
namespace {

using Microsoft::WRL::ComPtr;

ComPtr<IFontDisp> arial(double points) {
  wchar_t face[] = L"Arial";
  FONTDESC description{};
  description.cbSizeofstruct = sizeof description;
  description.lpstrName = face;
  description.cySize.int64 = static_cast<LONGLONG>(points * 10000);
  description.sWeight = FW_NORMAL;
  description.sCharset = DEFAULT_CHARSET;
  ComPtr<IFontDisp> font;
  OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(font.GetAddressOf()));
  return font;
}

/// The view as a control paints it, without the control.
class ViewPainterTest : public testing::Test {
 protected:
  ViewPainterTest() {
    settings.scaleColor = argbFromRgb(240, 240, 240);
    setFont(createDefaultScaleFont());
  }

  void setFont(const ComPtr<IFontDisp>& ole) { font = createScaleFont(ole.Get()); }

  void paint(int width, int height) {
    ASSERT_TRUE(surface.resize({width, height}));
    measure.use(surface.graphics(), font.get());
    layout = computeLayout(settings, signal.sampleRateHz, {0, 0, width, height},
                           fontHeightPx(font.get(), surface.graphics()));
    buildFrame(frame, settings, signal, layout, measure);
    ASSERT_TRUE(painter.paint(frame, font.get()));
  }

  /// Two channels of samples: a swelling sine and a slower one of another height.
  void fillWithSamples() {
    for (std::size_t channel = 0; channel < 2; ++channel) {
      values[channel].resize(1024);
      for (std::size_t i = 0; i < 1024; ++i) {
        const double t = static_cast<double>(i) / 1024;
        values[channel][i] =
            channel == 0 ? 30000 * t * std::sin(t * 40 * std::numbers::pi) : 15000 * std::cos(t * 6 * std::numbers::pi);
      }
    }
    show();
  }

  /// Two channels of levels: peaks over a sloping floor.
  void fillWithLevels() {
    for (std::size_t channel = 0; channel < 2; ++channel) {
      values[channel].resize(1024);
      for (std::size_t k = 0; k < 1024; ++k) {
        const double bin = static_cast<double>(k);
        const double peak = 60 * std::exp(-std::pow((bin - 60.0 - 90.0 * static_cast<double>(channel)) / 6, 2));
        values[channel][k] = -70 - bin / 40 + peak + 3 * std::sin(bin * 1.7);
      }
    }
    show();
  }

  void show() {
    signal.dataReceived = true;
    for (std::size_t channel = 0; channel < 2; ++channel) {
      signal.analysis[channel] = values[channel];
      signal.display[channel] = values[channel];
    }
  }

  Argb at(int x, int y) {
    return surface.pixels()[static_cast<std::size_t>(y) * static_cast<std::size_t>(surface.size().widthPx) +
                            static_cast<std::size_t>(x)];
  }

  /// Every pixel of the last channel's curve lies where the frame's points put it, or one row beside.
  void expectLastCurveNear(const std::vector<Point>& points, Argb colour) {
    int missing = 0;
    int checked = 0;
    test::forEachLinePixel(points, [&](Point p) {
      if (p.x < 0 || p.x >= surface.size().widthPx) return;
      ++checked;
      bool found = false;
      for (int y = std::max(p.y - 1, 0); y <= std::min(p.y + 1, surface.size().heightPx - 1); ++y) {
        found = found || at(p.x, y) == colour;
      }
      missing += !found;
    });
    EXPECT_GT(checked, layout.plotWidth);
    EXPECT_EQ(0, missing);
  }

  GdiplusToken token;
  OffscreenSurface surface;
  ViewPainter painter{surface, GetModuleHandleW(nullptr)};
  GdiplusTextMeasure measure;
  FontHandle font;
  ViewSettings settings;
  ViewSignal signal;
  std::array<std::vector<double>, 2> values;
  ViewLayout layout;
  ViewFrame frame;
};

TEST_F(ViewPainterTest, PaintsBackgroundAndStripsExactly) {
  settings.backColor = argbFromRgb(10, 20, 30);
  settings.gridVisible = 0;
  settings.textAndLineColors[0] = settings.scaleColor;  // texts unseen
  paint(320, 200);
  ASSERT_GT(layout.xScaleHeightPx, 0);
  ASSERT_GT(layout.yScaleWidthPx, 0);
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 320; ++x) {
      const bool strip = y >= 200 - layout.xScaleHeightPx + 1 || x >= 320 - layout.yScaleWidthPx + 1;
      ASSERT_EQ(strip ? settings.scaleColor : settings.backColor, at(x, y)) << x << ", " << y;
    }
  }
}

TEST_F(ViewPainterTest, PaintsEachBorderOverTheStripsToTheCorners) {
  settings.gridVisible = 0;
  settings.borderColor = argbFromRgb(1, 200, 3);
  const int right = 199;
  const int bottom = 99;
  struct Expected {
    int type;
    Argb topLeft;      // and its two edges
    Argb bottomRight;  // and its two edges
  };
  for (const Expected& expected : {Expected{1, settings.borderColor, settings.borderColor},
                                   Expected{2, 0xFF100000, 0xFF140000}, Expected{3, 0xFF140000, 0xFF100000}}) {
    settings.borderType = expected.type;
    paint(right + 1, bottom + 1);
    for (int x = 0; x <= right; ++x) {
      ASSERT_EQ(expected.topLeft, at(x, 0)) << expected.type << " " << x;
      // Left and top are drawn last, so both shared corners are theirs.
      ASSERT_EQ(x == 0 ? expected.topLeft : expected.bottomRight, at(x, bottom)) << expected.type << " " << x;
    }
    for (int y = 1; y < bottom; ++y) {
      ASSERT_EQ(expected.topLeft, at(0, y)) << expected.type << " " << y;
      ASSERT_EQ(expected.bottomRight, at(right, y)) << expected.type << " " << y;
    }
  }
  for (const int none : {0, 4, -1}) {
    settings.borderType = none;
    paint(right + 1, bottom + 1);
    EXPECT_EQ(settings.backColor, at(0, 0));
    EXPECT_EQ(settings.scaleColor, at(right, bottom));
  }
}

TEST_F(ViewPainterTest, PaintsTheGridToThePixel) {
  settings.visualizationType = 2;
  paint(640, 400);
  ASSERT_GT(layout.xLabelCount, 2);
  ASSERT_GT(layout.yDivisionCount, 2);
  std::vector<bool> column(640, false);
  std::vector<bool> row(400, false);
  for (int i = 1; i < layout.xLabelCount; ++i) {
    column[static_cast<std::size_t>(layout.plotWidth * i / layout.xLabelCount)] = true;
  }
  for (int j = 1; j < layout.yDivisionCount; ++j) {
    row[static_cast<std::size_t>(layout.plotHeight * j / layout.yDivisionCount)] = true;
  }
  for (int y = 0; y < layout.plotHeight; ++y) {
    for (int x = 0; x < layout.plotWidth; ++x) {
      const bool line = column[static_cast<std::size_t>(x)] || row[static_cast<std::size_t>(y)];
      ASSERT_EQ(line ? settings.gridColor : settings.backColor, at(x, y)) << x << ", " << y;
    }
  }
}

TEST_F(ViewPainterTest, PaintsTheWaveformWhereItsFormulaPutsIt) {
  fillWithSamples();
  paint(640, 400);
  test::savePng(surface, "waveform");
  std::vector<Point> points;
  for (int i = 0; i < 1024; ++i) {
    const long double half = layout.plotHeight / 2.0L;
    const long double y = half - static_cast<long double>(values[1][static_cast<std::size_t>(i)]) * half / 32767;
    points.push_back({layout.plotWidth * i / 1023, static_cast<int>(std::floor(y + 0.5L))});
  }
  points.back().y = points[points.size() - 2].y;
  expectLastCurveNear(points, settings.textAndLineColors[2]);
}

TEST_F(ViewPainterTest, PaintsTheSpectrumWhereItsFormulaPutsIt) {
  settings.visualizationType = 2;
  fillWithLevels();
  paint(640, 400);
  test::savePng(surface, "spectrum");
  std::vector<Point> points;
  for (int k = 1; k < 511; ++k) {
    const long double level = -static_cast<long double>(values[1][static_cast<std::size_t>(k)]);
    const long double y = level * layout.plotHeight / static_cast<long double>(settings.dynamicRangeDb);
    points.push_back({layout.plotWidth * k / 511, std::min(static_cast<int>(y), layout.plotHeight)});
  }
  points.insert(points.begin(), {0, points.front().y});
  points.push_back({layout.plotWidth, points.back().y});
  expectLastCurveNear(points, settings.textAndLineColors[2]);
}

/// The ink of one text, drawn alone in black on white.
Rect inkOf(FramePainter& painter, OffscreenSurface& surface, const TextRun& run, const Gdiplus::GpFont* font) {
  TextRun black = run;
  black.colour = opaqueBlack;
  painter.clear(0xFFFFFFFF);
  painter.draw(std::span(&black, 1), font);
  const auto pixels = surface.pixels();
  const int width = surface.size().widthPx;
  Rect box{width, surface.size().heightPx, 0, 0};
  for (int y = 0; y < surface.size().heightPx; ++y) {
    for (int x = 0; x < width; ++x) {
      if (pixels[static_cast<std::size_t>(y * width + x)] == 0xFFFFFFFF) continue;
      box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), std::max(box.bottom, y + 1)};
    }
  }
  return box;
}

TEST_F(ViewPainterTest, DrawsNoTwoTextsThatTouchAndNoneOutsideItsStrip) {
  FramePainter plainPainter(surface);
  int texts = 0;
  for (const double points : {6.0, 9.0, 14.0, 24.0}) {
    setFont(arial(points));
    for (const int type : {1, 2}) {
      settings.visualizationType = type;
      for (const Size size : {Size{80, 50}, Size{160, 100}, Size{320, 240}, Size{640, 400}, Size{801, 603}}) {
        paint(size.widthPx, size.heightPx);
        std::vector<Rect> inks;
        for (const TextRun& run : frame.labels) {
          const Rect ink = inkOf(plainPainter, surface, run, font.get());
          ASSERT_FALSE(ink.isEmpty()) << run.text;
          const bool inXStrip = ink.top >= size.heightPx - layout.xScaleHeightPx + 1;
          const bool inYStrip = ink.left >= size.widthPx - layout.yScaleWidthPx + 1;
          EXPECT_TRUE(inXStrip || inYStrip) << run.text << " at " << points << " pt";
          for (const Rect& other : inks) {
            EXPECT_TRUE(ink.right < other.left || other.right < ink.left || ink.bottom < other.top ||
                        other.bottom < ink.top)
                << run.text << " at " << points << " pt in " << size.widthPx << " x " << size.heightPx;
          }
          inks.push_back(ink);
          ++texts;
        }
      }
    }
  }
  EXPECT_GT(texts, 300);
}

TEST_F(ViewPainterTest, PaintsPicturesForTheEye) {
  settings.borderType = 1;
  int number = 0;
  for (const Size size : {Size{80, 50}, Size{160, 100}, Size{320, 200}, Size{1000, 300}}) {
    for (const int type : {1, 2}) {
      settings.visualizationType = type;
      if (type == 1) {
        fillWithSamples();
      } else {
        fillWithLevels();
      }
      paint(size.widthPx, size.heightPx);
      test::savePng(surface, "view" + std::to_string(number++));
      EXPECT_EQ(2u, frame.curves.lines.size());
    }
  }
  setFont(arial(18));
  paint(640, 400);
  test::savePng(surface, "large_font");
  setFont(createDefaultScaleFont());
  for (const int type : {2, 3, 4, 5}) {
    settings.visualizationType = type;
    for (const int axis : {1, 2}) {
      settings.fftViewType = axis;
      paint(640, 400);
      test::savePng(surface, "type" + std::to_string(type) + "_axis" + std::to_string(axis));
      EXPECT_EQ(type > 2, !frame.bars.empty());
    }
  }
  fillWithSamples();
  for (const int type : {6, 7}) {
    settings.visualizationType = type;
    paint(640, 400);
    test::savePng(surface, "type" + std::to_string(type));
  }
}

}  // namespace
}  // namespace av::type1
