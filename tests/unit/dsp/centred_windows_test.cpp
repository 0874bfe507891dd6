#include "dsp/centred_windows.h"

#include "support/hartley_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using av::dsp::CentredWindow;
using av::dsp::centredWindowWeight;

TEST(CentredWindows, FollowTheirDefinitionForEveryLength) {
  for (const std::size_t n : av::test::windowSizes) {
    for (int type = -1; type <= 6; ++type) {
      for (std::size_t i = 0; i < n; ++i) {
        const long double expected = av::test::exactWindow(type, i, n);
        // Weights are at most about 1 and come from a cosine and two roundings: a few units of 2^-53.
        ASSERT_NEAR(centredWindowWeight(type, static_cast<int>(i), static_cast<int>(n)), static_cast<double>(expected),
                    5e-16)
            << "type " << type << ", N = " << n << ", i = " << i;
      }
    }
  }
}

TEST(CentredWindows, AreExactWhereNoCosineIsTaken) {
  const double n = 64.0;
  for (int i = 0; i < 64; ++i) {
    const double u = (2.0 * i - n) / n;
    EXPECT_EQ(centredWindowWeight(1, i, 64), 1.0 - u * u);
    EXPECT_EQ(centredWindowWeight(2, i, 64), i < 32 ? (i - n / 2) * 2 / n + 1 : 1 - (i - n / 2) * 2 / n);
  }
  EXPECT_EQ(centredWindowWeight(1, 0, 64), 0.0);
  EXPECT_EQ(centredWindowWeight(1, 32, 64), 1.0);
  EXPECT_EQ(centredWindowWeight(1, 63, 64), 1.0 - (62.0 / 64.0) * (62.0 / 64.0));
  EXPECT_EQ(centredWindowWeight(2, 0, 64), 0.0);
  EXPECT_EQ(centredWindowWeight(2, 1, 64), 1.0 / 32.0);
  EXPECT_EQ(centredWindowWeight(2, 63, 64), 1.0 / 32.0);
}

TEST(CentredWindows, OfTypeFourUseSinglePrecisionConstants) {
  EXPECT_EQ(centredWindowWeight(4, 0, 1024), 0.5400000214576721 - 0.46000000834465027);
  EXPECT_EQ(centredWindowWeight(4, 512, 1024), 0.5400000214576721 + 0.46000000834465027);
  EXPECT_EQ(centredWindowWeight(3, 0, 1024), 0.0);
  EXPECT_EQ(centredWindowWeight(3, 512, 1024), 1.0);
}

TEST(CentredWindows, BothSpellingsOfTheCosineArgumentGiveTheSameBits) {
  for (const int n : {64, 1000, 1024, 1099, 4096}) {
    for (int i = 0; i < n; ++i) {
      const double length = n;
      const double pi = std::numbers::pi;
      EXPECT_EQ(centredWindowWeight(3, i, n), 0.5 * std::cos(2.0 * pi * (i - length / 2) / length) + 0.5);
      EXPECT_EQ(centredWindowWeight(3, i, n), 0.5 + 0.5 * std::cos((i - 0.5 * length) * 2.0 * pi / length));
    }
  }
}

TEST(CentredWindows, TriangleOfAnOddLengthLeavesTheSampleAtTheIntegerHalf) {
  EXPECT_DOUBLE_EQ(centredWindowWeight(2, 1, 5), (1 - 2.5) * 2 / 5 + 1);
  EXPECT_EQ(centredWindowWeight(2, 2, 5), 1.0);
  EXPECT_DOUBLE_EQ(centredWindowWeight(2, 3, 5), 1 - (3 - 2.5) * 2 / 5);
}

TEST(CentredWindow, MultipliesByTheWeightsOfTheCurrentTypeAndLength) {
  CentredWindow window(256);
  const struct {
    int type;
    std::size_t length;
  } steps[] = {{3, 256}, {4, 256}, {4, 64}, {0, 64}, {4, 64}, {7, 128}, {1, 128}, {-2, 128}, {2, 100}};
  for (const auto& step : steps) {
    const auto x = av::test::noise(step.length, 1000, 3);
    auto y = x;
    window.apply(step.type, y);
    for (std::size_t i = 0; i < x.size(); ++i) {
      const double weight = centredWindowWeight(step.type, static_cast<int>(i), static_cast<int>(step.length));
      ASSERT_EQ(y[i], x[i] * weight) << "type " << step.type << ", i = " << i;
    }
  }
}
