#include "type2/win/meter_picture.h"

#include "common/win/critical_section.h"
#include "support/allocation_count.h"
#include "support/line_oracle.h"
#include "support/meter_picture.h"
#include "support/win/import_probe.h"
#include "support/win/memory_picture.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace av::type2 {
namespace {

/// Forty lines in a control of 200 × 100, painted into the middle of a larger picture.
class MeterPictureTest : public testing::Test {
 protected:
  MeterPictureTest() {
    settings.tickVisible = -1;
    lines.SetLineCount(40);
    change();
  }

  /// Other levels, the floor, the top and what is no number among them.
  void change() {
    lines.withLines([this](std::span<LineInfo> all) {
      for (LineInfo& line : all) {
        line.value = -95.0 + static_cast<double>(random() % 1000) / 10;
        line.peak = line.value + static_cast<double>(random() % 200) / 10;
      }
      all[0].value = all[0].peak = -91.0;
      all[1].value = all[1].peak = 0.0;
      all[2].value = std::numeric_limits<double>::quiet_NaN();
    });
  }

  std::vector<LineInfo> current() {
    std::vector<LineInfo> copy;
    lines.withLines([&copy](std::span<LineInfo> all) { copy.assign(all.begin(), all.end()); });
    return copy;
  }

  /// What the picture paints at (30, 20) of a white target.
  std::vector<std::uint32_t> painted(bool inWindow, int width = 200, int height = 100, bool hasData = true) {
    const test::MemoryPicture target(width + 60, height + 40);
    picture.paint(target.context(), {30, 20, 30 + width, 20 + height}, inWindow, settings, lines, hasData);
    const std::vector<std::uint32_t> all = target.pixels();
    std::vector<std::uint32_t> inside;
    for (int y = 0; y < height + 40; ++y) {
      for (int x = 0; x < width + 60; ++x) {
        const std::uint32_t pixel = all[static_cast<std::size_t>(y * (width + 60) + x)];
        if (x >= 30 && x < 30 + width && y >= 20 && y < 20 + height) {
          inside.push_back(pixel);
        } else if (pixel != 0xFFFFFF) {
          ADD_FAILURE() << "painted beyond its bounds at " << x << ", " << y;
          return {};
        }
      }
    }
    return inside;
  }

  std::vector<std::uint32_t> expectedBars(int width = 200, int height = 100) {
    const test::PixelGrid grid = test::meterBars(settings, current(), width, height);
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) pixels.push_back(grid.at(x, y) & 0xFFFFFF);
    return pixels;
  }

  CriticalSection lock;
  LineList lines{lock};
  MeterSettings settings;
  std::mt19937 random{3};
  MeterPicture picture;
};

TEST_F(MeterPictureTest, ShowsTheBarsAndDotsOfEveryModeToThePixel) {
  settings.backColor = 0xFF101820;
  for (const int alignmentX : {0, 1}) {
    for (const int type : {0, 1, 2, 3}) {
      settings.alignmentX = alignmentX;
      settings.lineType = type;
      change();
      picture.layout(settings, lines.count(), {200, 100});
      EXPECT_EQ(expectedBars(), painted(true)) << alignmentX * 8 + type;
      EXPECT_EQ(expectedBars(), painted(false)) << alignmentX * 8 + type;
    }
  }
}

TEST_F(MeterPictureTest, ShowsBackgroundAndBorderOnlyWithoutData) {
  settings.backColor = 0xFF405060;
  settings.borderColor = 0xFFABCDEF;
  settings.borderType = 1;
  for (const int type : {0, 4, 7}) {
    settings.lineType = type;
    picture.layout(settings, lines.count(), {200, 100});
    std::vector<std::uint32_t> expected(200 * 100, 0x405060);
    test::forEachLinePixel(std::vector<Point>{{199, 0}, {199, 99}, {0, 99}, {0, 0}, {199, 0}},
                           [&](Point p) { expected[static_cast<std::size_t>(p.y * 200 + p.x)] = 0xABCDEF; });
    EXPECT_EQ(expected, painted(true, 200, 100, false)) << type;
  }
}

