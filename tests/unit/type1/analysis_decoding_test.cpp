#include "unit/type1/analysis_fixture.h"
#include "unit/type1/expect_spectrum.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace av::type1 {
namespace {

TEST_F(ViewAnalysisTest, KeepsSamplesOnTheirOwnScaleInEveryDepthAndChannel) {
  for (const int type : {1, 6, 7, 9, 0, -3}) {
    m_settings.visualizationType = type;
    for (const int bits : {16, 24, 32}) {
      const auto peak = (std::int64_t{1} << (bits - 1)) - 1;
      const auto sample = [&](int frame, int channel) -> std::int64_t {
        if (frame == 0) return channel % 2 == 0 ? peak : -peak - 1;
        return ramp(frame, channel) * (peak / 128);
      };
      EXPECT_EQ(accept(makePcm(bits, 5, 1024, sample)), Outcome::analysed);
      for (int channel = 0; channel < 5; ++channel) {
        for (int frame = 0; frame < 1024; ++frame)
          ASSERT_EQ(analysisOf(channel)[static_cast<std::size_t>(frame)], static_cast<double>(sample(frame, channel)))
              << "type " << type << ", " << bits << " bits";
      }
    }
  }
}

TEST_F(ViewAnalysisTest, EightBitsAreInvertedInTheWaveformAndSignedElsewhere) {
  const auto everyByte = makePcm(8, 1, 1024, [](int frame, int) { return frame; });
  for (const int type : {1, 6, 7, 0, -1, 9}) {
    m_settings.visualizationType = type;
    accept(everyByte);
    for (int byte = 0; byte < 256; ++byte) {
      const double expected = type == 1 ? 128 - byte : static_cast<std::int8_t>(byte);
      ASSERT_EQ(analysisOf(0)[static_cast<std::size_t>(byte)], expected) << "type " << type;
    }
  }
}

TEST_F(ViewAnalysisTest, EightBitSilenceReadsZeroInTheWaveformAndMinus128Elsewhere) {
  const auto quiet = makePcm(8, 2, 1024, [](int, int) { return 128; });
  accept(quiet);
  EXPECT_TRUE(allAre(analysisOf(0), 0.0));
  for (const int type : {6, 7, 12}) {
    m_settings.visualizationType = type;
    accept(quiet);
    EXPECT_TRUE(allAre(analysisOf(1), -128.0));
  }
  m_settings.visualizationType = 2;  // a constant: all of it in element 0
  accept(quiet);
  EXPECT_EQ(analysisOf(0)[0], -128.0 * 1024);
  EXPECT_TRUE(allAre(analysisOf(0).subspan(1, 511), -200.0));
}

TEST_F(ViewAnalysisTest, UsesTheFirstEighteenChannelsOfMore) {
  const int channels = 25;
  EXPECT_EQ(accept(makePcm(16, channels, 1024, [](int frame, int channel) { return frame * 25 + channel; })),
            Outcome::analysed);
  EXPECT_EQ(m_analysis.signal().channelCount, 18);
  EXPECT_EQ(m_analysis.format().channels, channels);
  for (int channel = 0; channel < 18; ++channel) {
    EXPECT_EQ(analysisOf(channel)[0], channel);
    EXPECT_EQ(analysisOf(channel)[1000], 25000 + channel);
  }
}

TEST_F(ViewAnalysisTest, TakesTheHighestChannelCountOfAHeader) {
  useWindowSize(64);
  EXPECT_EQ(accept(makePcm(8, 65535, 64, [](int frame, int channel) { return frame + channel; })), Outcome::analysed);
  EXPECT_EQ(analysisOf(17)[63], 128 - (63 + 17));
}

// ---- depths that are not decoded

TEST_F(ViewAnalysisTest, UnknownDepthsLeaveTheSamplesOfEarlierBlocks) {
  accept(makePcm(16, 2, 1024, ramp));
  const auto before = copyOf(analysisOf(1));
  for (const int bits : {9, 12, 15, 17, 20, 40, 64}) {
    EXPECT_EQ(accept(makePcm(bits, 2, 1024, ramp)), Outcome::analysed) << bits;
    EXPECT_EQ(copyOf(analysisOf(1)), before);
  }
}

TEST_F(ViewAnalysisTest, AnUnknownDepthAloneShowsTheResetValue) {
  EXPECT_EQ(accept(silence(12, 2, 1024)), Outcome::analysed);
  EXPECT_TRUE(m_analysis.dataReceived());
  EXPECT_TRUE(m_analysis.animating());
  EXPECT_TRUE(allAre(analysisOf(0), -200.0));
}

TEST_F(ViewAnalysisTest, UnknownDepthsAnalyseAgainWhatTheSpectrumLeft) {
  m_settings.visualizationType = 2;
  m_settings.fftWindowType = 3;
  accept(makePcm(16, 1, 1024, ramp));
  const auto before = copyOf(analysisOf(0));
  EXPECT_EQ(accept(silence(20, 1, 1024)), Outcome::analysed);
  expectSpectrum(analysisOf(0), before, 3, 524287.0);
}

}  // namespace
}  // namespace av::type1
