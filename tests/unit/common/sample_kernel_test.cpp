#include "common/sample_kernel.h"

#include "common/mono_mix.h"
#include "common/pcm_decode.h"
#include "support/pcm.h"
#include "support/pcm_oracle.h"
#include "support/special_signals.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace av {
namespace {

using test::makePcm;
using test::Pcm;
using Values = std::vector<double>;

/// Random samples with the ends of their range among them, in a block that ends where its memory does.
Pcm randomPcm(int bits, int channels, int frames) {
  std::mt19937_64 random(static_cast<std::uint64_t>(bits * frames + channels));
  return makePcm(bits, channels, frames, [&](int, int) {
    const std::int64_t edges[] = {-1, 0, (std::int64_t{1} << (bits - 1)) - 1, std::int64_t{1} << (bits - 1)};
    return random() % 5 == 0 ? edges[random() % 4] : static_cast<std::int64_t>(random());
  });
}

class EachSampleKernel : public testing::TestWithParam<const SampleKernel*> {
 protected:
  template <class Check>
  void forEveryBlock(Check check) const {
    for (const int bits : {8, 16, 24, 32}) {
      for (const int channels : {1, 2, 3}) {
        for (int frames = 0; frames <= 37; ++frames) {
          const Pcm pcm = randomPcm(bits, channels, frames);
          for (const bool inverted : {false, true}) {
            SCOPED_TRACE(testing::Message() << bits << " bits, " << channels << " channels, " << frames << " frames");
            std::vector<Values> expected;
            for (int channel = 0; channel < channels; ++channel)
              expected.push_back(oracle::decodedChannel(pcm.bytes, channels, bits, channel,
                                                        static_cast<std::size_t>(frames), inverted));
            check(pcm, inverted ? EightBitRule::invertedUnsigned : EightBitRule::signedAsStored, expected);
          }
        }
      }
    }
  }
};

TEST_P(EachSampleKernel, SplitsBlocksOfAnyLengthAsTheFormatsSay) {
  forEveryBlock([this](const Pcm& pcm, EightBitRule rule, const std::vector<Values>& expected) {
    std::vector<Values> actual(expected.size(), Values(expected[0].size()));
    const std::vector<std::span<double>> targets(actual.begin(), actual.end());
    decodeChannels(pcm.block(), expected[0].size(), rule, targets, *GetParam());
    ASSERT_EQ(actual, expected);
  });
}

TEST_P(EachSampleKernel, MixesBlocksOfAnyLengthAsTheFormatsSay) {
  forEveryBlock([this](const Pcm& pcm, EightBitRule rule, const std::vector<Values>& channels) {
    Values expected(channels[0].size());
    for (std::size_t frame = 0; frame < expected.size(); ++frame) {
      long double sum = 0;
      for (const Values& channel : channels) sum += channel[frame];
      expected[frame] = static_cast<double>(sum / channels.size());
    }
    Values actual(expected.size());
    mixToMono(pcm.block(), rule, actual, *GetParam());
    ASSERT_EQ(actual, expected);
  });
}

TEST_P(EachSampleKernel, WritesNothingBehindTheFramesThatAreWanted) {
  const Pcm pcm = randomPcm(16, 2, 40);
  for (std::size_t frames = 0; frames <= 20; ++frames) {
    Values left(40, 0.25);
    Values right(40, 0.25);
    const std::array<std::span<double>, 2> targets{left, right};
    decodeChannels(pcm.block(), frames, EightBitRule::signedAsStored, targets, *GetParam());
    for (std::size_t i = frames; i < 40; ++i) ASSERT_TRUE(left[i] == 0.25 && right[i] == 0.25) << frames;
  }
}

INSTANTIATE_TEST_SUITE_P(OnThisProcessor, EachSampleKernel,
                         testing::ValuesIn(sampleKernels().end() - 1 - (sampleKernels().size() > 1),
                                           sampleKernels().end()),
                         test::kernelName<SampleKernel>);

}  // namespace
}  // namespace av
