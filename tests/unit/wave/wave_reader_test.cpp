#include "wave/wave_reader.h"

#include "support/sparse_source.h"
#include "support/wav_file.h"

#include <gmock/gmock.h>

#include <limits>

namespace av::wave {
namespace {

using namespace av::support;
using testing::ElementsAre;
using testing::IsEmpty;

/// A reader of a file in memory.
struct OpenedFile {
  explicit OpenedFile(Bytes file) : bytes(std::move(file)), source(bytes), header(*readHeader(source).header) {}
  Bytes bytes;
  MemorySource source;
  WaveHeader header;
  WaveReader reader{source, header};
};

TEST(WaveReader, ReadsPieceByPieceAndAShortOneAtTheEnd) {
  OpenedFile file(wavFile({.channels = 1, .bits = 8}, {1, 2, 3, 4, 5}));
  EXPECT_EQ(5u, file.reader.frameCount());
  EXPECT_THAT(file.reader.read(2), ElementsAre(1, 2));
  EXPECT_EQ(2u, file.reader.position());
  EXPECT_THAT(file.reader.read(2), ElementsAre(3, 4));
  EXPECT_THAT(file.reader.read(2), ElementsAre(5));
  EXPECT_THAT(file.reader.read(2), IsEmpty());
  EXPECT_EQ(5u, file.reader.position());
}

TEST(WaveReader, GoesOnAtThePositionThatWasSet) {
  OpenedFile file(wavFile({.channels = 2, .bits = 8}, {1, 2, 3, 4, 5, 6}));
  file.reader.setPosition(2);
  EXPECT_THAT(file.reader.read(9), ElementsAre(5, 6));
  file.reader.setPosition(0);
  EXPECT_THAT(file.reader.read(1), ElementsAre(1, 2));
  file.reader.setPosition(3);
  EXPECT_THAT(file.reader.read(1), IsEmpty());
}

TEST(WaveReader, GivesSixteenAnd32BitSamplesAsTheyAre) {
  OpenedFile sixteen(wavFile({.channels = 1, .bits = 16}, {0x34, 0x12, 0xFF, 0x80}));
  EXPECT_THAT(sixteen.reader.read(9), ElementsAre(0x34, 0x12, 0xFF, 0x80));
  EXPECT_EQ((PcmFormat{1, 44100, 16}), sixteen.reader.blockFormat());
  OpenedFile thirtyTwo(wavFile({.channels = 1, .bits = 32}, {1, 2, 3, 0x84}));
  EXPECT_THAT(thirtyTwo.reader.read(9), ElementsAre(1, 2, 3, 0x84));
  EXPECT_EQ((PcmFormat{1, 44100, 32}), thirtyTwo.reader.blockFormat());
}

TEST(WaveReader, Widens24BitSamplesTo32) {
  OpenedFile file(wavFile({.channels = 1, .bits = 24}, {1, 2, 3, 4, 5, 0x86}));
  EXPECT_THAT(file.reader.read(9), ElementsAre(0, 1, 2, 3, 0, 4, 5, 0x86));
  EXPECT_EQ((PcmFormat{1, 44100, 24}), file.reader.blockFormat());
}

/// The stored samples as the numbers that they are.
template <class Float>
std::vector<std::int32_t> integersOf(const std::vector<Float>& samples) {
  OpenedFile file(wavFile({.tag = 3, .channels = 1, .bits = 8 * sizeof(Float)}, bytesOf(samples)));
  EXPECT_EQ((PcmFormat{1, 44100, 32}), file.reader.blockFormat());
  const Bytes stored = file.reader.read(samples.size());
  std::vector<std::int32_t> integers(stored.size() / 4);
  std::memcpy(integers.data(), stored.data(), stored.size());
  return integers;
}

TEST(WaveReader, MakesIntegersOfFloatingPointAndClips) {
  constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
  constexpr float infinity = std::numeric_limits<float>::infinity();
  const std::vector<std::int32_t> expected = {0, 1 << 30, -(1 << 29), most, least, most, least, most, least, 0};
  EXPECT_EQ(expected, integersOf<float>({0, 0.5f, -0.25f, 1, -1, 7, -7, infinity, -infinity, std::nanf("")}));
  EXPECT_EQ(expected, integersOf<double>({0, 0.5, -0.25, 1, -1, 1e300, -1e300, infinity, -infinity, std::nan("")}));
}

TEST(WaveReader, ReadsBeyondTwoGigabytes) {
  constexpr std::uint64_t frames = 3'000'000'000;
  Bytes head = riff({chunk("fmt ", WavFormat{.channels = 1, .bits = 8}.bytes()), chunk("data", {}, 0xB2D05E00)},
                    0xFFFFFFFF);  // 3,000,000,000 bytes
  SparseSource source(head.size() + frames);
  source.put(head.size() + frames - 3, {7, 8, 9});
  source.put(0, std::move(head));
  const HeaderResult result = readHeader(source);
  ASSERT_TRUE(result.header) << result.problem;
  WaveReader reader(source, *result.header);
  EXPECT_EQ(frames, reader.frameCount());
  source.bytesRead = 0;
  reader.setPosition(frames - 2);
  EXPECT_THAT(reader.read(100), ElementsAre(8, 9));
  EXPECT_EQ(2u, source.bytesRead);
}

TEST(WaveReader, GivesWholeFramesOfAFileThatHasBecomeShorter) {
  const Bytes file = wavFile({.channels = 2, .bits = 16}, Bytes(40, 3));
  SparseSource source(file.size());
  source.put(0, file);
  WaveReader reader(source, *readHeader(source).header);
  source.truncate(44 + 11);
  EXPECT_EQ(8u, reader.read(10).size());
  EXPECT_EQ(2u, reader.position());
  EXPECT_THAT(reader.read(10), IsEmpty());
}

TEST(WaveReader, KeepsABlocksBytesWithin31Bits) {
  EXPECT_EQ(0x7FFFFFFFu, OpenedFile(wavFile({.channels = 1, .bits = 8}, {1})).reader.mostFramesOfABlock());
  EXPECT_EQ(0x7FFFFFFFu / 8, OpenedFile(wavFile({.channels = 2, .bits = 24}, Bytes(6))).reader.mostFramesOfABlock());
  EXPECT_EQ(0x7FFFFFFFu / 16,
            OpenedFile(wavFile({.tag = 3, .channels = 2, .bits = 64}, Bytes(16))).reader.mostFramesOfABlock());
}

}  // namespace
}  // namespace av::wave
