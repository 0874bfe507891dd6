#include "type2/band_fold.h"

#include "support/hartley_oracle.h"
#include "support/meter_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace av::type2 {
namespace {

constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

constexpr BandLayout layouts[] = {BandLayout::linear, BandLayout::linearMirrored, BandLayout::logarithmic,
                                  BandLayout::logarithmicMirrored};

std::vector<double> fold(BandLayout layout, const std::vector<double>& levels, std::size_t lineCount) {
  std::vector<LineInfo> lines(lineCount);
  for (LineInfo& line : lines) line.value = 1234.5;  // every line has to be written
  BandRatio ratio;
  foldBands(layout, levels, lines, 7, ratio);
  std::vector<double> values;
  for (const LineInfo& line : lines) values.push_back(line.value);
  return values;
}

/// Levels that tell their position: k at position k; the mean of a band is then its centre.
std::vector<double> positions(int lastBin) {
  std::vector<double> levels(static_cast<std::size_t>(lastBin) + 1);
  for (std::size_t k = 0; k < levels.size(); ++k) levels[k] = static_cast<double>(k);
  levels[0] = 1e9;  // never read
  return levels;
}

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

TEST(BandLayout, ComesFromViewTypeAndAlignment) {
  EXPECT_EQ(bandLayout(0, 0), BandLayout::linear);
  EXPECT_EQ(bandLayout(0, 1), BandLayout::linearMirrored);
  EXPECT_EQ(bandLayout(1, 0), BandLayout::logarithmic);
  EXPECT_EQ(bandLayout(1, 1), BandLayout::logarithmicMirrored);
  EXPECT_EQ(bandLayout(0, 2), BandLayout::logarithmic);  // combined bit by bit
  EXPECT_EQ(bandLayout(0, 3), BandLayout::logarithmicMirrored);
  EXPECT_EQ(bandLayout(1, 3), BandLayout::logarithmicMirrored);
}

TEST(BandLayout, IsLinearForEverythingElse) {
  for (const auto& [view, alignment] : {std::pair{2, 0},
                                        {2, 1},
                                        {-1, 0},
                                        {0, -1},
                                        {0, 4},
                                        {1, 4},
                                        {3, 0},
                                        {highest, 0},
                                        {lowest, 1},
                                        {lowest, 2},
                                        {highest, highest},
                                        {lowest, lowest}})
    EXPECT_EQ(bandLayout(view, alignment), BandLayout::linear) << view << ", " << alignment;
}

TEST(BandFold, LinearWith100LinesOf511LevelsAveragesFiveBinsEach) {
  const auto values = fold(BandLayout::linear, positions(511), 100);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(values[static_cast<std::size_t>(i)], 511 * i / 100 + 1 + 2) << i;
}

TEST(BandFold, LinearMirroredSpreadsFromTheCentre) {
  // 511·2 ÷ 101 is 10.118…: ten bins a band, two lines each.
  const auto even = fold(BandLayout::linearMirrored, positions(511), 100);
  for (int i = 0; i < 50; ++i) {
    const double centre = 1022 * i / 101 + 1 + 4.5;
    EXPECT_EQ(even[static_cast<std::size_t>(50 + i)], centre) << i;
    EXPECT_EQ(even[static_cast<std::size_t>(49 - i)], centre) << i;
  }
  // An odd count has one line in the centre: 1022 ÷ 6 is 170.3…
  EXPECT_EQ(fold(BandLayout::linearMirrored, positions(511), 5),
            (std::vector<double>{341 + 84.5, 171 + 84.5, 1 + 84.5, 171 + 84.5, 341 + 84.5}));
}

TEST(BandFold, LogarithmicBandsGrowByOneFactorAndEndOneBinAboveIt) {
  // r = 1024^(1/10) = 2: line i ends at bin 2^i + 1 and has 2^i − 2^(i−1) bins.
  const auto values = fold(BandLayout::logarithmic, positions(1024), 11);
  EXPECT_EQ(values[0], 1);
  EXPECT_EQ(values[1], 3);                      // 2^1 + 1
  EXPECT_EQ(values[2], (5 + 4) / 2.0);          // 2^2 + 1 downward
  EXPECT_EQ(values[3], (9 + 8 + 7 + 6) / 4.0);  // 2^3 + 1
  EXPECT_EQ(values[9], 513 - 255 / 2.0);
  EXPECT_EQ(values[10], (1024 + 1024 + (1023 + 514) / 2.0 * 510) / 512);  // the bin above the last reads as the last
}

TEST(BandFold, LogarithmicMirroredSpreadsFromTheCentre) {
  // r = 1024^(2/20) = 2.
  const auto odd = fold(BandLayout::logarithmicMirrored, positions(1024), 21);
  const auto straight = fold(BandLayout::logarithmic, positions(1024), 11);
  for (std::size_t i = 0; i <= 10; ++i) {
    EXPECT_EQ(odd[10 + i], straight[i]);
    EXPECT_EQ(odd[10 - i], straight[i]);
  }
}

TEST(BandFold, FollowsTheLiteralFoldToTheBitForManyCounts) {
  for (const int lastBin : {1, 2, 3, 31, 49, 63, 127, 255, 511, 548, 1023, 2047, 23999}) {
    auto levels = test::noise(static_cast<std::size_t>(lastBin) + 1, 91000, static_cast<std::uint32_t>(lastBin));
    for (double& level : levels) level = level / 2000.0 - 45.5;
    for (int lineCount = 3; lineCount <= 700; lineCount += lineCount < 130 ? 1 : 57) {
      for (int mode = 0; mode <= 3; ++mode) {
        const auto actual = fold(layouts[mode], levels, static_cast<std::size_t>(lineCount));
        const auto expected = test::foldedBands(levels, lineCount, mode);
        for (std::size_t i = 0; i < actual.size(); ++i)
          ASSERT_TRUE(same(actual[i], expected[i]))
              << "M = " << lastBin << ", " << lineCount << " lines, mode " << mode << ", line " << i;
      }
    }
  }
}

TEST(BandFold, LinearBandsOfLessThanOneBinAreNoNumbers) {
  for (const double value : fold(BandLayout::linear, positions(49), 50)) EXPECT_TRUE(std::isnan(value));
  for (const double value : fold(BandLayout::linear, positions(50), 50)) EXPECT_FALSE(std::isnan(value));
  for (const double value : fold(BandLayout::linearMirrored, positions(25), 50)) EXPECT_TRUE(std::isnan(value));
  for (const double value : fold(BandLayout::linearMirrored, positions(26), 50)) EXPECT_FALSE(std::isnan(value));
}

TEST(BandFold, LogarithmicBandsOfLessThanOneBinTakeOneBinEach) {
  const auto values = fold(BandLayout::logarithmic, positions(20), 40);
  EXPECT_EQ(values[0], 1);
  for (std::size_t i = 1; i < 40; ++i) EXPECT_EQ(values[i], std::min(i + 1, std::size_t{20})) << i;
}

TEST(BandFold, WithoutLevelsHasNoNumbers) {
  for (const BandLayout layout : layouts) {
    for (const std::vector<double>& levels : {std::vector<double>{}, {5.0}}) {
      for (const double value : fold(layout, levels, 3)) EXPECT_TRUE(std::isnan(value));
    }
  }
}

TEST(BandFold, SurvivesAnyCountOfLines) {
  for (const BandLayout layout : layouts) {
    for (const std::size_t lineCount : {0, 1, 2, 48000})
      EXPECT_EQ(fold(layout, positions(511), lineCount).size(), lineCount);
  }
}

TEST(BandFold, RaisesPeaksThatItExceedsAndLeavesOthers) {
  std::vector<LineInfo> lines(3);
  lines[1].peak = 500.0;
  lines[1].peakTime = 3;
  BandRatio ratio;
  foldBands(BandLayout::linear, positions(300), lines, 4711, ratio);
  EXPECT_EQ(lines[0], (LineInfo{1000, 50.5, 50.5, 4711}));
  EXPECT_EQ(lines[1], (LineInfo{1000, 150.5, 500.0, 3}));
  EXPECT_EQ(lines[2], (LineInfo{1000, 250.5, 250.5, 4711}));
}

TEST(BandFold, WritesTheCentreOfAnOddMirroredLayoutTwiceWithTheSameValue) {
  std::vector<LineInfo> lines(3);
  BandRatio ratio;
  foldBands(BandLayout::logarithmicMirrored, std::vector<double>{0, -10, -20, -30}, lines, 1, ratio);
  EXPECT_EQ(lines[1], (LineInfo{1000, -10.0, -10.0, 1}));
}

}  // namespace
}  // namespace av::type2
