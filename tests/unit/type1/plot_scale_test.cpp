#include "type1/plot_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace av::type1 {
namespace {

/// A plot of 200 rows below row 30 that shows 100 dB.
PlotScale scaleOf(int lowest, int highest, double dynamicRangeDb = 100, int heightPx = 200) {
  ViewSettings settings;
  settings.scaleYMin = lowest;
  settings.scaleYMax = highest;
  settings.dynamicRangeDb = dynamicRangeDb;
  ViewLayout layout;
  layout.plotTop = 30;
  layout.plotHeight = heightPx;
  return PlotScale(settings, layout);
}

TEST(PlotScale, CountsTheRowsAboveABarFromNoneToAllOfThePlot) {
  const PlotScale scale = scaleOf(0, 100);
  EXPECT_EQ(0, scale.aboveBar(0));
  EXPECT_EQ(99, scale.aboveBar(-49.9));
  EXPECT_EQ(99, scale.aboveBar(49.9));
  EXPECT_EQ(200, scale.aboveBar(-100));
  EXPECT_EQ(200, scale.aboveBar(-400));
  EXPECT_EQ(200, scale.aboveBar(std::numeric_limits<double>::infinity()));
  EXPECT_EQ(0, scaleOf(10, 100).aboveBar(-9));
  EXPECT_EQ(499, scaleOf(0, 100, 100, 900).aboveBar(-400));
}

TEST(PlotScale, PutsCurvesBetweenTheEdgesOfThePlot) {
  const PlotScale scale = scaleOf(0, 100);
  EXPECT_EQ(30, scale.ofLinearLevel(0));
  EXPECT_EQ(30 + 129, scale.ofLinearLevel(-64.9));
  EXPECT_EQ(30 + 130, scale.ofOctaveLevel(-64.9));
  EXPECT_EQ(230, scale.ofLinearLevel(-400));
  EXPECT_EQ(230, scale.ofOctaveLevel(-400));
  EXPECT_EQ(30, scaleOf(10, 100).ofLinearLevel(-9));
}

TEST(PlotScale, ShowsSamplesOnAnySpanAndLevelsOnARangeToo) {
  EXPECT_TRUE(scaleOf(0, 1).showsLevels());
  EXPECT_TRUE(scaleOf(0, 1, 0).showsSamples());
  EXPECT_FALSE(scaleOf(0, 1, 0).showsLevels());
  EXPECT_FALSE(scaleOf(0, 1, std::numeric_limits<double>::quiet_NaN()).showsLevels());
  for (const int highest : {50, 0, -50}) {
    EXPECT_FALSE(scaleOf(50, highest).showsSamples());
    EXPECT_FALSE(scaleOf(50, highest).showsLevels());
  }
  EXPECT_TRUE(scaleOf(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()).showsSamples());
}

}  // namespace
}  // namespace av::type1
