#include "unit/type1/analysis_fixture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace av::type1 {
namespace {

TEST_F(ViewAnalysisTest, StartsWithoutArraysOrData) {
  const ViewSignal signal = m_analysis.signal();
  EXPECT_FALSE(signal.dataReceived);
  EXPECT_FALSE(m_analysis.animating());
  EXPECT_EQ(signal.channelCount, 2);
  EXPECT_EQ(signal.windowSize, 1024);
  EXPECT_EQ(signal.sampleRateHz, 44100u);
  EXPECT_EQ(signal.fullScale, 32767.0);
  for (int channel = 0; channel < maxChannels; ++channel) {
    EXPECT_TRUE(analysisOf(channel).empty());
    EXPECT_TRUE(displayOf(channel).empty());
  }
  const StreamFormat& format = m_analysis.format();
  EXPECT_EQ(format.formatTag, 1);
  EXPECT_EQ(format.channels, 2);
  EXPECT_EQ(format.samplesPerSec, 44100u);
  EXPECT_EQ(format.avgBytesPerSec, 176000u);
  EXPECT_EQ(format.blockAlign, 4);
  EXPECT_EQ(format.bitsPerSample, 16);
  EXPECT_EQ(format.extraSize, 0);
}

// ---- which blocks are taken

TEST_F(ViewAnalysisTest, DropsOtherFormatTagsWithNothingChanged) {
  for (const int tag : {0, 2, 3, 0x55, 0xFFFD, 0xFFFF}) {
    Pcm pcm = makePcm(8, 4, 1024, ramp);
    pcm.format.wFormatTag = static_cast<std::uint16_t>(tag);
    EXPECT_EQ(accept(pcm), Outcome::dropped) << tag;
  }
  EXPECT_EQ(m_analysis.format().bitsPerSample, 16);
  EXPECT_EQ(m_analysis.signal().channelCount, 2);
  EXPECT_EQ(m_settings.dynamicRangeDb, ViewSettings{}.dynamicRangeDb);
  EXPECT_FALSE(m_analysis.dataReceived());
  EXPECT_FALSE(m_analysis.animating());
  EXPECT_EQ(allocations, 0);
}

TEST_F(ViewAnalysisTest, DropsHeadersThatHaveNoFrameCount) {
  for (const int bits : {0, 1, 7}) {
    Pcm pcm = silence(16, 2, 1024);
    pcm.format.wBitsPerSample = static_cast<std::uint16_t>(bits);
    EXPECT_EQ(accept(pcm), Outcome::dropped) << bits;
  }
  Pcm pcm = silence(16, 2, 1024);
  pcm.format.nChannels = 0;
  EXPECT_EQ(accept(pcm), Outcome::dropped);
  EXPECT_EQ(m_analysis.format().bitsPerSample, 16);
  EXPECT_EQ(m_analysis.format().samplesPerSec, 44100u);
  EXPECT_EQ(m_analysis.signal().channelCount, 2);
  EXPECT_EQ(m_settings.dynamicRangeDb, ViewSettings{}.dynamicRangeDb);
  EXPECT_EQ(allocations, 0);
}

TEST_F(ViewAnalysisTest, DropsABlockWithoutSamples) {
  Pcm pcm = silence(8, 2, 1024);
  av::AudioBlock block = pcm.block();
  block.samples = nullptr;
  EXPECT_EQ(m_analysis.accept(block, m_settings), Outcome::dropped);
  EXPECT_EQ(m_analysis.format().bitsPerSample, 16);
}

TEST_F(ViewAnalysisTest, TakesPcmUnderTheExtensibleTag) {
  Pcm pcm = makePcm(32, 1, 1024, ramp);
  pcm.format.wFormatTag = 0xFFFE;
  EXPECT_EQ(accept(pcm), Outcome::analysed);
  EXPECT_EQ(analysisOf(0)[1], ramp(1, 0));
  EXPECT_EQ(m_analysis.format().formatTag, 0xFFFE);
}

TEST_F(ViewAnalysisTest, CopiesEveryHeaderField) {
  Pcm pcm = silence(24, 3, 1024);
  pcm.format.nSamplesPerSec = 96000;
  pcm.format.nAvgBytesPerSec = 12345;
  pcm.format.nBlockAlign = 77;
  pcm.format.cbSize = 22;
  EXPECT_EQ(accept(pcm), Outcome::analysed);
  const StreamFormat& format = m_analysis.format();
  EXPECT_EQ(format.formatTag, 1);
  EXPECT_EQ(format.channels, 3);
  EXPECT_EQ(format.samplesPerSec, 96000u);
  EXPECT_EQ(format.avgBytesPerSec, 12345u);
  EXPECT_EQ(format.blockAlign, 77);
  EXPECT_EQ(format.bitsPerSample, 24);
  EXPECT_EQ(format.extraSize, 22);
  EXPECT_EQ(m_analysis.signal().sampleRateHz, 96000u);
  EXPECT_EQ(m_analysis.signal().channelCount, 3);
}

// ---- full scale and dynamic range

TEST_F(ViewAnalysisTest, EveryAcceptedBlockSetsFullScaleAndDynamicRange) {
  const struct {
    int bits;
    double fullScale, rangeDb;
    int reads;
  } cases[] = {{8, 127.0, 42.076, 42},           {16, 32767.0, 90.309, 90}, {24, 8388607.0, 138.474, 138},
               {32, 2147483647.0, 186.639, 186}, {12, 2047.0, 66.222, 66},  {20, 524287.0, 114.391, 114}};
  for (const auto& c : cases) {
    for (const int frames : {1024, 1023, 0}) {
      m_settings.dynamicRangeDb = 60.0;
      Pcm pcm = silence(c.bits, 2, frames);
      pcm.bytes.reserve(1);  // so that an empty block has an address too
      EXPECT_EQ(accept(pcm), frames == 1024 ? Outcome::analysed : Outcome::stored);
      EXPECT_EQ(m_analysis.signal().fullScale, c.fullScale);
      EXPECT_NEAR(m_settings.dynamicRangeDb, c.rangeDb, 0.0005) << c.bits;  // the figures have three decimals
      EXPECT_EQ(applyGet(rule::dynamicRange, m_settings), c.reads);
    }
  }
}

TEST_F(ViewAnalysisTest, HugeDepthsGiveAnEndlessRangeThatReadsSaturated) {
  Pcm pcm = silence(16, 1, 10);
  pcm.format.wBitsPerSample = 65535;
  EXPECT_EQ(accept(pcm), Outcome::stored);
  EXPECT_EQ(applyGet(rule::dynamicRange, m_settings), std::numeric_limits<std::int32_t>::max());
}

// ---- short blocks

TEST_F(ViewAnalysisTest, OneFrameShortStoresTheFormatAndLeavesTheArrays) {
  accept(makePcm(16, 2, 1024, ramp));
  const auto left = copyOf(analysisOf(0));
  const auto right = copyOf(analysisOf(1));
  EXPECT_EQ(accept(silence(8, 2, 1023)), Outcome::stored);
  EXPECT_EQ(m_analysis.format().bitsPerSample, 8);
  EXPECT_EQ(copyOf(analysisOf(0)), left);
  EXPECT_EQ(copyOf(analysisOf(1)), right);
}

TEST_F(ViewAnalysisTest, OneFrameShortSetsNoFlagAndAllocatesNothing) {
  EXPECT_EQ(accept(silence(16, 2, 1023)), Outcome::stored);
  EXPECT_FALSE(m_analysis.dataReceived());
  EXPECT_FALSE(m_analysis.animating());
  EXPECT_EQ(allocations, 0);
}

TEST_F(ViewAnalysisTest, ATrailingPartialFrameDoesNotCount) {
  Pcm pcm = silence(16, 2, 1023);
  pcm.bytes.insert(pcm.bytes.end(), {1, 2, 3});
  EXPECT_EQ(accept(pcm), Outcome::stored);
  pcm.bytes.push_back(4);
  EXPECT_EQ(accept(pcm), Outcome::analysed);
}

TEST_F(ViewAnalysisTest, NegativeByteCountsAreShortBlocks) {
  const Pcm pcm = silence(16, 2, 1024);
  for (const std::int32_t bytes : {-1, -4096, std::numeric_limits<std::int32_t>::min()}) {
    av::AudioBlock block = pcm.block();
    block.sampleBytes = bytes;
    EXPECT_EQ(m_analysis.accept(block, m_settings), Outcome::stored);
  }
}

TEST_F(ViewAnalysisTest, TouchesOnlyTheFirstFrames) {
  const Pcm pcm = makePcm(24, 3, 1024, ramp);
  av::AudioBlock block = pcm.block();
  block.sampleBytes = std::numeric_limits<std::int32_t>::max();  // the memory ends after 1024 frames
  EXPECT_EQ(m_analysis.accept(block, m_settings), Outcome::analysed);
  EXPECT_EQ(analysisOf(2)[1023], ramp(1023, 2));
}

}  // namespace
}  // namespace av::type1
