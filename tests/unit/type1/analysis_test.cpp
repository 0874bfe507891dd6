#include "type1/analysis.h"

#include "support/counting_lock.h"
#include "support/hartley_oracle.h"
#include "support/pcm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <set>
#include <span>
#include <vector>

namespace {

using namespace av::type1;
using av::test::makePcm;
using av::test::Pcm;
using av::test::silence;
using Outcome = ViewAnalysis::Outcome;

/// Numbers of the allocations of channel arrays, from 1, that fail.
std::set<int> failingAllocations;
int allocations = 0;

double* allocate(std::size_t count) noexcept {
  return failingAllocations.contains(++allocations) ? nullptr : ChannelSlots::allocateOrNull(count);
}

class ViewAnalysisTest : public testing::Test {
 protected:
  ViewAnalysisTest() {
    failingAllocations.clear();
    allocations = 0;
  }
  ~ViewAnalysisTest() override { EXPECT_EQ(m_lock.depth, 0); }

  Outcome accept(const Pcm& pcm) { return m_analysis.accept(pcm.block(), m_settings); }
  std::span<const double> analysisOf(int channel) const {
    return m_analysis.signal().analysis[static_cast<std::size_t>(channel)];
  }
  std::span<const double> displayOf(int channel) const {
    return m_analysis.signal().display[static_cast<std::size_t>(channel)];
  }
  std::vector<double> copyOf(std::span<const double> array) const { return {array.begin(), array.end()}; }
  void useWindowSize(int size) {
    m_settings.fftWindowSize = size;
    m_analysis.resizeWindow(m_settings);
  }

  av::test::CountingLock m_lock;
  ViewSettings m_settings;
  ViewAnalysis m_analysis{m_lock, allocate};
};

bool allAre(std::span<const double> array, double value) {
  return std::ranges::all_of(array, [&](double element) { return element == value; });
}

/// A ramp that is different in every frame and channel and fits into 8 bits.
int ramp(int frame, int channel) { return (frame * 7 + channel * 31) % 251 - 125; }

/// Bins 1 to N/2 − 1 against an exact transform of what the array held before, and the rest of the array against its
/// raw values.
void expectSpectrum(std::span<const double> actual, std::span<const double> before, int windowType, double fullScale) {
  const std::size_t n = before.size();
  ASSERT_EQ(actual.size(), n);
  std::vector<long double> windowed;
  double largest = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    windowed.push_back(before[i] * av::test::exactWindow(windowType, i, n));
    largest += std::fabs(before[i]);
  }
  const auto hartley = av::test::exactHartley(std::span<const long double>(windowed));
  for (std::size_t k = 1; k < n / 2; ++k) {
    const auto level = static_cast<double>(av::test::exactLevelDb(hartley, k, fullScale));
    ASSERT_NEAR(actual[k], level, 1e-9) << "bin " << k;
  }
  const double tolerance = 1e-14 * largest;  // double keeps sixteen digits of the largest sum there can be
  ASSERT_NEAR(actual[0], static_cast<double>(hartley[0]), tolerance);
  for (std::size_t k = n / 2; k < n; ++k) ASSERT_NEAR(actual[k], static_cast<double>(hartley[k]), tolerance) << k;
}

}  // namespace

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

// ---- decoding

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

// ---- spectra

TEST_F(ViewAnalysisTest, TypesTwoToFiveTurnEveryChannelIntoLevels) {
  for (const int size : {64, 128, 1024, 2048}) {
    useWindowSize(size);
    for (int type = 2; type <= 5; ++type) {
      m_settings.visualizationType = type;
      for (int windowType = -1; windowType <= 5; ++windowType) {
        m_settings.fftWindowType = windowType;
        const auto samples = av::test::noise(static_cast<std::size_t>(3 * size), 32767, 17);
        const auto sample = [&](int frame, int channel) {
          return samples[static_cast<std::size_t>(3 * frame + channel)];
        };
        EXPECT_EQ(accept(makePcm(16, 3, size, sample)), Outcome::analysed);
        for (int channel = 0; channel < 3; ++channel) {
          std::vector<double> before;
          for (int frame = 0; frame < size; ++frame) before.push_back(sample(frame, channel));
          expectSpectrum(analysisOf(channel), before, windowType, 32767.0);
        }
      }
    }
  }
}

