#include "type2/spoken_value.h"

#include "support/counting_lock.h"
#include "support/pcm.h"
#include "type2/analysis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <span>
#include <vector>

namespace av::type2 {
namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

/// Eight levels, bin k at k kHz.
MeterAxis eightBins(BandLayout layout) { return {layout, 18, 18000}; }

TEST(SpokenMeter, SaysTheLoudestLineAndTheMiddleOfItsBand) {
  // Four lines of two bins each: 1 and 2, 3 and 4, 5 and 6, 7 and 8 kHz.
  const std::vector<double> values = {-40, -12.3, -30, -91};
  EXPECT_EQ(u"loudest band \u221212 dB at 3.5 kHz", spokenValue(values, eightBins(BandLayout::linear)));
}

TEST(SpokenMeter, KnowsTheBandsOfEveryLayout) {
  // Mirrored: bins 1 to 4 in the centre, 5 to 8 at both sides. Logarithmic, nine bins in three lines: bin 1; 3 and 4; 5 to 9,
  // the ninth twice, as the highest line reaches beyond it.
  const std::vector<double> sides = {-5, -20, -5}, centre = {-20, -5, -20};
  EXPECT_EQ(u"loudest band \u22125 dB at 6.5 kHz", spokenValue(sides, eightBins(BandLayout::linearMirrored)));
  EXPECT_EQ(u"loudest band \u22125 dB at 2.5 kHz", spokenValue(centre, eightBins(BandLayout::linearMirrored)));
  const MeterAxis nineBins{BandLayout::logarithmic, 20, 20000};
  const std::vector<double> low = {-5, -20, -20}, middle = {-20, -5, -20}, high = {-20, -20, -5};
  EXPECT_EQ(u"loudest band \u22125 dB at 1.0 kHz", spokenValue(low, nineBins));
  EXPECT_EQ(u"loudest band \u22125 dB at 3.5 kHz", spokenValue(middle, nineBins));
  EXPECT_EQ(u"loudest band \u22125 dB at 7.3 kHz", spokenValue(high, nineBins));  // (5 + 6 + 7 + 8 + 9 + 9) ÷ 6
}

TEST(SpokenMeter, OfEquallyLoudLinesSaysTheLowest) {
  const std::vector<double> values = {-30, -8, -8, -8};
  EXPECT_EQ(u"loudest band \u22128 dB at 3.5 kHz", spokenValue(values, eightBins(BandLayout::linear)));
}

TEST(SpokenMeter, SaysSilenceWhereNothingIsLit) {
  const std::vector<double> fresh(4, -91.0), numbers(4, noNumber), none;
  for (const std::vector<double>& values : {fresh, numbers, none}) {
    EXPECT_EQ(u"silence", spokenValue(values, eightBins(BandLayout::linear)));
    EXPECT_EQ(u"silence", spokenValue(values, MeterAxis()));
  }
}

TEST(SpokenMeter, PassesOverLinesWithoutBins) {
  const std::vector<double> values = {noNumber, -50, noNumber, -60};
  EXPECT_EQ(u"loudest band \u221250 dB at 3.5 kHz", spokenValue(values, eightBins(BandLayout::linear)));
}

TEST(SpokenMeter, HearsTheToneOfABlock) {
  test::CountingLock lock;
  LineList lines(lock);
  lines.SetLineCount(511);  // a line a bin
  MeterSettings settings;
  MeterAnalysis analysis(lines);
  const auto said = [&] {
    std::vector<double> values;
    lines.withLines([&](std::span<LineInfo> all) {
      for (const LineInfo& line : all) values.push_back(line.value);
    });
    return spokenValue(values, analysis.axis());
  };
  const auto tone = test::makePcm(16, 1, 1024, [](int frame, int) {
    return std::lround(32767 * 0.5 * std::sin(2 * std::numbers::pi * 64 * frame / 1024));
  });
  settings.fftWindowType = 0;
  EXPECT_EQ(u"silence", said());
  ASSERT_EQ(MeterAnalysis::Outcome::analysed, analysis.accept(tone.block(), settings, 0));
  EXPECT_EQ(u"loudest band \u22126 dB at 3.0 kHz", said());  // 64 · 48000 ÷ 1024
  ASSERT_EQ(MeterAnalysis::Outcome::analysed, analysis.accept(test::silence(16, 1, 1024).block(), settings, 0));
  EXPECT_EQ(u"silence", said());
}

}  // namespace
}  // namespace av::type2
