#include "common/mono_mix.h"

#include "support/pcm.h"
#include "support/pcm_oracle.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace av {
namespace {

using test::makePcm;
using test::Pcm;

constexpr double untouched = -12345.678;

std::vector<double> mixed(const Pcm& pcm, std::size_t frames, EightBitRule rule = EightBitRule::signedAsStored) {
  std::vector<double> mono(frames, untouched);
  EXPECT_TRUE(mixToMono(pcm.block(), rule, mono));
  return mono;
}

TEST(MonoMix, IsTheMeanOfTheChannelsInEveryDepthAndChannelCount) {
  std::mt19937_64 random(3);
  for (const int bits : {8, 16, 24, 32}) {
    for (const int channels : {1, 2, 3, 4, 5, 7, 18, 300}) {
      for (const bool inverted : {false, true}) {
        const auto pcm = makePcm(bits, channels, 40, [&](int, int) { return static_cast<std::int64_t>(random()); });
        const auto mono = mixed(pcm, 40, inverted ? EightBitRule::invertedUnsigned : EightBitRule::signedAsStored);
        std::vector<long double> sums(40);
        for (int channel = 0; channel < channels; ++channel) {
          const auto samples = oracle::decodedChannel(pcm.bytes, channels, bits, channel, 40, inverted);
          for (std::size_t frame = 0; frame < 40; ++frame) sums[frame] += samples[frame];
        }
        for (std::size_t frame = 0; frame < 40; ++frame)
          ASSERT_EQ(mono[frame], static_cast<double>(sums[frame] / channels)) << bits << " bits, " << channels;
      }
    }
  }
}

TEST(MonoMix, KeepsHalvesAndExtremes) {
  const auto pcm = makePcm(16, 2, 3, [](int frame, int channel) {
    const int samples[3][2] = {{1, 2}, {-32768, -32768}, {32767, -32768}};
    return samples[frame][channel];
  });
  EXPECT_EQ(mixed(pcm, 3), (std::vector<double>{1.5, -32768.0, -0.5}));
  const auto loud = makePcm(32, 65535, 1, [](int, int) { return INT32_MIN; });
  EXPECT_EQ(mixed(loud, 1), std::vector<double>{-2147483648.0});
}

TEST(MonoMix, WritesOnlyAsManyFramesAsAreWantedAndHeld) {
  const auto pcm = makePcm(16, 2, 3, [](int frame, int) { return frame + 1; });
  EXPECT_EQ(mixed(pcm, 2), (std::vector<double>{1, 2}));
  EXPECT_EQ(mixed(pcm, 5), (std::vector<double>{1, 2, 3, untouched, untouched}));
  std::vector<double> mono(2, untouched);
  AudioBlock block = pcm.block();
  block.sampleBytes = -8;
  EXPECT_TRUE(mixToMono(block, EightBitRule::signedAsStored, mono));
  EXPECT_EQ(mono, std::vector<double>(2, untouched));
}

TEST(MonoMix, ReadsNoDepthThatIsNotDecoded) {
  for (const int bits : {9, 12, 20, 40, 64}) {
    std::vector<double> mono(4, untouched);
    EXPECT_FALSE(
        mixToMono(makePcm(bits, 1, 4, [](int, int) { return 1; }).block(), EightBitRule::signedAsStored, mono));
    EXPECT_EQ(mono, std::vector<double>(4, untouched));
  }
}

}  // namespace
}  // namespace av
