#include "simd/decibels.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace av {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// How far `decibels` is off, in units of the last place of the exact value.
double errorOf(double x) {
  const long double exact = 10 * std::log10(static_cast<long double>(x));
  const auto rounded = static_cast<double>(std::fabs(exact));
  const double unit = std::nextafter(rounded, infinity) - rounded;
  return static_cast<double>(std::fabs(decibels(x) - exact)) / unit;
}

double worstErrorOf(int count, std::uint64_t lowest, std::uint64_t highest) {
  std::mt19937_64 random(1);
  std::uniform_int_distribution<std::uint64_t> bits(lowest, highest);
  double worst = 0;
  for (int i = 0; i < count; ++i) worst = std::max(worst, errorOf(std::bit_cast<double>(bits(random))));
  return worst;
}

}  // namespace

TEST(Decibels, AreWithinThreeUnitsInTheLastPlaceForAllPositiveNumbers) {
  EXPECT_LE(worstErrorOf(200000, 1, std::bit_cast<std::uint64_t>(DBL_MAX)), 3.0);
}

TEST(Decibels, AreWithinThreeUnitsInTheLastPlaceAroundOne) {
  EXPECT_LE(worstErrorOf(200000, std::bit_cast<std::uint64_t>(0.5), std::bit_cast<std::uint64_t>(2.0)), 3.0);
  EXPECT_LE(worstErrorOf(200000, std::bit_cast<std::uint64_t>(1 - 1e-9), std::bit_cast<std::uint64_t>(1 + 1e-9)), 3.0);
}

TEST(Decibels, OfOneAreNothing) { EXPECT_EQ(decibels(1.0), 0.0); }

TEST(Decibels, OfPowersOfTenAreWholeTensOnceRoundedToSinglePrecision) {
  for (int exponent = -37; exponent <= 38; ++exponent)
    EXPECT_EQ(static_cast<float>(decibels(std::pow(10.0, exponent))), static_cast<float>(10 * exponent));
}

TEST(Decibels, OfTheEndsOfTheRange) {
  EXPECT_EQ(decibels(0.0), -infinity);
  EXPECT_EQ(decibels(-0.0), -infinity);
  EXPECT_EQ(decibels(infinity), infinity);
  EXPECT_TRUE(std::isnan(decibels(std::numeric_limits<double>::quiet_NaN())));
  for (const double x : {std::numeric_limits<double>::denorm_min(), DBL_MIN, std::nextafter(DBL_MIN, 0.0), DBL_MAX})
    EXPECT_LE(errorOf(x), 3.0) << x;
}

}  // namespace av
