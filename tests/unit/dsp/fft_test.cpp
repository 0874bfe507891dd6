#include "dsp/fft.h"

#include "dsp/bit_reversal.h"
#include "support/fft_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
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

test::ComplexVectors transformed(bool inverse, const std::vector<double>& real, const std::vector<double>& imaginary) {
  const std::size_t n = real.size();
  test::ComplexVectors out{std::vector<double>(n, -1), std::vector<double>(n, -1)};
  FFT(static_cast<std::uint32_t>(n), inverse, real.data(), imaginary.empty() ? nullptr : imaginary.data(),
      out.real.data(), out.imaginary.data());
  return out;
}

bool sameBits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

TEST(Fft, HasTheBitsOfTheLiteralOperationsAtEveryLength) {
  for (std::size_t n = 2; n <= std::size_t{1} << 18; n *= 2) {
    const auto real = noise(n, 1);
    for (const bool withImaginary : {true, false}) {
      const auto imaginary = withImaginary ? noise(n, 2) : std::vector<double>();
      for (const bool inverse : {false, true}) {
        const auto expected = test::literalFft(inverse, real, imaginary);
        const auto actual = transformed(inverse, real, imaginary);
        ASSERT_TRUE(sameBits(actual.real, expected.real)) << n << ", inverse " << inverse;
        ASSERT_TRUE(sameBits(actual.imaginary, expected.imaginary)) << n << ", inverse " << inverse;
      }
    }
  }
}

TEST(Fft, WithoutAnImaginaryInputIsThatOfAnAllZeroOne) {
  for (const std::size_t n : {2, 64, 1024}) {
    const auto real = noise(n, 3);
    const auto with = transformed(false, real, std::vector<double>(n));
    const auto without = transformed(false, real, {});
    EXPECT_TRUE(sameBits(with.real, without.real));
    EXPECT_TRUE(sameBits(with.imaginary, without.imaginary));
  }
}

TEST(Fft, IsTheSumWithThePositiveExponent) {
  const long double twoPi = 2 * 3.14159265358979323846264338327950288L;
  for (std::size_t n = 2; n <= 512; n *= 2) {
    const auto real = noise(n, 4);
    const auto imaginary = noise(n, 5);
    for (const bool inverse : {false, true}) {
      const auto actual = transformed(inverse, real, imaginary);
      const long double scale = inverse ? 1.0L / static_cast<long double>(n) : 1.0L;
      double energy = 0;
      for (std::size_t i = 0; i < n; ++i) energy += real[i] * real[i] + imaginary[i] * imaginary[i];
      // The recurrence's error grows with the square of the stage's length; √N·rms is the size of a bin.
      const double bound = 1e-17 * static_cast<double>(n * n) * std::sqrt(energy) + 1e-15 * std::sqrt(energy);
      for (std::size_t k = 0; k < n; ++k) {
        long double re = 0;
        long double im = 0;
        for (std::size_t i = 0; i < n; ++i) {
          const long double angle =
              (inverse ? -twoPi : twoPi) * static_cast<long double>(i * k % n) / static_cast<long double>(n);
          re += real[i] * std::cos(angle) - imaginary[i] * std::sin(angle);
          im += real[i] * std::sin(angle) + imaginary[i] * std::cos(angle);
        }
        ASSERT_NEAR(actual.real[k], static_cast<double>(re * scale), bound) << k << " of " << n;
        ASSERT_NEAR(actual.imaginary[k], static_cast<double>(im * scale), bound) << k << " of " << n;
      }
    }
  }
}

TEST(Fft, ComesBackThroughItsInverse) {
  for (std::size_t n = 4; n <= 65536; n *= 4) {
    const auto real = noise(n, 6);
    const auto imaginary = noise(n, 7);
    const auto there = transformed(false, real, imaginary);
    const auto back = transformed(true, there.real, there.imaginary);
    // The same recurrence both ways; about 1e-8 of the signal at 65536 points.
    for (std::size_t i = 0; i < n; ++i) {
      ASSERT_NEAR(back.real[i], real[i], 32768 * 1e-7) << i << " of " << n;
      ASSERT_NEAR(back.imaginary[i], imaginary[i], 32768 * 1e-7) << i << " of " << n;
    }
  }
}

TEST(Fft, LeavesItsInputsAlone) {
  const auto real = noise(64, 8);
  const auto imaginary = noise(64, 9);
  auto realIn = real;
  auto imaginaryIn = imaginary;
  transformed(true, realIn, imaginaryIn);
  EXPECT_EQ(realIn, real);
  EXPECT_EQ(imaginaryIn, imaginary);
}

TEST(BitReversal, HasTablesOfOneToSixteenBits) {
  for (std::uint32_t bits = 1; bits <= 16; ++bits) {
    const auto table = bitReversalTable(bits);
    ASSERT_EQ(table.size(), std::size_t{1} << bits);
    for (std::uint32_t i = 0; i < table.size(); ++i) {
      std::uint32_t mirrored = 0;
      for (std::uint32_t bit = 0; bit < bits; ++bit)
        if (i & (1u << bit)) mirrored += 1u << (bits - 1 - bit);
      ASSERT_EQ(table[i], mirrored) << i << " of " << bits << " bits";
      ASSERT_EQ(reverseBits(i, bits), mirrored);
    }
  }
  EXPECT_TRUE(bitReversalTable(0).empty());
  EXPECT_TRUE(bitReversalTable(17).empty());
  EXPECT_EQ(reverseBits(1, 32), 0x80000000u);
  EXPECT_EQ(reverseBits(0xFFFF0001u, 17), 0x10001u);
}

TEST(Fft, CountsTheBitsOfAnIndex) {
  for (std::uint32_t bits = 1; bits < 32; ++bits) EXPECT_EQ(indexBits(1u << bits), bits);
  EXPECT_EQ(indexBits(6), 1u);
  EXPECT_EQ(indexBits(12), 2u);
}

#if GTEST_HAS_DEATH_TEST && !defined(_WIN32)

TEST(FftDeath, OfALengthThatIsNoPowerOfTwoEndsTheProcess) {
  double in[16] = {};
  double real[16];
  double imaginary[16];
  const auto transform = [&](std::uint32_t length) { FFT(length, false, in, in, real, imaginary); };
  const auto exitsWith1 = testing::ExitedWithCode(1);
  EXPECT_EXIT(transform(6), exitsWith1, "^6 is not a power of two\n$");
  EXPECT_EXIT(transform(0), exitsWith1, "^0 is not a power of two\n$");
  EXPECT_EXIT(transform(1), exitsWith1, "^1 is not a power of two\n$");
  EXPECT_EXIT(transform(3), exitsWith1, "^3 is not a power of two\n$");
  EXPECT_EXIT(transform(0xFFFFFFFF), exitsWith1, "^-1 is not a power of two\n$");
}

TEST(FftDeath, OfTheBitCountGuardsItself) {
  EXPECT_EXIT(indexBits(0), testing::ExitedWithCode(1), "^Error: FFT called with size 0\n$");
  EXPECT_EXIT(indexBits(1), testing::ExitedWithCode(1), "^Error: FFT called with size 1\n$");
}

#endif

}  // namespace
}  // namespace av::dsp
