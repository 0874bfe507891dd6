#include "dsp/fft_kernel.h"

#include "dsp/fft_plan.h"
#include "dsp/spectrum_analyzer.h"
#include "support/fft_oracle.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace av::dsp {
namespace {

using Values = std::vector<double>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();
constexpr double leastDenormal = std::numeric_limits<double>::denorm_min();

struct Signal {
  const char* name;
  std::function<double(std::mt19937&, std::size_t)> value;
};

double uniform(std::mt19937& random, double range) {
  return std::uniform_real_distribution<double>(-range, range)(random);
}

Values make(const Signal& signal, std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  Values values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = signal.value(random, i);
  return values;
}

const Signal noise{"noise", [](std::mt19937& random, std::size_t) { return uniform(random, 32768); }};

/// A signal with `extra` at about one place in 50, and everywhere else 0 or noise.
Signal sprinkled(const char* name, double extra, bool withNoise) {
  return {name, [=](std::mt19937& random, std::size_t) {
            if (random() % 50 == 0) return random() % 2 ? extra : -extra;
            return withNoise ? uniform(random, 1) : 0.0;
          }};
}

const std::vector<Signal> specialSignals{
    {"silence", [](std::mt19937&, std::size_t) { return 0.0; }},
    {"negative zeros", [](std::mt19937&, std::size_t) { return -0.0; }},
    {"zeros of both signs", [](std::mt19937& random, std::size_t) { return random() % 2 ? 0.0 : -0.0; }},
    {"a constant", [](std::mt19937&, std::size_t) { return 3.0; }},
    {"half the sample rate", [](std::mt19937&, std::size_t i) { return i % 2 ? -5.0 : 5.0; }},
    {"an impulse", [](std::mt19937&, std::size_t i) { return i == 0 ? 1.0 : 0.0; }},
    {"a late impulse and negative zeros", [](std::mt19937&, std::size_t i) { return i == 7 ? -1.0 : -0.0; }},
    {"16-bit samples", [](std::mt19937& random, std::size_t) { return std::round(uniform(random, 32768)); }},
    {"denormals", [](std::mt19937& random, std::size_t) { return uniform(random, 1000) * leastDenormal; }},
    {"values whose products are denormal", [](std::mt19937& random, std::size_t) { return uniform(random, 1e-307); }},
    {"values whose squares are denormal", [](std::mt19937& random, std::size_t) { return uniform(random, 1e-161); }},
    {"values whose squares just are not denormal",
     [](std::mt19937& random, std::size_t) { return uniform(random, 1e-153); }},
    {"values whose squares overflow", [](std::mt19937& random, std::size_t) { return uniform(random, 1e154); }},
    {"values whose sums overflow", [](std::mt19937& random, std::size_t) { return uniform(random, largest / 4); }},
    {"values of all sizes",
     [](std::mt19937& random, std::size_t) { return std::ldexp(uniform(random, 1), int(random() % 2000) - 1050); }},
    sprinkled("infinities", infinity, true),
    sprinkled("infinities in silence", infinity, false),
    sprinkled("NaNs", nan, true),
    sprinkled("NaNs in silence", nan, false),
    sprinkled("the largest numbers", largest, true),
    sprinkled("the least numbers", leastDenormal, false),
    {"one infinity", [](std::mt19937&, std::size_t i) { return i == 11 ? infinity : 1.0; }},
    {"one NaN at the end", [](std::mt19937&, std::size_t i) { return i == 31 ? nan : 0.0; }},
};

/// Where the first difference is, or nothing. Which NaN an operation on two of them gives is up to the compiler, in the
/// plain operations too: a NaN equals any other. All else has to have the same bits.
std::string difference(const Values& actual, const Values& expected) {
  if (actual.size() != expected.size()) return "sizes differ";
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (std::isnan(actual[i]) && std::isnan(expected[i])) continue;
    if (std::bit_cast<std::uint64_t>(actual[i]) != std::bit_cast<std::uint64_t>(expected[i]))
      return testing::PrintToString(actual[i]) + " for " + testing::PrintToString(expected[i]) + " at " +
             std::to_string(i);
  }
  return {};
}

class EachFftKernel : public testing::TestWithParam<const FftKernel*> {
 protected:
  const FftKernel& kernel() const { return *GetParam(); }

  std::string transformDifference(const Signal& signal, std::size_t length, bool inverse, bool withImaginary) const {
    const Values real = make(signal, length, 21);
    const Values imaginary = withImaginary ? make(signal, length, 22) : Values();
    const auto expected = test::literalFft(inverse, real, imaginary);
    const FftPlan plan(static_cast<std::uint32_t>(length), inverse, kernel());
    Values actualReal(length, -1);
    Values actualImaginary(length, -1);
    plan.transform(real.data(), withImaginary ? imaginary.data() : nullptr, actualReal.data(), actualImaginary.data());
    return difference(actualReal, expected.real) + difference(actualImaginary, expected.imaginary);
  }

  static std::string powerDifference(CSpectrumAnalyzer& analyzer, const Signal& signal, unsigned seed) {
    Values samples = make(signal, static_cast<std::size_t>(analyzer.length()), seed);
    Values windowed = samples;
    for (std::size_t i = 0; i < windowed.size(); ++i) windowed[i] = windowed[i] * analyzer.coefficients()[i];
    const Values expected = test::literalPowerSpectrum(windowed, analyzer.WindowPower());
    Values power(samples.size() / 2, -1);
    analyzer.ComputePowerSpectrum(samples, power);
    return difference(power, expected) + difference(samples, windowed);
  }
};