TEST_F(ViewAnalysisTest, AFullScaleSinusoidOnABinReadsZeroDb) {
  m_settings.visualizationType = 2;
  for (const int bits : {16, 24, 32}) {
    const double peak = std::pow(2.0, bits - 1) - 1;
    const auto sample = [&](int frame, int) {
      return std::llround(peak * std::sin(2.0 * std::numbers::pi * 100.0 * frame / 1024.0));
    };
    accept(makePcm(bits, 1, 1024, sample));
    EXPECT_NEAR(analysisOf(0)[100], 0.0, 20.0 * std::log10(1.0 + 0.5 / peak)) << bits;  // half a step of rounding
    EXPECT_LT(analysisOf(0)[99], -90.0);
    EXPECT_LT(analysisOf(0)[101], -90.0);
  }
}

TEST_F(ViewAnalysisTest, ASilentBlockIsExactlyAtTheFloor) {
  for (int windowType = 0; windowType <= 4; ++windowType) {
    m_settings.visualizationType = 5;
    m_settings.fftWindowType = windowType;
    accept(silence(16, 2, 1024));
    EXPECT_TRUE(allAre(analysisOf(1).subspan(1, 511), -200.0));
    EXPECT_EQ(analysisOf(1)[0], 0.0);
    EXPECT_TRUE(allAre(analysisOf(1).subspan(512), 0.0));
  }
}

TEST_F(ViewAnalysisTest, AnotherWindowTypeCountsFromTheNextBlockOn) {
  m_settings.visualizationType = 2;
  const auto pcm = makePcm(16, 1, 1024, ramp);
  accept(pcm);
  const auto before = copyOf(analysisOf(0));
  m_settings.fftWindowType = 3;
  EXPECT_EQ(copyOf(analysisOf(0)), before);
  accept(pcm);
  EXPECT_NE(copyOf(analysisOf(0)), before);
}

// ---- channels that come and go

TEST_F(ViewAnalysisTest, StereoAfterMonoAllocatesSlotOneAndResetsBothChannels) {
  const struct {
    int type;
    double resetTo;
  } cases[] = {{1, -200.0}, {2, -400.0}, {5, -1000.0}, {6, 0.0}, {0, 0.0}, {-2, 400.0}};
  for (const auto& c : cases) {
    ViewAnalysis analysis(m_lock);
    ViewSettings settings;
    settings.visualizationType = c.type;
    EXPECT_EQ(analysis.accept(makePcm(16, 1, 1024, ramp).block(), settings), Outcome::analysed);
    EXPECT_TRUE(analysis.signal().analysis[1].empty());
    analysis.smoothingStep(settings);  // moves the display away from the reset value
    EXPECT_NE(analysis.signal().display[0][5], c.resetTo);

    EXPECT_EQ(analysis.accept(makePcm(16, 2, 1024, ramp).block(), settings), Outcome::analysed);
    EXPECT_TRUE(allAre(analysis.signal().display[0], c.resetTo)) << c.type;
    EXPECT_EQ(analysis.signal().display[1].size(), 1024u);
    EXPECT_TRUE(allAre(analysis.signal().display[1], c.resetTo)) << c.type;
  }
}

TEST_F(ViewAnalysisTest, ResetsOnGrowthBeforeItConverts) {
  accept(makePcm(16, 1, 1024, ramp));
  accept(makePcm(12, 2, 1024, ramp));  // not converted: what the reset wrote stays
  EXPECT_TRUE(allAre(analysisOf(0), -200.0));
  EXPECT_TRUE(allAre(analysisOf(1), -200.0));
}

TEST_F(ViewAnalysisTest, ABlockOfAsManyChannelsKeepsTheDisplay) {
  accept(makePcm(16, 2, 1024, ramp));
  m_analysis.smoothingStep(m_settings);
  const auto before = copyOf(displayOf(1));
  accept(makePcm(16, 2, 1024, ramp));
  EXPECT_EQ(copyOf(displayOf(1)), before);
}

TEST_F(ViewAnalysisTest, FewerChannelsFreeNothing) {
  accept(makePcm(16, 3, 1024, ramp));
  const auto* second = analysisOf(1).data();
  const auto third = copyOf(analysisOf(2));
  const int before = allocations;
  accept(makePcm(16, 1, 1024, ramp));
  EXPECT_EQ(m_analysis.signal().channelCount, 1);
  EXPECT_EQ(analysisOf(1).data(), second);
  EXPECT_EQ(copyOf(analysisOf(2)), third);
  EXPECT_EQ(allocations, before);

  accept(makePcm(12, 3, 1024, ramp));  // grows again: both slots are new, with nothing of their past
  EXPECT_EQ(allocations, before + 4);
  EXPECT_TRUE(allAre(analysisOf(1), -200.0));
  EXPECT_TRUE(allAre(analysisOf(2), -200.0));
}

