#include "type3/zones.h"

#include "support/analyser_picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace av::type3 {
namespace {

constexpr Argb high = 0xFFFF0000;
constexpr Argb mid = 0xFFFFFF00;
constexpr Argb low = 0xFF00FF00;
constexpr Argb unpainted = 0x12345678;

class AnalyserZones : public testing::Test {
 protected:
  std::vector<Argb> solid(int height, bool mirrored = false) {
    std::vector<Argb> column(static_cast<std::size_t>(height), unpainted);
    paintSolidZones(column, settings, {high, mid, low}, mirrored);
    return column;
  }
  std::vector<Argb> gradient(int height, bool mirrored = false) {
    std::vector<Argb> column(static_cast<std::size_t>(height), unpainted);
    paintGradientZones(column, settings, {high, mid, low}, mirrored);
    return column;
  }

  AnalyserSettings settings;
};

TEST_F(AnalyserZones, CutTheirLimitsOffInDoublePrecision) {
  // (1 − 80/100)·400 is just below 80, and so is (1 − (60 − 80 + 100)/100)·400.
  const auto column = solid(400);
  EXPECT_EQ(std::ranges::count(column, high), 79);
  EXPECT_EQ(std::ranges::count(column, mid), 79);
  EXPECT_EQ(std::ranges::count(column, low), 400 - 158);
  EXPECT_TRUE(std::ranges::is_sorted(column, std::greater<>(), [](Argb c) {
    return c == high ? 2 : c == mid ? 1 : 0;
  }));
}

TEST_F(AnalyserZones, OfMirroredColumnsAreRepeatedBelowTheMiddle) {
  const auto column = solid(200, true);
  const std::vector<Argb> upper(column.begin(), column.begin() + 100);
  EXPECT_EQ(upper, solid(100));
  // Below, the limits are cut off the other way round: 60 low rows, 20 in the middle, 20 high ones.
  EXPECT_EQ(std::vector<Argb>(column.begin() + 100, column.begin() + 160), std::vector<Argb>(60, low));
  EXPECT_EQ(std::vector<Argb>(column.begin() + 160, column.begin() + 180), std::vector<Argb>(20, mid));
  EXPECT_EQ(std::vector<Argb>(column.begin() + 180, column.end()), std::vector<Argb>(20, high));
}

TEST_F(AnalyserZones, WithoutAMiddleZoneOverlap) {
  settings.midPointPercent = 75;
  settings.highPointPercent = 25;
  const auto column = solid(100);
  EXPECT_EQ(std::vector<Argb>(column.begin(), column.begin() + 25), std::vector<Argb>(25, high));
  EXPECT_EQ(std::vector<Argb>(column.begin() + 25, column.end()), std::vector<Argb>(75, low));
  const auto mirrored = solid(200, true);
  EXPECT_EQ(std::vector<Argb>(mirrored.begin() + 100, mirrored.begin() + 125), std::vector<Argb>(25, low));
  EXPECT_EQ(std::vector<Argb>(mirrored.begin() + 125, mirrored.end()), std::vector<Argb>(75, high));
}

TEST_F(AnalyserZones, WithGradientsRunIntoEachOther) {
  // Percent of the height: 7, 27, 34 and 80.
  const auto column = gradient(100);
  for (int row = 0; row < 100; ++row) {
    const Argb here = column[static_cast<std::size_t>(row)];
    if (row <= 7) {
      EXPECT_EQ(here, high) << row;
    } else if (row < 27) {
      EXPECT_EQ(here, 0xFFFF0000u | static_cast<Argb>(255 * (row - 7) / 20) << 8) << row;
    } else if (row <= 34) {
      EXPECT_EQ(here, mid) << row;
    } else if (row < 80) {
      EXPECT_EQ(here, 0xFF00FF00u | static_cast<Argb>(255 * (80 - row) / 46) << 16) << row;
    } else {
      EXPECT_EQ(here, low) << row;
    }
  }
}

TEST_F(AnalyserZones, AreThoseOfTheLiteralPainterForAnyPointsAndHeights) {
  std::mt19937 random(21);
  for (int run = 0; run < 6000; ++run) {
    settings.midPointPercent = static_cast<int>(random() % 101);
    settings.highPointPercent = static_cast<int>(random() % 101);
    const int height = static_cast<int>(random() % 500);
    const bool mirrored = random() % 2;
    std::uint32_t c[3];
    for (std::uint32_t& colour : c) colour = random() & 0xFFFFFF;
    const ZoneColours colours{argbFromOleColor(c[0]), argbFromOleColor(c[1]), argbFromOleColor(c[2])};
    const bool soft = random() % 2;
    std::vector<Argb> column(static_cast<std::size_t>(height), unpainted);
    test::Bitmap expected(1, height);
    if (soft) {
      paintGradientZones(column, settings, colours, mirrored);
      test::gradientZones(expected, settings, c[0], c[1], c[2], mirrored);
    } else {
      paintSolidZones(column, settings, colours, mirrored);
      test::solidZones(expected, settings, c[0], c[1], c[2], mirrored);
    }
    for (int row = 0; row < height; ++row) {
      ASSERT_EQ(column[static_cast<std::size_t>(row)], argbFromOleColor(expected.at(0, row)))
          << "row " << row << " of " << height << ", points " << settings.midPointPercent << " and "
          << settings.highPointPercent << ", mirrored " << mirrored << ", gradients " << soft;
    }
  }
}

}  // namespace
}  // namespace av::type3
