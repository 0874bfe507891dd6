#include "type1/pointer_units.h"

#include "support/pointer_oracle.h"

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

TEST(PointerUnits, AgreeWithTheRulesInWiderPrecisionForRandomViews) {
  std::mt19937 random(33);
  const auto between = [&random](int low, int high) {
    return low + static_cast<int>(random() % (static_cast<unsigned>(high - low) + 1));
  };
  for (int run = 0; run < 40000; ++run) {
    ViewSettings settings;
    settings.visualizationType = between(-1, 9);
    settings.fftViewType = between(0, 3);
    settings.fftWindowSize = 64 << between(0, 8);
    settings.scaleYMin = between(-100, 100);
    settings.scaleYMax = between(-100, 200);
    settings.scaleXVisible = static_cast<std::int16_t>(between(-1, 1));
    settings.scaleYVisible = static_cast<std::int16_t>(between(-1, 1));
    settings.dynamicRangeDb = between(1, 190000) / 1000.0;
    const auto rate = static_cast<std::uint32_t>(random());  // above 2^31 too
    const int width = between(80, 2000), height = between(50, 1000);
    const ViewLayout layout = computeLayout(settings, rate, {0, 0, width, height}, between(0, 40));
    // What a message can carry: mostly near the view, now and then anything of 16 bits.
    const bool far = run % 4 == 0;
    const Point position = far ? Point{between(-32768, 32767), between(-32768, 32767)}
                               : Point{between(-50, width + 50), between(-50, height + 50)};

    const test::PointerOracle oracle{.clientWidthPx = width,
                                     .clientHeightPx = height,
                                     .yScaleWidthPx = layout.yScaleWidthPx,
                                     .xScaleHeightPx = layout.xScaleHeightPx,
                                     .visualizationType = settings.visualizationType,
                                     .fftViewType = settings.fftViewType,
                                     .scaleXVisible = settings.scaleXVisible != 0,
                                     .scaleYVisible = settings.scaleYVisible != 0,
                                     .scaleYMin = settings.scaleYMin,
                                     .scaleYMax = settings.scaleYMax,
                                     .fftWindowSize = settings.fftWindowSize,
                                     .sampleRateHz = rate,
                                     .dynamicRangeDb = settings.dynamicRangeDb};
    const PointerValue value = pointerValueAt(settings, rate, layout, position);
    ASSERT_TRUE(test::truncatesTo(oracle.xValue(position.x), value.xValue)) << "run " << run;
    ASSERT_TRUE(test::truncatesTo(oracle.yValue(position.y), value.yValue)) << "run " << run;
  }
}

TEST(PointerUnits, ReadOutsideTheWindowAsTheRulesGoOn) {
  ViewSettings settings;
  const ViewLayout layout = computeLayout(settings, 44100, {0, 0, 640 + 52, 400 + 23}, 13);
  ASSERT_EQ(640, layout.plotWidth);
  ASSERT_EQ(400, layout.plotHeight);
  EXPECT_EQ((PointerValue{-52428, 14796}), pointerValueAt(settings, 44100, layout, {-32768, -32768}));
  EXPECT_EQ((PointerValue{52427, 14615}), pointerValueAt(settings, 44100, layout, {32767, 32767}));
  EXPECT_EQ((PointerValue{-1, 0}), pointerValueAt(settings, 44100, layout, {-1, -1}));
  settings.visualizationType = 2;
  EXPECT_EQ((PointerValue{-1128959, 7398}), pointerValueAt(settings, 44100, layout, {-32768, -32768}));
  EXPECT_EQ((PointerValue{1128926, -7397}), pointerValueAt(settings, 44100, layout, {32767, 32767}));
  settings.fftViewType = 2;
  EXPECT_EQ(0, xValueAt(settings, 44100, layout, -32768));
  EXPECT_EQ(std::numeric_limits<int>::max(), xValueAt(settings, 44100, layout, 32767));
}

TEST(PointerUnits, TakeTheSampleRateAsUnsigned) {
  ViewSettings settings;
  settings.visualizationType = 2;
  const ViewLayout layout = layoutOf(settings);
  EXPECT_EQ(1500000000, xValueAt(settings, 3000000000u, layout, layout.plotWidth));
  EXPECT_EQ(2147483647, xValueAt(settings, 4294967295u, layout, layout.plotWidth));
}

TEST(PointerUnits, ReportMovesOverThePlotAndLeftOfItAndAboveIt) {
  const ViewLayout layout = layoutOf(ViewSettings{});
  const int right = layout.plotWidth, bottom = layout.plotHeight;
  for (const Point over : {Point{0, 0}, {right - 1, bottom - 1}, {-1, 5}, {5, -1}, {-32768, -32768}})
    EXPECT_TRUE(reportsMovesAt(layout, over)) << over.x << ", " << over.y;
  for (const Point beside : {Point{right, 0}, {0, bottom}, {right, bottom}, {32767, 0}, {-1, bottom}, {right, -1}})
    EXPECT_FALSE(reportsMovesAt(layout, beside)) << beside.x << ", " << beside.y;
  EXPECT_FALSE(reportsMovesAt(ViewLayout{}, {0, 0}));
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