TEST_F(ViewAnalysisTest, SlotsAddedByAShortBlockStartAtTheResetValue) {
  m_settings.visualizationType = 3;
  accept(makePcm(16, 2, 1024, ramp));
  m_analysis.smoothingStep(m_settings);
  const auto display = copyOf(displayOf(0));
  const auto analysis = copyOf(analysisOf(0));

  EXPECT_EQ(accept(makePcm(16, 4, 1023, ramp)), Outcome::stored);
  EXPECT_EQ(m_analysis.signal().channelCount, 4);
  for (int channel = 2; channel < 4; ++channel) {
    ASSERT_EQ(analysisOf(channel).size(), 1024u);
    EXPECT_TRUE(allAre(analysisOf(channel), -600.0));
    EXPECT_TRUE(allAre(displayOf(channel), -600.0));
  }
  EXPECT_EQ(copyOf(displayOf(0)), display);  // the short block ended before the reset
  EXPECT_EQ(copyOf(analysisOf(0)), analysis);

  EXPECT_EQ(accept(makePcm(16, 4, 1024, ramp)), Outcome::analysed);
  EXPECT_EQ(copyOf(displayOf(0)), display);  // and the next one did not grow
}

TEST_F(ViewAnalysisTest, MoreThanEighteenChannelsGrowNothingFurther) {
  accept(makePcm(8, 18, 1024, ramp));
  const int before = allocations;
  accept(makePcm(8, 20, 1024, ramp));
  accept(makePcm(8, 40, 1024, ramp));
  EXPECT_EQ(allocations, before);
  EXPECT_EQ(before, 2 * 18);
}

// ---- locks and memory

TEST_F(ViewAnalysisTest, TakesTheDrawingLockOnlyToExchangeArrays) {
  accept(silence(16, 2, 1024));
  const int forTheFirst = m_lock.taken;
  EXPECT_GT(forTheFirst, 0);
  EXPECT_EQ(allocations, 4);

  accept(makePcm(16, 2, 1024, ramp));
  accept(makePcm(24, 1, 5000, ramp));
  accept(makePcm(8, 2, 100, ramp));
  m_settings.visualizationType = 3;
  m_settings.fftWindowType = 4;
  accept(makePcm(32, 1, 1024, ramp));
  EXPECT_EQ(m_lock.taken, forTheFirst + 1);  // the growth from one channel to two
  EXPECT_EQ(allocations, 6);

  accept(makePcm(16, 4, 10, ramp));  // short, but it grows
  EXPECT_EQ(m_lock.taken, forTheFirst + 2);
  m_analysis.resizeWindow(m_settings);
  EXPECT_EQ(m_lock.taken, forTheFirst + 3);
}

TEST_F(ViewAnalysisTest, WorksWithoutAnyArray) {
  for (int i = 1; i <= 100; ++i) failingAllocations.insert(i);
  m_settings.visualizationType = 2;
  EXPECT_EQ(accept(makePcm(16, 2, 1024, ramp)), Outcome::analysed);
  EXPECT_TRUE(m_analysis.animating());
  EXPECT_TRUE(analysisOf(0).empty());
  EXPECT_TRUE(m_analysis.smoothingStep(m_settings));  // one last redraw
  EXPECT_FALSE(m_analysis.animating());
  EXPECT_FALSE(m_analysis.smoothingStep(m_settings));

  failingAllocations.clear();
  EXPECT_EQ(accept(makePcm(16, 2, 1024, ramp)), Outcome::analysed);
  EXPECT_EQ(analysisOf(1).size(), 1024u);
}

TEST_F(ViewAnalysisTest, AnalysesTheOtherChannelsWhereOneHasNoArray) {
  failingAllocations = {1};  // the first channel's analysis array
  EXPECT_EQ(accept(makePcm(16, 2, 1024, ramp)), Outcome::analysed);
  EXPECT_TRUE(analysisOf(0).empty());
  EXPECT_EQ(analysisOf(1)[10], ramp(10, 1));
}

// ---- smoothing

TEST_F(ViewAnalysisTest, RisesByHalvesUntilTheDisplayAgrees) {
  m_settings.visualizationType = 2;
  accept(silence(16, 1, 1024));  // levels −200, element 0 at 0; the display starts at −400
  double level = -400.0;
  double elementZero = -400.0;
  for (int step = 1; step <= 9; ++step) {
    EXPECT_TRUE(m_analysis.animating()) << step;
    EXPECT_TRUE(m_analysis.smoothingStep(m_settings));
    level += (-200.0 - level) * 0.5;
    elementZero *= 0.5;
    EXPECT_EQ(displayOf(0)[1], level);
    EXPECT_EQ(displayOf(0)[511], level);
    EXPECT_EQ(displayOf(0)[0], elementZero);
    EXPECT_EQ(displayOf(0)[512], -400.0);  // only the first half moves
  }
  EXPECT_FALSE(m_analysis.animating());  // −200.39 and −0.78 are −200 and 0 to the integer
  EXPECT_FALSE(m_analysis.smoothingStep(m_settings));
  EXPECT_EQ(displayOf(0)[1], level);
}

