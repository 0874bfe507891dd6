#include "type3/gaps.h"

#include "support/analyser_picture.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

namespace av::type3 {
namespace {

class AnalyserGaps : public testing::Test {
 protected:
  /// A column from top to bottom: # segment, . gap.
  std::string column(int height, int segment, int gap, bool mirrored = false) {
    settings.spotHeightPx = segment;
    settings.spotIntervalPx = gap;
    std::vector<Argb> pixels(static_cast<std::size_t>(height), 0xFF00FF00);
    cutSegmentGaps(pixels, settings, 0xFF000000, mirrored);
    std::string text;
    for (const Argb pixel : pixels) text += pixel == 0xFF000000 ? '.' : '#';
    return text;
  }

  AnalyserSettings settings;
};

TEST_F(AnalyserGaps, LieAboveEachSegmentFromTheBottomUp) {
  EXPECT_EQ(column(9, 2, 1), ".##.##.##");
  EXPECT_EQ(column(10, 2, 1), "#.##.##.##");
  EXPECT_EQ(column(11, 2, 1), "##.##.##.##");
  EXPECT_EQ(column(10, 3, 2), "..###..###");
}

TEST_F(AnalyserGaps, AreCutOnceMoreWhereASegmentIsLeft) {
  // Two whole pitches of 5; of the third there is the segment and a row of its gap.
  EXPECT_EQ(column(14, 3, 2), ".###..###..###");
  EXPECT_EQ(column(13, 3, 2), "###..###..###");
  EXPECT_EQ(column(12, 3, 2), "##..###..###");
}

TEST_F(AnalyserGaps, OfMirroredColumnsGrowFromTheMiddle) {
  EXPECT_EQ(column(12, 2, 1, true), ".##.####.##.");
  // An odd height: the middle row belongs to the lower half.
  EXPECT_EQ(column(13, 2, 1, true), ".##.#####.##.");
  // Of the last gap there is no mirror image.
  EXPECT_EQ(column(16, 3, 2, true), "###..######..###");
  EXPECT_EQ(column(18, 3, 2, true), ".###..######..####");
}

TEST_F(AnalyserGaps, WithoutAnIntervalAreNone) {
  EXPECT_EQ(column(6, 2, 0), "######");
  EXPECT_EQ(column(6, 0, 0), "######");
}

TEST_F(AnalyserGaps, WithoutASegmentAreAll) {
  EXPECT_EQ(column(6, 0, 2), "......");
  EXPECT_EQ(column(7, 0, 2), ".......");
}

TEST_F(AnalyserGaps, BeyondReasonLeaveTheColumnAlone) {
  constexpr int huge = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(column(6, huge, huge), "######");
  EXPECT_EQ(column(6, huge, huge, true), "######");
  EXPECT_EQ(column(6, 2, huge), "....##");
  EXPECT_EQ(column(0, 2, 1), "");
}

TEST_F(AnalyserGaps, AreThoseOfTheLiteralLoopForAnySizes) {
  std::mt19937 random(22);
  for (int run = 0; run < 6000; ++run) {
    settings.spotHeightPx = static_cast<int>(random() % 12);
    settings.spotIntervalPx = 1 + static_cast<int>(random() % 8);
    settings.backColor = 0x000001;
    const int height = static_cast<int>(random() % 120);
    const bool mirrored = random() % 2;
    std::vector<Argb> actual(static_cast<std::size_t>(height), opaqueBlack);
    cutSegmentGaps(actual, settings, argbFromOleColor(settings.backColor), mirrored);
    test::Bitmap expected(1, height);
    test::segmentGaps(expected, settings, mirrored);
    for (int row = 0; row < height; ++row) {
      ASSERT_EQ(actual[static_cast<std::size_t>(row)], argbFromOleColor(expected.at(0, row)))
          << "row " << row << " of " << height << ", " << settings.spotHeightPx << " + " << settings.spotIntervalPx
          << ", mirrored " << mirrored;
    }
  }
}

}  // namespace
}  // namespace av::type3
