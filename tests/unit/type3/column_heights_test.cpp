#include "type3/column_heights.h"

#include "support/analyser_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace av::type3 {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// The amplitude of a band at a level, with a transform of 512 samples.
double bandAt(double levelDb) { return std::pow(10.0, levelDb / 20) * 256; }

TEST(ColumnHeight, IsLinearInWholeDecibelsFromTheFootToTheTop) {
  AnalyserSettings settings;
  settings.spotIntervalPx = 0;
  for (int attenuation = 0; attenuation <= 100; ++attenuation) {
    // A quarter of a decibel above the whole one: cut off.
    EXPECT_NEAR(columnHeightPx(bandAt(0.25 - attenuation), settings, 512, 200), 2 * (100 - attenuation), 1)
        << attenuation;
  }
  EXPECT_EQ(columnHeightPx(bandAt(0), settings, 512, 200), 200);
  EXPECT_EQ(columnHeightPx(bandAt(20), settings, 512, 200), 200);
  EXPECT_EQ(columnHeightPx(bandAt(-120), settings, 512, 200), 0);
}

TEST(ColumnHeight, CutsOffInDoublePrecision) {
  AnalyserSettings settings;
  settings.spotIntervalPx = 0;
  // 29 / 100 · 100 is just below 29.
  EXPECT_EQ(columnHeightPx(bandAt(-70.5), settings, 512, 100), 28);
  EXPECT_EQ(columnHeightPx(bandAt(-69.5), settings, 512, 100), 30);
}

TEST(ColumnHeight, OfABandThatIsNotAboveZeroIsZero) {
  const AnalyserSettings settings;
  for (const double band : {0.0, -0.0, -1.0, notANumber, -infinity, 5e-324})
    EXPECT_EQ(columnHeightPx(band, settings, 512, 200), 0) << band;
}

TEST(ColumnHeight, OfAnInfiniteBandIsTheTop) {
  AnalyserSettings settings;
  settings.spotIntervalPx = 0;
  EXPECT_EQ(columnHeightPx(infinity, settings, 512, 200), 200);
  EXPECT_EQ(columnHeightPx(1e300, settings, 512, 200), 200);
  EXPECT_EQ(columnHeightPx(1.0, settings, 0, 200), 200);  // a length of 0 divides to infinity
}

TEST(ColumnHeight, IsAWholeNumberOfSegments) {
  const AnalyserSettings settings;
  // A pixel a decibel: raw heights 0 to 9.
  const int whole[] = {0, 2, 2, 2, 5, 5, 5, 8, 8, 8};
  for (int raw = 0; raw < 10; ++raw)
    EXPECT_EQ(columnHeightPx(bandAt(raw + 0.5 - 100), settings, 512, 100), whole[raw]) << raw;
}

TEST(ColumnHeight, MayReachASegmentBeyondTheArea) {
  const AnalyserSettings settings;
  EXPECT_EQ(columnHeightPx(bandAt(1), settings, 512, 100), 101);  // 34 segments of 3, less the gap
}

TEST(ColumnHeight, IsHalfAsMuchWithColumnsFromTheMiddle) {
  AnalyserSettings settings;
  settings.spotIntervalPx = 0;
  settings.alignmentY = 1;
  EXPECT_EQ(columnHeightPx(bandAt(0), settings, 512, 200), 100);
  EXPECT_EQ(columnHeightPx(bandAt(-50.5), settings, 512, 200), 48);  // 49.5 / 2 is 24 whole decibels
}

TEST(ColumnHeight, IsZeroWithoutARange) {
  AnalyserSettings settings;
  settings.scaleYMin = settings.scaleYMax = 40;
  EXPECT_EQ(columnHeightPx(bandAt(0), settings, 512, 200), 0);
  settings.scaleYMin = 41;
  EXPECT_EQ(columnHeightPx(bandAt(0), settings, 512, 200), 0);
  settings.scaleYMin = std::numeric_limits<std::int32_t>::max();
  settings.scaleYMax = 0;
  EXPECT_EQ(columnHeightPx(bandAt(0), settings, 512, 200), 0);
}

