#include "gfx/hls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace av {
namespace {

int red(Argb colour) { return static_cast<int>(colour >> 16 & 0xFF); }
int green(Argb colour) { return static_cast<int>(colour >> 8 & 0xFF); }
int blue(Argb colour) { return static_cast<int>(colour & 0xFF); }

TEST(Hls, PutsRedGreenAndBlueAThirdOfTheCircleApart) {
  EXPECT_EQ(argbFromRgb(255, 0, 0), argbFromHls(0, 70, 140));
  EXPECT_EQ(argbFromRgb(11, 255, 0), argbFromHls(46, 70, 140));  // a third is 46⅔: between 46 and 47
  EXPECT_EQ(argbFromRgb(0, 255, 11), argbFromHls(47, 70, 140));
  EXPECT_EQ(argbFromRgb(0, 0, 255), argbFromHls(93, 70, 140));
}

TEST(Hls, MakesGreysWithoutSaturationAndBlackAndWhiteAtTheEndsOfLightness) {
  EXPECT_EQ(argbFromRgb(127, 127, 127), argbFromHls(31, 70, 0));  // 70·255 ÷ 140 = 127.5, cut
  EXPECT_EQ(argbFromRgb(255, 255, 255), argbFromHls(31, 140, 0));
  for (int hue = 0; hue <= hlsMax; ++hue) {
    for (const int saturation : {0, 1, 70, 140}) {
      EXPECT_EQ(argbFromRgb(0, 0, 0), argbFromHls(hue, 0, saturation));
      EXPECT_EQ(argbFromRgb(255, 255, 255), argbFromHls(hue, 140, saturation));
    }
  }
}

// By hand: highest = (55·280 + 70) ÷ 140 = 110, lowest 0; 110 of 140 is the byte (110·255 + 70) ÷ 140 = 200.
TEST(Hls, RoundsAtEveryDivision) {
  EXPECT_EQ(argbFromRgb(200, 131, 0), argbFromHls(15, 55, 140));  // green (110·15 + 11) ÷ 23 = 72 → 131
  EXPECT_EQ(argbFromRgb(131, 200, 0), argbFromHls(32, 55, 140));  // red at 78: (110·15 + 11) ÷ 23
  EXPECT_EQ(argbFromRgb(0, 200, 26), argbFromHls(49, 55, 140));  // red at 95 is low; blue at 3: 341 ÷ 23 = 14 → 25.5
  EXPECT_EQ(argbFromRgb(200, 200, 0), argbFromHls(23, 55, 140));
  EXPECT_EQ(argbFromRgb(200, 191, 0), argbFromHls(22, 55, 140));  // 2431 ÷ 23 = 105 → 191.25 to the nearest
  EXPECT_EQ(argbFromRgb(9, 200, 0), argbFromHls(46, 55, 140));    // red at 92: 121 ÷ 23 = 5 → 9
  EXPECT_EQ(argbFromRgb(53, 0, 200), argbFromHls(100, 55, 140));  // red once around, at 6: 671 ÷ 23 = 29 → 53.3
}

TEST(Hls, StaysNearTheConversionInRealNumbers) {
  const auto component = [](double lowest, double highest, double sixths) {
    const double at = sixths - 6 * std::floor(sixths / 6);
    const double share = at < 1 ? at : at < 3 ? 1 : at < 4 ? 4 - at : 0;
    return 255 * (lowest + (highest - lowest) * share);
  };
  int furthest = 0;
  for (int hue = 0; hue <= hlsMax; ++hue) {
    for (int lightness = 0; lightness <= hlsMax; lightness += 5) {
      for (int saturation = 0; saturation <= hlsMax; saturation += 5) {
        const double l = lightness / 140.0;
        const double s = saturation / 140.0;
        const double highest = l <= 0.5 ? l * (1 + s) : l + s - l * s;
        const double lowest = 2 * l - highest;
        const double sixths = hue / 140.0 * 6;
        const Argb colour = argbFromHls(hue, lightness, saturation);
        EXPECT_EQ(0xFF000000u, colour & 0xFF000000u);
        const double differences[] = {red(colour) - component(lowest, highest, sixths + 2),
                                      green(colour) - component(lowest, highest, sixths),
                                      blue(colour) - component(lowest, highest, sixths - 2)};
        for (const double difference : differences) {
          furthest = std::max(furthest, static_cast<int>(std::ceil(std::fabs(difference))));
        }
      }
    }
  }
  // Steps of 255 ÷ 140, the sixth of 23 in place of 23⅓ and the third of 46 in place of 46⅔: at most two of 140 together.
  EXPECT_LE(furthest, 13);
}

}  // namespace
}  // namespace av
