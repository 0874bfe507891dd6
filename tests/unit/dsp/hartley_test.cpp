#include "dsp/hartley.h"

#include "support/hartley_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <span>
#include <stdexcept>
#include <vector>

namespace {

using av::dsp::HartleyTransform;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

double norm(std::span<const double> x) { return std::sqrt(std::inner_product(x.begin(), x.end(), x.begin(), 0.0)); }

/// Rounding errors of log2 N stages add up like a random walk, each of them about epsilon/2 of the part of the norm that
/// meets in one element; this is several times their usual sum, and a thousandth of what one wrong twiddle would do.
double errorBound(std::span<const double> x) {
  return 4.0 * epsilon * std::log2(static_cast<double>(x.size())) * norm(x);
}

void expectExact(std::span<const double> x) {
  std::vector<double> actual(x.begin(), x.end());
  HartleyTransform(static_cast<int>(x.size())).transform(actual);
  const auto expected = av::test::exactHartley(x);
  double worst = 0.0;
  for (std::size_t k = 0; k < x.size(); ++k)
    worst = std::max(worst, static_cast<double>(std::fabs(actual[k] - expected[k])));
  EXPECT_LE(worst, errorBound(x)) << "N = " << x.size();
}

}  // namespace

TEST(HartleyOracle, AgreesWithTheSumThatDefinesTheTransform) {
  for (const std::size_t n : av::test::windowSizes) {
    const auto x = av::test::noise(n, 32767, 11);
    const std::span<const double> samples(x);
    const av::test::Circle circle(n);
    const auto fast = av::test::exactHartley(samples);
    const std::size_t step = n <= 2048 ? 1 : n / 512 - 1;  // an odd step visits bins of every kind
    const long double bound = 64 * std::numeric_limits<long double>::epsilon() * n * 32767;
    for (std::size_t k = 0; k < n; k += step)
      ASSERT_LE(std::fabs(fast[k] - av::test::hartleySum(samples, k, circle)), bound) << "N = " << n << ", k = " << k;
  }
}

TEST(Hartley, MatchesTheExactTransformOfNoiseForEveryLength) {
  for (const std::size_t n : av::test::windowSizes) expectExact(av::test::noise(n, 32767, 5));
  expectExact(av::test::noise(8, 127, 5));
  expectExact(av::test::noise(16, 127, 5));
  expectExact(av::test::noise(32, 127, 5));
  expectExact(av::test::noise(32768, 127, 5));
  expectExact(av::test::noise(65536, 127, 5));
}

TEST(Hartley, MatchesTheExactTransformOfImpulsesAnywhere) {
  for (const std::size_t n : av::test::windowSizes) {
    for (const std::size_t place :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}, n / 4 + 1, n / 2, n / 2 + 3, n - 1}) {
      std::vector<double> x(n, 0.0);
      x[place] = 1.0;
      SCOPED_TRACE(place);
      expectExact(x);
    }
  }
}

TEST(Hartley, OfAnImpulseAtTheStartIsFlatToTheBit) {
  for (const std::size_t n : av::test::windowSizes) {
    std::vector<double> x(n, 0.0);
    x[0] = 3.0;
    HartleyTransform(static_cast<int>(n)).transform(x);
    EXPECT_EQ(x, std::vector<double>(n, 3.0));
  }
}

TEST(Hartley, OfAConstantLeavesNothingOutsideElementZero) {
  for (const std::size_t n : av::test::windowSizes) {
    std::vector<double> x(n, -128.0);
    HartleyTransform(static_cast<int>(n)).transform(x);
    std::vector<double> expected(n, 0.0);
    expected[0] = -128.0 * static_cast<double>(n);
    EXPECT_EQ(x, expected);
  }
}

TEST(Hartley, OfFourAndTwoSamplesByHand) {
  std::vector<double> four{1.0, 2.0, 4.0, 8.0};
  HartleyTransform(4).transform(four);
  EXPECT_EQ(four, (std::vector<double>{15.0, -9.0, -5.0, 3.0}));

  std::vector<double> two{5.0, 3.0};
  HartleyTransform(2).transform(two);
  EXPECT_EQ(two, (std::vector<double>{8.0, 2.0}));
}

TEST(Hartley, TwiceGivesTheSamplesTimesTheLength) {
  for (const std::size_t n : av::test::windowSizes) {
    const auto x = av::test::noise(n, 32767, 7);
    HartleyTransform transform(static_cast<int>(n));
    auto y = x;
    transform.transform(y);
    transform.transform(y);
    const double scale = static_cast<double>(n);
    for (std::size_t i = 0; i < n; ++i) ASSERT_NEAR(y[i] / scale, x[i], 2.0 * errorBound(x)) << "N = " << n;
  }
}

TEST(Hartley, RefusesLengthsThatAreNoPowerOfTwo) {
  for (const int length : {-4, 0, 1, 3, 6, 1000, 1025, 131072})
    EXPECT_THROW(HartleyTransform{length}, std::invalid_argument) << length;
  EXPECT_EQ(HartleyTransform(512).length(), 512);
}
