#include "type3/analysis.h"

#include "support/allocation_count.h"
#include "support/analyser_model.h"
#include "support/counting_lock.h"
#include "support/fft_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace av::type3 {
namespace {

constexpr int areaPx = 200;

class AnalyserAnalysisTest : public testing::Test {
 protected:
  std::vector<double> heights() {
    std::vector<double> values;
    lines.withLines([&](std::span<LineInfo> columns) {
      for (const LineInfo& column : columns) values.push_back(column.value);
    });
    return values;
  }
  void setPeaks(double peak) {
    lines.withLines([&](std::span<LineInfo> columns) {
      for (LineInfo& column : columns) column.peak = peak;
    });
  }

  static test::Pcm noise(int bits, int channels, int frames, unsigned seed) {
    std::mt19937 random(seed);
    return test::makePcm(bits, channels, frames, [&](int, int) { return random(); });
  }

  test::CountingLock lock;
  LineList lines{lock};
  AnalyserSettings settings;
  AnalyserAnalysis analysis{lines};
};

TEST_F(AnalyserAnalysisTest, BeginsWith60SilentColumnsAnd512Samples) {
  EXPECT_EQ(lines.count(), 60);
  EXPECT_EQ(analysis.transform().length(), 512);
  EXPECT_EQ(analysis.transform().windowType(), 2u);
  EXPECT_EQ(analysis.sampleRateHz(), 44100u);
  EXPECT_EQ(std::vector<double>(analysis.bands().begin(), analysis.bands().end()), std::vector<double>(60, 0.0));
}

TEST_F(AnalyserAnalysisTest, HasTheHeightsOfTheLiteralStepsForAnyBlock) {
  // Windows without library functions, so that not a bit is left to chance.
  std::mt19937 random(5);
  for (int run = 0; run < 300; ++run) {
    const int bits = 8 * (1 + static_cast<int>(random() % 4));
    const int length = 4 << (random() % 9);
    settings.lineCount = 4 + static_cast<int>(random() % 197);
    settings.xScaleType = static_cast<int>(random() % 2);
    settings.alignmentX = static_cast<int>(random() % 2);
    settings.alignmentY = static_cast<int>(random() % 2);
    settings.spotIntervalPx = static_cast<int>(random() % 3);
    const bool triangular = random() % 2;
    analysis.setLineCount(settings.lineCount);
    ASSERT_TRUE(analysis.setWindowType(triangular ? 9 : 0));
    analysis.setFftLength(length);
    auto pcm = noise(bits, 1 + static_cast<int>(random() % 3), 1 + static_cast<int>(random() % 600),
                     100 + static_cast<unsigned>(run));
    pcm.format.nSamplesPerSec = random() % 2 ? 48000 : 44100;
    ASSERT_TRUE(analysis.accept(pcm.block(), settings, areaPx, 1));

    auto [samples, fullScale] = test::mixedBlock(pcm, static_cast<std::size_t>(length));
    double windowPower = 0;
    for (int i = 0; i < length; ++i) {
      double weight = 1;
      if (triangular) weight = (i < length / 2 ? 2.0 * i + 1 : 2.0 * (length - i - 1) - 1) / length;
      windowPower += weight * weight;
      samples[static_cast<std::size_t>(i)] *= weight;
    }
    const auto spectrum = test::literalPowerSpectrum(samples, windowPower / length);
    const auto bands = test::bandBuffer(settings, length, pcm.format.nSamplesPerSec, spectrum, fullScale);
    const auto actual = heights();
    ASSERT_EQ(actual.size(), bands.size());
    for (std::size_t i = 0; i < bands.size(); ++i) {
      ASSERT_EQ(actual[i], test::columnHeight(settings, bands[i], length, areaPx))
          << "column " << i << " of " << settings.lineCount << ", " << bits << " bits, " << length << " samples";
    }
  }
}

TEST_F(AnalyserAnalysisTest, ShowsASineInItsColumn) {
  settings.spotIntervalPx = 0;
  const auto pcm = test::makePcm(16, 1, 512, [](int frame, int) {
    return std::lround(32767 * std::sin(2 * 3.14159265358979323846 * 100 * frame / 512));
  });
  analysis.accept(pcm.block(), settings, areaPx, 1);
  const auto values = heights();
  // Bin 100 lies in band 23, of bins 98 to 101; the window spreads it over three bins of the four.
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i == 23) {
      EXPECT_GT(values[i], 180) << i;
    } else {
      EXPECT_LT(values[i], i > 20 && i < 27 ? 140 : 60) << i;
    }
  }
}

TEST_F(AnalyserAnalysisTest, UsesTheFirstFramesOfALongBlockAndPadsAShortOne) {
  const auto longBlock = noise(16, 1, 700, 6);
  auto firstFrames = longBlock;
  firstFrames.bytes.resize(512 * 2);
  analysis.accept(longBlock.block(), settings, areaPx, 1);
  const auto expected = heights();
  analysis.accept(firstFrames.block(), settings, areaPx, 1);
  EXPECT_EQ(heights(), expected);

  auto shortBlock = longBlock;
  shortBlock.bytes.resize(100 * 2);
  auto padded = shortBlock;
  padded.bytes.resize(512 * 2);
  analysis.accept(shortBlock.block(), settings, areaPx, 1);
  const auto ofShort = heights();
  analysis.accept(padded.block(), settings, areaPx, 1);
  EXPECT_EQ(heights(), ofShort);
  EXPECT_NE(ofShort, expected);
}