TEST_F(ViewAnalysisTest, FallsByQuartersAndTakesMoreSteps) {
  const auto stepsToward = [&](int sample, double share) {
    accept(makePcm(16, 1, 1024, [&](int, int) { return sample; }));
    double value = displayOf(0)[7];
    int steps = 0;
    while (steps < 100 && m_analysis.smoothingStep(m_settings)) {
      value += (sample - value) * share;
      EXPECT_NEAR(displayOf(0)[7], value, 1e-12);
      ++steps;
    }
    EXPECT_TRUE(allAre(displayOf(0).first(512), displayOf(0)[0]));
    return steps;
  };
  EXPECT_EQ(stepsToward(0, 0.5), 8);
  EXPECT_EQ(displayOf(0)[0], -0.78125);
  stepsToward(200, 0.5);  // ends at 200 only: 199.99 is 199 to the integer
  EXPECT_EQ(displayOf(0)[0], 200.0);
  EXPECT_EQ(stepsToward(0, 0.25), 19);
  EXPECT_EQ(std::trunc(displayOf(0)[0]), 0.0);
}

TEST_F(ViewAnalysisTest, WaitsWhileSmoothingIsOffAndGoesOnWhenItIsOn) {
  m_settings.visualizationSmooth = std::int16_t{0};
  EXPECT_EQ(accept(makePcm(16, 1, 1024, ramp)), Outcome::analysed);
  EXPECT_TRUE(m_analysis.animating());
  EXPECT_FALSE(m_analysis.smoothingStep(m_settings));
  EXPECT_TRUE(allAre(displayOf(0), -200.0));
  EXPECT_TRUE(m_analysis.animating());
  m_settings.visualizationSmooth = std::int16_t{-1};
  EXPECT_TRUE(m_analysis.smoothingStep(m_settings));
  EXPECT_NE(displayOf(0)[3], -200.0);
}

TEST_F(ViewAnalysisTest, ANewBlockArmsTheAnimationAgain) {
  accept(silence(16, 1, 1024));
  for (int step = 0; step < 8; ++step) EXPECT_TRUE(m_analysis.smoothingStep(m_settings));
  EXPECT_FALSE(m_analysis.animating());
  accept(silence(16, 1, 1024));
  EXPECT_TRUE(m_analysis.animating());
  EXPECT_TRUE(m_analysis.smoothingStep(m_settings));  // converged at once, and drawn all the same
  EXPECT_FALSE(m_analysis.animating());
}

TEST_F(ViewAnalysisTest, SmoothsEveryChannelInUseAndNoOther) {
  accept(makePcm(16, 3, 1024, ramp));
  accept(makePcm(16, 2, 1024, ramp));
  m_analysis.smoothingStep(m_settings);
  EXPECT_EQ(displayOf(1)[0], -200.0 + (ramp(0, 1) + 200.0) * 0.5);
  EXPECT_TRUE(allAre(displayOf(2), -200.0));
}

TEST_F(ViewAnalysisTest, SmoothingStopsAtTheFirstSlotThatLacksAnArray) {
  failingAllocations = {4};
  accept(makePcm(16, 3, 1024, [](int, int channel) { return channel == 0 ? -200 : 100; }));
  // The block grew from 2 to 3 channels, so the third slot came first (allocations 1 and 2), then slot 0 (3 and 4).
  ASSERT_TRUE(displayOf(0).empty());
  ASSERT_FALSE(displayOf(1).empty());
  EXPECT_TRUE(m_analysis.smoothingStep(m_settings));
  EXPECT_TRUE(allAre(displayOf(1), -200.0));
  EXPECT_TRUE(allAre(displayOf(2), -200.0));
  EXPECT_FALSE(m_analysis.animating());  // nothing was left that had not converged
}

TEST_F(ViewAnalysisTest, SmoothsUnderTheDrawingLock) {
  accept(makePcm(16, 2, 1024, ramp));
  m_lock.taken = 0;
  m_analysis.smoothingStep(m_settings);
  EXPECT_EQ(m_lock.taken, 1);
}

