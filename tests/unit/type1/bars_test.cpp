#include "type1/bars.h"

#include "type1/curves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

namespace av::type1 {
namespace {

class BarsTest : public testing::Test {
 protected:
  BarsTest() {
    settings.visualizationType = 3;
    settings.visualizationSmooth = 0;
    settings.dynamicRangeDb = 100;
  }

  void usePlot(int width, int height, int left = 0, int top = 0) {
    layout = ViewLayout();
    layout.client = {left, top, left + width, top + height};
    layout.plotLeft = left;
    layout.plotTop = top;
    layout.plotWidth = width;
    layout.plotHeight = height;
  }

  /// `channels` of N levels, all at `level`.
  void fill(int channels, int windowSize, double level) {
    arrays.assign(static_cast<std::size_t>(channels), std::vector<double>(static_cast<std::size_t>(windowSize), level));
    signal = {.dataReceived = true, .channelCount = channels, .windowSize = windowSize};
    for (std::size_t c = 0; c < arrays.size(); ++c) signal.analysis[c] = signal.display[c] = arrays[c];
  }

  void build() {
    bars.clear();
    addBars(bars, settings, signal, layout);
    tops.clear();
    for (const ImageBlit& bar : bars) {
      EXPECT_EQ(bar.to.left + 1, bar.to.right);
      EXPECT_EQ(layout.plotTop + layout.plotHeight, bar.to.bottom);
      EXPECT_FALSE(bar.flipped);
      EXPECT_TRUE(tops.emplace(bar.to.left, bar.to.top).second) << "two bars in column " << bar.to.left;
    }
  }