TEST_F(MeterPictureTest, ShowsAGraphOnePixelWideAsTheLinesFromLevelToLevel) {
  settings.lineType = 4;
  settings.spotHeightPx = 1;
  lines.SetLineCount(3);
  lines.withLines([](std::span<LineInfo> all) {
    all[0] = {1000, -91.0, -91.0, 0};
    all[1] = {1000, -45.5, 0.0, 0};
    all[2] = {1000, -91.0, -45.5, 0};
  });
  picture.layout(settings, 3, {202, 102});
  // Inner area: columns 1 to 201, rows 1 to 101, 100 of them for 91 dB.
  std::vector<std::uint32_t> expected(202 * 102, 0);
  const auto draw = [&](const std::vector<Point>& points, std::uint32_t colour) {
    test::forEachLinePixel(points, [&](Point p) { expected[static_cast<std::size_t>(p.y * 202 + p.x)] = colour; });
  };
  draw({{1, 101}, {101, 1}, {201, 51}}, 0xFF0000);
  draw({{1, 101}, {101, 51}, {201, 101}}, 0x00FF00);
  EXPECT_EQ(expected, painted(true, 202, 102));
  settings.tickVisible = 0;
  std::fill(expected.begin(), expected.end(), 0u);
  draw({{1, 101}, {101, 51}, {201, 101}}, 0x00FF00);
  EXPECT_EQ(expected, painted(true, 202, 102));
}

TEST_F(MeterPictureTest, UsesTheLayoutOfTheWindowInTheWindowOnly) {
  picture.layout(settings, lines.count(), {200, 100});
  const auto before = painted(true);
  settings.spotHeightPx = 7;  // no layout since
  const auto elsewhere = painted(false);
  EXPECT_EQ(before, painted(true));
  EXPECT_NE(before, elsewhere);
  EXPECT_EQ(expectedBars(), elsewhere);
  EXPECT_EQ(before, painted(true)) << "a picture elsewhere has changed the window's";
  picture.layout(settings, lines.count(), {200, 100});
  EXPECT_EQ(expectedBars(), painted(true));
}

TEST_F(MeterPictureTest, FillsRectanglesOfAnySizeElsewhereAndInAWindowThatWasNotLaidOut) {
  for (const bool inWindow : {false, true}) {
    EXPECT_EQ(expectedBars(311, 57), painted(inWindow, 311, 57));
    EXPECT_EQ(expectedBars(120, 300), painted(inWindow, 120, 300));
    picture.layout(settings, lines.count(), {200, 100});
  }
}

TEST_F(MeterPictureTest, PaintsNothingIntoAnEmptyRectangle) {
  const test::MemoryPicture target(40, 40);
  picture.layout(settings, lines.count(), {0, 0});
  for (const RECT& bounds : {RECT{5, 5, 5, 30}, RECT{5, 5, 30, 5}, RECT{30, 30, 5, 5}, RECT{0, 0, 40000, 10}})
    picture.paint(target.context(), bounds, true, settings, lines, true);
  EXPECT_EQ(std::vector<std::uint32_t>(1600, 0xFFFFFF), target.pixels());
}

TEST_F(MeterPictureTest, PaintsWhatThereIsWhenTheLinesHaveChangedSinceTheLayout) {
  picture.layout(settings, lines.count(), {200, 100});
  lines.SetLineCount(60);  // more than were laid out: the rest does not show
  const auto more = painted(true);
  lines.SetLineCount(40);
  EXPECT_EQ(more, painted(true));
  lines.SetLineCount(0);
  EXPECT_EQ(std::vector<std::uint32_t>(200 * 100, 0), painted(true));
}

