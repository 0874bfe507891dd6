#include "type3/frequency_axis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace av::type3 {
namespace {

// 60 columns of 5 pixels and 2 between them, the first at 9.
constexpr ColumnGeometry geometry{60, 7, 5, 418, 9};
constexpr double binHz = 44100.0 / 512;

TEST(FrequencyAxis, IsLinearInTheColumns) {
  const FrequencyAxis axis({}, geometry);
  EXPECT_EQ(axis.nyquistHz(), 22050.0);
  EXPECT_EQ(axis.binHz(), binHz);
  EXPECT_EQ(axis.widthPx(), 420.0);
  // Within a column of where a straight line would have it.
  for (double hz = 0; hz < 22000; hz += 100) {
    const auto place = axis.place(hz);
    ASSERT_TRUE(place);
    EXPECT_NEAR(*place, 9 + hz / 22050 * 420, 7) << hz;
  }
  EXPECT_FALSE(axis.place(22050));
  EXPECT_FALSE(axis.place(1e9));
}

TEST(FrequencyAxis, HasTheCentreOfABandUnderTheCentreOfItsColumn) {
  const FrequencyAxis axis({}, geometry);
  // Band 3 has bins 13 to 16, which stand for 12.5 to 16.5 bins.
  EXPECT_NEAR(*axis.place(14.5 * binHz), 9 + 3 * 7 + 2.5, 1e-9);
  EXPECT_NEAR(*axis.place(12.5 * binHz), 9 + 3 * 7, 1e-9);
  EXPECT_NEAR(*axis.place(16.499999 * binHz), 9 + 3 * 7 + 5, 1e-4);
  EXPECT_NEAR(*axis.place(16.5 * binHz), 9 + 4 * 7, 1e-9);
}

TEST(FrequencyAxis, FollowsTheBandsOfALogarithmicScale) {
  const FrequencyAxis axis({.logarithmic = true}, geometry);
  // Column i shows bin i + 1 alone up to i = 32.
  EXPECT_NEAR(*axis.place(0), 9 + 2.5, 1e-9);
  for (int i = 1; i <= 32; ++i) EXPECT_NEAR(*axis.place((i + 1) * binHz), 9 + i * 7 + 2.5, 1e-9) << i;
  // Columns 33 to 37 show bins i and i + 1, of which each column shares one with the next.
  for (int i = 34; i <= 36; ++i) EXPECT_NEAR(*axis.place((i + 0.5) * binHz), 9 + i * 7 + 2.5, 1e-9) << i;
  // No column shows bin 1: it stands in the gap.
  EXPECT_NEAR(*axis.place(binHz), 9 + 7 - 1, 1e-9);
  EXPECT_NEAR(*axis.place(250 * binHz), 9 + 59 * 7 + 2.5, 7);
}

TEST(FrequencyAxis, RisesWithTheFrequency) {
  for (const bool logarithmic : {false, true}) {
    for (const bool mirrored : {false, true}) {
      for (const int length : {4, 64, 512, 16384}) {
        const FrequencyAxis axis({.logarithmic = logarithmic, .mirrored = mirrored, .fftLength = length}, geometry);
        double before = mirrored ? axis.centre() - 4 : 0;
        for (double hz = 0; hz < 22050; hz += 10) {
          const auto place = axis.place(hz);
          if (!place) continue;
          ASSERT_GE(*place, before) << hz << " Hz of " << length << " samples";
          before = *place;
        }
      }
    }
  }
}

TEST(FrequencyAxis, OfMirroredColumnsBeginsInTheCentre) {
  const FrequencyAxis even({.mirrored = true}, geometry);
  EXPECT_EQ(even.centre(), 218.0);  // between columns 29 and 30
  EXPECT_EQ(even.widthPx(), 210.0);
  EXPECT_NEAR(*even.place(0), 9 + 30 * 7, 5);
  EXPECT_NEAR(*even.place(21000), 218 + 21000.0 / 22050 * 210, 7);
  EXPECT_NEAR(even.reflected(*even.place(21000)), 218 - 21000.0 / 22050 * 210, 7);

  const ColumnGeometry odd{61, 7, 5, 425, 5};
  const FrequencyAxis axis({.mirrored = true, .lineCount = 61}, odd);
  EXPECT_EQ(axis.centre(), 217.5);  // in column 30
  EXPECT_NEAR(*axis.place(4 * binHz), 5 + 30 * 7 + 2.5, 2.5);
  EXPECT_NEAR(axis.reflected(*axis.place(4 * binHz)), 5 + 30 * 7 + 2.5, 2.5);
}

TEST(FrequencyAxis, HasNoPlacesWithoutBins) {
  for (const int length : {0, 1}) {
    const FrequencyAxis axis({.fftLength = length}, geometry);
    for (const double hz : {0.0, 1000.0}) EXPECT_FALSE(axis.place(hz)) << length;
  }
}

}  // namespace
}  // namespace av::type3