  ViewSettings settings;
  ViewSignal signal;
  ViewLayout layout;
  std::vector<std::vector<double>> arrays;
  std::vector<ImageBlit> bars;
  std::map<int, int> tops;  ///< by column
};

using LinearBars = BarsTest;

TEST_F(LinearBars, FillEveryColumnFromTheLeftEdgeToTheRightOneInclusive) {
  usePlot(300, 200, 10, 20);
  fill(1, 64, -50);
  build();
  ASSERT_EQ(301u, bars.size());
  for (int x = 0; x <= 300; ++x) {
    EXPECT_EQ((ImageBlit{0, {0, 0, 1, 185}, {10 + x, 20 + 100, 11 + x, 220}, false}),
              bars[static_cast<std::size_t>(x)]);
  }
}

TEST_F(LinearBars, StretchTheWholeImageOfTheirType) {
  usePlot(50, 100);
  fill(1, 64, -50);
  for (const auto& [type, image, height] : {std::tuple{3, 0, 185}, {4, 1, 185}, {5, 2, 186}}) {
    settings.visualizationType = type;
    build();
    ASSERT_EQ(51u, bars.size());
    EXPECT_EQ(image, bars[7].image);
    EXPECT_EQ((Rect{0, 0, 1, height}), bars[7].from);
  }
}

TEST_F(LinearBars, ShowOneBinAColumnAndBinOneInPlaceOfBinZero) {
  usePlot(62, 200);  // 31 bins of two columns each: bin = x·31 ÷ 62
  fill(1, 64, -200);
  for (std::size_t k = 0; k < 32; ++k) arrays[0][k] = -static_cast<double>(k);
  arrays[0][0] = -90;  // not a level
  build();
  EXPECT_EQ(2, tops[0]);
  EXPECT_EQ(2, tops[1]);
  EXPECT_EQ(2, tops[2]);
  EXPECT_EQ(4, tops[4]);
  EXPECT_EQ(4, tops[5]);
  EXPECT_EQ(60, tops[61]);
  EXPECT_EQ(62, tops[62]);  // bin 31 in the last column alone
}

TEST_F(LinearBars, SkipBinsWhereTheyLieCloserThanPixels) {
  usePlot(10, 100);
  fill(1, 1024, -80);
  arrays[0][511 * 3 / 10] = -10;  // 153
  arrays[0][152] = -5;            // between two columns' bins
  build();
  EXPECT_EQ(80, tops[2]);
  EXPECT_EQ(10, tops[3]);
  EXPECT_EQ(80, tops[4]);
}

TEST_F(LinearBars, ShowTheMeanOfAllChannelsThatHoldAnArray) {
  usePlot(31, 1000);
  fill(3, 64, -20);
  layout.plotHeight = 400;
  for (double& level : arrays[1]) level = -40;
  for (double& level : arrays[2]) level = -90;
  build();
  EXPECT_EQ(200, tops[5]);  // 50 dB of 100 in 400 rows
  signal.analysis[2] = {};
  build();
  EXPECT_EQ(120, tops[5]);  // 30 dB
  signal.channelCount = 1;
  build();
  EXPECT_EQ(80, tops[5]);
  signal.channelCount = 3;
  signal.analysis = {};
  build();
  EXPECT_TRUE(bars.empty());
}

TEST_F(LinearBars, AreTheMeanOfLevelsBeforeTheirSignIsDropped) {
  usePlot(31, 400);
  fill(2, 64, -20);
  for (double& level : arrays[1]) level = 10;
  build();
  EXPECT_EQ(20, tops[5]);  // |−5|, not 15
}

TEST_F(LinearBars, ShowSmoothedLevelsWhileSmoothingIsOn) {
  usePlot(31, 100);
  fill(1, 64, -20);
  const std::vector<double> smoothed(64, -70.0);
  signal.display[0] = smoothed;
  build();
  EXPECT_EQ(20, tops[5]);
  settings.visualizationSmooth = -1;
  build();
  EXPECT_EQ(70, tops[5]);
}

TEST_F(LinearBars, CutTheirRowTowardZero) {
  usePlot(31, 100);
  fill(1, 64, -33.99);
  build();
  EXPECT_EQ(33, tops[5]);  // the octave curve would add a half
  settings.fftViewType = 2;
  build();
  EXPECT_EQ(33, tops[20]);
}

TEST_F(LinearBars, FollowTheScaleWithItsLowerLimitInWholeRows) {
  usePlot(31, 101);
  fill(1, 64, -50);
  settings.scaleYMin = 25;  // 101·25 ÷ 100 = 25 whole rows
  settings.scaleYMax = 75;
  build();
  EXPECT_EQ(51, tops[5]);    // (50.5 − 25)·100 ÷ 50
  settings.scaleYMin = -25;  // −25.25 → −25
  settings.scaleYMax = 125;
  build();
  EXPECT_EQ(50, tops[5]);  // 75.5·100 ÷ 150 = 50.33
}

TEST_F(LinearBars, LeaveOutColumnsBelowTheFloorAndFillThoseAboveTheTop) {
  usePlot(62, 200);
  fill(1, 64, -100);
  arrays[0][5] = -99.6;  // row 199.2
  arrays[0][6] = -250;
  settings.scaleYMin = 10;
  settings.scaleYMax = 100;
  arrays[0][7] = -9;  // above the scale's top: negative
  build();
  EXPECT_EQ(2u + 2u, tops.size());
  EXPECT_EQ(199, tops.at(10));
  EXPECT_EQ(199, tops.at(11));
  EXPECT_EQ(0, tops.at(14));
  EXPECT_EQ(0, tops.at(15));
}

TEST_F(LinearBars, NeverBeginBelowRowFourHundredAndNinetyNine) {
  fill(1, 64, -200);
  for (const int height : {499, 500, 501, 900}) {
    usePlot(31, height, 0, 7);
    build();
    if (height == 499) {
      EXPECT_TRUE(bars.empty());
      continue;
    }
    ASSERT_EQ(32u, bars.size());
    EXPECT_EQ((Rect{5, 7 + 499, 6, 7 + height}), bars[5].to);
  }
}

TEST_F(LinearBars, AreNotDrawnWhereThereIsNothingToDivideBy) {
  usePlot(31, 100);
  fill(1, 64, -50);
  for (const double range : {0.0, -90.0, std::numeric_limits<double>::quiet_NaN()}) {
    settings.dynamicRangeDb = range;
    for (const int axis : {1, 2}) {
      settings.fftViewType = axis;
      build();
      EXPECT_TRUE(bars.empty()) << range;
    }
  }
  settings.dynamicRangeDb = 90;
  for (const auto& [lowest, highest] : {std::pair{0, 0}, {50, 50}, {100, 0}}) {
    settings.scaleYMin = lowest;
    settings.scaleYMax = highest;
    for (const int axis : {1, 2}) {
      settings.fftViewType = axis;
      build();
      EXPECT_TRUE(bars.empty()) << lowest;
    }
  }
}

TEST_F(LinearBars, BelongToTheTypesThreeToFive) {
  usePlot(31, 100);
  fill(1, 64, -50);
  for (const int type : {std::numeric_limits<int>::min(), -1, 0, 1, 2, 6, 7, 8, std::numeric_limits<int>::max()}) {
    settings.visualizationType = type;
    build();
    EXPECT_TRUE(bars.empty()) << type;
  }
}

class OctaveBars : public BarsTest {
 protected:
  OctaveBars() { settings.fftViewType = 2; }
};

TEST_F(OctaveBars, StandFromTheirBinsPointToTheNextOnes) {
  usePlot(598, 100);  // five octaves, w = 600 ÷ 6 = 100
  fill(1, 64, -200);
  for (std::size_t k = 1; k < 32; ++k) arrays[0][k] = -static_cast<double>(k);
  build();
  ASSERT_EQ(599u, tops.size());
  EXPECT_EQ(1, tops[0]);  // the flat start
  EXPECT_EQ(1, tops[99]);
  EXPECT_EQ(1, tops[100]);  // bin 1
  EXPECT_EQ(1, tops[199]);
  EXPECT_EQ(2, tops[200]);
  EXPECT_EQ(2, tops[249]);
  EXPECT_EQ(3, tops[250]);
  EXPECT_EQ(4, tops[300]);
  EXPECT_EQ(15, tops[499]);
  EXPECT_EQ(16, tops[500]);
  EXPECT_EQ(16, tops[505]);  // bin 17 at 506.25 + 0.5
  EXPECT_EQ(17, tops[506]);
  EXPECT_EQ(30, tops[593]);  // bin 31 at 593.75 + 0.5
  EXPECT_EQ(31, tops[594]);
  EXPECT_EQ(31, tops[598]);
}

TEST_F(OctaveBars, KeepEveryPeakWhereBinsLieCloserThanPixels) {
  usePlot(128, 100);
  fill(2, 16384, -80);
  for (std::size_t peak = 1; peak < 8192; peak += 13) {
    for (auto& array : arrays) array[peak] = -10;
    build();
    int columns = 0;
    for (const auto& [x, top] : tops) columns += top == 10;
    EXPECT_GE(columns, 1) << peak;
    for (auto& array : arrays) array[peak] = -80;
  }
}

TEST_F(OctaveBars, AreAsHighAsTheOctaveCurveInEveryColumnThatHoldsAPointOfIt) {
  std::mt19937 random(8);
  long compared = 0;
  for (int windowSize = 64; windowSize <= 16384; windowSize *= 2) {
    for (int run = 0; run < 12; ++run) {
      usePlot(20 + static_cast<int>(random() % 2000), 1 + static_cast<int>(random() % 450));
      fill(1, windowSize, -200);
      for (double& level : arrays[0]) level = -static_cast<double>(random() % 120000) / 1000;
      build();
      Polylines curve;
      addOctaveSpectra(curve, settings, signal, layout);
      const std::span<const Point> points = curve.pointsOf(curve.lines.at(0));
      std::map<int, int> highest;
      for (std::size_t k = 1; k + 1 < points.size(); ++k) {
        const int column = std::min(points[k].x, layout.plotWidth);
        const auto [at, added] = highest.emplace(column, points[k].y);
        if (!added) at->second = std::min(at->second, points[k].y);
      }
      for (const auto& [column, row] : highest) {
        const auto bar = tops.find(column);
        const int top = bar == tops.end() ? layout.plotHeight : bar->second;
        ASSERT_LE(std::abs(top - row), 1) << column;  // the curve adds a half before it cuts
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 30000);
}

TEST_F(OctaveBars, ShowInTheLastColumnWhatTheCurveDrawsRightOfThePlot) {
  usePlot(600, 100);  // nine octaves, w = 60.2: the last bins lie at 601 and 602
  fill(1, 1024, -80);
  arrays[0][511] = -10;
  build();
  EXPECT_EQ(600, tops.rbegin()->first);
  EXPECT_EQ(10, tops.rbegin()->second);
}

TEST_F(OctaveBars, AreDrawnOnEveryAxisButTheLinearOne) {
  usePlot(598, 100);
  fill(1, 64, -50);
  arrays[0][1] = -20;
  for (const int axis : {2, 0, -1, 9}) {
    settings.fftViewType = axis;
    build();
    EXPECT_EQ(20, tops[150]) << axis;
  }
}

TEST_F(OctaveBars, FitIntoThePlotsNarrowestWidths) {
  for (int width = 1; width < 30; ++width) {
    for (int windowSize = 64; windowSize <= 16384; windowSize *= 4) {
      usePlot(width, 100);
      fill(1, windowSize, -80);
      arrays[0][1] = -30;
      arrays[0][static_cast<std::size_t>(windowSize) / 2 - 1] = -20;
      build();
      ASSERT_EQ(static_cast<std::size_t>(width) + 1, tops.size());
      EXPECT_EQ(30, tops[0]) << width;
      EXPECT_EQ(20, tops[width]) << width;
    }
  }
}

}  // namespace
}  // namespace av::type1
