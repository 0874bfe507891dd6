// The texts of the view's scales in every font at any size: none touches another, none leaves its strip, none lies.

#include "support/allocation_count.h"
#include "support/liberation_sans.h"
#include "support/scale_texts_sweep.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <vector>

namespace av::type1 {
namespace {

using test::LiberationSans;
using test::ScaleTextsSweep;

/// Fonts of 6 to 24 points on displays of 96 and 192 DPI, measured with and without hinting.
std::vector<LiberationSans> allFonts() {
  std::vector<LiberationSans> fonts;
  for (const int dpi : {96, 192}) {
    for (int points = 6; points <= 24; ++points) {
      for (const auto advances : {LiberationSans::Advances::wholePixels, LiberationSans::Advances::exact})
        fonts.emplace_back(points, dpi, advances);
    }
  }
  return fonts;
}

void sweepAnyViews(ScaleTextsSweep& sweep, int viewsAFont) {
  std::mt19937 random(7);
  for (const LiberationSans& font : allFonts()) {
    for (int i = 0; i < viewsAFont; ++i) ASSERT_EQ("", sweep.checkAnyView(random, {&font, font.textHeightPx()}));
  }
}

/// Every height, or every width, of a small view, and some beyond.
void sweepSizes(ScaleTextsSweep& sweep, const LiberationSans& font, int widthStep, int heightStep) {
  for (int width = 80; width <= 3840; width += width < 320 ? widthStep : 16 * widthStep) {
    for (int height = 50; height <= 2160; height += height < 240 ? heightStep : 12 * heightStep)
      ASSERT_EQ("", sweep.check(width, height, {&font, font.textHeightPx()}));
  }
}

TEST(ScaleTexts, NeverTouchLeaveTheirStripOrLieInAnyView) {
  ScaleTextsSweep sweep;
  sweepAnyViews(sweep, 500);
  EXPECT_EQ(38000, sweep.sums.views);
  EXPECT_GT(sweep.sums.horizontalLabels, 100000);
  EXPECT_GT(sweep.sums.verticalLabels, 80000);
}

TEST(ScaleTexts, KeepTheirPromisesAtEveryHeightOfASmallView) {
  ScaleTextsSweep sweep;
  for (const int points : {6, 7, 8, 12}) {
    const LiberationSans font(points);
    for (const int type : {1, 2, 7}) {
      sweep.settings.visualizationType = type;
      sweepSizes(sweep, font, 79, 1);
    }
  }
  // Labels give way only where a decibel is less than a row high, which is nowhere in these.
  EXPECT_EQ(sweep.sums.labelledVerticalScales, sweep.sums.verticalScales);
}

TEST(ScaleTexts, KeepTheirPromisesAtEveryWidthOfASmallView) {
  ScaleTextsSweep sweep;
  for (const int points : {6, 7, 8, 12}) {
    const LiberationSans font(points);
    for (const int type : {1, 2, 7}) {
      for (const int axis : {1, 2}) {
        sweep.settings.visualizationType = type;
        sweep.settings.fftViewType = axis;
        sweepSizes(sweep, font, 1, 95);
      }
    }
  }
}

// Puts of the window size and blocks of another rate or depth keep the layout. The fixed rectangles of the horizontal
// labels then lie as close as the old labels needed them.
TEST(ScaleTexts, TouchOnlyWhereTheLayoutIsKeptAndHorizontalLabelsHaveTwoMoreDigitsThanItKnew) {
  std::set<std::string> touching;
  for (const LiberationSans& font : allFonts()) {
    const test::ScaleFontOfTest fontOfTest{&font, font.textHeightPx()};
    for (int before = 64; before <= 16384; before *= 2) {
      for (int after = 64; after <= 16384; after *= 2) {
        for (int width = 80; width <= 3840; width += width < 500 ? 67 : 1111) {
          ScaleTextsSweep sweep;
          sweep.settings.fftWindowSize = before;
          const ViewLayout layout = computeLayout(sweep.settings, 44100, {0, 0, width, 400}, fontOfTest.textHeightPx);
          sweep.settings.fftWindowSize = after;
          ASSERT_EQ("", sweep.check(layout, fontOfTest, true));
          if (!sweep.check(layout, fontOfTest).empty())
            touching.insert(std::to_string(before) + " to " + std::to_string(after));
        }
      }
    }
  }
  EXPECT_EQ((std::set<std::string>{"64 to 2048", "64 to 4096", "64 to 8192", "64 to 16384", "128 to 16384",
                                   "256 to 16384", "512 to 16384"}),
            touching);
}

TEST(ScaleTexts, TouchOnlyWhereTheLayoutIsKeptAndKnewASampleRateBelow2000Hz) {
  const LiberationSans font(6);
  const test::ScaleFontOfTest fontOfTest{&font, font.textHeightPx()};
  const auto touches = [&](int type, std::uint32_t before, std::uint32_t after) {
    bool found = false;
    for (int width = 80; width <= 3840; ++width) {
      ScaleTextsSweep sweep;
      sweep.settings.visualizationType = type;
      sweep.settings.fftWindowSize = 16384;
      const ViewLayout layout = computeLayout(sweep.settings, before, {0, 0, width, 400}, fontOfTest.textHeightPx);
      sweep.sampleRateHz = after;
      EXPECT_EQ("", sweep.check(layout, fontOfTest, true));
      found = found || !sweep.check(layout, fontOfTest).empty();
    }
    return found;
  };
  for (const std::uint32_t after : {44100u, 192000u}) {
    EXPECT_TRUE(touches(2, 1999, after));
    EXPECT_FALSE(touches(2, 2000, after));
    EXPECT_FALSE(touches(2, 8000, after));
  }
  // Sample indices, laid out by the rate.
  EXPECT_TRUE(touches(7, 1999, 1999));
  EXPECT_FALSE(touches(7, 2000, 2000));
}

TEST(ScaleTexts, HoldInALayoutOfAnotherDepthAndRate) {
  std::mt19937 random(11);
  for (const LiberationSans& font : allFonts()) {
    for (int i = 0; i < 100; ++i) {
      ScaleTextsSweep sweep;
      const test::ScaleFontOfTest fontOfTest{&font, font.textHeightPx()};
      ASSERT_EQ("", sweep.checkAnyView(random, fontOfTest));
      const ViewLayout layout =
          computeLayout(sweep.settings, sweep.sampleRateHz,
                        {0, 0, 80 + static_cast<int>(random() % 1000), 50 + static_cast<int>(random() % 800)},
                        fontOfTest.textHeightPx);
      for (const double range : {42.075874419, 90.308733622834, 138.473693, 186.638}) {
        for (const std::uint32_t rate : {8000u, 44100u, 192000u}) {
          sweep.settings.dynamicRangeDb = range;
          sweep.sampleRateHz = rate;
          ASSERT_EQ("", sweep.check(layout, fontOfTest));
        }
      }
    }
  }
}

TEST(ScaleTexts, OfAFontLargerThanAnyScreenAreNone) {
  struct LargestFont final : TextMeasure {
    Size measure(std::string_view) const override { return {largestTextPx, largestTextPx}; }
  };
  for (const int textHeight : {largestTextPx, std::numeric_limits<int>::max() - 10, std::numeric_limits<int>::max()}) {
    const ViewSettings settings;
    const ViewLayout layout = computeLayout(settings, 44100, {0, 0, 32767, 32767}, textHeight);
    std::vector<TextRun> texts;
    addScaleTexts(texts, settings, 44100, layout, LargestFont());
    EXPECT_TRUE(texts.empty()) << textHeight;
  }
}

TEST(ScaleTexts, AllocateNothingOnceTheirVectorIsLargeEnough) {
  const LiberationSans font(6);
  for (const int type : {1, 2, 7}) {
    ViewSettings settings;
    settings.visualizationType = type;
    settings.dynamicRangeDb = 186.6;
    const ViewLayout layout = computeLayout(settings, 192000, {0, 0, 1920, 1080}, font.textHeightPx());
    std::vector<TextRun> texts;
    addScaleTexts(texts, settings, 192000, layout, font);
    ASSERT_GT(texts.size(), 20u);
    const std::uint64_t before = test::allocationCount();
    texts.clear();
    addScaleTexts(texts, settings, 192000, layout, font);
    EXPECT_EQ(before, test::allocationCount()) << type;
  }
}

TEST(FullScaleTexts, NeverTouchLeaveTheirStripOrLieInAnyView) {
  ScaleTextsSweep sweep;
  sweepAnyViews(sweep, 10000);
  EXPECT_EQ(760000, sweep.sums.views);
}

TEST(FullScaleTexts, KeepTheirPromisesAtEveryHeightInEveryFont) {
  ScaleTextsSweep sweep;
  for (const LiberationSans& font : allFonts()) {
    for (const int type : {1, 2}) {
      for (const double range : {42.075874419, 90.308733622834, 138.473693, 186.638}) {
        sweep.settings.visualizationType = type;
        sweep.settings.dynamicRangeDb = range;
        sweepSizes(sweep, font, 67, 1);
      }
    }
  }
  EXPECT_GT(sweep.sums.views, 1000000);
}

}  // namespace
}  // namespace av::type1
