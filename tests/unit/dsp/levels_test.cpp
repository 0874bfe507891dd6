#include "dsp/levels.h"

#include "dsp/centred_windows.h"
#include "dsp/hartley.h"
#include "simd/decibels.h"
#include "support/hartley_oracle.h"
#include "support/special_signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <span>
#include <vector>

namespace {

using av::dsp::CentredWindow;
using av::dsp::hartleyBinsToLevels;
using av::dsp::HartleyTransform;

std::vector<double> sine(std::size_t n, double bin, double amplitude, double phase) {
  std::vector<double> x(n);
  for (std::size_t i = 0; i < n; ++i)
    x[i] = amplitude * std::sin(2.0 * std::numbers::pi * bin * static_cast<double>(i) / static_cast<double>(n) + phase);
  return x;
}

std::vector<double> rounded(std::vector<double> x) {
  for (double& value : x) value = std::round(value);
  return x;
}

/// Levels of every bin against those of an exact window and transform of the same samples: within 1e-9 dB, or (far below
/// a strong neighbour, where double precision has fewer digits left for the weak bin) within the rounding noise of
/// windowing and transform: 4·log2 N·epsilon of the samples' norm, over N.
void expectLevels(const std::vector<double>& samples, int windowType, double fullScale) {
  const std::size_t n = samples.size();
  std::vector<double> actual = samples;
  CentredWindow(n).apply(windowType, actual);
  const double norm = std::sqrt(std::inner_product(actual.begin(), actual.end(), actual.begin(), 0.0));
  HartleyTransform(static_cast<int>(n)).transform(actual);
  hartleyBinsToLevels(actual, fullScale);

  const auto size = static_cast<double>(n);
  const double noiseAmplitude =
      4.0 * std::log2(size) * std::numeric_limits<double>::epsilon() * norm / size / fullScale;
  std::vector<long double> windowed;
  for (std::size_t i = 0; i < n; ++i) windowed.push_back(samples[i] * av::test::exactWindow(windowType, i, n));
  const auto hartley = av::test::exactHartley(std::span<const long double>(windowed));
  for (std::size_t k = 1; k < n / 2; ++k) {
    const auto expected = static_cast<double>(av::test::exactLevelDb(hartley, k, fullScale));
    if (expected > -180.0) {
      const double noiseDb = 20.0 * std::log10(1.0 + noiseAmplitude / std::pow(10.0, expected / 20.0));
      ASSERT_NEAR(actual[k], expected, std::max(1e-9, noiseDb))
          << "N = " << n << ", window " << windowType << ", bin " << k;
    }
  }
}

}  // namespace

TEST(Levels, OfPcmAgreeWithAnExactTransform) {
  for (const std::size_t n : av::test::windowSizes) {
    const auto size = static_cast<double>(n);
    for (int windowType = 0; windowType <= 4; ++windowType) {
      expectLevels(av::test::noise(n, 32767, 21), windowType, 32767.0);
      expectLevels(av::test::noise(n, 2147483647, 22), windowType, 2147483647.0);
      expectLevels(rounded(sine(n, size / 8, 32767.0, 0.3)), windowType, 32767.0);
      expectLevels(rounded(sine(n, 3.37, 32767.0, 1.1)), windowType, 32767.0);
      expectLevels(rounded(sine(n, size / 5.3, 127.0, 0.0)), windowType, 127.0);
    }
  }
}

TEST(Levels, OfAFullScaleSinusoidOnABinAreZeroDb) {
  for (const std::size_t n : av::test::windowSizes) {
    for (const std::size_t bin : {std::size_t{1}, std::size_t{2}, n / 8, n / 4, n / 2 - 1}) {
      for (const double phase : {0.0, 0.7, 2.0}) {
        auto x = sine(n, static_cast<double>(bin), 32767.0, phase);
        HartleyTransform(static_cast<int>(n)).transform(x);
        hartleyBinsToLevels(x, 32767.0);
        EXPECT_NEAR(x[bin], 0.0, 1e-11) << "N = " << n << ", bin " << bin;  // sin itself is good to about 1e-16 · N
      }
    }
  }
}

TEST(Levels, OfSilenceAreExactlyTheFloor) {
  for (const std::size_t n : av::test::windowSizes) {
    std::vector<double> x(n, 0.0);
    HartleyTransform(static_cast<int>(n)).transform(x);
    hartleyBinsToLevels(x, 32767.0);
    for (std::size_t k = 1; k < n / 2; ++k) ASSERT_EQ(x[k], -200.0);
  }
}

