#include "dsp/radix4_hartley.h"

#include "support/hartley_oracle.h"
#include "support/radix4_oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <span>
#include <vector>

namespace {

using av::dsp::Radix4Hartley;

constexpr std::size_t places = Radix4Hartley::bufferLength;
constexpr std::size_t powersOfFour[] = {16, 64, 256, 1024, 4096, 16384};

/// One transform and the literal one side by side, each with a buffer of its own that keeps what earlier blocks left.
class BothTransforms {
 public:
  void fill(std::size_t length, std::uint32_t seed) {
    const auto samples = av::test::noise(length, 32767, seed);
    std::ranges::copy(samples, m_actual.begin());
    std::ranges::copy(samples, m_expected.begin());
  }
  void transform(std::size_t length) {
    m_transform.transform(std::span<double, places>(m_actual), static_cast<int>(length));
    av::test::literalRadix4(m_expected, length);
  }
  /// Whether all places hold the same bits, those beyond the length included.
  bool agree() const { return std::memcmp(m_actual.data(), m_expected.data(), places * sizeof(double)) == 0; }
  const std::vector<double>& actual() const { return m_actual; }

 private:
  std::vector<double> m_actual = std::vector<double>(places);
  std::vector<double> m_expected = std::vector<double>(places);
  Radix4Hartley m_transform;
};

/// Rounding errors of the stages add up like a random walk, each about epsilon/2 of the norm; several times their sum.
double errorBound(std::span<const double> x) {
  const double norm = std::sqrt(std::inner_product(x.begin(), x.end(), x.begin(), 0.0));
  return 4.0 * std::numeric_limits<double>::epsilon() * std::log2(static_cast<double>(x.size())) * norm;
}

template <class Transform>
double worstError(const std::vector<double>& samples, Transform&& transform) {
  std::vector<double> buffer(places);
  std::ranges::copy(samples, buffer.begin());
  transform(buffer, samples.size());
  const auto expected = av::test::exactHartley(std::span<const double>(samples));
  double worst = 0.0;
  for (std::size_t k = 0; k < samples.size(); ++k)
    worst = std::max(worst, static_cast<double>(std::fabs(buffer[k] - expected[k])));
  return worst;
}

}  // namespace

TEST(Radix4Oracle, IsTheHartleyTransformForPowersOfFour) {
  for (const std::size_t n : powersOfFour) {
    const auto samples = av::test::noise(n, 32767, 31);
    EXPECT_LE(worstError(samples, av::test::literalRadix4), errorBound(samples)) << "N = " << n;
  }
}

TEST(Radix4Hartley, IsTheHartleyTransformForPowersOfFour) {
  Radix4Hartley hartley;
  const auto transform = [&](std::vector<double>& buffer, std::size_t length) {
    hartley.transform(std::span<double, places>(buffer), static_cast<int>(length));
  };
  for (const std::size_t n : powersOfFour) {
    const auto samples = av::test::noise(n, 32767, 32);
    EXPECT_LE(worstError(samples, transform), errorBound(samples)) << "N = " << n;
  }
  std::vector<double> four(places);
  std::ranges::copy(std::vector<double>{1.0, 2.0, 4.0, 8.0}, four.begin());
  transform(four, 4);
  EXPECT_EQ(std::vector<double>(four.begin(), four.begin() + 4), (std::vector<double>{15.0, -9.0, -5.0, 3.0}));
}

TEST(Radix4Hartley, LeavesAFactorOfTwoUndoneForOtherPowersOfTwo) {
  std::vector<double> buffer(places);
  buffer[0] = buffer[1] = 1.0;  // a whole transform of eight would add them up in element 0
  Radix4Hartley().transform(std::span<double, places>(buffer), 8);
  EXPECT_EQ(buffer[0], 1.0);
}

TEST(Radix4Hartley, HasTheBitsOfTheLiteralStagesForSmallLengthsInAnyOrder) {
  BothTransforms both;
  for (const bool grows : {true, false}) {
    for (std::size_t i = 0; i <= 1300; ++i) {
      const std::size_t length = grows ? i : 1300 - i;
      both.fill(length, static_cast<std::uint32_t>(i));
      both.transform(length);
      ASSERT_TRUE(both.agree()) << length;
    }
  }
}

TEST(Radix4Hartley, HasTheBitsOfTheLiteralStagesForLengthsUpToTheLargest) {
  BothTransforms both;
  const std::size_t lengths[] = {48000, 1025, 1099,  47999, 16385, 16384, 4097,  44100, 32769, 32768, 4096,
                                 2205,  882,  22050, 40961, 16383, 1000,  48000, 512,   1,     1024,  45057};
  for (const std::size_t length : lengths) {
    both.fill(length, static_cast<std::uint32_t>(length));
    both.transform(length);
    ASSERT_TRUE(both.agree()) << length;
  }
}

// A block of a depth that is not decoded leaves the buffer as it is and transforms it again.
TEST(Radix4Hartley, HasTheBitsOfTheLiteralStagesWhenItsOwnOutputGoesInAgain) {
  BothTransforms both;
  both.fill(5000, 4);
  for (const std::size_t length : {5000, 5000, 3000, 1030, 5000}) {
    both.transform(length);
    ASSERT_TRUE(both.agree()) << length;
  }
}

TEST(Radix4Hartley, PlacesBeyondTheLengthTakePartInTheLastBlock) {
  std::vector<double> fresh(places);
  std::vector<double> used(places);
  fresh[3] = used[3] = 7.0;
  used[1500] = 1.0;  // left by an earlier, longer block; the block of span 1024 that starts at 1024 reaches to 2047
  Radix4Hartley hartley;
  hartley.transform(std::span<double, places>(fresh), 1100);
  hartley.transform(std::span<double, places>(used), 1100);
  EXPECT_NE(std::vector<double>(fresh.begin(), fresh.begin() + 1100),
            std::vector<double>(used.begin(), used.begin() + 1100));
}

TEST(Radix4Hartley, OnlyReordersFewerThanFourSamples) {
  Radix4Hartley hartley;
  const auto transformed = [&](std::vector<double> samples) {
    std::vector<double> buffer(places);
    std::ranges::copy(samples, buffer.begin());
    hartley.transform(std::span<double, places>(buffer), static_cast<int>(samples.size()));
    std::ranges::copy_n(buffer.begin(), static_cast<std::ptrdiff_t>(samples.size()), samples.begin());
    return samples;
  };
  EXPECT_EQ(transformed({}), (std::vector<double>{}));
  EXPECT_EQ(transformed({5}), (std::vector<double>{5}));
  EXPECT_EQ(transformed({5, 6}), (std::vector<double>{5, 6}));
  EXPECT_EQ(transformed({5, 6, 7}), (std::vector<double>{7, 6, 5}));  // the carry runs out of bits
}

// The longest test of its kind: every length there is.
TEST(FullRadix4Hartley, HasTheBitsOfTheLiteralStagesForEveryLength) {
  BothTransforms both;
  both.fill(48000, 1);
  for (std::size_t length = 0; length <= 48000; ++length) {
    // The step is odd and shares no factor with 48001 = 23·2087: every length comes once, long and short ones mixed.
    const std::size_t mixed = length * 17 * 19 * 101 % 48001;
    both.fill(mixed, static_cast<std::uint32_t>(mixed));
    both.transform(mixed);
    ASSERT_TRUE(both.agree()) << mixed;
  }
}
