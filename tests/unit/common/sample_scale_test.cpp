#include "common/sample_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(SampleScale, FullScaleIsTheLargestPositiveSample) {
  EXPECT_EQ(127.0, av::fullScaleValue(8));
  EXPECT_EQ(2047.0, av::fullScaleValue(12));
  EXPECT_EQ(32767.0, av::fullScaleValue(16));
  EXPECT_EQ(524287.0, av::fullScaleValue(20));
  EXPECT_EQ(8388607.0, av::fullScaleValue(24));
  EXPECT_EQ(2147483647.0, av::fullScaleValue(32));
}

TEST(SampleScale, AHeaderThatClaims65535BitsGivesAnInfiniteScale) {
  EXPECT_EQ(std::numeric_limits<double>::infinity(), av::fullScaleValue(65535));
  EXPECT_EQ(std::numeric_limits<double>::infinity(), av::dynamicRangeDb(av::fullScaleValue(65535)));
}

TEST(SampleScale, DynamicRangeFollowsTheDepth) {
  // The published figures carry three decimals, the default of 16 bits twelve.
  EXPECT_NEAR(42.076, av::dynamicRangeDb(127.0), 5e-4);
  EXPECT_NEAR(90.308733622834, av::dynamicRangeDb(32767.0), 5e-13);
  EXPECT_NEAR(138.474, av::dynamicRangeDb(8388607.0), 5e-4);
  EXPECT_NEAR(186.639, av::dynamicRangeDb(2147483647.0), 5e-4);
}

}  // namespace
