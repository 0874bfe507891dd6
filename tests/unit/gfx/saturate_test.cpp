#include "gfx/saturate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace av {
namespace {

constexpr int highest = std::numeric_limits<int>::max();
constexpr int lowest = std::numeric_limits<int>::min();

TEST(TruncToInt, CutsTowardZeroOnBothSides) {
  EXPECT_EQ(1, truncToInt(1.999));
  EXPECT_EQ(-1, truncToInt(-1.999));
  EXPECT_EQ(0, truncToInt(-0.999));
}

TEST(TruncToInt, HoldsAtTheLimitsOfInt) {
  EXPECT_EQ(highest, truncToInt(2147483647.9));
  EXPECT_EQ(highest, truncToInt(2147483648.0));
  EXPECT_EQ(lowest, truncToInt(-2147483648.9));
  EXPECT_EQ(lowest, truncToInt(-2147483649.0));
  EXPECT_EQ(highest, truncToInt(std::numeric_limits<double>::infinity()));
  EXPECT_EQ(lowest, truncToInt(-std::numeric_limits<double>::infinity()));
}

TEST(TruncToInt, ReadsNotANumberAsZero) {
  EXPECT_EQ(0, truncToInt(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(0, truncToInt(-std::numeric_limits<double>::quiet_NaN()));
}

TEST(ClampToInt, KeepsWhatFitsAndStopsAtTheLimits) {
  EXPECT_EQ(-7, clampToInt(-7));
  EXPECT_EQ(highest, clampToInt(std::int64_t{1} << 31));
  EXPECT_EQ(lowest, clampToInt(-(std::int64_t{1} << 31) - 1));
}

TEST(DecimalLength, EqualsTheLengthOfTheWrittenNumber) {
  for (const std::int64_t value :
       {std::int64_t{0}, std::int64_t{9}, std::int64_t{10}, std::int64_t{-1}, std::int64_t{-9}, std::int64_t{-10},
        std::int64_t{99}, std::int64_t{100}, std::int64_t{22050}, std::int64_t{2147483647}, std::int64_t{-2147483648},
        std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
    EXPECT_EQ(static_cast<int>(std::to_string(value).size()), decimalLength(value)) << value;
  }
}

}  // namespace
}  // namespace av
