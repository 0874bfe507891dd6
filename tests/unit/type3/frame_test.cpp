#include "type3/frame.h"

#include "support/allocation_count.h"
#include "support/analyser_picture.h"
#include "support/made_up_font.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace av::type3 {
namespace {

constexpr int huge = std::numeric_limits<std::int32_t>::max();

class AnalyserFrameTest : public testing::Test {
 protected:
  AnalyserFrameTest() { settings.scaleColor = 0xF0F0F0; }

  void build(int width, int height) {
    layout = computeLayout(settings, {width, height}, 12, font);
    rebuildColumnImages(images, settings, layout.areaHeightPx);
    buildFurniture(frame, settings, layout, images, bandAxis(settings, 512, 44100), font);
    buildColumns(frame, settings, layout, images, lines);
  }

  /// Replays the frame, texts apart.
  test::Bitmap picture() const {
    test::Bitmap result(frame.size.widthPx, frame.size.heightPx, oleColorFromArgb(frame.background));
    const auto fill = [&](const FilledRect& part) {
      result.fill(part.rect.left, part.rect.top, part.rect.right, part.rect.bottom, oleColorFromArgb(part.colour));
    };
    const auto column = [&](const ColumnFill& part) {
      for (int row = 0; row < part.rect.height(); ++row) {
        const Argb colour = images[part.column].at(static_cast<std::size_t>(part.firstRow + row));
        fill({{part.rect.left, part.rect.top + row, part.rect.right, part.rect.top + row + 1}, colour});
      }
    };
    std::ranges::for_each(frame.strips, fill);
    std::ranges::for_each(frame.unlit, column);
    std::ranges::for_each(frame.gaps, fill);
    for (const Polyline& line : frame.border.lines) {
      const auto points = frame.border.pointsOf(line);
      test::forEachLinePixel(std::vector<Point>(points.begin(), points.end()),
                             [&](Point p) { result.set(p.x, p.y, oleColorFromArgb(line.colour)); });
    }
    std::ranges::for_each(frame.columns, column);
    std::ranges::for_each(frame.ticks, fill);
    return result;
  }

  const test::MadeUpFont font{12};
  AnalyserSettings settings;
  AnalyserLayout layout;
  ColumnImages images;
  std::vector<LineInfo> lines = std::vector<LineInfo>(60);
  AnalyserFrame frame;
};

TEST_F(AnalyserFrameTest, IsTheLiteralPictureForAnySettings) {
  std::mt19937 random(23);
  const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  for (int run = 0; run < 1500; ++run) {
    settings.lineCount = 4 + below(random() % 2 ? 20 : 197);
    settings.lineIntervalPx = below(random() % 4 ? 6 : 40);
    settings.spotHeightPx = below(7);
    settings.spotIntervalPx = below(4);
    settings.midPointPercent = below(101);
    settings.highPointPercent = below(101);
    settings.viewType = below(4);
    settings.alignmentY = below(2);
    settings.borderType = below(4);
    settings.scaleXVisible = static_cast<std::int16_t>(below(3) - 1);
    settings.scaleYVisible = static_cast<std::int16_t>(below(3) - 1);
    settings.tickVisible = static_cast<std::int16_t>(below(3) - 1);
    for (std::uint32_t AnalyserSettings::*colour :
         {&AnalyserSettings::backColor, &AnalyserSettings::backLineHighColor, &AnalyserSettings::backLineMidColor,
          &AnalyserSettings::backLineLowColor, &AnalyserSettings::lineHighColor, &AnalyserSettings::lineMidColor,
          &AnalyserSettings::lineLowColor, &AnalyserSettings::scaleColor, &AnalyserSettings::borderColor,
          &AnalyserSettings::tickColor})
      settings.*colour = random() & 0xFFFFFF;
    const int width = 1 + below(300);
    const int height = 1 + below(200);
    lines.assign(static_cast<std::size_t>(settings.lineCount), {});
    for (LineInfo& line : lines) {
      if (random() % 8 == 0) continue;  // fresh
      line.value = below(height + 10);
      line.peak = line.value + below(20) + (random() % 2 ? 0.5 : 0);
    }
    build(width, height);
    const auto expected =
        test::analyserPicture(settings, lines, width, height, layout.xStripHeightPx, layout.yStripWidthPx);
    const auto actual = picture();
    if (actual == expected) continue;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        ASSERT_EQ(actual.at(x, y), expected.at(x, y))
            << "(" << x << ", " << y << ") of " << width << " x " << height << ", run " << run << ", view "
            << settings.viewType << ", mirrored " << settings.alignmentY << ", segments " << settings.spotHeightPx
            << " + " << settings.spotIntervalPx << ", columns " << settings.lineCount << " + "
            << settings.lineIntervalPx;
      }
    }
  }
}

TEST_F(AnalyserFrameTest, DrawsNothingForHeightsAndPeaksOfZeroAndLess) {
  for (const int viewType : {0, 1, 2, 3}) {
    for (const int mirrored : {0, 1}) {
      settings.viewType = viewType;
      settings.alignmentY = mirrored;
      for (const double value : {0.0, 0.9, -0.5, -1.0, -91.0}) {
        for (LineInfo& line : lines) line.value = line.peak = value;
        build(400, 200);
        EXPECT_TRUE(frame.columns.empty()) << value;
        EXPECT_TRUE(frame.ticks.empty()) << value;
      }
    }
  }
}

