#include "wave/wave_header.h"

#include "support/sparse_source.h"
#include "support/wav_file.h"

#include <gmock/gmock.h>

#include <random>

namespace av::wave {
namespace {

using namespace av::support;
using testing::HasSubstr;

const Bytes twoFrames = {1, 0, 2, 0, 3, 0, 4, 0};

HeaderResult headerOf(const Bytes& file) {
  MemorySource source(file);
  return readHeader(source);
}

/// The bytes that a header calls its samples.
Bytes samplesOf(const Bytes& file, const WaveHeader& header) {
  const auto from = file.begin() + static_cast<std::ptrdiff_t>(header.dataOffset);
  return {from, from + static_cast<std::ptrdiff_t>(header.dataBytes)};
}

void expectTwoFrames(const Bytes& file) {
  const HeaderResult result = headerOf(file);
  ASSERT_TRUE(result.header) << result.problem;
  EXPECT_EQ(2u, result.header->frameCount());
  EXPECT_EQ(twoFrames, samplesOf(file, *result.header));
}

TEST(WaveHeader, ReadsAPlainStereoFile) {
  const Bytes file = wavFile({}, twoFrames);
  const HeaderResult result = headerOf(file);
  ASSERT_TRUE(result.header) << result.problem;
  EXPECT_EQ(SampleKind::integer, result.header->kind);
  EXPECT_EQ(2, result.header->channels);
  EXPECT_EQ(16, result.header->bitsPerSample);
  EXPECT_EQ(44100u, result.header->sampleRateHz);
  EXPECT_EQ(44u, result.header->dataOffset);
  expectTwoFrames(file);
}

TEST(WaveHeader, CompletesA16ByteFormatToTheStandardHeader) {
  const HeaderResult result = headerOf(wavFile({}, twoFrames));
  ASSERT_TRUE(result.header);
  Bytes expected = WavFormat{}.bytes();
  append(expected, 0, 2);
  EXPECT_EQ(expected, result.header->format);
}

TEST(WaveHeader, ReadsEveryDepthAndChannelCount) {
  for (const std::uint16_t bits : std::initializer_list<std::uint16_t>{8, 16, 24, 32}) {
    for (std::uint16_t channels = 1; channels <= 18; ++channels) {
      const WavFormat format{.channels = channels, .bits = bits};
      const HeaderResult result = headerOf(wavFile(format, Bytes(channels * (bits / 8u) * 3u, 7)));
      ASSERT_TRUE(result.header) << result.problem;
      EXPECT_EQ(3u, result.header->frameCount()) << bits << " bits, " << channels << " channels";
    }
  }
}

TEST(WaveHeader, ReadsFloatingPointOf32And64Bits) {
  for (const std::uint16_t bits : std::initializer_list<std::uint16_t>{32, 64}) {
    const WavFormat format{.tag = 3, .channels = 1, .bits = bits};
    for (const Bytes& chunkBytes : {format.bytes(), extensible(format, 3)}) {
      const HeaderResult result = headerOf(riff({chunk("fmt ", chunkBytes), chunk("data", Bytes(64, 0))}));
      ASSERT_TRUE(result.header) << result.problem;
      EXPECT_EQ(SampleKind::floatingPoint, result.header->kind);
      EXPECT_EQ(512u / bits, result.header->frameCount());
    }
  }
}

TEST(WaveHeader, KeepsAnExtensibleFormatWhole) {
  const Bytes format = extensible({}, 1);
  const HeaderResult result = headerOf(riff({chunk("fmt ", format), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.header) << result.problem;
  EXPECT_EQ(format, result.header->format);
  EXPECT_EQ(40u, result.header->format.size());
}

TEST(WaveHeader, BoundsTheExtensionSizeToTheFormatChunk) {
  Bytes format = WavFormat{}.bytes();
  append(format, 500, 2);
  append(format, {9, 9, 9, 9});
  const HeaderResult result = headerOf(riff({chunk("fmt ", format), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.header);
  EXPECT_EQ(22u, result.header->format.size());
  EXPECT_EQ(4, result.header->format[16]);
  EXPECT_EQ(0, result.header->format[17]);
}

TEST(WaveHeader, KeepsAtMost180BytesOfAFormat) {
  Bytes format = WavFormat{}.bytes();
  append(format, 282, 2);
  format.resize(300, 5);
  const HeaderResult result = headerOf(riff({chunk("fmt ", format), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.header);
  EXPECT_EQ(180u, result.header->format.size());
  EXPECT_EQ(162, result.header->format[16]);
  EXPECT_EQ(0, result.header->format[17]);
}

TEST(WaveHeader, SkipsOtherChunksAndTheirPadding) {
  expectTwoFrames(riff({chunk("JUNK", Bytes(7, 0xAA)), chunk("LIST", Bytes(3, 'x')), chunk("fmt ", WavFormat{}.bytes()),
                        chunk("fact", Bytes(5, 1)), chunk("data", twoFrames), chunk("cue ", Bytes(4, 2))}));
}

TEST(WaveHeader, FindsChunksBehindAnOddOneThatLacksItsPaddingByte) {
  Bytes unpadded = chunk("LIST", Bytes(5, 'x'));
  unpadded.pop_back();
  expectTwoFrames(riff({unpadded, chunk("fmt ", WavFormat{}.bytes()), unpadded, chunk("data", twoFrames)}));
}

TEST(WaveHeader, FindsAFormatBehindTheData) {
  const WavFormat mono{.channels = 1, .bits = 8};
  const Bytes file = riff({chunk("data", {1, 2, 3}), chunk("fmt ", mono.bytes())});
  const HeaderResult result = headerOf(file);
  ASSERT_TRUE(result.header) << result.problem;
  EXPECT_EQ((Bytes{1, 2, 3}), samplesOf(file, *result.header));
}

TEST(WaveHeader, TakesTheFirstFormatAndTheFirstData) {
  const WavFormat other{.channels = 1, .rate = 8000};
  const Bytes file = riff({chunk("fmt ", WavFormat{}.bytes()), chunk("fmt ", other.bytes()), chunk("data", twoFrames),
                           chunk("data", Bytes(40, 9))});
  expectTwoFrames(file);
  EXPECT_EQ(44100u, headerOf(file).header->sampleRateHz);
}

TEST(WaveHeader, UsesWhatThereIsOfATruncatedDataChunk) {
  expectTwoFrames(riff({chunk("fmt ", WavFormat{}.bytes()), chunk("data", twoFrames, 1000000)}));
}

TEST(WaveHeader, CutsATrailingPartialFrame) {
  const HeaderResult result = headerOf(wavFile({}, Bytes(11, 1)));
  ASSERT_TRUE(result.header);
  EXPECT_EQ(8u, result.header->dataBytes);
}

TEST(WaveHeader, TakesTheRestOfAStreamWithOpenSizes) {
  for (const std::int64_t open : {std::int64_t{0xFFFFFFFF}, std::int64_t{0}})
    expectTwoFrames(riff({chunk("fmt ", WavFormat{}.bytes()), chunk("data", twoFrames, open)}, open));
}

TEST(WaveHeader, KnowsAFileWithoutSamples) {
  const HeaderResult result =
      headerOf(riff({chunk("fmt ", WavFormat{}.bytes()), chunk("data", {}), chunk("LIST", Bytes(64, 3))}));
  ASSERT_TRUE(result.header) << result.problem;
  EXPECT_EQ(0u, result.header->frameCount());
}

Bytes longFile(const Bytes& sizes) {
  Bytes file = riff({chunk("ds64", sizes), chunk("fmt ", WavFormat{}.bytes()), chunk("data", twoFrames, 0xFFFFFFFF)},
                    0xFFFFFFFF);
  file[1] = 'F';
  file[2] = '6';
  file[3] = '4';
  return file;
}

TEST(WaveHeader, ReadsTheLongFileVariant) {
  expectTwoFrames(longFile(Bytes(28, 0)));  // a writer that did not come back to fill it in
  Bytes sizes;
  append(sizes, 1000, 8);
  append(sizes, 4, 8);
  append(sizes, Bytes(12, 0));
  const HeaderResult result = headerOf(longFile(sizes));
  ASSERT_TRUE(result.header) << result.problem;
  EXPECT_EQ(4u, result.header->dataBytes);
}

TEST(WaveHeader, ReadsFilesBeyond4GigabytesWithoutReadingTheirSamples) {
  constexpr std::uint64_t dataBytes = 5'000'000'000;
  Bytes sizes;
  append(sizes, dataBytes + 100, 8);
  append(sizes, dataBytes, 8);
  append(sizes, Bytes(12, 0));
  const Bytes head = longFile(sizes);
  SparseSource source(head.size() - twoFrames.size() + dataBytes + 1000);
  source.put(0, head);
  const HeaderResult result = readHeader(source);
  ASSERT_TRUE(result.header) << result.problem;
  EXPECT_EQ(dataBytes, result.header->dataBytes);
  EXPECT_GT(200u, source.bytesRead);
}

TEST(WaveHeader, GivesUpOnAFileOfEndlessEmptyChunks) {
  SparseSource source(3'000'000'000);
  source.put(0, riff({}));
  EXPECT_THAT(readHeader(source).problem, HasSubstr("without a format chunk"));
  EXPECT_GT(200'000, source.reads);
}

struct Refusal {
  const char* name;
  Bytes file;
  const char* problem;
};

Bytes withFormat(const Bytes& format) { return riff({chunk("fmt ", format), chunk("data", Bytes(144, 1))}); }

class WaveHeaderRefuses : public testing::TestWithParam<Refusal> {};

TEST_P(WaveHeaderRefuses, SayingWhy) {
  const HeaderResult result = headerOf(GetParam().file);
  EXPECT_FALSE(result.header);
  EXPECT_THAT(result.problem, HasSubstr(GetParam().problem));
  EXPECT_EQ(std::string::npos, result.problem.find('\n'));
}

const std::string text = "This is a text file, longer than any header that a WAV file could have.";

INSTANTIATE_TEST_SUITE_P(
    WavFiles, WaveHeaderRefuses,
    testing::Values(Refusal{"Empty", {}, "empty"}, Refusal{"Text", Bytes(text.begin(), text.end()), "not a WAV file"},
                    Refusal{"OnlyRiff", {'R', 'I', 'F', 'F'}, "not a WAV file"},
                    Refusal{"BigEndian", {'R', 'I', 'F', 'X', 0, 0, 0, 4, 'W', 'A', 'V', 'E'}, "RIFX"},
                    Refusal{"NoChunks", riff({}), "without a format chunk"},
                    Refusal{"NoData", riff({chunk("fmt ", WavFormat{}.bytes())}), "without a data chunk"},
                    Refusal{"NoFormat", riff({chunk("data", Bytes(8, 1))}), "without a format chunk"},
                    Refusal{"ShortFormat", withFormat(Bytes(14, 1)), "format chunk is too short"},
                    Refusal{"HalfFloat", withFormat(WavFormat{.tag = 3, .bits = 16}.bytes()), "16-bit floating-point"},
                    Refusal{"ALaw", withFormat(WavFormat{.tag = 6, .bits = 8}.bytes()), "0x0006"},
                    Refusal{"ExtensibleTooShort", withFormat(WavFormat{.tag = 0xFFFE}.bytes()), "extensible"},
                    Refusal{"NoChannels", withFormat(WavFormat{.channels = 0}.bytes()), "0 channels"},
                    Refusal{"NineteenChannels", withFormat(WavFormat{.channels = 19}.bytes()), "19 channels"},
                    Refusal{"ManyChannels", withFormat(WavFormat{.channels = 65535, .bits = 8}.bytes()),
                            "65535 channels"},
                    Refusal{"NoBits", withFormat(WavFormat{.bits = 0}.bytes()), "0-bit"},
                    Refusal{"TwelveBits", withFormat(WavFormat{.bits = 12}.bytes()), "12-bit"},
                    Refusal{"SixtyFourBits", withFormat(WavFormat{.bits = 64}.bytes()), "64-bit"},
                    Refusal{"NoRate", withFormat(WavFormat{.rate = 0}.bytes()), "0 Hz"},
                    Refusal{"AbsurdRate", withFormat(WavFormat{.rate = 4000000000u}.bytes()), "4000000000 Hz"},
                    Refusal{"WrongFrameSize", withFormat(WavFormat{.blockAlign = 6}.bytes()), "frames of 6 bytes"}),
    [](const testing::TestParamInfo<Refusal>& tested) { return tested.param.name; });

/// Whatever is cut off or overwritten, the reader stays inside the bytes (the sanitizer build watches) and answers.
TEST(WaveHeader, SurvivesEveryTruncationAndRandomDamage) {
  const Bytes whole = riff({chunk("JUNK", Bytes(5, 0)), chunk("fmt ", extensible({}, 1)), chunk("data", Bytes(64, 3))});
  const auto check = [](const Bytes& file) {
    const HeaderResult result = headerOf(file);
    ASSERT_NE(result.header.has_value(), !result.problem.empty());
    if (result.header) {
      ASSERT_LE(result.header->dataOffset + result.header->dataBytes, file.size());
    }
  };
  for (std::size_t length = 0; length <= whole.size(); ++length)
    check(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
  std::mt19937 random(20260101);
  for (int round = 0; round < 20000; ++round) {
    Bytes damaged = whole;
    for (unsigned hits = random() % 4 + 1; hits > 0; --hits)
      damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
    ASSERT_NO_FATAL_FAILURE(check(damaged));
  }
}

}  // namespace
}  // namespace av::wave
