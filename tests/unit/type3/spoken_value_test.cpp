#include "type3/spoken_value.h"

#include "support/counting_lock.h"
#include "support/pcm.h"
#include "type3/analysis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace av::type3 {
namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

/// Four columns over the eight bins of a transform of 16, bin k at k kHz. An amplitude of 8 is 0 dB.
std::u16string said(const std::vector<double>& bands, bool mirrored = false) {
  const BandAxis axis{false, mirrored, 4, 16, 16000};
  std::vector<BinRange> plan;
  planBands(plan, axis);
  return spokenValue(bands, axis, plan);
}

TEST(SpokenAnalyser, SaysTheLoudestBandAndItsMiddle) {
  EXPECT_EQ(u"loudest band \u22126 dB at 2.5 kHz", said({0.1, 4, 1, 0}));  // bins 2 and 3
  EXPECT_EQ(u"loudest band 0 dB at 500 Hz", said({8, 4, 1, 0}));           // bins 0 and 1
  EXPECT_EQ(u"loudest band \u221240 dB at 6.5 kHz", said({0, 0, 0.01, 0.08}));
}

TEST(SpokenAnalyser, KnowsTheHalvesOfAMirroredSpectrum) {
  // Bins 0 to 3 in the two columns of the centre, 4 to 7 at the edges.
  EXPECT_EQ(u"loudest band 0 dB at 1.5 kHz", said({1, 8, 8, 1}, true));
  EXPECT_EQ(u"loudest band 0 dB at 5.5 kHz", said({8, 1, 1, 8}, true));
}

TEST(SpokenAnalyser, OfEquallyLoudBandsSaysTheLowest) {
  EXPECT_EQ(u"loudest band 0 dB at 2.5 kHz", said({1, 8, 8, 8}));
}

TEST(SpokenAnalyser, SaysSilenceWhereNoBandIsAudible) {
  EXPECT_EQ(u"silence", said({0, 0, 0, 0}));
  EXPECT_EQ(u"silence", said({noNumber, noNumber, noNumber, 0}));
  EXPECT_EQ(u"silence", said({0, 8e-5, 0, 0}));  // −100 dB
  EXPECT_EQ(u"silence", spokenValue({}, BandAxis(), {}));
  EXPECT_EQ(u"silence", spokenValue(std::vector<double>{0, 0}, {false, false, 2, 0, 0}, {}));
}

TEST(SpokenAnalyser, HearsTheToneOfABlockAndThatItHasFallen) {
  test::CountingLock lock;
  LineList lines(lock);
  AnalyserSettings settings;
  AnalyserAnalysis analysis(lines);
  const auto words = [&] { return spokenValue(analysis.bands(), analysis.foldedAxis(), analysis.foldedPlan()); };
  EXPECT_EQ(u"silence", words());
  ASSERT_TRUE(analysis.setWindowType(0));
  analysis.setFftLength(512);
  settings.lineCount = 128;  // two bins a column
  analysis.setLineCount(128);
  const auto tone = test::makePcm(16, 1, 512, [](int frame, int) {
    return std::lround(32767 * std::sin(2 * std::numbers::pi * 32 * frame / 512));
  });
  ASSERT_TRUE(analysis.accept(tone.block(), settings, 100, 0));
  // Bin 32 has the amplitude, its neighbour nothing: the root of the mean is 3 dB less. 32.5 · 48000 ÷ 512 Hz.
  EXPECT_EQ(u"loudest band \u22123 dB at 3.0 kHz", words());
  for (std::uint32_t now = 0; now < 100000; now += 1000) {
    analysis.tick(settings, now);
    lines.FallStep([&] { return now; });
    lines.withLines([](std::span<LineInfo> columns) {
      for (LineInfo& column : columns) column.peak = column.value;
    });
  }
  EXPECT_EQ(u"silence", words());
}

}  // namespace
}  // namespace av::type3
