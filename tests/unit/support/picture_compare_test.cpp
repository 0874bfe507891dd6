#include "support/picture_compare.h"

#include <gtest/gtest.h>

#include <vector>

namespace av::test {
namespace {

constexpr int width = 100;
constexpr int height = 20;  // 2,000 pixels: ten of them are half a percent

using Pixels = std::vector<std::uint32_t>;

PixelsView viewOf(const Pixels& pixels, int w = width, int h = height) { return {w, h, pixels}; }

Pixels grey() { return Pixels(width * height, 0x808080); }

TEST(PictureComparison, FindsAPictureEqualToItself) {
  const Pixels picture = grey();
  const PictureDifference found = comparePictures(viewOf(picture), viewOf(picture));
  EXPECT_TRUE(found.matches());
  EXPECT_EQ(100.0, found.equalPercent());
  EXPECT_EQ(0, found.worstChannel);
}

TEST(PictureComparison, AllowsHalfAPercentOfThePixelsToDifferAndNotOneMore) {
  const Pixels expected = grey();
  Pixels actual = expected;
  for (std::size_t i = 0; i < 10; ++i) actual[i * 7] = 0x818080;
  EXPECT_TRUE(comparePictures(viewOf(expected), viewOf(actual)).matches());
  EXPECT_EQ(99.5, comparePictures(viewOf(expected), viewOf(actual)).equalPercent());
  actual[1999] = 0x818080;
  EXPECT_FALSE(comparePictures(viewOf(expected), viewOf(actual)).matches());
}

TEST(PictureComparison, AllowsNoPixelToBeOffByMoreThan48InAnyChannelEitherWay) {
  for (const int shift : {0, 8, 16}) {
    for (const int sign : {1, -1}) {
      const Pixels expected = grey();
      Pixels actual = expected;
      actual[17] = static_cast<std::uint32_t>(0x808080 + sign * (48 << shift));
      EXPECT_TRUE(comparePictures(viewOf(expected), viewOf(actual)).matches()) << shift << ", " << sign;
      EXPECT_EQ(48, comparePictures(viewOf(expected), viewOf(actual)).worstChannel);
      actual[17] = static_cast<std::uint32_t>(0x808080 + sign * (49 << shift));
      EXPECT_FALSE(comparePictures(viewOf(expected), viewOf(actual)).matches()) << shift << ", " << sign;
    }
  }
}

TEST(PictureComparison, RefusesAnotherSizeOfTheSameArea) {
  const Pixels picture = grey();
  EXPECT_FALSE(comparePictures(viewOf(picture), viewOf(picture, height, width)).matches());
  EXPECT_FALSE(comparePictures(viewOf(picture), viewOf(Pixels(width * (height - 1)), width, height - 1)).matches());
  EXPECT_FALSE(comparePictures(viewOf({}), viewOf({}, 0, 1)).matches());
}

TEST(PictureComparison, ShowsTheSmallestDifferencePlainly) {
  const Pixels expected = grey();
  Pixels actual = expected;
  actual[3] = 0x808180;
  actual[4] = 0xFF8000;
  const Pixels shown = amplifiedDifference(viewOf(expected), viewOf(actual));
  EXPECT_EQ(0u, shown[2]);
  EXPECT_EQ(0x005400u, shown[3]);
  EXPECT_EQ(0xFF00FFu, shown[4]);
}

}  // namespace
}  // namespace av::test
