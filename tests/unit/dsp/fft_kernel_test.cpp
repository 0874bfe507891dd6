#include "dsp/fft_kernel.h"

#include "dsp/fft_plan.h"
#include "dsp/spectrum_analyzer.h"
#include "support/fft_oracle.h"
#include "support/special_signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace av::dsp {
namespace {

using test::difference;
using test::make;
using test::Signal;
using test::specialSignals;
using test::whiteNoise;
using Values = std::vector<double>;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

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
        ASSERT_EQ(transformDifference(whiteNoise, length, inverse, withImaginary), "")
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
    ASSERT_EQ(powerDifference(analyzer, whiteNoise, 23), "") << length;
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

TEST_P(EachFftKernel, ComputesPowerSpectraOfNumbersNearTheLeastWithTheBitsOfTheLiteralOperations) {
  // Halves of denormal numbers are rounded, which must not show.
  CSpectrumAnalyzer analyzer(kernel());
  analyzer.SetLength(256);
  for (int exponent = -1074; exponent < -400; exponent += 3) {
    const Signal one{"one size", [=](std::mt19937& random, std::size_t) {
                       return std::ldexp(std::round(test::uniform(random, 9)), exponent);
                     }};
    const Signal two{"two sizes", [=](std::mt19937& random, std::size_t) {
                       return std::ldexp(test::uniform(random, 1), random() % 3 == 0 ? exponent : exponent / 2 - 500);
                     }};
    for (const Signal& signal : {one, two})
      ASSERT_EQ(powerDifference(analyzer, signal, 28), "") << signal.name << ", 2^" << exponent;
  }
}

TEST_P(EachFftKernel, ComputesManyBlocksWithTheBitsOfTheLiteralOperations) {
  CSpectrumAnalyzer analyzer(kernel());
  for (const std::int32_t length : {128, 512, 1024}) {
    analyzer.SetLength(length);
    for (unsigned seed = 0; seed < 100; ++seed) {
      // A special block between others: nothing of it may stay.
      const Signal& signal = seed % 4 == 3 ? specialSignals[seed / 4 % specialSignals.size()] : whiteNoise;
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
    EXPECT_EQ(powerDifference(analyzer, whiteNoise, 25), "") << length;
  }
}

TEST_P(EachFftKernel, DividesByTheWindowPowersOfAllWindows) {
  CSpectrumAnalyzer analyzer(kernel());
  for (std::uint32_t window = 0; window < WindowTable.size(); ++window) {
    analyzer.SetWindowType(window);
    analyzer.SetLength(1024);
    analyzer.SetWindowType((window + 1) % static_cast<std::uint32_t>(WindowTable.size()));
    EXPECT_EQ(powerDifference(analyzer, whiteNoise, 26), "") << window;
  }
}

INSTANTIATE_TEST_SUITE_P(OnThisProcessor, EachFftKernel, testing::ValuesIn(fftKernels().begin(), fftKernels().end()),
                         test::kernelName<FftKernel>);

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
  const Values real = make(whiteNoise, 256, 27);
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