TEST_F(MeterPictureTest, PaintsEachFrameAsANewPictureWould) {
  for (int run = 0; run < 200; ++run) {
    settings.lineType = static_cast<int>(random() % 8);
    settings.alignmentX = static_cast<int>(random() % 2);
    settings.borderType = static_cast<int>(random() % 5);
    settings.borderWidthPx = static_cast<int>(random() % 6);
    settings.spotHeightPx = static_cast<int>(random() % 6);
    settings.spotIntervalPx = static_cast<int>(random() % 4);
    settings.lineInterval = static_cast<int>(random() % 4);
    settings.lineMidColor = opaqueBlack | static_cast<Argb>(random() & 0xFFFFFF);
    lines.SetLineCount(3 + static_cast<int>(random() % 50));
    change();
    const LONG width = 100 + static_cast<LONG>(random() % 150);
    picture.layout(settings, lines.count(), {width, 80});
    const auto shown = painted(true, width, 80);
    test::MemoryPicture target(width, 80);
    MeterPicture fresh;
    fresh.paint(target.context(), {0, 0, width, 80}, false, settings, lines, true);
    ASSERT_EQ(target.pixels(), shown) << "run " << run << ", mode " << settings.alignmentX * 8 + settings.lineType;
  }
}

TEST_F(MeterPictureTest, PaintingInASteadyStateAllocatesNothingAndMakesNoObject) {
  const test::MemoryPicture target(300, 200);
  const RECT bounds{0, 0, 300, 200};
  settings.borderType = 2;
  for (const bool inWindow : {true, false}) {
    for (const int type : {0, 1, 2, 3, 4, 5}) {
      for (const int alignmentX : {0, 1}) {
        settings.lineType = type;
        settings.alignmentX = alignmentX;
        picture.layout(settings, lines.count(), {300, 200});
        for (int i = 0; i < 2; ++i) picture.paint(target.context(), bounds, inWindow, settings, lines, true);
        const test::ImportProbe probe(
            GetModuleHandleW(nullptr),
            {"GdipCreatePen1", "GdipCreateBitmapFromScan0", "GdipGetImageGraphicsContext", "GdipCreateSolidFill",
             "CreateDIBSection", "CreateCompatibleDC", "CreateSolidBrush", "CreatePen"});
        const std::uint64_t before = test::allocationCount();
        for (int i = 0; i < 10; ++i) {
          change();
          picture.paint(target.context(), bounds, inWindow, settings, lines, true);
        }
        EXPECT_EQ(before, test::allocationCount()) << alignmentX * 8 + type << inWindow;
        EXPECT_EQ(0, probe.calls()) << alignmentX * 8 + type << inWindow;
      }
    }
  }
}

TEST_F(MeterPictureTest, LetsItsGdiplusObjectsGoWhenDiscarded) {
  settings.borderType = 1;
  for (int i = 0; i < 2; ++i) {  // a second time: what is drawn after that is made anew
    const test::ImportProbe probe(GetModuleHandleW(nullptr),
                                  {"GdipCreatePen1", "GdipDeletePen", "GdipCreateBitmapFromScan0", "GdipDisposeImage",
                                   "GdipGetImageGraphicsContext", "GdipDeleteGraphics"});
    painted(false);
    EXPECT_EQ(1, probe.calls("GdipCreatePen1"));
    EXPECT_EQ(1, probe.calls("GdipCreateBitmapFromScan0"));
    picture.discard();
    EXPECT_EQ(1, probe.calls("GdipDeletePen"));
    EXPECT_EQ(1, probe.calls("GdipDisposeImage"));
    EXPECT_EQ(1, probe.calls("GdipDeleteGraphics"));
  }
}

TEST_F(MeterPictureTest, HoldsOneStartOfGdiplus) {
  const long before = GdiplusToken::liveCount();
  {
    const MeterPicture another;
    EXPECT_EQ(before + 1, GdiplusToken::liveCount());
  }
  EXPECT_EQ(before, GdiplusToken::liveCount());
}

}  // namespace
}  // namespace av::type2