TEST(Levels, TakeTheFloorOnlyForAPowerOfExactlyZero) {
  std::vector<double> x(64, 0.0);
  x[2] = x[62] = 32e-20;  // a power of 1e-40
  x[3] = x[61] = 32.0;    // a power of 1
  x[4] = 1e-170;          // squares that are nothing at all
  hartleyBinsToLevels(x, 10.0);
  EXPECT_EQ(x[1], -200.0);
  EXPECT_NEAR(x[2], -420.0, 1e-12);
  EXPECT_NEAR(x[3], -20.0, 1e-14);
  EXPECT_EQ(x[4], -200.0);
}

TEST(Levels, OfAFullScaleThatNoDepthHasAreRightToo) {
  // 2^599 and ∞, which headers of 600 and of 65535 bits claim.
  std::vector<double> x(64, 0.0);
  x[3] = x[61] = 32.0;
  auto y = x;
  hartleyBinsToLevels(x, 0x1p599);
  hartleyBinsToLevels(y, std::numeric_limits<double>::infinity());
  EXPECT_NEAR(x[3], -20.0 * 599.0 * std::log10(2.0), 1e-11);
  EXPECT_EQ(y[3], -std::numeric_limits<double>::infinity());
}

TEST(Levels, HaveTheSameBitsWithEachKernel) {
  for (const std::size_t n : {2, 3, 4, 15, 16, 17, 18, 20, 30, 64, 65, 441, 1000, 1024}) {
    for (const auto& signal : av::test::specialSignals) {
      const auto hartley = av::test::make(signal, n, 12);
      for (const double floorDb : {-91.0, -std::numeric_limits<double>::infinity()}) {
        auto expected = hartley;
        hartleyBinsToLevels(expected, 32767.0, floorDb, av::dsp::sse2LevelKernel);
        for (const av::dsp::LevelKernel* kernel : av::dsp::levelKernels()) {
          auto actual = hartley;
          hartleyBinsToLevels(actual, 32767.0, floorDb, *kernel);
          ASSERT_EQ(av::test::difference(actual, expected), "") << kernel->name << ", " << signal.name << ", N = " << n;
        }
      }
    }
  }
}

TEST(Levels, OfEveryLengthHaveTheBitsOfThePlainOperations) {
  for (std::size_t n = 0; n <= 300; ++n) {
    const auto hartley = av::test::noise(n, 30000, static_cast<std::uint32_t>(n));
    const auto size = static_cast<double>(n);
    const double gain = 2.0 / (size * size) / (32767.0 * 32767.0);
    for (const double floorDb : {-60.0, -std::numeric_limits<double>::infinity()}) {
      auto expected = hartley;
      for (std::size_t k = 1; k < n / 2; ++k) {
        const double squares = hartley[k] * hartley[k] + hartley[n - k] * hartley[n - k];
        expected[k] = squares == 0.0 ? std::max(-200.0, floorDb) : std::max(av::decibels(squares * gain), floorDb);
      }
      for (const av::dsp::LevelKernel* kernel : av::dsp::levelKernels()) {
        auto actual = hartley;
        hartleyBinsToLevels(actual, 32767.0, floorDb, *kernel);
        ASSERT_EQ(av::test::difference(actual, expected), "") << kernel->name << ", N = " << n << ", " << floorDb;
      }
    }
  }
}

TEST(Levels, LeaveElementZeroAndTheUpperHalf) {
  auto x = av::test::noise(64, 1000, 9);
  const auto before = x;
  hartleyBinsToLevels(x, 1000.0);
  EXPECT_EQ(x[0], before[0]);
  for (std::size_t k = 32; k < 64; ++k) EXPECT_EQ(x[k], before[k]);
  for (std::size_t k = 1; k < 32; ++k) EXPECT_NE(x[k], before[k]);
}

TEST(Levels, StopAtAFloorThatIsGiven) {
  std::vector<double> x(64, 0.0);
  std::vector<double> unbounded = x;
  for (std::size_t k = 1; k < 32; ++k) unbounded[k] = x[k] = std::pow(10.0, -static_cast<double>(k) / 4.0);
  hartleyBinsToLevels(unbounded, 1.0);
  hartleyBinsToLevels(x, 1.0, -91.0);
  for (std::size_t k = 1; k < 32; ++k) EXPECT_EQ(x[k], std::max(unbounded[k], -91.0));
  EXPECT_GT(x[1], -91.0);
  EXPECT_EQ(x[31], -91.0);
}

TEST(Levels, ThatAreNoNumberAreAtTheFloorThatIsGiven) {
  std::vector<double> x(64, std::numeric_limits<double>::infinity());
  hartleyBinsToLevels(x, std::numeric_limits<double>::infinity(), -91.0);
  for (std::size_t k = 1; k < 32; ++k) EXPECT_EQ(x[k], -91.0);
}
