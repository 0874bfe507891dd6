#include "type1/pointer_units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace av::type1 {
namespace {

ViewLayout layoutOf(const ViewSettings& settings, int width = 640, int height = 400, int textHeight = 13) {
  return computeLayout(settings, 44100, {0, 0, width, height}, textHeight);
}

TEST(PointerUnits, ReadTheWaveformsCentreAndEdges) {
  const ViewSettings settings;
  const ViewLayout layout = computeLayout(settings, 44100, {0, 0, 640, 423}, 13);  // plot height 400
  ASSERT_EQ(400, layout.plotHeight);
  EXPECT_EQ(0, yValueAt(settings, layout, 0));
  EXPECT_EQ(-89, yValueAt(settings, layout, 200));
  EXPECT_EQ(0, yValueAt(settings, layout, 400));
  EXPECT_EQ(yValueAt(settings, layout, 130), yValueAt(settings, layout, 270));
}

TEST(PointerUnits, ReadSampleIndicesAcrossTheWaveform) {
  const ViewSettings settings;
  const ViewLayout layout = layoutOf(settings);
  EXPECT_EQ(0, xValueAt(settings, 44100, layout, 0));
  EXPECT_EQ(512, xValueAt(settings, 44100, layout, layout.plotWidth / 2));
  EXPECT_EQ(1024, xValueAt(settings, 44100, layout, layout.plotWidth));
}

TEST(PointerUnits, ReadTheNyquistFrequencyAtTheRightEndOfBothAxes) {
  ViewSettings settings;
  settings.visualizationType = 2;
  const ViewLayout layout = layoutOf(settings);
  EXPECT_EQ(22050, xValueAt(settings, 44100, layout, layout.plotWidth));
  EXPECT_EQ(0, xValueAt(settings, 44100, layout, 0));
  settings.fftViewType = 2;
  EXPECT_EQ(22050, xValueAt(settings, 44100, layout, layout.plotWidth));
  EXPECT_EQ(22, xValueAt(settings, 44100, layout, 0));  // 22050 ÷ 1024 + 0.5, though the curve has one octave less
}

TEST(PointerUnits, ReadMinusTheDynamicRangeAtTheSpectrumsBottom) {
  ViewSettings settings;
  settings.visualizationType = 2;
  settings.dynamicRangeDb = 60;
  const ViewLayout layout = layoutOf(settings);
  EXPECT_EQ(0, yValueAt(settings, layout, 0));
  EXPECT_EQ(-59, yValueAt(settings, layout, layout.plotHeight));  // −60 + 0.5 truncated
}

TEST(PointerUnits, TakeTheStripsOffOnlyWhileTheyAreVisible) {
  ViewSettings settings;
  ViewLayout layout = layoutOf(settings);
  EXPECT_EQ(1024, xValueAt(settings, 44100, layout, 588));
  settings.scaleYVisible = 0;  // the layout still holds the strip's width
  EXPECT_EQ(1024, xValueAt(settings, 44100, layout, 640));
}

TEST(PointerUnits, DoNotShiftByTheOriginOfTheClientRectangle) {
  const ViewSettings settings;
  const ViewLayout moved = computeLayout(settings, 44100, {70, 30, 710, 430}, 13);
  EXPECT_EQ(pointerValueAt(settings, 44100, layoutOf(settings), {100, 50}),
            pointerValueAt(settings, 44100, moved, {100, 50}));
}

TEST(PointerUnits, SplitTheTypesBetweenTheTwoRules) {
  for (const int type : {2, 3, 4, 5, 6}) EXPECT_TRUE(readsAsSpectrum(type)) << type;
  for (const int type : {std::numeric_limits<int>::min(), -1, 0, 1, 7, 8, 9, std::numeric_limits<int>::max()}) {
    EXPECT_FALSE(readsAsSpectrum(type)) << type;
  }
}

// The two rules again, in long double: equal but where the exact value lies within 1e-9 of a whole number.
TEST(PointerUnits, AgreeWithTheRulesInWiderPrecisionForRandomViews) {
  std::mt19937 random(33);
  int compared = 0;
  const auto check = [&](long double exact, int actual) {
    if (std::fabs(exact - std::round(exact)) < 1e-9L * std::fmax(1.0L, std::fabs(exact))) return;
    ++compared;
    ASSERT_EQ(static_cast<int>(std::trunc(exact)), actual);
  };
  for (int run = 0; run < 20000; ++run) {
    ViewSettings settings;
    settings.visualizationType = static_cast<int>(random() % 10);
    settings.fftViewType = 1 + static_cast<int>(random() % 3);
    settings.fftWindowSize = 64 << random() % 9;
    settings.scaleYMin = static_cast<int>(random() % 200) - 100;
    settings.scaleYMax = static_cast<int>(random() % 300) - 100;
    settings.scaleXVisible = static_cast<std::int16_t>(random() % 2);
    settings.scaleYVisible = static_cast<std::int16_t>(random() % 2);
    settings.dynamicRangeDb = 1 + static_cast<double>(random() % 190000) / 1000;
    const std::uint32_t rate = static_cast<std::uint32_t>(1 + random() % 400000);
    const int width = static_cast<int>(80 + random() % 2000);
    const int height = static_cast<int>(50 + random() % 1000);
    const ViewLayout layout = computeLayout(settings, rate, {0, 0, width, height}, static_cast<int>(random() % 40));
    const int x = static_cast<int>(random() % 2200) - 50;
    const int y = static_cast<int>(random() % 1200) - 50;
    const PointerValue value = pointerValueAt(settings, rate, layout, {x, y});

    const long double wp = settings.scaleYVisible ? width - layout.yScaleWidthPx : width;
    const long double hp = settings.scaleXVisible ? height - layout.xScaleHeightPx : height;
    const long double dr = settings.dynamicRangeDb;
    const long double top = settings.scaleYMax * dr / 100;
    const long double span = (static_cast<long double>(settings.scaleYMax) - settings.scaleYMin) / 100;
    const long double nyquist = static_cast<long double>(rate) / 2;
    if (settings.visualizationType >= 2 && settings.visualizationType <= 6) {
      check(
          settings.fftViewType == 1
              ? nyquist * x / wp + 0.5L
              : nyquist / std::pow(2.0L, (wp - x) * std::log2(static_cast<long double>(settings.fftWindowSize)) / wp) +
                    0.5L,
          value.xValue);
      check(span * dr * (hp - y) / hp - top + 0.5L, value.yValue);
    } else {
      check(settings.fftWindowSize * static_cast<long double>(x) / wp + 0.5L, value.xValue);
      check(2 * span * dr * std::fabs(hp * 0.5L - y) / hp - top + 0.5L, value.yValue);
    }
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(compared, 35000);
}

TEST(PointerUnits, SaturateForAViewWithoutWidthAndAbsurdScales) {
  ViewSettings settings;
  settings.scaleYMin = std::numeric_limits<int>::min();
  settings.scaleYMax = std::numeric_limits<int>::max();
  for (const double range :
       {1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    settings.dynamicRangeDb = range;
    for (int type = 0; type < 9; ++type) {
      settings.visualizationType = type;
      for (const int axis : {1, 2}) {
        settings.fftViewType = axis;
        pointerValueAt(settings, 0xFFFFFFFFu, ViewLayout{}, {-32768, 32767});
        pointerValueAt(settings, 0, layoutOf(settings), {32767, -32768});
      }
    }
  }
  settings = ViewSettings{};
  EXPECT_EQ(std::numeric_limits<int>::max(), xValueAt(settings, 44100, ViewLayout{}, 5));
  EXPECT_EQ(0, xValueAt(settings, 44100, ViewLayout{}, 0));
}

}  // namespace
}  // namespace av::type1
