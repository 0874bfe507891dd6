#include "common/pcm_decode.h"

#include "support/pcm_oracle.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <random>
#include <span>
#include <tuple>
#include <vector>

namespace {

using av::EightBitRule;

constexpr std::size_t maxChannels = 18;
constexpr double untouched = -12345.5;  // no sample has a fraction

/// A block whose samples end where its heap allocation ends, so that a sanitizer sees any byte read behind them, at an
/// address that `misalignment` makes odd.
class Block {
 public:
  Block(std::vector<std::uint8_t> bytes, int channels, int bits, std::size_t misalignment = 0)
      : m_bytes(std::move(bytes)), m_memory(std::make_unique<std::uint8_t[]>(m_bytes.size() + misalignment)) {
    if (!m_bytes.empty()) std::memcpy(m_memory.get() + misalignment, m_bytes.data(), m_bytes.size());
    m_block.format.wFormatTag = av::formatTagPcm;
    m_block.format.nChannels = static_cast<std::uint16_t>(channels);
    m_block.format.wBitsPerSample = static_cast<std::uint16_t>(bits);
    m_block.samples = m_memory.get() + misalignment;
    m_block.sampleBytes = static_cast<std::int32_t>(m_bytes.size());
  }

  av::AudioBlock& operator*() { return m_block; }
  av::AudioBlock* operator->() { return &m_block; }
  const std::vector<std::uint8_t>& bytes() const { return m_bytes; }

