#include "wave/pcm_samples.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace av::wave {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

TEST(PcmSamples, PutFullScaleIntoTheIntegersOfTheirWidth) {
  struct Case {
    unsigned bits;
    std::int32_t lowest, zero, half, highest;
  };
  constexpr Case cases[] = {
      {8, 0, 128, 192, 255},
      {16, -32768, 0, 16384, 32767},
      {24, -8388608, 0, 4194304, 8388607},
      {32, std::numeric_limits<std::int32_t>::min(), 0, 1 << 30, std::numeric_limits<std::int32_t>::max()}};
  for (const Case& one : cases) {
    SCOPED_TRACE(one.bits);
    for (const double below : {-1.0, -1.0000001, -5.0, -1e300, -std::numeric_limits<double>::infinity()})
      EXPECT_EQ(one.lowest, integerFromUnit(below, one.bits)) << below;
    for (const double above : {1.0, 1.0000001, 5.0, 1e300, std::numeric_limits<double>::infinity()})
      EXPECT_EQ(one.highest, integerFromUnit(above, one.bits)) << above;
    EXPECT_EQ(one.zero, integerFromUnit(0, one.bits));
    EXPECT_EQ(one.half, integerFromUnit(0.5, one.bits));
    EXPECT_EQ(one.zero, integerFromUnit(std::nan(""), one.bits)) << "no number is silence";
    EXPECT_EQ(one.lowest, integerRange(one.bits).lowest);
    EXPECT_EQ(one.highest, integerRange(one.bits).highest);
  }
}

TEST(PcmSamples, AreRoundedToTheNearestInteger) {
  EXPECT_EQ(1, integerFromUnit(0.5 / 32768, 16));
  EXPECT_EQ(0, integerFromUnit(0.49 / 32768, 16));
  EXPECT_EQ(0, integerFromUnit(-0.5 / 32768, 16));
  EXPECT_EQ(-1, integerFromUnit(-0.51 / 32768, 16));
  EXPECT_EQ(-32768, integerFromUnit(-32767.6 / 32768, 16));
}

TEST(PcmSamples, AreStoredLittleEndianAndIn32BitsWhereTheyHave24) {
  const auto stored = [](std::int32_t value, unsigned bits) {
    Bytes bytes;
    storeInteger(value, bits, bytes);
    return bytes;
  };
  EXPECT_THAT(stored(200, 8), ElementsAre(200));
  EXPECT_THAT(stored(-2, 16), ElementsAre(0xFE, 0xFF));
  EXPECT_THAT(stored(0x123456, 24), ElementsAre(0, 0x56, 0x34, 0x12));
  EXPECT_THAT(stored(-1, 24), ElementsAre(0, 0xFF, 0xFF, 0xFF));
  EXPECT_THAT(stored(0x12345678, 32), ElementsAre(0x78, 0x56, 0x34, 0x12));
}

TEST(PcmSamples, AreTakenFromPackedBytesWithoutATrailingPart) {
  Bytes stored = {99};
  storePacked(Bytes{1, 2, 3, 4, 5, 6, 7}, 24, stored);
  EXPECT_THAT(stored, ElementsAre(99, 0, 1, 2, 3, 0, 4, 5, 6));
  stored.clear();
  storePacked(Bytes{1, 2, 3}, 16, stored);
  EXPECT_THAT(stored, ElementsAre(1, 2));
  storePacked(Bytes{}, 24, stored);
  EXPECT_THAT(stored, ElementsAre(1, 2));
}

TEST(PcmSamples, ReadBackOnTheScaleOfOne) {
  for (const unsigned bits : {8u, 16u, 24u, 32u}) {
    Bytes stored;
    for (const double value : {-1.0, 0.0, 0.5, -0.25}) storeInteger(integerFromUnit(value, bits), bits, stored);
    EXPECT_EQ(-1.0, unitSample(stored, bits, 0)) << bits;
    EXPECT_EQ(0.0, unitSample(stored, bits, 1)) << bits;
    EXPECT_EQ(0.5, unitSample(stored, bits, 2)) << bits;
    EXPECT_EQ(-0.25, unitSample(stored, bits, 3)) << bits;
  }
}

TEST(PcmFormats, KnowTheFramesOfBlocksAndOfFiles) {
  EXPECT_EQ(8u, (PcmFormat{2, 44100, 24}.storedFrameBytes()));
  EXPECT_EQ(6u, (PcmFormat{2, 44100, 24}.packedFrameBytes()));
}

}  // namespace
}  // namespace av::wave