TEST(ColumnHeight, StandsSegmentsBeyondReason) {
  AnalyserSettings settings;
  settings.spotHeightPx = settings.spotIntervalPx = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(columnHeightPx(bandAt(0), settings, 512, 200), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(columnHeightPx(0, settings, 512, 200), 0);
}

TEST(ColumnHeight, IsThatOfTheLiteralStepsForAnySettings) {
  std::mt19937 random(4);
  AnalyserSettings settings;
  for (int run = 0; run < 20000; ++run) {
    settings.scaleYMin = static_cast<int>(random() % 60);
    settings.scaleYMax = static_cast<int>(random() % 160);
    settings.spotHeightPx = static_cast<int>(random() % 6);
    settings.spotIntervalPx = static_cast<int>(random() % 4);
    settings.alignmentY = static_cast<int>(random() % 2);
    const int length = 4 << (random() % 14);
    const int area = static_cast<int>(random() % 1200);
    const double band = std::pow(10.0, -static_cast<double>(random() % 9000) / 1000) * length;
    ASSERT_EQ(columnHeightPx(band, settings, length, area), test::columnHeight(settings, band, length, area))
        << band << ", " << length << " samples, " << area << " pixels, scale " << settings.scaleYMin << " to "
        << settings.scaleYMax;
  }
}

TEST(ColumnHeights, RaisePeaksThatTheyExceed) {
  AnalyserSettings settings;
  settings.spotIntervalPx = 0;
  std::vector<LineInfo> columns(3);
  columns[1].peak = 150;
  columns[2].peak = 10;
  const std::vector<double> bands{bandAt(0), bandAt(-49.5), notANumber};
  writeColumnHeights(columns, bands, settings, 512, 200, 777);
  EXPECT_EQ(columns[0], (LineInfo{1000, 200, 200, 777}));
  EXPECT_EQ(columns[1], (LineInfo{1000, 100, 150, 0}));
  EXPECT_EQ(columns[2], (LineInfo{1000, 0, 10, 0}));
}

TEST(MoveColumns, TakesPeaksAlongThatStandOnTheirColumnAndKeepsTheProportionOfOthers) {
  const AnalyserSettings settings;  // segments of 2 pixels, 1 pixel apart
  std::vector<LineInfo> columns(4);
  const std::vector<double> bands{bandAt(-48.5), bandAt(-48.5), bandAt(-48.5), 0};
  writeColumnHeights(columns, bands, settings, 512, 200, 777);
  ASSERT_EQ(columns[0], (LineInfo{1000, 101, 101, 777}));
  columns[1].peak = 150;  // from a louder block
  columns[2].value = 20;  // fallen
  columns[2].peak = 40;
  moveColumns(columns, bands, settings, 512, 200, 100);
  EXPECT_EQ(columns[0], (LineInfo{1000, 50, 50, 777}));  // half of 101 would be above it
  EXPECT_EQ(columns[1], (LineInfo{1000, 50, 75, 777}));
  EXPECT_EQ(columns[2], (LineInfo{1000, 50, 50, 777}));  // a peak is never below its column
  EXPECT_EQ(columns[3], (LineInfo{1000, 0, 0, 777}));
  moveColumns(columns, bands, settings, 512, 100, 200);
  EXPECT_EQ(columns[0], (LineInfo{1000, 101, 101, 777}));
  EXPECT_EQ(columns[1], (LineInfo{1000, 101, 150, 777}));
}

TEST(ScaleColumns, KeepsTheProportionOfColumnsAndPeaksToTheArea) {
  std::vector<LineInfo> columns(3);
  columns[0].value = 50;
  columns[0].peak = 75;
  columns[1].value = 0;
  columns[1].peak = 100;
  scaleColumns(columns, 100, 250);
  EXPECT_EQ(125, columns[0].value);
  EXPECT_EQ(187.5, columns[0].peak);
  EXPECT_EQ(0, columns[1].value);
  EXPECT_EQ(250, columns[1].peak);
  EXPECT_LT(columns[2].peak, 0);  // fresh ones still draw nothing
  const std::vector<LineInfo> before = columns;
  scaleColumns(columns, 0, 100);
  EXPECT_EQ(before, columns);
  scaleColumns(columns, -5, 100);
  EXPECT_EQ(before, columns);
  scaleColumns(columns, 100, 0);
  EXPECT_EQ(0, columns[0].peak);
}

}  // namespace
}  // namespace av::type3
