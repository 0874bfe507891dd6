#include "common/audio_block.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <optional>

namespace {

av::AudioFormatBlock format(int channels, int bits) {
  av::AudioFormatBlock result;
  result.nChannels = static_cast<std::uint16_t>(channels);
  result.wBitsPerSample = static_cast<std::uint16_t>(bits);
  return result;
}

TEST(FrameCount, IgnoresATrailingPartialFrame) {
  EXPECT_EQ(2, av::frameCount(format(2, 16), 8));
  EXPECT_EQ(2, av::frameCount(format(2, 16), 11));
  EXPECT_EQ(3, av::frameCount(format(2, 16), 12));
  EXPECT_EQ(1, av::frameCount(format(3, 24), 17));
  EXPECT_EQ(0, av::frameCount(format(18, 32), 71));
  EXPECT_EQ(1, av::frameCount(format(18, 32), 72));
}

TEST(FrameCount, CountsAnOddDepthInWholeBytes) {
  EXPECT_EQ(10, av::frameCount(format(1, 12), 10));
  EXPECT_EQ(5, av::frameCount(format(1, 20), 10));
}

TEST(FrameCount, OfNegativeSizesIsZeroOrNegative) {
  EXPECT_EQ(0, av::frameCount(format(2, 16), -1));
  EXPECT_EQ(-2, av::frameCount(format(2, 16), -8));
  EXPECT_EQ(INT32_MIN, av::frameCount(format(1, 8), INT32_MIN));
}

TEST(FrameCount, HoldsAtTheEndsOfEachField) {
  EXPECT_EQ(INT32_MAX, av::frameCount(format(1, 8), INT32_MAX));
  EXPECT_EQ(INT32_MAX / 65535 / 8191, av::frameCount(format(65535, 65535), INT32_MAX));
  EXPECT_EQ(0, av::frameCount(format(65535, 8), 65534));
  EXPECT_EQ(1, av::frameCount(format(65535, 8), 65535));
}

TEST(FrameCount, DoesNotExistWithoutChannelsOrWholeBytes) {
  EXPECT_EQ(std::nullopt, av::frameCount(format(0, 16), 100));
  EXPECT_EQ(std::nullopt, av::frameCount(format(2, 0), 100));
  EXPECT_EQ(std::nullopt, av::frameCount(format(2, 7), 100));
  EXPECT_EQ(std::nullopt, av::frameCount(format(0, 0), 0));
}

TEST(FormatTag, PcmAndExtensibleAreAcceptedAndNothingElse) {
  int accepted = 0;
  for (int tag = 0; tag <= 0xFFFF; ++tag) accepted += av::isAcceptedFormatTag(static_cast<std::uint16_t>(tag)) ? 1 : 0;
  EXPECT_EQ(2, accepted);
  EXPECT_TRUE(av::isAcceptedFormatTag(1));
  EXPECT_TRUE(av::isAcceptedFormatTag(65534));
}

}  // namespace