 private:
  std::vector<std::uint8_t> m_bytes;
  std::unique_ptr<std::uint8_t[]> m_memory;
  av::AudioBlock m_block;
};

std::vector<std::uint8_t> randomBytes(std::size_t count) {
  std::mt19937 random(20240607);
  std::vector<std::uint8_t> result(count);
  for (auto& byte : result) byte = static_cast<std::uint8_t>(random());
  return result;
}

struct Arrays {
  explicit Arrays(std::size_t channels, std::size_t length)
      : storage(channels, std::vector<double>(length, untouched)) {
    for (auto& array : storage) spans.emplace_back(array);
  }
  std::vector<std::vector<double>> storage;
  std::vector<std::span<double>> spans;
};

std::vector<double> decodeMono(std::initializer_list<int> bytes, int bits, EightBitRule rule) {
  std::vector<std::uint8_t> stored;
  for (const int byte : bytes) stored.push_back(static_cast<std::uint8_t>(byte));
  const std::size_t frames = stored.size() / (static_cast<std::size_t>(bits) / 8);
  Block block(std::move(stored), 1, bits);
  Arrays arrays(1, frames);
  EXPECT_TRUE(av::decodeChannels(*block, frames, rule, arrays.spans));
  return arrays.storage[0];
}

TEST(PcmDecode, EightBitInvertedIs128LessTheByte) {
  EXPECT_EQ((std::vector<double>{128, 127, 1, 0, -1, -127}),
            decodeMono({0, 1, 127, 128, 129, 255}, 8, EightBitRule::invertedUnsigned));
}

TEST(PcmDecode, EightBitSignedKeepsTheByteAsItStands) {
  EXPECT_EQ((std::vector<double>{0, 1, 127, -128, -127, -1}),
            decodeMono({0, 1, 127, 128, 129, 255}, 8, EightBitRule::signedAsStored));
}

TEST(PcmDecode, SixteenBitEdges) {
  EXPECT_EQ((std::vector<double>{0, 1, 32767, -32768, -1, 256}),
            decodeMono({0, 0, 1, 0, 0xFF, 0x7F, 0, 0x80, 0xFF, 0xFF, 0, 1}, 16, EightBitRule::signedAsStored));
}

TEST(PcmDecode, TwentyFourBitTakesItsSignFromBit23) {
  EXPECT_EQ((std::vector<double>{0, 1, 8388607, -8388608, -1, 65536, -8323072}),
            decodeMono({0, 0, 0, 1, 0, 0, 0xFF, 0xFF, 0x7F, 0, 0, 0x80, 0xFF, 0xFF, 0xFF, 0, 0, 1, 0, 0, 0x81}, 24,
                       EightBitRule::signedAsStored));
}

TEST(PcmDecode, ThirtyTwoBitIsAnIntegerEvenWhereAFloatWouldFit) {
  // 0x3F800000 is 1.0f: samples are integers all the same.
  EXPECT_EQ((std::vector<double>{2147483647, -2147483648.0, -1, 1065353216}),
            decodeMono({0xFF, 0xFF, 0xFF, 0x7F, 0, 0, 0, 0x80, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0x80, 0x3F}, 32,
                       EightBitRule::signedAsStored));
}

/// bits, channels, misalignment, inverted 8-bit rule
class PcmDecodeAgainstOracle : public testing::TestWithParam<std::tuple<int, int, std::size_t, bool>> {};

TEST_P(PcmDecodeAgainstOracle, SplitsEveryChannel) {
  const auto [bits, channels, misalignment, inverted] = GetParam();
  const EightBitRule rule = inverted ? EightBitRule::invertedUnsigned : EightBitRule::signedAsStored;
  // Crosses the tile of 256 frames and ends within one; a partial frame trails.
  const std::size_t frames = 2 * 256 + 37;
  const std::size_t frameBytes = static_cast<std::size_t>(channels) * static_cast<std::size_t>(bits) / 8;
  Block block(randomBytes(frames * frameBytes + frameBytes - 1), channels, bits, misalignment);
  Arrays arrays(maxChannels, frames + 3);

  ASSERT_TRUE(av::decodeChannels(*block, frames + 3, rule, arrays.spans));

  for (std::size_t c = 0; c < maxChannels; ++c) {
    std::vector<double> expected(frames + 3, untouched);
    if (c < static_cast<std::size_t>(channels)) {
      expected = av::oracle::decodedChannel(block.bytes(), channels, bits, static_cast<int>(c), frames, inverted);
      expected.resize(frames + 3, untouched);
    }
    ASSERT_EQ(expected, arrays.storage[c]) << "channel " << c;
  }
}

INSTANTIATE_TEST_SUITE_P(DepthsAndChannels, PcmDecodeAgainstOracle,
                         testing::Combine(testing::Values(8, 16, 24, 32), testing::Values(1, 2, 3, 6, 17, 18, 40),
                                          testing::Values(std::size_t{0}, std::size_t{1}, std::size_t{3}),
                                          testing::Bool()));

TEST(PcmDecode, ReadsTheFirstFramesOnlyAndWritesNothingBehindThem) {
  Block block(randomBytes(1000 * 4), 2, 16);
  Arrays arrays(2, 1000);
  ASSERT_TRUE(av::decodeChannels(*block, 300, EightBitRule::signedAsStored, arrays.spans));
  for (int c = 0; c < 2; ++c) {
    auto expected = av::oracle::decodedChannel(block.bytes(), 2, 16, c, 300, false);
    expected.resize(1000, untouched);
    EXPECT_EQ(expected, arrays.storage[static_cast<std::size_t>(c)]);
  }
}

TEST(PcmDecode, AnEmptySpanSkipsItsChannelAndAShortOneStopsEarly) {
  Block block(randomBytes(600 * 3 * 3), 3, 24);
  Arrays arrays(3, 600);
  arrays.spans[0] = {};
  arrays.spans[1] = arrays.spans[1].first(270);
  ASSERT_TRUE(av::decodeChannels(*block, 600, EightBitRule::signedAsStored, arrays.spans));
  EXPECT_EQ(std::vector<double>(600, untouched), arrays.storage[0]);
  auto second = av::oracle::decodedChannel(block.bytes(), 3, 24, 1, 270, false);
  second.resize(600, untouched);
  EXPECT_EQ(second, arrays.storage[1]);
  EXPECT_EQ(av::oracle::decodedChannel(block.bytes(), 3, 24, 2, 600, false), arrays.storage[2]);
}

TEST(PcmDecode, NoArraysReadNothing) {
  Block block(randomBytes(64), 2, 16);
  EXPECT_TRUE(av::decodeChannels(*block, 16, EightBitRule::signedAsStored, {}));
}

TEST(PcmDecode, ZeroAndNegativeSizesHoldNoFrame) {
  for (const std::int32_t bytes : {0, -1, -4096, INT32_MIN}) {
    Block block({}, 2, 16);
    block->sampleBytes = bytes;
    Arrays arrays(2, 8);
    EXPECT_TRUE(av::decodeChannels(*block, 8, EightBitRule::signedAsStored, arrays.spans));
    EXPECT_EQ(std::vector<double>(8, untouched), arrays.storage[0]) << bytes;
  }
}

TEST(PcmDecode, OtherDepthsWriteNothing) {
  for (const int bits : {9, 12, 15, 17, 20, 31, 33, 40, 48, 64, 65535}) {
    EXPECT_FALSE(av::isDecodedDepth(bits)) << bits;
    Block block(randomBytes(64), 1, bits);
    Arrays arrays(1, 8);
    EXPECT_FALSE(av::decodeChannels(*block, 8, EightBitRule::signedAsStored, arrays.spans)) << bits;
    EXPECT_EQ(std::vector<double>(8, untouched), arrays.storage[0]) << bits;
  }
}

TEST(PcmDecode, DecodedDepthsAreTheFourOfWholeBytesUpTo32) {
  for (int bits = 0; bits <= 64; ++bits) {
    EXPECT_EQ(bits == 8 || bits == 16 || bits == 24 || bits == 32, av::isDecodedDepth(bits)) << bits;
  }
}

TEST(PcmDecode, WithoutChannelsThereIsNothingToRead) {
  Block block(randomBytes(64), 0, 16);
  Arrays arrays(2, 8);
  EXPECT_TRUE(av::decodeChannels(*block, 8, EightBitRule::signedAsStored, arrays.spans));
  EXPECT_EQ(std::vector<double>(8, untouched), arrays.storage[0]);
}

}  // namespace