TEST_F(AnalyserAnalysisTest, ShowsEqualChannelsAsOne) {
  const auto sample = [](int frame, int) { return (frame * 7919) % 20000 - 10000; };
  analysis.accept(test::makePcm(16, 2, 512, sample).block(), settings, areaPx, 1);
  const auto stereo = heights();
  analysis.accept(test::makePcm(16, 1, 512, sample).block(), settings, areaPx, 1);
  EXPECT_EQ(heights(), stereo);
}

TEST_F(AnalyserAnalysisTest, Shows24BitsAsAConstant) {
  analysis.accept(noise(24, 2, 300, 7).block(), settings, areaPx, 1);
  const auto ofNoise = heights();
  analysis.accept(noise(24, 1, 300, 8).block(), settings, areaPx, 1);
  EXPECT_EQ(heights(), ofNoise);
}

TEST_F(AnalyserAnalysisTest, DropsABlockWithoutATrace) {
  analysis.accept(noise(16, 1, 512, 9).block(), settings, areaPx, 1);
  const auto before = heights();
  auto refused = noise(16, 1, 512, 10);
  refused.format.wFormatTag = 3;
  refused.format.nSamplesPerSec = 8000;
  EXPECT_FALSE(analysis.accept(refused.block(), settings, areaPx, 600));
  EXPECT_EQ(heights(), before);
  EXPECT_EQ(analysis.sampleRateHz(), 48000u);
  EXPECT_TRUE(analysis.tick(settings, 501));  // the hold time counts from the block before
}

TEST_F(AnalyserAnalysisTest, ScalesTheLastBandsAnewWithoutABlock) {
  analysis.accept(noise(16, 1, 512, 11).block(), settings, areaPx, 1);
  const auto before = heights();
  settings.alignmentY = 1;
  analysis.updateHeights(settings, areaPx, 2);
  const auto after = heights();
  for (std::size_t i = 0; i < before.size(); ++i) EXPECT_NEAR(after[i], before[i] / 2, 4) << i;
  settings.alignmentY = 0;
  analysis.updateHeights(settings, areaPx, 3);
  EXPECT_EQ(heights(), before);
}

TEST_F(AnalyserAnalysisTest, SilencesEverythingWithANewNumberOfColumns) {
  analysis.accept(noise(16, 1, 512, 12).block(), settings, areaPx, 1);
  analysis.setLineCount(30);
  EXPECT_EQ(lines.count(), 30);
  EXPECT_EQ(heights(), std::vector<double>(30, -91.0));
  EXPECT_EQ(std::vector<double>(analysis.bands().begin(), analysis.bands().end()), std::vector<double>(30, 0.0));
}

TEST_F(AnalyserAnalysisTest, KeepsTheBandsWithANewLength) {
  analysis.accept(noise(16, 1, 512, 13).block(), settings, areaPx, 1);
  const std::vector<double> before(analysis.bands().begin(), analysis.bands().end());
  for (const int length : {1024, 2, 1, 0, 4}) {
    analysis.setFftLength(length);
    EXPECT_EQ(analysis.transform().length(), length);
    analysis.updateHeights(settings, areaPx, 2);
  }
  EXPECT_EQ(std::vector<double>(analysis.bands().begin(), analysis.bands().end()), before);
  EXPECT_TRUE(analysis.accept(noise(16, 1, 512, 14).block(), settings, areaPx, 3));
}

TEST_F(AnalyserAnalysisTest, TakesWindowsZeroToTen) {
  for (const int refused : {-1, 11, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    EXPECT_FALSE(analysis.setWindowType(refused));
  EXPECT_EQ(analysis.transform().windowType(), 2u);
  EXPECT_FALSE(analysis.setWindowParam(4.0f));
  for (int type = 0; type <= 10; ++type) EXPECT_TRUE(analysis.setWindowType(type));
  EXPECT_TRUE(analysis.setWindowParam(9.5f));
  EXPECT_FALSE(analysis.setWindowParam(10.5f));
  EXPECT_EQ(analysis.transform().GetWindowParam(), 9.5);
}

TEST_F(AnalyserAnalysisTest, LetsTheColumnsFallAndThenForgetsTheBands) {
  analysis.accept(noise(16, 1, 512, 15).block(), settings, areaPx, 1000);
  const auto before = heights();
  EXPECT_FALSE(analysis.tick(settings, 1499));
  EXPECT_TRUE(analysis.tick(settings, 1500));
  for (std::size_t i = 0; i < before.size(); ++i) EXPECT_EQ(heights()[i], std::max(before[i] - 5, 0.0)) << i;
  settings.autoRepaint = 1;  // not true: only −1 is
  EXPECT_FALSE(analysis.tick(settings, 1550));
  settings.autoRepaint = -1;
  setPeaks(0);
  EXPECT_GT(analysis.bands()[5], 0.0);
  EXPECT_TRUE(analysis.tick(settings, 1600));
  EXPECT_EQ(std::vector<double>(analysis.bands().begin(), analysis.bands().end()), std::vector<double>(60, 0.0));
  EXPECT_FALSE(analysis.tick(settings, 1650));
}

TEST_F(AnalyserAnalysisTest, AllocatesNothingForABlock) {
  const auto pcm = noise(16, 2, 512, 16);
  const std::uint64_t before = test::allocationCount();
  for (int run = 0; run < 8; ++run) {
    settings.xScaleType = run % 2;
    settings.alignmentX = run / 2 % 2;
    analysis.accept(pcm.block(), settings, areaPx, 1);
    analysis.tick(settings, 2);
  }
  EXPECT_EQ(test::allocationCount(), before);
}

}  // namespace
}  // namespace av::type3
