#include "type1/xy_view.h"

#include "gfx/hls.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

namespace av::type1 {
namespace {

class XyViewTest : public testing::Test {
 protected:
  void usePlot(int width, int height, int left = 0, int top = 0) {
    layout = ViewLayout();
    layout.client = {left, top, left + width, top + height};
    layout.plotLeft = left;
    layout.plotTop = top;
    layout.plotWidth = width;
    layout.plotHeight = height;
  }

  void use(std::vector<std::vector<double>> samples) {
    arrays = std::move(samples);
    signal = {};
    signal.dataReceived = true;
    signal.channelCount = static_cast<int>(arrays.size());
    signal.windowSize = static_cast<int>(arrays[0].size());
    for (std::size_t c = 0; c < arrays.size(); ++c) signal.analysis[c] = arrays[c];
  }

  void build() {
    curves.clear();
    segments.clear();
    addXyCurves(curves, settings, signal, layout);
    addBalanceCurves(segments, signal, layout);
  }

  std::vector<Point> line(std::size_t index) const {
    const auto points = curves.pointsOf(curves.lines.at(index));
    return {points.begin(), points.end()};
  }

  ViewSettings settings;
  ViewSignal signal;
  ViewLayout layout;
  std::vector<std::vector<double>> arrays;
  Polylines curves;
  std::vector<LineSegment> segments;
};

using XyCurves = XyViewTest;

// Centre (150, 100), radius 150 − 10.
TEST_F(XyCurves, PutEqualChannelsOnTheVerticalAndOppositeOnesOnTheHorizontal) {
  usePlot(300, 215);
  use({{0, 32767, -32767, -32767, 32767, 32767, 0}, {0, 32767, -32767, 32767, -32767, 0, 32767}});
  build();
  EXPECT_EQ((std::vector<Point>{{150, 100},
                                {150, 100 - 139},  // −140 + 0.5, cut toward zero
                                {150, 100 + 140},
                                {150 + 140, 100},
                                {150 - 139, 100},
                                {150 - 69, 100 - 69},  // left alone: up to the left
                                {150 + 70, 100 - 69}}),
            line(0));
  EXPECT_EQ(settings.textAndLineColors[2], curves.lines[0].colour);
}

TEST_F(XyCurves, TakeTheLongerSideForTheirRadiusAndPassBeyondThePlot) {
  usePlot(401, 116);  // halves 200 and 50
  use({{32767}, {32767}});
  build();
  EXPECT_EQ((Point{200, 50 - 189}), line(0)[0]);
  usePlot(100, 431);  // halves 50 and 208
  build();
  EXPECT_EQ((Point{50, 208 - 197}), line(0)[0]);
}

TEST_F(XyCurves, CutTheirCentreTowardZero) {
  use({{0}, {0}});
  for (const auto& [width, height, x, y] : {std::tuple{301, 216, 150, 100},
                                            {300, 217, 150, 101},
                                            {300, 16, 150, 0},
                                            {300, 14, 150, 0},
                                            {300, 13, 150, -1},
                                            {300, 12, 150, -1}}) {
    usePlot(width, height, 40, 30);
    build();
    EXPECT_EQ((Point{40 + x, 30 + y}), line(0)[0]) << width << " x " << height;
  }
}

TEST_F(XyCurves, PairAdjacentChannelsInTheColourOfTheRightOne) {
  usePlot(300, 215);
  for (int channels = 1; channels <= 18; ++channels) {
    std::vector<std::vector<double>> samples;
    for (int c = 0; c < channels; ++c) samples.push_back({c * 1000.0});
    use(samples);
    build();
    const int pairs = channels < 3 ? 1 : channels - 1;
    ASSERT_EQ(static_cast<std::size_t>(pairs), curves.lines.size()) << channels;
    ASSERT_EQ(static_cast<std::size_t>(pairs), segments.size());
    for (int pair = 0; pair < pairs; ++pair) {
      const auto at = static_cast<std::size_t>(pair);
      EXPECT_EQ(settings.textAndLineColors[at + 2], curves.lines[at].colour);
      const double left = pair * 1000.0;
      const double right = channels == 1 ? left : left + 1000;
      EXPECT_EQ((Point{150 + static_cast<int>((right - left) / 65534 * 140 + 0.5),
                       100 + static_cast<int>(-(left + right) / 65534 * 140 + 0.5)}),
                line(at)[0]);
    }
  }
}

TEST_F(XyCurves, LeaveOutPairsWithoutAnArray) {
  usePlot(300, 215);
  use({{1}, {2}, {3}, {4}});
  signal.analysis[1] = {};
  build();
  ASSERT_EQ(1u, curves.lines.size());
  EXPECT_EQ(settings.textAndLineColors[4], curves.lines[0].colour);
  EXPECT_EQ(1u, segments.size());
}

TEST_F(XyCurves, ScaleWithTheFullScaleOfTheSamples) {
  usePlot(300, 215);
  for (const int bits : {8, 16, 24, 32}) {
    const double fullScale = std::pow(2.0, bits - 1) - 1;
    use({{fullScale}, {0}});
    signal.fullScale = fullScale;
    build();
    EXPECT_EQ((Point{150 - 69, 100 - 69}), line(0)[0]) << bits;
  }
}

TEST_F(XyCurves, AreNotDrawnWithoutAFullScale) {
  usePlot(300, 215);
  use({{5}, {5}});
  for (const double fullScale : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    signal.fullScale = fullScale;
    build();
    EXPECT_TRUE(curves.lines.empty());
    EXPECT_TRUE(segments.empty());
  }
}

using BalanceCurves = XyViewTest;

TEST_F(BalanceCurves, JoinTheCentreAndThePointsOfTheOtherView) {
  usePlot(300, 215, 7, 9);
  std::mt19937 random(1);
  std::vector<std::vector<double>> samples(3);
  for (auto& channel : samples)
    for (int i = 0; i < 1000; ++i) channel.push_back(static_cast<double>(random() % 65536) - 32768);
  use(samples);
  build();
  ASSERT_EQ(2000u, segments.size());
  for (std::size_t pair = 0; pair < 2; ++pair) {
    const std::vector<Point> points = line(pair);
    for (std::size_t i = 0; i < 1000; ++i) {
      EXPECT_EQ(points[i], segments[pair * 1000 + i].to);
      EXPECT_EQ((i > 0 ? points[i - 1] : Point{7 + 150, 9 + 100}), segments[pair * 1000 + i].from);
    }
  }
}

TEST_F(BalanceCurves, KeepTheSegmentsWithoutLengthOfRepeatedSamples) {
  usePlot(300, 215);
  use({{0, 0, 32767, 32767}, {0, 0, 32767, 32767}});
  build();
  ASSERT_EQ(4u, segments.size());
  EXPECT_EQ(segments[0].from, segments[0].to);
  EXPECT_EQ(segments[1].from, segments[1].to);
  EXPECT_EQ((Point{150, 100 - 139}), segments[2].to);
  EXPECT_EQ(segments[3].from, segments[3].to);
}

// The balance of two samples is (d − a) ÷ (a + d) = 2LR ÷ (L² + R²).
TEST_F(BalanceCurves, RunFromOrangeOverLimeToGreen) {
  usePlot(300, 215);
  use({{1000, 1000, 0, 0, 1000, -1000, -500}, {1000, -1000, 1000, 0, 0, -1000, 500}});
  build();
  const Argb green = argbFromRgb(0, 200, 26);
  const Argb lime = argbFromRgb(131, 200, 0);
  const Argb orange = argbFromRgb(200, 131, 0);
  const Argb expected[] = {green, orange, lime, lime, lime, green, orange};
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(expected[i], segments[i].colour) << i;
}

TEST_F(BalanceCurves, CutTheHueTowardZero) {
  usePlot(300, 215);
  std::mt19937 random(2);
  std::vector<std::vector<double>> samples(2);
  for (auto& channel : samples)
    for (int i = 0; i < 20000; ++i) channel.push_back(static_cast<double>(random() % 2001) - 1000);
  use(samples);
  build();
  std::map<std::int64_t, int> hues;
  for (std::size_t i = 0; i < 20000; ++i) {
    const auto l = static_cast<std::int64_t>(arrays[0][i]);
    const auto r = static_cast<std::int64_t>(arrays[1][i]);
    const std::int64_t energy = l * l + r * r;
    if (energy == 0) continue;
    const std::int64_t scaled = 34 * l * r + 32 * energy;  // (17·q + 32) · energy, exactly
    if (scaled % energy == 0 && 2 * std::llabs(l * r) != energy && l * r != 0)
      continue;  // where double may cut either way
    const std::int64_t hue = scaled / energy;
    ++hues[hue];
    ASSERT_EQ(argbFromHls(static_cast<int>(hue), 55, 140), segments[i].colour) << l << ", " << r;
  }
  EXPECT_EQ(15, hues.begin()->first);
  EXPECT_EQ(49, hues.rbegin()->first);
  EXPECT_EQ(35u, hues.size());
}

}  // namespace
}  // namespace av::type1