TEST_F(AnalyserFrameTest, WithoutSegmentGapsShowsWholeColumns) {
  settings.spotIntervalPx = 0;
  lines[0].value = 50;
  build(400, 200);
  EXPECT_EQ(std::ranges::count(images.lit, images.gapColour), 0);
  EXPECT_EQ(std::ranges::count(images.unlit, images.gapColour), 0);
  ASSERT_EQ(frame.columns.size(), 1u);
  EXPECT_EQ(frame.columns[0].rect.height(), 50);
}

TEST_F(AnalyserFrameTest, ShowsSpotsOfWholeSegmentsInSpotViews) {
  settings.viewType = 2;
  settings.spotHeightPx = 4;
  lines[3].value = 50;
  build(400, 200);
  EXPECT_EQ(std::ranges::count(images.lit, images.gapColour), 0);
  EXPECT_NE(std::ranges::count(images.unlit, images.gapColour), 0);
  ASSERT_EQ(frame.columns.size(), 1u);
  const Rect spot = frame.columns[0].rect;
  EXPECT_EQ(spot.top, layout.areaHeightPx - 50);
  EXPECT_EQ(spot.height(), 4);
}

TEST_F(AnalyserFrameTest, KeepsTheGapsColourUntilTheImagesAreRebuilt) {
  settings.backColor = 0x112233;
  build(400, 200);
  ASSERT_FALSE(frame.gaps.empty());
  settings.backColor = 0x445566;
  buildFurniture(frame, settings, layout, images, bandAxis(settings, 512, 44100), font);
  EXPECT_EQ(oleColorFromArgb(frame.background), 0x445566u);
  EXPECT_EQ(oleColorFromArgb(frame.gaps[0].colour), 0x112233u);
  build(400, 200);
  EXPECT_EQ(oleColorFromArgb(frame.gaps[0].colour), 0x445566u);
}

TEST_F(AnalyserFrameTest, LeavesWhatStandsBesideTheBlockAloneWhereGapsAreWiderThanColumns) {
  settings.scaleXVisible = 0;
  settings.scaleYVisible = -1;
  settings.backColor = 0x112233;
  for (const int interval : {2, 3, 20, 59}) {
    settings.lineIntervalPx = interval;
    build(100, 80);
    const ColumnGeometry geometry = columnGeometry(settings, layout.areaWidthPx);
    ASSERT_LT(geometry.stepPx, interval);
    ASSERT_GT(geometry.blockWidthPx, 0);
    settings.backColor = 0x445566;  // the block's gaps keep the old colour; nothing else has ever had it
    buildFurniture(frame, settings, layout, images, bandAxis(settings, 512, 44100), font);
    const test::Bitmap shown = picture();
    const int end = geometry.leftPx + geometry.blockWidthPx;
    for (int x = 0; x < 100; ++x) {
      const bool strip = x >= layout.areaWidthPx;
      const bool inBlock = x >= geometry.leftPx && x < end;
      EXPECT_EQ(shown.at(x, 40), strip ? 0xF0F0F0u : inBlock ? 0x112233u : 0x445566u) << x << ", interval " << interval;
    }
    settings.backColor = 0x112233;
  }
}

TEST_F(AnalyserFrameTest, HasScalesTicksAndTextsForMinusOneOnly) {
  for (LineInfo& line : lines) line.peak = 20;
  build(400, 200);
  EXPECT_EQ(frame.strips.size(), 2u);
  EXPECT_EQ(frame.ticks.size(), 60u);
  EXPECT_FALSE(frame.texts.empty());
  for (const std::int16_t notTrue : {std::int16_t{0}, std::int16_t{1}, std::int16_t{-2}}) {
    settings.scaleXVisible = settings.scaleYVisible = settings.tickVisible = notTrue;
    build(400, 200);
    EXPECT_TRUE(frame.strips.empty());
    EXPECT_TRUE(frame.ticks.empty());
    EXPECT_TRUE(frame.texts.empty());
    EXPECT_EQ(layout.areaHeightPx, 200);
    EXPECT_EQ(layout.areaWidthPx, 400);
  }
}

TEST_F(AnalyserFrameTest, HasTextsInBlackOnTheColourOfTheStrips) {
  settings.scaleColor = 0x336699;
  build(400, 200);
  EXPECT_EQ(oleColorFromArgb(frame.textBackground), 0x336699u);
  for (const TextRun& run : frame.texts) EXPECT_EQ(run.colour, opaqueBlack) << run.text;
}

TEST_F(AnalyserFrameTest, StandsSettingsBeyondReason) {
  for (const int mirrored : {0, 1}) {
    for (const int viewType : {0, 1, 2, 3}) {
      settings.alignmentY = mirrored;
      settings.viewType = viewType;
      for (LineInfo& line : lines) line.value = line.peak = 1e300;
      for (const int interval : {2, huge}) {
        for (const int spot : {0, huge}) {
          settings.lineIntervalPx = interval;
          settings.spotHeightPx = settings.spotIntervalPx = spot;
          settings.scaleYMin = settings.scaleYMax = spot;
          for (const int size : {-5, 0, 1, 2, 50, 300}) build(size, size);
        }
      }
    }
  }
  lines.clear();
  build(300, 300);
  EXPECT_TRUE(frame.columns.empty());
}

TEST_F(AnalyserFrameTest, OfASteadySizeAllocatesNothingForTheSound) {
  for (LineInfo& line : lines) line.value = line.peak = 100;
  settings.alignmentY = 1;
  build(400, 300);
  const std::uint64_t before = test::allocationCount();
  for (int i = 0; i < 5; ++i) buildColumns(frame, settings, layout, images, lines);
  EXPECT_EQ(test::allocationCount(), before);
  EXPECT_EQ(frame.columns.size(), 120u);
}

}  // namespace
}  // namespace av::type3
