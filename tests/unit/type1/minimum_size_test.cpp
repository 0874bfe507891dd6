#include "type1/minimum_size.h"

#include <gtest/gtest.h>

namespace av::type1 {
namespace {

TEST(MinimumSize, SmallSizesGrowToEightyByFifty) {
  EXPECT_EQ((Size{80, 50}), grownSize({60, 40}));
  EXPECT_EQ((Size{80, 50}), grownSize({0, 0}));
  EXPECT_EQ((Size{80, 50}), grownSize({79, 49}));
}

TEST(MinimumSize, TheOtherSideStays) {
  EXPECT_EQ((Size{100, 50}), grownSize({100, 40}));
  EXPECT_EQ((Size{80, 300}), grownSize({60, 300}));
}

TEST(MinimumSize, LargeEnoughSizesAreLeftAlone) {
  EXPECT_EQ(std::nullopt, grownSize({80, 50}));
  EXPECT_EQ(std::nullopt, grownSize({640, 360}));
}

}  // namespace
}  // namespace av::type1
