#include "dsp/spectrum_analyzer.h"

#include "support/allocation_count.h"
#include "support/analysis_window_oracle.h"
#include "support/fft_oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string_view>
#include <vector>

namespace av::dsp {
namespace {

std::vector<double> noise(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-32768, 32768);
  std::vector<double> result(count);
  for (double& x : result) x = value(random);
  return result;
}

std::vector<double> powerOf(CSpectrumAnalyzer& analyzer, std::vector<double> samples) {
  std::vector<double> power(samples.size() / 2, -1);
  analyzer.ComputePowerSpectrum(samples, power);
  return power;
}

/// What the recurrence's first factor, which is 1 but for its last bits, leaves of a bin elsewhere.
constexpr double roundingPower(double length) { return length <= 512 ? 1e-28 : 1e-20; }

CSpectrumAnalyzer boxcar(std::int32_t length) {
  CSpectrumAnalyzer analyzer;
  analyzer.SetWindowType(0);
  analyzer.SetLength(length);
  return analyzer;
}

TEST(SpectrumAnalyzer, BeginsWithAHannWindowOf512Samples) {
  const CSpectrumAnalyzer analyzer;
  EXPECT_EQ(analyzer.length(), 512);
  EXPECT_EQ(analyzer.windowType(), 2u);
  EXPECT_EQ(std::string_view(analyzer.window().name), "Hann");
  EXPECT_FALSE(analyzer.window().hasParameter);
  EXPECT_EQ(analyzer.GetWindowParam(), 0.0);
  ASSERT_EQ(analyzer.coefficients().size(), 512u);
  EXPECT_NEAR(analyzer.coefficients()[100], static_cast<double>(test::analysisWindow(2, 101, 512, 4)), 0x1p-52);
  EXPECT_NEAR(analyzer.WindowPower(), 0.375 * 511 / 512, 1e-14);  // Σ of the raised cosine's squares is 3/8·(N − 1)
}

TEST(SpectrumAnalyzer, HasTheBitsOfTheLiteralOperationsAtEveryLength) {
  CSpectrumAnalyzer analyzer;
  for (std::int32_t n = 4; n <= 1 << 18; n *= 2) {
    analyzer.SetLength(n);
    auto samples = noise(static_cast<std::size_t>(n), 11);
    auto windowed = samples;
    for (std::size_t i = 0; i < windowed.size(); ++i) windowed[i] = windowed[i] * analyzer.coefficients()[i];
    const auto expected = test::literalPowerSpectrum(windowed, analyzer.WindowPower());
    std::vector<double> power(samples.size() / 2);
    analyzer.ComputePowerSpectrum(samples, power);
    EXPECT_EQ(std::memcmp(power.data(), expected.data(), power.size() * sizeof(double)), 0) << n;
    EXPECT_EQ(samples, windowed) << n;
  }
}

TEST(SpectrumAnalyzer, IsNearTheExactPowerSpectrum) {
  // Per bin, of the largest one: what the recurrences and the single-precision factors allow at these lengths.
  const struct {
    std::int32_t length;
    std::size_t everyNthBin;
    double bound;
  } rows[] = {{4, 1, 1e-12}, {8, 1, 1e-7}, {64, 1, 1e-7}, {512, 1, 1e-7}, {4096, 61, 1e-6}, {65536, 4093, 1e-5}};
  for (const auto& row : rows) {
    auto analyzer = boxcar(row.length);
    const auto samples = noise(static_cast<std::size_t>(row.length), 12);
    const auto power = powerOf(analyzer, samples);
    const double largest = *std::max_element(power.begin(), power.end());
    for (std::size_t k = 0; k < power.size(); k += row.everyNthBin) {
      const long double exact = test::exactPower(samples, k) + (k == 0 ? test::exactPower(samples, power.size()) : 0);
      ASSERT_NEAR(power[k], static_cast<double>(exact), largest * row.bound) << k << " of " << row.length;
    }
  }
}

TEST(SpectrumAnalyzer, OfFourSamplesHasTwoBins) {
  auto analyzer = boxcar(4);
  // 0 Hz 10, Nyquist −2; bin 1: (1 − 3) + (2 − 4)i.
  EXPECT_EQ(powerOf(analyzer, {1, 2, 3, 4}), (std::vector<double>{104, 8}));
}

TEST(SpectrumAnalyzer, ShowsAConstantInTheFirstBinAlone) {
  for (const std::int32_t n : {4, 8, 64, 512, 65536}) {
    auto analyzer = boxcar(n);
    const auto power = powerOf(analyzer, std::vector<double>(static_cast<std::size_t>(n), 3));
    const double full = 9.0 * n * n;
    EXPECT_NEAR(power[0], full, full * 1e-14);
    for (std::size_t k = 1; k < power.size(); ++k)
      ASSERT_NEAR(power[k], 0.0, full * roundingPower(n)) << k << " of " << n;
  }
}

TEST(SpectrumAnalyzer, ShowsHalfTheSampleRateInTheFirstBinToo) {
  auto analyzer = boxcar(512);
  std::vector<double> samples(512);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = i % 2 ? -5 : 5;
  const auto power = powerOf(analyzer, samples);
  const double full = 25.0 * 512 * 512;
  EXPECT_EQ(power[0], full);
  for (std::size_t k = 1; k < power.size(); ++k) ASSERT_NEAR(power[k], 0.0, full * roundingPower(512)) << k;
}

TEST(SpectrumAnalyzer, ShowsASineInItsBin) {
  auto analyzer = boxcar(512);
  for (const std::size_t bin : {1, 17, 128, 200, 255}) {
    std::vector<double> samples(512);
    for (std::size_t i = 0; i < samples.size(); ++i)
      samples[i] = 100 * std::sin(2 * 3.14159265358979323846 * static_cast<double>(bin * i % 512) / 512);
    const auto power = powerOf(analyzer, samples);
    const double full = 100.0 * 256 * 100 * 256;
    for (std::size_t k = 0; k < power.size(); ++k)
      ASSERT_NEAR(power[k], k == bin ? full : 0, full * 1e-7) << k << ", sine " << bin;
  }
}

TEST(SpectrumAnalyzer, DividesByThePowerOfTheWindowOfTheLastLength) {
  CSpectrumAnalyzer analyzer;
  const double hann = analyzer.WindowPower();
  analyzer.SetWindowType(5);
  EXPECT_EQ(analyzer.windowType(), 5u);
  EXPECT_NEAR(analyzer.coefficients()[100], static_cast<double>(test::analysisWindow(5, 101, 512, 4)), 2 * 0x1p-52);
  EXPECT_EQ(analyzer.WindowPower(), hann);
  analyzer.SetLength(512);
  EXPECT_EQ(analyzer.windowType(), 5u);
  EXPECT_NEAR(analyzer.WindowPower(), 0.3046 * 511 / 512, 1e-6);  // 0.42² + 0.5²/2 + 0.08²/2
}

TEST(SpectrumAnalyzer, IgnoresAWindowThatDoesNotExist) {
  CSpectrumAnalyzer analyzer;
  analyzer.SetWindowType(9);
  const std::vector<double> before(analyzer.coefficients().begin(), analyzer.coefficients().end());
  analyzer.SetWindowType(11);
  analyzer.SetWindowType(0xFFFFFFFF);
  EXPECT_EQ(analyzer.windowType(), 9u);
  EXPECT_EQ(std::vector<double>(analyzer.coefficients().begin(), analyzer.coefficients().end()), before);
}

TEST(WindowParam, OfKaiserLiesBetweenOneAndTen) {
  CSpectrumAnalyzer analyzer;
  analyzer.SetWindowType(10);
  EXPECT_EQ(analyzer.GetWindowParam(), 4.0);
  EXPECT_TRUE(analyzer.SetWindowParam(10.0));
  EXPECT_FALSE(analyzer.SetWindowParam(10.0000001));
  EXPECT_EQ(analyzer.GetWindowParam(), 10.0);
  EXPECT_TRUE(analyzer.SetWindowParam(1.0));
  EXPECT_FALSE(analyzer.SetWindowParam(0.5));
  EXPECT_FALSE(analyzer.SetWindowParam(std::numeric_limits<double>::infinity()));
  EXPECT_EQ(analyzer.GetWindowParam(), 1.0);
  EXPECT_TRUE(analyzer.SetWindowParam(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_TRUE(std::isnan(analyzer.GetWindowParam()));
}

TEST(WindowParam, OfAnyOtherWindowIsRefusedAndReadsZero) {
  CSpectrumAnalyzer analyzer;
  for (std::uint32_t type = 0; type < 10; ++type) {
    analyzer.SetWindowType(type);
    for (const double value : {0.0, 1.0, 4.0, std::numeric_limits<double>::quiet_NaN()})
      EXPECT_FALSE(analyzer.SetWindowParam(value)) << type;
    EXPECT_EQ(analyzer.GetWindowParam(), 0.0);
  }
  analyzer.SetWindowType(10);
  EXPECT_EQ(analyzer.GetWindowParam(), 4.0);
}

TEST(WindowParam, TakesEffectAtTheNextWindowOrLength) {
  const auto middle = [](const CSpectrumAnalyzer& analyzer) { return analyzer.coefficients()[256]; };
  const auto expected = [](double beta) { return static_cast<float>(test::analysisWindow(10, 257, 512, beta)); };
  CSpectrumAnalyzer analyzer;
  analyzer.SetWindowType(10);
  EXPECT_FLOAT_EQ(static_cast<float>(middle(analyzer)), expected(4));
  analyzer.SetWindowParam(2.0);
  EXPECT_FLOAT_EQ(static_cast<float>(middle(analyzer)), expected(4));
  analyzer.SetWindowType(10);
  EXPECT_FLOAT_EQ(static_cast<float>(middle(analyzer)), expected(2));
  analyzer.SetWindowParam(9.0);
  analyzer.SetLength(512);
  EXPECT_FLOAT_EQ(static_cast<float>(middle(analyzer)), expected(9));
}

TEST(SpectrumAnalyzer, TakesLengthsThatCannotBeTransformed) {
  CSpectrumAnalyzer analyzer;
  for (std::uint32_t type = 0; type <= 10; ++type) {
    analyzer.SetWindowType(type);
    for (const std::int32_t length : {0, 1, 2, -5}) {
      analyzer.SetLength(length);
      EXPECT_EQ(analyzer.length(), std::max(length, 0));
      EXPECT_FALSE(std::isnan(analyzer.WindowPower()));
    }
  }
}

TEST(SpectrumAnalyzer, AllocatesNothingForABlock) {
  CSpectrumAnalyzer analyzer;
  auto samples = noise(512, 13);
  std::vector<double> power(256);
  analyzer.ComputePowerSpectrum(samples, power);
  const std::uint64_t before = test::allocationCount();
  for (int i = 0; i < 10; ++i) analyzer.ComputePowerSpectrum(samples, power);
  EXPECT_EQ(test::allocationCount(), before);
}

#if GTEST_HAS_DEATH_TEST && !defined(_WIN32)

TEST(SpectrumAnalyzerDeath, EndsTheProcessOverABlockOfFewerThanFourSamples) {
  const auto computeWith = [](std::int32_t length) {
    CSpectrumAnalyzer analyzer;
    analyzer.SetLength(length);
    std::vector<double> samples(12);
    std::vector<double> power(6);
    analyzer.ComputePowerSpectrum(samples, power);
  };
  EXPECT_EXIT(computeWith(0), testing::ExitedWithCode(1), "^0 is not a power of two\n$");
  EXPECT_EXIT(computeWith(1), testing::ExitedWithCode(1), "^0 is not a power of two\n$");
  EXPECT_EXIT(computeWith(2), testing::ExitedWithCode(1), "^1 is not a power of two\n$");
  EXPECT_EXIT(computeWith(12), testing::ExitedWithCode(1), "^6 is not a power of two\n$");
}

#endif

}  // namespace
}  // namespace av::dsp
