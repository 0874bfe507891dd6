#include "type1/smoothing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using av::type1::smoothToward;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Steps of one element from `display` toward `analysis` until it has converged.
std::vector<double> steps(double analysis, double display) {
  std::vector<double> values;
  const std::vector<double> a(2, analysis);
  std::vector<double> d(2, display);
  for (bool converged = false; !converged && values.size() < 100;) {
    converged = smoothToward(a, d);
    values.push_back(d[0]);
  }
  return values;
}

}  // namespace

TEST(Smoothing, RisesByHalfTheGapUntilTheWholePartsAgree) {
  EXPECT_EQ(steps(0.0, -200.0), (std::vector<double>{-100, -50, -25, -12.5, -6.25, -3.125, -1.5625, -0.78125}));
}

TEST(Smoothing, FallsByAQuarterOfTheGap) {
  const auto values = steps(0.0, 200.0);
  double expected = 200.0;
  for (const double value : values) {
    expected -= expected * 0.25;
    EXPECT_EQ(value, expected);
  }
  EXPECT_EQ(values[0], 150.0);
  EXPECT_EQ(values[1], 112.5);
  EXPECT_EQ(values.size(), 19u);  // 200 · 0.75^19 is the first below 1; rising the same way takes 8 steps
}

// Truncation is toward zero: just above −200 a value reads −199. A quarter of the last bit is lost in rounding, so the fall
// to a whole negative number never ends, and the view goes on asking for redraws. Hosts know it so.
TEST(Smoothing, NeverConvergesInAFallToAWholeNegativeNumber) {
  const std::vector<double> a(2, -200.0);
  std::vector<double> d(2, 0.0);
  for (int step = 0; step < 1000; ++step) ASSERT_FALSE(smoothToward(a, d));
  EXPECT_NEAR(d[0], -200.0, 1e-12);
  EXPECT_GT(d[0], -200.0);
}

TEST(Smoothing, HasConvergedWhenBothTruncateToTheSameNumber) {
  const auto converged = [](double analysis, double display) {
    const std::vector<double> a(2, analysis);
    std::vector<double> d(2, display);
    return smoothToward(a, d);
  };
  EXPECT_TRUE(converged(0.9, -1.5));     // −0.3 and 0.9: both 0, as neither floor nor rounding would have it
  EXPECT_FALSE(converged(10.0, 9.0));    // 9.5
  EXPECT_TRUE(converged(-10.0, -10.9));  // −10.45
  EXPECT_FALSE(converged(-10.9, -9.0));  // −9.475
  EXPECT_TRUE(converged(5.0, 5.0));
}

TEST(Smoothing, MovesTheFirstHalfOnly) {
  const std::vector<double> a(8, 10.0);
  std::vector<double> d(8, 0.0);
  EXPECT_FALSE(smoothToward(a, d));
  EXPECT_EQ(d, (std::vector<double>{5, 5, 5, 5, 0, 0, 0, 0}));
  d.assign({10, 10, 10, 10, -99, -99, -99, -99});
  EXPECT_TRUE(smoothToward(a, d));
}

TEST(Smoothing, NeedsEveryElementToConverge) {
  const std::vector<double> a{10, 10, 10, 10};
  std::vector<double> d{0, 10, 0, 0};
  EXPECT_FALSE(smoothToward(a, d));
  d = {10, 0, 0, 0};
  EXPECT_FALSE(smoothToward(a, d));
}

TEST(Smoothing, RecoversFromValuesThatAreNotFinite) {
  for (const double lost : {infinity, -infinity, notANumber}) {
    const std::vector<double> a{-50.0, -50.0};
    std::vector<double> d{lost, lost};
    EXPECT_TRUE(smoothToward(a, d));
    EXPECT_EQ(d[0], -50.0);
  }
  const std::vector<double> a{-infinity, -infinity};
  std::vector<double> d{-50.0, -50.0};
  EXPECT_TRUE(smoothToward(a, d));
  EXPECT_EQ(d[0], -infinity);
}
