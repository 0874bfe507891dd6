#include "type3/bands.h"

#include "support/analyser_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace av::type3 {
namespace {

std::vector<BinRange> planOf(const BandAxis& axis) {
  std::vector<BinRange> plan;
  planBands(plan, axis);
  return plan;
}

std::vector<double> folded(const BandAxis& axis, const std::vector<double>& power, double fullScale) {
  std::vector<double> bands(static_cast<std::size_t>(axis.lineCount), -99);
  foldBands(bands, axis, planOf(axis), power, fullScale);
  return bands;
}

/// A spectrum whose bin k has the amplitude k.
std::vector<double> numberedBins(int binCount) {
  std::vector<double> power;
  for (int k = 0; k < binCount; ++k) power.push_back(static_cast<double>(k) * k);
  return power;
}

TEST(LinearBands, Of60ColumnsAnd512SamplesEndAtMultiplesOfFourPointTwoSixSeven) {
  const auto plan = planOf({});
  ASSERT_EQ(plan.size(), 60u);
  int first = 0;
  for (int b = 0; b < 60; ++b) {
    const int end = static_cast<int>(std::lround((b + 1) * 256.0 / 60.0));
    EXPECT_EQ(plan[static_cast<std::size_t>(b)], (BinRange{first, end - first})) << b;
    first = end;
  }
  EXPECT_EQ(first, 256);
  EXPECT_EQ(plan[0].count, 4);
  EXPECT_EQ(plan[1].count, 5);
}

TEST(LinearBands, EndOnTheEvenBinOfTwoThatAreEquallyNear) {
  // 64 columns over 32 bins: half a bin each, so every other end lies on a half. 0.5, 1, 1.5, 2, 2.5 → 0, 1, 2, 2, 2.
  const auto plan = planOf({.lineCount = 64, .fftLength = 64, .sampleRateHz = 48000});
  const int ends[] = {0, 1, 2, 2, 2, 3, 4, 4, 4, 5, 6, 6};
  int bin = 0;
  for (std::size_t b = 0; b < std::size(ends); ++b) {
    EXPECT_EQ(plan[b], (BinRange{bin, ends[b] - bin})) << b;
    bin = ends[b];
  }
}

TEST(LinearBands, OfMoreColumnsThanBinsAreEmptyWhereThereIsNoBin) {
  const BandAxis axis{.lineCount = 200, .fftLength = 4};
  const auto bands = folded(axis, {9, 16}, 1);
  int shown = 0;
  for (const double band : bands) shown += !std::isnan(band);
  EXPECT_EQ(shown, 2);
}

TEST(LinearBands, ShareNoBinAndMissNone) {
  for (int lines = 4; lines <= 200; ++lines) {
    for (int length = 4; length <= 4096; length *= 2) {
      for (const bool mirrored : {false, true}) {
        for (const std::uint32_t rate : {8000u, 44100u, 192000u, 0u}) {
          const BandAxis axis{.mirrored = mirrored, .lineCount = lines, .fftLength = length, .sampleRateHz = rate};
          int bin = 0;
          for (const BinRange& band : planOf(axis)) {
            ASSERT_EQ(band.first, bin);
            bin += band.count;
          }
          ASSERT_EQ(bin, length / 2) << lines << " lines, " << length << " samples, " << rate << " Hz";
        }
      }
    }
  }
}

TEST(LogarithmicBands, BeginOneBinTooHighAndGrow) {
  const BandAxis axis{.logarithmic = true};
  const auto plan = planOf(axis);
  ASSERT_EQ(plan.size(), 60u);
  EXPECT_EQ(plan[0], (BinRange{0, 1}));
  // r = 255^(1/59) = 1.0985: r^i is below i up to i = 39.
  for (int i = 1; i <= 39; ++i)
    EXPECT_EQ(plan[static_cast<std::size_t>(i)].first + plan[static_cast<std::size_t>(i)].count, i + 2) << i;
  EXPECT_EQ(plan[1], (BinRange{2, 1}));
  EXPECT_EQ(plan[59].count, static_cast<int>(255 - 255 / std::pow(255.0, 1 / 59.0)));
  // r^59 is 255 but for the rounding of r: the last band ends with bin 255 or 256.
  EXPECT_NEAR(plan[59].first + plan[59].count, 257, 1);
}

TEST(LogarithmicBands, ReadZeroBeyondTheSpectrum) {
  const BandAxis axis{.logarithmic = true, .lineCount = 200, .fftLength = 16};
  const auto bands = folded(axis, std::vector<double>(8, 4.0), 1);
  EXPECT_EQ(bands[0], 2.0);
  EXPECT_EQ(bands[6], 2.0);  // bin 7
  for (std::size_t i = 7; i < bands.size(); ++i) ASSERT_EQ(bands[i], 0.0) << i;
}

TEST(MirroredBands, HaveTheLowestBandInTheCentre) {
  const std::vector<double> power = numberedBins(256);
  for (const int lines : {60, 61}) {
    for (const bool logarithmic : {false, true}) {
      const BandAxis axis{.logarithmic = logarithmic, .mirrored = true, .lineCount = lines};
      EXPECT_EQ(axis.bandCount(), lines == 60 ? 30 : 31);
      const auto plan = planOf(axis);
      EXPECT_EQ(plan.size(), static_cast<std::size_t>(axis.bandCount()));
      const auto bands = folded(axis, power, 1);
      for (int i = 0; i < lines; ++i) {
        const int band = lines == 61 ? std::abs(i - 30) : i < 30 ? 29 - i : i - 30;
        const BinRange bins = plan[static_cast<std::size_t>(band)];
        double sum = 0;
        for (int k = bins.first; k < bins.first + bins.count; ++k) sum += k < 256 ? static_cast<double>(k) * k : 0;
        EXPECT_NEAR(bands[static_cast<std::size_t>(i)], std::sqrt(sum / bins.count), 1e-4) << i << " of " << lines;
      }
    }
  }
}

TEST(MirroredBands, OfSmallCountsAreReflected) {
  std::vector<double> even{1, 2, -1, -1};
  mirrorBands(even);
  EXPECT_EQ(even, (std::vector<double>{2, 1, 1, 2}));
  std::vector<double> odd{1, 2, 3, -1, -1};
  mirrorBands(odd);
  EXPECT_EQ(odd, (std::vector<double>{3, 2, 1, 2, 3}));
}

TEST(Bands, AreRoundedToSinglePrecisionTwice) {
  const BandAxis axis{.lineCount = 4, .fftLength = 16};
  const double p = 1234567.123456789;
  const auto bands = folded(axis, {p, p / 3, 0, 0, 0, 0, 0, 0}, 7);
  const float mean = static_cast<float>((p + p / 3) / 2);
  EXPECT_EQ(bands[0], static_cast<double>(static_cast<float>(std::sqrt(static_cast<double>(mean)))) / 7);
}

TEST(Bands, OfAFullScaleOfZeroAreInfiniteOrNoNumber) {
  const BandAxis axis{.lineCount = 4, .fftLength = 8};
  const auto bands = folded(axis, {1, 0, 2, 0}, 0);
  EXPECT_TRUE(std::isinf(bands[0]));
  EXPECT_TRUE(std::isnan(bands[1]));
}

TEST(Bands, AreThoseOfTheLiteralFoldForAnySettings) {
  std::mt19937 random(3);
  AnalyserSettings settings;
  for (int run = 0; run < 4000; ++run) {
    settings.lineCount = 4 + static_cast<int>(random() % 197);
    settings.xScaleType = static_cast<int>(random() % 2);
    settings.alignmentX = static_cast<int>(random() % 2);
    const int length = 4 << (random() % 11);
    const std::uint32_t rates[] = {0, 8000, 11025, 22050, 44100, 48000, 96000, 192000, 1, 0xFFFFFFFF};
    const std::uint32_t rate = rates[random() % std::size(rates)];
    std::vector<double> power;
    for (int k = 0; k < length / 2; ++k)
      power.push_back(std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 30)));
    const auto expected = test::bandBuffer(settings, length, rate, power, 32768);
    const auto actual = folded(bandAxis(settings, length, rate), power, 32768);
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
      ASSERT_TRUE(actual[i] == expected[i] || (std::isnan(actual[i]) && std::isnan(expected[i])))
          << "column " << i << " of " << settings.lineCount << ", " << length << " samples, scale "
          << settings.xScaleType << settings.alignmentX << ": " << actual[i] << " and " << expected[i];
    }
  }
}

TEST(Bands, OfLengthsThatCannotBeTransformedArePlannedAllTheSame) {
  for (const int length : {0, 1, 2}) {
    for (const bool logarithmic : {false, true}) {
      for (const bool mirrored : {false, true}) {
        const BandAxis axis{.logarithmic = logarithmic, .mirrored = mirrored, .fftLength = length};
        EXPECT_EQ(planOf(axis).size(), static_cast<std::size_t>(axis.bandCount()));
        folded(axis, std::vector<double>(static_cast<std::size_t>(length / 2), 1.0), 1);
      }
    }
  }
}

}  // namespace
}  // namespace av::type3
