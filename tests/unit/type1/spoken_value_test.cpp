#include "type1/spoken_value.h"

#include "unit/type1/analysis_fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <vector>

namespace av::type1 {
namespace {

/// A view of arrays that the test writes: N = 8, 8 kHz, so that bin k is k kHz.
class SpokenView : public testing::Test {
 protected:
  void show(std::int32_t type, std::vector<std::vector<double>> channels) {
    settings.visualizationType = type;
    settings.visualizationSmooth = std::int16_t{0};
    arrays = std::move(channels);
    signal = {.dataReceived = true,
              .channelCount = static_cast<int>(arrays.size()),
              .windowSize = 8,
              .sampleRateHz = 8000,
              .fullScale = 1000};
    for (std::size_t c = 0; c < arrays.size(); ++c) signal.analysis[c] = arrays[c];
  }
  std::u16string words() const { return spokenValue(settings, signal); }

  ViewSettings settings;
  ViewSignal signal;
  std::vector<std::vector<double>> arrays;
};

const std::vector<double> quiet(8, 0.0);
const std::vector<double> nothing(8, -200.0);

TEST_F(SpokenView, OfTheWaveformSaysThePeak) {
  show(1, {{0, 100, -500, 250, 0, 0, 0, 0}});
  EXPECT_EQ(u"peak \u22126 dB", words());  // 20·log10(0.5) = −6.02
  show(1, {{0, 0, 0, 0, 0, 0, 0, 1000}});
  EXPECT_EQ(u"peak 0 dB", words());
}

TEST_F(SpokenView, NamesTwoChannelsBySideAndMoreByNumber) {
  const std::vector<double> loud = {0, 1000, 0, 0, 0, 0, 0, 0}, soft = {0, -10, 0, 0, 0, 0, 0, 0};
  show(1, {loud, soft});
  EXPECT_EQ(u"left: peak 0 dB; right: peak \u221240 dB", words());
  show(1, {loud, quiet, soft});
  EXPECT_EQ(u"channel 1: peak 0 dB; channel 2: silence; channel 3: peak \u221240 dB", words());
}

TEST_F(SpokenView, SaysSilenceOnceWhereNoChannelIsAudible) {
  for (const std::int32_t type : {1, 6, 7}) {
    show(type, {quiet, quiet, quiet});
    EXPECT_EQ(u"silence", words()) << type;
  }
  for (const std::int32_t type : {2, 3, 4, 5}) {
    show(type, {nothing, nothing});
    EXPECT_EQ(u"silence", words()) << type;
  }
  show(1, {{0, 0.02, 0, 0, 0, 0, 0, 0}});  // −94 dB
  EXPECT_EQ(u"silence", words());
}

TEST_F(SpokenView, SaysSilenceBeforeTheFirstBlockAndOfChannelsWithoutArrays) {
  show(1, {std::vector<double>(8, -200)});
  signal.dataReceived = false;
  EXPECT_EQ(u"silence", words());
  for (const std::int32_t type : {1, 2, 3, 6}) {
    show(type, {{}, {}});
    EXPECT_EQ(u"silence", words()) << type;
  }
}

TEST_F(SpokenView, OfASpectrumSaysTheHighestBinAboveZero) {
  // Element 0 and the upper half hold no level.
  show(2, {{50, -30, -20.4, -60, 70, 0, 0, 0}});
  EXPECT_EQ(u"peak \u221220 dB at 2.0 kHz", words());
  signal.sampleRateHz = 3600;
  EXPECT_EQ(u"peak \u221220 dB at 900 Hz", words());
  show(2, {{0, -30, -20, -60, 0, 0, 0, 0}, {0, -200, -200, -7, 0, 0, 0, 0}});
  EXPECT_EQ(u"left: peak \u221220 dB at 2.0 kHz; right: peak \u22127 dB at 3.0 kHz", words());
}

TEST_F(SpokenView, OfASmoothedSpectrumSaysWhatIsDrawn) {
  show(2, {{0, -30, -20, -60, 0, 0, 0, 0}});
  const std::vector<double> display = {0, -40, -50, -60, 0, 0, 0, 0};
  signal.display[0] = display;
  settings.visualizationSmooth = std::int16_t{-1};
  EXPECT_EQ(u"peak \u221240 dB at 1.0 kHz", words());
}

TEST_F(SpokenView, OfBarsSaysThePeakOfTheChannelsMean) {
  for (const std::int32_t type : {3, 4, 5}) {
    show(type, {{0, -10, -20, -90, 0, 0, 0, 0}, {0, -60, -30, -90, 0, 0, 0, 0}});
    EXPECT_EQ(u"peak \u221225 dB at 2.0 kHz", words()) << type;
  }
}

TEST_F(SpokenView, OfXyViewsSaysTheCorrelationOfEachPair) {
  const std::vector<double> a = {3, 4, 0, 0, 0, 0, 0, 0}, b = {4, 3, 0, 0, 0, 0, 0, 0}, c = {-4, -3, 0, 0, 0, 0, 0, 0};
  for (const std::int32_t type : {6, 7}) {
    show(type, {a, b});
    EXPECT_EQ(u"correlation 0.96", words());  // 24 ÷ 25
    show(type, {a, b, c});
    EXPECT_EQ(u"channels 1 and 2: correlation 0.96; channels 2 and 3: correlation \u22121.00", words());
    show(type, {a});
    EXPECT_EQ(u"correlation 1.00", words());
    show(type, {quiet, quiet, a});
    EXPECT_EQ(u"channels 1 and 2: silence; channels 2 and 3: correlation 0.00", words());
  }
}

TEST_F(SpokenView, OfTypesThatDrawNothingSaysSo) {
  for (const std::int32_t type : {-1, 0, 8, std::numeric_limits<std::int32_t>::max()}) {
    show(type, {quiet});
    EXPECT_EQ(u"nothing shown", words());
    EXPECT_EQ(u"Nothing is drawn", spokenDescription(settings));
  }
}

TEST_F(SpokenView, IsDescribedByItsKindOfPicture) {
  std::vector<std::u16string> texts;
  for (std::int32_t type = 1; type <= 7; ++type) {
    settings.visualizationType = type;
    texts.push_back(spokenDescription(settings));
  }
  EXPECT_EQ(u"Waveform of the sound, a line for each channel", texts[0]);
  EXPECT_EQ(texts[2], texts[4]);
  EXPECT_EQ(texts[5], texts[6]);
  EXPECT_NE(texts[1], texts[2]);
}

class SpokenTone : public ViewAnalysisTest {};

TEST_F(SpokenTone, OfABlockIsHeardWithItsLevelAndFrequency) {
  // At 48 kHz, 8 and 64 cycles of 1024 frames are 375 Hz and 3 kHz, each on a bin.
  useWindowSize(1024);
  m_settings.visualizationSmooth = std::int16_t{0};
  const Pcm tone = makePcm(16, 2, 1024, [](int frame, int channel) {
    const double cycles = channel == 0 ? 8 : 64;
    return std::lround(32767 * (channel == 0 ? 0.5 : 0.1) * std::sin(2 * std::numbers::pi * cycles * frame / 1024));
  });
  m_settings.visualizationType = 2;
  ASSERT_EQ(Outcome::analysed, accept(tone));
  EXPECT_EQ(u"left: peak \u22126 dB at 375 Hz; right: peak \u221220 dB at 3.0 kHz",
            spokenValue(m_settings, m_analysis.signal()));
  m_settings.visualizationType = 1;
  ASSERT_EQ(Outcome::analysed, accept(tone));
  EXPECT_EQ(u"left: peak \u22126 dB; right: peak \u221220 dB", spokenValue(m_settings, m_analysis.signal()));
  ASSERT_EQ(Outcome::analysed, accept(silence(16, 2, 1024)));
  EXPECT_EQ(u"silence", spokenValue(m_settings, m_analysis.signal()));
}

}  // namespace
}  // namespace av::type1
