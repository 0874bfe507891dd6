#include "dsp/hartley_kernel.h"

#include "dsp/hartley.h"
#include "dsp/radix4_hartley.h"
#include "support/radix4_oracle.h"
#include "support/special_signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
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

constexpr std::size_t places = Radix4Hartley::bufferLength;

/// Each kernel alone, with the one that every processor has for the lengths that are too short for it.
class EachHartleyKernel : public testing::TestWithParam<const HartleyKernel*> {
 protected:
  std::span<const HartleyKernel* const> kernels() const { return m_kernels; }

  /// The meter's transform in a buffer that is full of noise, so that what a last block reaches shows too.
  std::string meterDifference(Radix4Hartley& transform, const Signal& signal, std::size_t length, unsigned seed) {
    Values actual = make(signal, length, seed);
    actual.insert(actual.end(), m_rest.begin() + static_cast<std::ptrdiff_t>(length), m_rest.end());
    Values expected = actual;
    transform.transform(std::span<double, places>(actual), static_cast<int>(length));
    test::literalRadix4(expected, length);
    return difference(actual, expected);
  }

  std::string viewDifference(HartleyTransform& transform, const Signal& signal, unsigned seed) const {
    Values actual = make(signal, static_cast<std::size_t>(transform.length()), seed);
    Values expected = actual;
    transform.transform(actual);
    test::literalHartley(expected);
    return difference(actual, expected);
  }

 private:
  std::vector<const HartleyKernel*> m_kernels{GetParam(), &sse2HartleyKernel};
  const Values m_rest = make(whiteNoise, places, 30);
};

/// Around the lengths where kernels begin, blocks end and spans are added, and some that hosts send.
constexpr std::size_t lengths[] = {255,  256,  257,  319,  320,   321,   383,   441,   511,   512,   513,   576,
                                   882,  1000, 1023, 1024, 1025,  1087,  1100,  1152,  2048,  2205,  4095,  4096,
                                   4097, 4410, 8192, 9600, 16383, 16384, 16385, 22050, 32768, 44100, 47999, 48000};

TEST_P(EachHartleyKernel, HasTheBitsOfTheLiteralStagesAtTheMetersLengths) {
  Radix4Hartley transform(kernels());
  for (const std::size_t length : lengths)
    ASSERT_EQ(meterDifference(transform, whiteNoise, length, 31), "") << length << " samples";
}

TEST_P(EachHartleyKernel, HasTheBitsOfTheLiteralStagesAtTheViewsLengths) {
  for (int length = 2; length <= 65536; length *= 2) {
    HartleyTransform transform(length, kernels());
    for (unsigned seed = 32; seed < (length <= 4096 ? 42 : 33); ++seed)
      ASSERT_EQ(viewDifference(transform, whiteNoise, seed), "") << length << " samples";
  }
}

TEST_P(EachHartleyKernel, HasTheBitsOfTheLiteralStagesForSpecialValues) {
  Radix4Hartley meter(kernels());
  for (const std::size_t length : {256, 300, 1000, 1024, 1100}) {
    for (const Signal& signal : specialSignals)
      ASSERT_EQ(meterDifference(meter, signal, length, 43), "") << signal.name << ", " << length << " samples";
  }
  for (const int length : {128, 256, 512, 2048, 4096}) {
    HartleyTransform view(length, kernels());
    for (const Signal& signal : specialSignals)
      ASSERT_EQ(viewDifference(view, signal, 44), "") << signal.name << ", " << length << " samples";
  }
}

INSTANTIATE_TEST_SUITE_P(OnThisProcessor, EachHartleyKernel,
                         testing::ValuesIn(hartleyKernels().begin(), hartleyKernels().end()),
                         test::kernelName<HartleyKernel>);

class FullEachHartleyKernel : public EachHartleyKernel {};

TEST_P(FullEachHartleyKernel, HasTheBitsOfTheLiteralStagesAtEveryLengthUpTo5000) {
  Radix4Hartley transform(kernels());
  for (std::size_t length = 1; length <= 5000; ++length)
    ASSERT_EQ(meterDifference(transform, whiteNoise, length, static_cast<unsigned>(length)), "")
        << length << " samples";
}

INSTANTIATE_TEST_SUITE_P(FullOnThisProcessor, FullEachHartleyKernel,
                         testing::ValuesIn(hartleyKernels().begin(), hartleyKernels().end()),
                         test::kernelName<HartleyKernel>);

TEST(HartleyKernels, OfThisProcessorEndWithTheOneThatEveryProcessorHas) {
  ASSERT_FALSE(hartleyKernels().empty());
  EXPECT_EQ(hartleyKernels().back(), &sse2HartleyKernel);
}

TEST(HartleyKernels, AreTheFastestFirst) {
  const auto kernels = hartleyKernels();
  for (std::size_t i = 1; i < kernels.size(); ++i) EXPECT_GT(kernels[i - 1]->lanes, kernels[i]->lanes);
}

}  // namespace
}  // namespace av::dsp