TEST_P(EachFftKernel, TransformsWithTheBitsOfTheLiteralOperationsAtEveryLength) {
  for (std::size_t length = 2; length <= std::size_t{1} << 18; length *= 2) {
    // Long ones: one direction with and the other one without an imaginary input.
    for (const bool inverse : {false, true})
      for (const bool withImaginary : {false, true}) {
        if (length > 8192 && inverse == withImaginary) continue;
        ASSERT_EQ(transformDifference(noise, length, inverse, withImaginary), "")
            << length << ", inverse " << inverse << ", with imaginary input " << withImaginary;
      }
  }
}

TEST_P(EachFftKernel, TransformsSpecialValuesWithTheBitsOfTheLiteralOperations) {
  for (std::size_t length = 2; length <= 4096; length *= 2)
    for (const Signal& signal : specialSignals)
      for (const bool inverse : {false, true})
        for (const bool withImaginary : {false, true})
          ASSERT_EQ(transformDifference(signal, length, inverse, withImaginary), "")
              << signal.name << ", " << length << ", inverse " << inverse << ", with imaginary input " << withImaginary;
}

TEST_P(EachFftKernel, ComputesPowerSpectraWithTheBitsOfTheLiteralOperationsAtEveryLength) {
  CSpectrumAnalyzer analyzer(kernel());
  for (std::int32_t length = 4; length <= 1 << 18; length *= 2) {
    analyzer.SetLength(length);
    ASSERT_EQ(powerDifference(analyzer, noise, 23), "") << length;
  }
}

TEST_P(EachFftKernel, ComputesPowerSpectraOfSpecialValuesWithTheBitsOfTheLiteralOperations) {
  CSpectrumAnalyzer analyzer(kernel());
  for (const std::uint32_t window : {0u, 2u, 7u, 9u}) {
    analyzer.SetWindowType(window);
    for (std::int32_t length = 4; length <= 8192; length *= 2) {
      analyzer.SetLength(length);
      for (const Signal& signal : specialSignals)
        ASSERT_EQ(powerDifference(analyzer, signal, 24), "") << signal.name << ", window " << window << ", " << length;
    }
  }
}

TEST_P(EachFftKernel, ComputesManyBlocksWithTheBitsOfTheLiteralOperations) {
  CSpectrumAnalyzer analyzer(kernel());
  for (const std::int32_t length : {128, 512, 1024}) {
    analyzer.SetLength(length);
    for (unsigned seed = 0; seed < 100; ++seed) {
      // A special block between others: nothing of it may stay.
      const Signal& signal = seed % 4 == 3 ? specialSignals[seed / 4 % specialSignals.size()] : noise;
      ASSERT_EQ(powerDifference(analyzer, signal, seed), "") << signal.name << ", " << length << ", seed " << seed;
    }
  }
}

TEST_P(EachFftKernel, DividesByAPowerThatIsNoNumber) {
  CSpectrumAnalyzer analyzer(kernel());
  analyzer.SetWindowType(10);
  ASSERT_TRUE(analyzer.SetWindowParam(nan));
  for (const std::int32_t length : {4, 256, 2048}) {
    analyzer.SetLength(length);
    ASSERT_TRUE(std::isnan(analyzer.WindowPower()));
    EXPECT_EQ(powerDifference(analyzer, noise, 25), "") << length;
  }
}

TEST_P(EachFftKernel, DividesByTheWindowPowersOfAllWindows) {
  CSpectrumAnalyzer analyzer(kernel());
  for (std::uint32_t window = 0; window < WindowTable.size(); ++window) {
    analyzer.SetWindowType(window);
    analyzer.SetLength(1024);
    analyzer.SetWindowType((window + 1) % static_cast<std::uint32_t>(WindowTable.size()));
    EXPECT_EQ(powerDifference(analyzer, noise, 26), "") << window;
  }
}

INSTANTIATE_TEST_SUITE_P(OnThisProcessor, EachFftKernel, testing::ValuesIn(fftKernels().begin(), fftKernels().end()),
                         [](const auto& kernel) {
                           std::string name;
                           for (const char* c = kernel.param->name; *c; ++c)
                             if (*c != '-') name += *c;
                           return name;
                         });

TEST(FftKernels, OfThisProcessorEndWithTheOneThatEveryProcessorHas) {
  ASSERT_FALSE(fftKernels().empty());
  EXPECT_EQ(fftKernels().back(), &sse2FftKernel);
}

TEST(FftKernels, AreTheFastestFirst) {
  for (std::size_t i = 1; i < fftKernels().size(); ++i) EXPECT_GT(fftKernels()[i - 1]->lanes, fftKernels()[i]->lanes);
}

TEST(FftPlan, HasNoKernelForLengthsThatNeedThePlainOperations) {
  for (const std::uint32_t length : {0u, 1u, 2u, 64u, 100u, 1023u, 0xFFFFFFFFu})
    EXPECT_EQ(FftPlan(length, false, sse2FftKernel).kernel(), nullptr) << length;
  EXPECT_EQ(FftPlan().kernel(), nullptr);
  EXPECT_EQ(FftPlan(128, false, sse2FftKernel).kernel(), &sse2FftKernel);
}

TEST(FftPlan, StaysWholeWhenItIsMoved) {
  const Values real = make(noise, 256, 27);
  const auto expected = test::literalFft(false, real, {});
  FftPlan first(256, false, *fftKernels().front());
  FftPlan second;
  second = std::move(first);
  Values actualReal(256);
  Values actualImaginary(256);
  second.transform(real.data(), nullptr, actualReal.data(), actualImaginary.data());
  EXPECT_EQ(difference(actualReal, expected.real), "");
  EXPECT_EQ(difference(actualImaginary, expected.imaginary), "");
}

}  // namespace
}  // namespace av::dsp
