#include "dsp/correlation.h"

#include "support/hartley_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace av::dsp {
namespace {

using Signal = std::vector<double>;

TEST(Correlation, IsExactlyOneForEqualSignalsAndMinusOneForOppositeOnes) {
  for (const std::size_t length : {1u, 2u, 64u, 16384u}) {
    for (const std::int64_t peak :
         {std::int64_t{1}, std::int64_t{127}, std::int64_t{32767}, std::int64_t{2147483647}}) {
      Signal a = test::noise(length, peak, 5);
      a[0] = 1;
      Signal opposite = a;
      for (double& value : opposite) value = -value;
      EXPECT_EQ(1.0, correlation(a, a));
      EXPECT_EQ(-1.0, correlation(a, opposite));
    }
  }
}

TEST(Correlation, IsThatOfSmallNumbersByHand) {
  EXPECT_EQ(0.8, correlation(Signal{1, 2}, Signal{2, 1}));  // 4 ÷ √(5·5)
  EXPECT_EQ(0.0, correlation(Signal{1, 1}, Signal{1, -1}));
  EXPECT_EQ(-0.6, correlation(Signal{3, 0}, Signal{-3, 4}));  // −9 ÷ √(9·25)
  EXPECT_DOUBLE_EQ(11 / std::sqrt(125), correlation(Signal{1, 2}, Signal{3, 4}));
}

TEST(Correlation, DoesNotDependOnLoudness) {
  const Signal a = test::noise(1000, 30000, 1);
  const Signal b = test::noise(1000, 30000, 2);
  Signal quiet = b;
  for (double& value : quiet) value /= 1024;  // exact
  EXPECT_DOUBLE_EQ(correlation(a, b), correlation(a, quiet));
}

TEST(Correlation, IsTheCosineOfThePhaseBetweenTwoSines) {
  for (int degrees = 0; degrees <= 360; degrees += 15) {
    Signal a;
    Signal b;
    const double phase = degrees * std::numbers::pi / 180;
    for (int i = 0; i < 1024; ++i) {
      const double angle = 2 * std::numbers::pi * 16 * i / 1024;
      a.push_back(std::sin(angle));
      b.push_back(std::sin(angle + phase));
    }
    EXPECT_NEAR(std::cos(phase), correlation(a, b), 1e-12) << degrees;  // 1024 roundings of 1e-16 each, and more
  }
}

TEST(Correlation, FollowsTheFormulaInWiderPrecision) {
  for (std::uint32_t seed = 1; seed <= 50; ++seed) {
    const Signal a = test::noise(2048, 2147483647, seed);
    Signal b = test::noise(2048, 2147483647, seed + 1000);
    for (std::size_t i = 0; i < b.size(); ++i) b[i] = b[i] + a[i] * (seed % 9 - 4.0);
    long double ab = 0;
    long double aa = 0;
    long double bb = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
      ab += static_cast<long double>(a[i]) * b[i];
      aa += static_cast<long double>(a[i]) * a[i];
      bb += static_cast<long double>(b[i]) * b[i];
    }
    // Sums of 2048 products: their relative errors stay below 2048·2^-53 of the sum of magnitudes.
    EXPECT_NEAR(static_cast<double>(ab / std::sqrt(aa * bb)), correlation(a, b), 1e-12);
  }
}

TEST(Correlation, IsZeroInSilenceAndWhereTheSumsOverflow) {
  const Signal silence(64, 0.0);
  const Signal tone = test::noise(64, 100, 3);
  EXPECT_EQ(0.0, correlation(silence, tone));
  EXPECT_EQ(0.0, correlation(tone, silence));
  EXPECT_EQ(0.0, correlation(silence, silence));
  EXPECT_EQ(0.0, correlation({}, tone));
  for (const double strange :
       {1e200, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(0.0, correlation(Signal(64, strange), tone)) << strange;
    EXPECT_EQ(0.0, correlation(Signal(64, strange), Signal(64, strange))) << strange;
  }
}

TEST(Correlation, StaysWithinItsLimits) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    const Signal a = test::noise(64, 32767, seed);
    Signal b = a;
    for (double& value : b) value *= 1.0 / 3;
    const double value = correlation(a, b);
    EXPECT_LE(value, 1.0);
    EXPECT_GT(value, 1 - 1e-13);
  }
}

}  // namespace
}  // namespace av::dsp
