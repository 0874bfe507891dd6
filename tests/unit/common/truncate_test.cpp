#include "common/truncate.h"

#include <gtest/gtest.h>

#include <limits>

using av::truncateToInt32;

TEST(TruncateToInt32, GoesTowardZero) {
  EXPECT_EQ(truncateToInt32(90.308), 90);
  EXPECT_EQ(truncateToInt32(0.9), 0);
  EXPECT_EQ(truncateToInt32(-0.9), 0);
  EXPECT_EQ(truncateToInt32(-42.9), -42);
  EXPECT_EQ(truncateToInt32(2147483646.9), 2147483646);
  EXPECT_EQ(truncateToInt32(-2147483647.9), -2147483647);
}

TEST(TruncateToInt32, StopsAtTheEndsOfItsRange) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(truncateToInt32(2147483647.0), highest);
  EXPECT_EQ(truncateToInt32(2147483648.0), highest);
  EXPECT_EQ(truncateToInt32(1e300), highest);
  EXPECT_EQ(truncateToInt32(infinity), highest);
  EXPECT_EQ(truncateToInt32(-2147483648.0), lowest);
  EXPECT_EQ(truncateToInt32(-2147483649.0), lowest);
  EXPECT_EQ(truncateToInt32(-infinity), lowest);
  EXPECT_EQ(truncateToInt32(std::numeric_limits<double>::quiet_NaN()), 0);
}