// ---- resets and sizes

TEST_F(ViewAnalysisTest, ResetWritesTheTypeTimesMinus200UpToTypeFive) {
  accept(makePcm(16, 2, 1024, ramp));
  const struct {
    int type;
    double value;
  } cases[] = {{1, -200.0},
               {2, -400.0},
               {3, -600.0},
               {4, -800.0},
               {5, -1000.0},
               {6, 0.0},
               {7, 0.0},
               {9, 0.0},
               {0, 0.0},
               {-1, 200.0},
               {std::numeric_limits<int>::min(), 429496729600.0}};
  for (const auto& c : cases) {
    m_settings.visualizationType = c.type;
    m_analysis.reset(m_settings);
    for (int channel = 0; channel < 2; ++channel) {
      EXPECT_TRUE(allAre(analysisOf(channel), c.value)) << c.type;
      EXPECT_TRUE(allAre(displayOf(channel), c.value)) << c.type;
    }
  }
  EXPECT_TRUE(m_analysis.dataReceived());
}

TEST_F(ViewAnalysisTest, ResetAllocatesWhatIsMissingBeforeAnyBlock) {
  m_settings.visualizationType = 2;
  m_analysis.reset(m_settings);
  EXPECT_TRUE(allAre(analysisOf(1), -400.0));
  EXPECT_EQ(displayOf(1).size(), 1024u);
  EXPECT_TRUE(analysisOf(2).empty());
}

TEST_F(ViewAnalysisTest, ResetFromAnIndexLeavesWhatIsBelowIt) {
  accept(makePcm(16, 1, 1024, ramp));
  const auto before = copyOf(analysisOf(0));
  m_analysis.reset(m_settings, 600);
  EXPECT_EQ(analysisOf(0)[599], before[599]);
  EXPECT_EQ(analysisOf(0)[600], -200.0);
  EXPECT_EQ(analysisOf(0)[1023], -200.0);
}

TEST_F(ViewAnalysisTest, AnotherWindowSizeFreesAllSlotsAndAllocatesThoseInUse) {
  accept(makePcm(16, 4, 1024, ramp));
  accept(makePcm(16, 2, 1024, ramp));
  m_settings.visualizationType = 3;
  useWindowSize(256);
  EXPECT_EQ(m_analysis.signal().windowSize, 256);
  for (int channel = 0; channel < 2; ++channel) {
    EXPECT_EQ(analysisOf(channel).size(), 256u);
    EXPECT_TRUE(allAre(analysisOf(channel), -600.0));
    EXPECT_TRUE(allAre(displayOf(channel), -600.0));
  }
  EXPECT_TRUE(analysisOf(2).empty());
  EXPECT_TRUE(displayOf(3).empty());
  EXPECT_TRUE(m_analysis.dataReceived());

  EXPECT_EQ(accept(makePcm(16, 2, 255, ramp)), Outcome::stored);
  EXPECT_EQ(accept(makePcm(16, 2, 256, ramp)), Outcome::analysed);
}

TEST_F(ViewAnalysisTest, TheSameWindowSizeAllocatesAnewToo) {
  accept(makePcm(16, 2, 1024, ramp));
  const int before = allocations;
  useWindowSize(1024);
  EXPECT_EQ(allocations, before + 4);
  EXPECT_TRUE(allAre(analysisOf(0), -200.0));
}

TEST_F(ViewAnalysisTest, EveryWindowSizeAnalyses) {
  m_settings.visualizationType = 2;
  for (int size = 64; size <= 16384; size *= 2) {
    useWindowSize(size);
    accept(makePcm(16, 1, size, ramp));
    std::vector<double> before;
    for (int frame = 0; frame < size; ++frame) before.push_back(ramp(frame, 0));
    expectSpectrum(analysisOf(0), before, 0, 32767.0);
  }
}

TEST_F(ViewAnalysisTest, RecoversAfterAHostileDepthMadeItsLevelsEndless) {
  m_settings.visualizationType = 2;
  accept(makePcm(16, 1, 1024, ramp));
  for (int block = 0; block < 3; ++block) {
    accept(silence(1032, 1, 1024));  // its full scale is beyond all doubles, so every level is minus infinity
    for (int step = 0; step < 10; ++step) m_analysis.smoothingStep(m_settings);
  }
  accept(makePcm(16, 1, 1024, ramp));
  for (int step = 0; step < 100; ++step) m_analysis.smoothingStep(m_settings);
  for (std::size_t k = 1; k < 512; ++k) ASSERT_NEAR(displayOf(0)[k], analysisOf(0)[k], 1.0);
}
