#include "type1/label_series.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace av::type1 {
namespace {

using Divisions = std::vector<int>;

/// Of a scale of `rangeDb` in `count` + 1 steps on a plot of `plotPx`.
Divisions labelled(int count, double plotPx, double rangeDb, const LabelDistances& distances, bool mirrored = false,
                   double topEdgeDb = 0) {
  const double stepDb = (mirrored ? 2 : 1) * rangeDb / (count + 1);
  const LabelledDivisions found =
      labelledDivisions({count, plotPx / (count + 1), stepDb, topEdgeDb, mirrored}, distances);
  return {found.begin(), found.end()};
}

Divisions multiplesOf(int stride, int count) {
  Divisions divisions;
  for (int k = stride; k <= count; k += stride) divisions.push_back(k);
  return divisions;
}

constexpr double range16Bit = 90.308733622834;

TEST(LabelSeries, TakesEveryDivisionWhereStepsAreRoundAndRoomy) {
  // 9.9 dB and 30 rows a step.
  EXPECT_EQ(multiplesOf(1, 13), labelled(13, 420, 138.474, {15, 24}));
}

TEST(LabelSeries, GoesToTheNextRoundStepWhereLabelsWouldCrowd) {
  // 0.99 dB a step: steps of 5 dB are 58 rows, of 2 dB only 23.
  EXPECT_EQ(multiplesOf(5, 90), labelled(90, 1058, range16Bit, {15, 53}));
  // 3.93 dB a step, every one of which had room: 20 dB.
  EXPECT_EQ(multiplesOf(5, 22), labelled(22, 400, range16Bit, {15, 24}));
}

TEST(LabelSeries, PrefersCloseRoundStepsToRoomyOthers) {
  // 9.9 dB and 18 rows a step; 20 dB would be roomier, but three labels are too few.
  EXPECT_EQ(multiplesOf(1, 6), labelled(6, 126, 69.2, {15, 24}));
}

TEST(LabelSeries, StaysRoomyWhereNoStepIsRound) {
  // 18.06 dB a step, of 17 rows.
  EXPECT_EQ((Divisions{2, 4}), labelled(4, 85, range16Bit, {15, 24}));
  EXPECT_EQ((Divisions{1, 2, 3, 4}), labelled(4, 125, range16Bit, {15, 24}));
}

TEST(LabelSeries, LeavesTwoLabelsAroundTheMiddleRatherThanOneInIt) {
  EXPECT_EQ((Divisions{1, 3}), labelled(3, 180, range16Bit, {58, 98}));
  EXPECT_EQ((Divisions{1, 2}), labelled(2, 50, range16Bit, {15, 24}));
}

TEST(LabelSeries, LeavesTheMiddleOneWhereThereIsNoRoomForTwo) {
  for (const bool mirrored : {false, true}) {
    EXPECT_EQ((Divisions{2}), labelled(3, 20, range16Bit, {15, 24}, mirrored));
    EXPECT_EQ((Divisions{1}), labelled(1, 20, range16Bit, {15, 24}, mirrored));
    EXPECT_EQ((Divisions{5}), labelled(9, 10, range16Bit, {15, 24}, mirrored));
  }
}

TEST(LabelSeries, MirrorsBothHalvesAndKeepsTheirInnermostLabelsApart) {
  EXPECT_EQ((Divisions{2, 17, 4, 15, 6, 13, 8, 11}), labelled(18, 247, range16Bit, {15, 24}, true));
  // The centre line itself is labelled once.
  EXPECT_EQ((Divisions{1, 3, 2}), labelled(3, 79, 60, {15, 24}, true));
  // 4 and 5 of 8 would touch each other.
  EXPECT_EQ((Divisions{1, 8, 3, 6}), labelled(8, 128, 42.076, {15, 24}, true));
}

TEST(LabelSeries, BeginsAtTheDivisionNearestToARoundLevel) {
  // 20 to 80 percent: 18.06 + k · 1.935, so that k = 1 reads 20, 6 reads 29.7, 11 reads 39.3.
  EXPECT_EQ((Divisions{1, 6, 11, 16, 21, 26}), labelled(27, 320, 0.6 * range16Bit, {15, 24}, false, 0.2 * range16Bit));
}

TEST(LabelSeries, WritesNoNumberTwice) {
  // 0.83 dB a step: 1, 2, 3, 3, 4.
  EXPECT_EQ((Divisions{2, 4}), labelled(5, 500, 5, {15, 24}));
}

// Ranges and limits that no sound has: the search for a round step has to end, with divisions of the scale.
TEST(LabelSeries, EndsForStepsAndEdgesBeyondAllReason) {
  const double endless = std::numeric_limits<double>::infinity();
  const double none = std::numeric_limits<double>::quiet_NaN();
  const double huge = std::numeric_limits<double>::max();
  for (const double stepDb : {endless, -endless, none, huge, -huge, 1e300, 1e-300, 0.0, -5.0}) {
    for (const double topEdgeDb : {0.0, endless, -endless, none, huge, -huge}) {
      for (const bool mirrored : {false, true}) {
        for (const int count : {1, 2, 18, maxScaleDivisions}) {
          const LabelledDivisions found = labelledDivisions({count, 20, stepDb, topEdgeDb, mirrored}, {15, 24});
          ASSERT_GE(found.count, 1) << stepDb << ", " << topEdgeDb;
          for (const int k : found) ASSERT_TRUE(k >= 1 && k <= count) << stepDb << ", " << topEdgeDb;
        }
      }
    }
  }
}

// Every number of divisions in plots of every height: evenly spaced, apart, never crowded without need.
TEST(LabelSeries, KeepsItsRulesForAllDivisionsAndHeights) {
  for (int count = 1; count <= maxScaleDivisions; ++count) {
    for (double plotPx = 10; plotPx < 2200; plotPx *= 1.07) {
      for (const double rangeDb : {42.08, 90.31, 138.47, 186.64, 5.0, 1000.0}) {
        const LabelDistances distances{15, std::max(24.0, plotPx / 20)};
        const Divisions plain = labelled(count, plotPx, rangeDb, distances);
        ASSERT_FALSE(plain.empty());
        for (std::size_t i = 0; i < plain.size(); ++i) {
          ASSERT_TRUE(plain[i] >= 1 && plain[i] <= count);
          if (i == 0) continue;
          ASSERT_EQ(plain[1] - plain[0], plain[i] - plain[i - 1]);
          ASSERT_GE((plain[i] - plain[i - 1]) * plotPx / (count + 1), 15 - 1e-9);
        }
        Divisions mirrored = labelled(count, plotPx, rangeDb, distances, true);
        std::sort(mirrored.begin(), mirrored.end());
        ASSERT_FALSE(mirrored.empty());
        for (std::size_t i = 0; i < mirrored.size(); ++i) {
          if (i == 0) continue;
          ASSERT_EQ(count + 1 - mirrored[i], mirrored[mirrored.size() - 1 - i]);
          ASSERT_GE((mirrored[i] - mirrored[i - 1]) * plotPx / (count + 1), 15 - 1e-9);
        }
      }
    }
  }
}

}  // namespace
}  // namespace av::type1
