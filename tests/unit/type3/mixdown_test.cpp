#include "type3/mixdown.h"

#include "support/analyser_model.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace av::type3 {
namespace {

struct Mixed {
  std::vector<double> samples;
  double fullScale;
};

Mixed mixed(const test::Pcm& pcm, std::size_t length) {
  std::vector<double> samples(length, -99);
  const double fullScale = mixDown(pcm.block(), samples);
  return {samples, fullScale};
}

TEST(AnalyserMixdown, IsTheMeanOfTheChannels) {
  const auto pcm = test::makePcm(16, 2, 3, [](int frame, int channel) { return frame * 100 + channel * 7; });
  const auto [samples, fullScale] = mixed(pcm, 4);
  EXPECT_EQ(samples, (std::vector<double>{3.5, 103.5, 203.5, 0}));
  EXPECT_EQ(fullScale, 32768.0);
}

TEST(AnalyserMixdown, TurnsEightBitsUpsideDown) {
  const auto pcm = test::makePcm(8, 1, 4, [](int frame, int) { return frame * 85; });  // 0, 85, 170, 255
  const auto [samples, fullScale] = mixed(pcm, 4);
  EXPECT_EQ(samples, (std::vector<double>{128, 43, -42, -127}));
  EXPECT_EQ(fullScale, 128.0);
}

TEST(AnalyserMixdown, Makes24BitsTheNumberOfFrames) {
  std::mt19937 random(1);
  for (const int channels : {1, 2, 5}) {
    const auto pcm = test::makePcm(24, channels, 6, [&](int, int) { return random(); });
    EXPECT_EQ(mixed(pcm, 4).samples, std::vector<double>(4, 6));
    EXPECT_EQ(mixed(pcm, 8).samples, (std::vector<double>{6, 6, 6, 6, 6, 6, 0, 0}));
    EXPECT_EQ(mixed(pcm, 8).fullScale, 8388608.0);
  }
}

TEST(AnalyserMixdown, OfNoFramesHasAFullScaleOfZeroWith8And24Bits) {
  const struct {
    int bits;
    double fullScale;
  } rows[] = {{8, 0}, {16, 32768}, {24, 0}, {32, 2147483648.0}};
  for (const auto& row : rows) {
    test::Pcm pcm = test::silence(row.bits, 2, 1);
    AudioBlock block = pcm.block();
    for (const std::int32_t bytes : {0, row.bits / 8, -4}) {
      block.sampleBytes = bytes;
      std::vector<double> samples(3, -99);
      EXPECT_EQ(mixDown(block, samples), row.fullScale) << row.bits;
      EXPECT_EQ(samples, std::vector<double>(3, 0));
    }
  }
}

TEST(AnalyserMixdown, OfOtherDepthsIsSilent) {
  for (const int bits : {4, 12, 20, 40, 64}) {
    test::Pcm pcm = test::makePcm(64, 2, 8, [](int, int) { return 77; });
    pcm.format.wBitsPerSample = static_cast<std::uint16_t>(bits);
    EXPECT_TRUE(isAnalysed(pcm.block()));
    EXPECT_EQ(mixed(pcm, 4).samples, std::vector<double>(4, 0)) << bits;
    EXPECT_EQ(mixed(pcm, 4).fullScale, 0.0) << bits;
  }
}

TEST(AnalyserMixdown, IsThatOfTheLiteralOneForAnyBlock) {
  std::mt19937 random(2);
  for (int run = 0; run < 400; ++run) {
    const int bits = 8 * (1 + static_cast<int>(random() % 4));
    const int channels = 1 + static_cast<int>(random() % 6);
    const int frames = static_cast<int>(random() % 40);
    const auto pcm = test::makePcm(bits, channels, frames, [&](int, int) { return random(); });
    if (frames == 0) continue;
    const std::size_t length = std::size_t{1} << (random() % 6);
    const auto expected = test::mixedBlock(pcm, length);
    const auto actual = mixed(pcm, length);
    ASSERT_EQ(actual.samples, expected.samples) << bits << " bits, " << channels << " channels";
    ASSERT_EQ(actual.fullScale, expected.fullScale);
  }
}

TEST(AnalyserBlocks, AreDroppedWithoutPcmSamplesOrWholeBytes) {
  test::Pcm pcm = test::silence(16, 2, 4);
  EXPECT_TRUE(isAnalysed(pcm.block()));
  pcm.format.wFormatTag = 0xFFFE;
  EXPECT_TRUE(isAnalysed(pcm.block()));
  for (const int tag : {0, 2, 3, 0xFFFF}) {
    pcm.format.wFormatTag = static_cast<std::uint16_t>(tag);
    EXPECT_FALSE(isAnalysed(pcm.block())) << tag;
  }
  pcm.format.wFormatTag = 1;
  pcm.format.nChannels = 0;
  EXPECT_FALSE(isAnalysed(pcm.block()));
  pcm.format.nChannels = 1;
  pcm.format.wBitsPerSample = 7;
  EXPECT_FALSE(isAnalysed(pcm.block()));
  pcm.format.nChannels = 2;  // 14 bits a frame: a byte
  EXPECT_TRUE(isAnalysed(pcm.block()));
  pcm.format.nChannels = 65535;
  pcm.format.wBitsPerSample = 65535;
  EXPECT_TRUE(isAnalysed(pcm.block()));
  pcm.format = test::pcmFormat(16, 2);
  AudioBlock withoutSamples = pcm.block();
  withoutSamples.samples = nullptr;
  EXPECT_FALSE(isAnalysed(withoutSamples));
}

}  // namespace
}  // namespace av::type3
