#include "type1/layout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace av::type1 {
namespace {

constexpr Rect client(int width, int height) { return {0, 0, width, height}; }

TEST(ViewLayout, DividesTheDefaultViewOf640By400WithA13PixelFont) {
  const ViewLayout layout = computeLayout(ViewSettings{}, 44100, client(640, 400), 13);
  EXPECT_EQ(13, layout.textHeightPx);
  EXPECT_EQ(23, layout.xScaleHeightPx);           // 13 + 10
  EXPECT_EQ((2 + 2) * 13, layout.yScaleWidthPx);  // "90" has two characters
  EXPECT_EQ(0, layout.plotLeft);
  EXPECT_EQ(0, layout.plotTop);
  EXPECT_EQ(588, layout.plotWidth);
  EXPECT_EQ(377, layout.plotHeight);
  EXPECT_EQ(10, layout.xLabelCount);     // "1024": (5·13·2) ÷ 3 = 43 a label, 588 ÷ 43 = 13
  EXPECT_EQ(18, layout.yDivisionCount);  // 377 ÷ 21 = 17, 90 ÷ 17 = 5, 90 ÷ 5 = 18
}

TEST(ViewLayout, KeepsTheOriginOfTheClientRectangle) {
  const ViewLayout atCorner = computeLayout(ViewSettings{}, 44100, client(300, 200), 12);
  ViewLayout moved = computeLayout(ViewSettings{}, 44100, {100, 50, 400, 250}, 12);
  EXPECT_EQ(100, moved.plotLeft);
  EXPECT_EQ(50, moved.plotTop);
  moved.client = atCorner.client;
  moved.plotLeft = moved.plotTop = 0;
  EXPECT_EQ(atCorner, moved);
}

TEST(ViewLayout, LeavesAnAreaBelowTwoPixelsUndivided) {
  for (const Rect& tiny : {client(1, 100), client(100, 1), client(0, 0), client(-5, 9)}) {
    ViewLayout expected;
    expected.client = tiny;
    EXPECT_EQ(expected, computeLayout(ViewSettings{}, 44100, tiny, 12));
  }
  EXPECT_EQ(2, computeLayout(ViewSettings{}, 44100, client(2, 2), 12).plotWidth);
}

TEST(ViewLayout, GivesAStripUpThatWouldLeaveLessThanItself) {
  // X-scale height 22: 44 rows are just enough.
  EXPECT_EQ(22, computeLayout(ViewSettings{}, 44100, client(500, 44), 12).xScaleHeightPx);
  const ViewLayout low = computeLayout(ViewSettings{}, 44100, client(500, 43), 12);
  EXPECT_EQ(0, low.xScaleHeightPx);
  EXPECT_EQ(43, low.plotHeight);
  // Y-scale width 48.
  EXPECT_EQ(48, computeLayout(ViewSettings{}, 44100, client(96, 200), 12).yScaleWidthPx);
  const ViewLayout narrow = computeLayout(ViewSettings{}, 44100, client(95, 200), 12);
  EXPECT_EQ(0, narrow.yScaleWidthPx);
  EXPECT_EQ(95, narrow.plotWidth);
}

TEST(ViewLayout, CountsTheMinusSignOfTheTopLabel) {
  ViewSettings settings;
  settings.scaleYMin = -300;
  settings.scaleYMax = -200;  // −180.6 → "-180"
  EXPECT_EQ((4 + 2) * 10, computeLayout(settings, 44100, client(500, 300), 10).yScaleWidthPx);
}

TEST(ViewLayout, HidesEachScaleOnItsOwn) {
  ViewSettings settings;
  settings.scaleXVisible = 0;
  EXPECT_EQ(300, computeLayout(settings, 44100, client(500, 300), 10).plotHeight);
  EXPECT_EQ(460, computeLayout(settings, 44100, client(500, 300), 10).plotWidth);
  settings.scaleXVisible = 1;  // any value but 0
  settings.scaleYVisible = 0;
  EXPECT_EQ(280, computeLayout(settings, 44100, client(500, 300), 10).plotHeight);
  EXPECT_EQ(500, computeLayout(settings, 44100, client(500, 300), 10).plotWidth);
}

TEST(ViewLayout, SnapsTheLabelCountDown) {
  ViewSettings settings;
  settings.scaleYVisible = 0;
  settings.fftWindowSize = 1024;  // (4 + 1)·12·2 ÷ 3 = 40 pixels a label
  const auto count = [&](int width) { return computeLayout(settings, 44100, client(width, 300), 12).xLabelCount; };
  EXPECT_EQ(0, count(39));
  EXPECT_EQ(1, count(40));
  EXPECT_EQ(1, count(79));
  EXPECT_EQ(2, count(80));
  EXPECT_EQ(2, count(199));
  EXPECT_EQ(5, count(200));
  EXPECT_EQ(5, count(399));
  EXPECT_EQ(10, count(400));
  EXPECT_EQ(10, count(799));
  EXPECT_EQ(20, count(800));
  EXPECT_EQ(20, count(4000));
}

TEST(ViewLayout, TakesTheLargestHorizontalLabelFromTheType) {
  ViewSettings settings;
  settings.scaleYVisible = 0;
  settings.visualizationType = 1;  // "1024": 40 pixels
  EXPECT_EQ(10, computeLayout(settings, 44100, client(400, 300), 12).xLabelCount);
  settings.visualizationType = 2;  // "22050": (5 + 1)·12·2 ÷ 3 = 48 pixels
  EXPECT_EQ(5, computeLayout(settings, 44100, client(400, 300), 12).xLabelCount);
  EXPECT_EQ(10, computeLayout(settings, 8000, client(400, 300), 12).xLabelCount);  // "4000"
  settings.visualizationType = 0;
  EXPECT_EQ(10, computeLayout(settings, 44100, client(400, 300), 12).xLabelCount);
}

TEST(ViewLayout, PlacesNoHorizontalLabelsWithoutAFont) {
  const ViewLayout layout = computeLayout(ViewSettings{}, 44100, client(640, 400), 0);
  EXPECT_EQ(0, layout.xLabelCount);
  EXPECT_EQ(10, layout.xScaleHeightPx);
  EXPECT_EQ(0, layout.yScaleWidthPx);
  EXPECT_EQ(layout, computeLayout(ViewSettings{}, 44100, client(640, 400), -5));
}

TEST(ViewLayout, SnapsTheVerticalStep) {
  ViewSettings settings;
  settings.scaleXVisible = 0;
  const auto divisions = [&](double rangeDb, int height) {
    settings.dynamicRangeDb = rangeDb;
    return computeLayout(settings, 44100, client(500, height), 12).yDivisionCount;  // 20 pixels a division
  };
  EXPECT_EQ(3, divisions(90, 60));       // 90 ÷ 3 = 30 → 30 → 3
  EXPECT_EQ(4, divisions(90, 80));       // 90 ÷ 4 = 22 → 20 → 4
  EXPECT_EQ(9, divisions(90, 100));      // 90 ÷ 5 = 18 → 10 → 9
  EXPECT_EQ(18, divisions(90, 200));     // 90 ÷ 10 = 9 → 5 → 18
  EXPECT_EQ(22, divisions(90, 400));     // 90 ÷ 20 = 4 → 4 → 22
  EXPECT_EQ(45, divisions(90, 600));     // 90 ÷ 30 = 3 → 2 → 45
  EXPECT_EQ(90, divisions(90, 1000));    // 90 ÷ 50 = 1 → 1 (2·(1 ÷ 2) is 0) → 90
  EXPECT_EQ(5, divisions(5, 1000));      // no more divisions than dB
  EXPECT_EQ(100, divisions(186, 1900));  // 186 ÷ 95 = 1 → 1 → 186, at most 100
  EXPECT_EQ(0, divisions(90, 19));
  EXPECT_EQ(0, divisions(0, 400));
  EXPECT_EQ(0, divisions(-60, 400));
}

TEST(ViewLayout, HasNoVerticalDivisionsOnAScaleUpsideDown) {
  ViewSettings settings;
  settings.scaleYMin = 100;
  settings.scaleYMax = 0;
  EXPECT_EQ(0, computeLayout(settings, 44100, client(500, 300), 12).yDivisionCount);
}

// The same steps again, written with wide numbers and strings, for settings beyond reason.
ViewLayout literalLayout(const ViewSettings& settings, std::uint32_t rate, int width, int height, int textHeight) {
  const auto truncated = [](double value) {
    if (std::isnan(value)) return std::int64_t{0};
    return static_cast<std::int64_t>(std::trunc(std::fmax(-2147483648.0, std::fmin(2147483647.0, value))));
  };
  const std::int64_t top = truncated(settings.scaleYMax * settings.dynamicRangeDb / 100);
  const std::int64_t bottom = truncated(settings.scaleYMin * settings.dynamicRangeDb / 100);
  std::int64_t xScale = settings.scaleXVisible != 0 ? textHeight + 10 : 0;
  std::int64_t yScale =
      settings.scaleYVisible != 0 ? (static_cast<std::int64_t>(std::to_string(top).size()) + 2) * textHeight : 0;
  std::int64_t plotHeight = height - xScale;
  if (plotHeight < xScale) {
    plotHeight = height;
    xScale = 0;
  }
  std::int64_t plotWidth = width - yScale;
  if (plotWidth < yScale) {
    plotWidth = width;
    yScale = 0;
  }
  const std::string largest =
      settings.visualizationType < 2 ? std::to_string(settings.fftWindowSize) : std::to_string(rate / 2);
  const std::int64_t perLabel = (static_cast<std::int64_t>(largest.size()) + 1) * textHeight * 2 / 3;
  std::int64_t labels = perLabel > 0 ? plotWidth / perLabel : 0;
  for (const int snap : {20, 10, 5, 2, 1}) {
    if (labels >= snap) {
      labels = snap;
      break;
    }
  }
  std::int64_t c = plotHeight / (textHeight + 8);
  const std::int64_t r = top - bottom;
  if (c > r) c = r;
  if (c > 0) {
    std::int64_t step = r / c;
    step = step >= 10 ? 10 * (step / 10) : step >= 5 ? 5 : step == 4 ? 4 : 2 * (step / 2);
    if (step < 1) step = 1;
    c = r / step;
    if (c > 100) c = 100;
  } else {
    c = 0;
  }
  return {client(width, height),
          textHeight,
          static_cast<int>(yScale),
          static_cast<int>(xScale),
          0,
          0,
          static_cast<int>(plotWidth),
          static_cast<int>(plotHeight),
          static_cast<int>(labels),
          static_cast<int>(c)};
}

TEST(ViewLayout, AgreesWithTheLiteralStepsForRandomAndAbsurdSettings) {
  std::mt19937 random(20);
  const int limits[] = {0, 100, -1, 50, 1000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
  const double ranges[] = {90.308733622833976,
                           0.0,
                           -60.0,
                           1e300,
                           std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN(),
                           42.07,
                           186.6};
  for (int run = 0; run < 20000; ++run) {
    ViewSettings settings;
    settings.scaleYMin = limits[random() % 7];
    settings.scaleYMax = random() % 2 ? limits[random() % 7] : static_cast<int>(random() % 300);
    settings.dynamicRangeDb = ranges[random() % 8];
    settings.scaleXVisible = static_cast<std::int16_t>(random() % 2);
    settings.scaleYVisible = static_cast<std::int16_t>(-static_cast<int>(random() % 2));
    settings.visualizationType = static_cast<int>(random() % 9);
    settings.fftWindowSize = 64 << random() % 9;
    const std::uint32_t rate = random() % 2 ? static_cast<std::uint32_t>(random()) : 48000u;
    const int width = static_cast<int>(2 + random() % 4000);
    const int height = static_cast<int>(2 + random() % 2200);
    const int textHeight = static_cast<int>(random() % 80);
    ASSERT_EQ(literalLayout(settings, rate, width, height, textHeight),
              computeLayout(settings, rate, client(width, height), textHeight))
        << run;
  }
}

TEST(ViewLayout, SurvivesAFontLargerThanAnyScreen) {
  const ViewLayout layout = computeLayout(ViewSettings{}, 44100, client(640, 400), std::numeric_limits<int>::max());
  EXPECT_EQ(0, layout.xScaleHeightPx);
  EXPECT_EQ(0, layout.yScaleWidthPx);
  EXPECT_EQ(0, layout.xLabelCount);
  EXPECT_EQ(0, layout.yDivisionCount);
}

}  // namespace
}  // namespace av::type1
