#include "demo/wav_reader.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using avdemo::readWav;
using avdemo::WavResult;
using testing::ElementsAre;
using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

void append(Bytes& bytes, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

void appendName(Bytes& bytes, const char* name) { bytes.insert(bytes.end(), name, name + 4); }

/// The writing side, kept apart from the reader: every field can be set to anything.
struct Header {
  std::uint16_t tag = 1;
  std::uint16_t channels = 2;
  std::uint32_t rate = 44100;
  std::uint16_t bits = 16;
  int blockAlign = -1;  // −1: as it should be

  Bytes bytes() const {
    const unsigned frame = channels * (bits / 8u);
    Bytes result;
    append(result, tag, 2);
    append(result, channels, 2);
    append(result, rate, 4);
    append(result, rate * frame, 4);
    append(result, blockAlign < 0 ? frame : static_cast<unsigned>(blockAlign), 2);
    append(result, bits, 2);
    return result;
  }
};

Bytes extensible(Header header, std::uint16_t subformat) {
  header.tag = 0xFFFE;
  Bytes result = header.bytes();
  append(result, 22, 2);
  append(result, header.bits, 2);
  append(result, 3, 4);
  append(result, subformat, 2);
  append(result, {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71});
  return result;
}

Bytes chunk(const char* name, const Bytes& content, std::int64_t claimedSize = -1) {
  Bytes result;
  appendName(result, name);
  append(result, claimedSize < 0 ? content.size() : static_cast<std::uint64_t>(claimedSize), 4);
  append(result, content);
  if (content.size() % 2 != 0) result.push_back(0);
  return result;
}

Bytes riff(const std::vector<Bytes>& chunks, std::int64_t claimedSize = -1) {
  Bytes body;
  appendName(body, "WAVE");
  for (const Bytes& one : chunks) append(body, one);
  Bytes result;
  appendName(result, "RIFF");
  append(result, claimedSize < 0 ? body.size() : static_cast<std::uint64_t>(claimedSize), 4);
  append(result, body);
  return result;
}

const Bytes twoFrames = {1, 0, 2, 0, 3, 0, 4, 0};

TEST(WavReader, ReadsAPlainStereoFile) {
  const WavResult result = readWav(riff({chunk("fmt ", Header{}.bytes()), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.recording) << result.problem;
  EXPECT_EQ(2, result.recording->channels);
  EXPECT_EQ(16, result.recording->bitsPerSample);
  EXPECT_EQ(44100u, result.recording->sampleRateHz);
  EXPECT_EQ(2u, result.recording->frameCount());
  EXPECT_EQ(twoFrames, result.recording->samples);
}

TEST(WavReader, CompletesA16ByteFormatToTheStandardHeader) {
  const WavResult result = readWav(riff({chunk("fmt ", Header{}.bytes()), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.recording);
  Bytes expected = Header{}.bytes();
  append(expected, 0, 2);
  EXPECT_EQ(expected, result.recording->format);
}

TEST(WavReader, ReadsEveryDepthAndChannelCount) {
  for (const std::uint16_t bits : std::initializer_list<std::uint16_t>{8, 16, 24, 32}) {
    for (std::uint16_t channels = 1; channels <= 18; ++channels) {
      Header header;
      header.bits = bits;
      header.channels = channels;
      const Bytes samples(channels * (bits / 8u) * 3u, 7);
      const WavResult result = readWav(riff({chunk("fmt ", header.bytes()), chunk("data", samples)}));
      ASSERT_TRUE(result.recording) << result.problem;
      EXPECT_EQ(3u, result.recording->frameCount()) << bits << " bits, " << channels << " channels";
    }
  }
}

TEST(WavReader, KeepsAnExtensibleFormatWhole) {
  const Bytes format = extensible({}, 1);
  const WavResult result = readWav(riff({chunk("fmt ", format), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.recording) << result.problem;
  EXPECT_EQ(format, result.recording->format);
  EXPECT_EQ(40u, result.recording->format.size());
}

TEST(WavReader, BoundsTheExtensionSizeToTheFormatChunk) {
  Bytes format = Header{}.bytes();
  append(format, 500, 2);
  append(format, {9, 9, 9, 9});
  const WavResult result = readWav(riff({chunk("fmt ", format), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.recording);
  EXPECT_EQ(22u, result.recording->format.size());
  EXPECT_EQ(4, result.recording->format[16]);
  EXPECT_EQ(0, result.recording->format[17]);
}

TEST(WavReader, KeepsAtMost180BytesOfAFormat) {
  Bytes format = Header{}.bytes();
  append(format, 282, 2);
  format.resize(300, 5);
  const WavResult result = readWav(riff({chunk("fmt ", format), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.recording);
  EXPECT_EQ(180u, result.recording->format.size());
  EXPECT_EQ(162, result.recording->format[16]);
  EXPECT_EQ(0, result.recording->format[17]);
}

TEST(WavReader, SkipsOtherChunksAndTheirPadding) {
  const WavResult result =
      readWav(riff({chunk("JUNK", Bytes(7, 0xAA)), chunk("LIST", Bytes(3, 'x')), chunk("fmt ", Header{}.bytes()),
                    chunk("fact", Bytes(5, 1)), chunk("data", twoFrames), chunk("cue ", Bytes(4, 2))}));
  ASSERT_TRUE(result.recording) << result.problem;
  EXPECT_EQ(twoFrames, result.recording->samples);
}

TEST(WavReader, FindsAFormatBehindTheData) {
  Header mono;
  mono.channels = 1;
  mono.bits = 8;
  const WavResult result = readWav(riff({chunk("data", {1, 2, 3}), chunk("fmt ", mono.bytes())}));
  ASSERT_TRUE(result.recording) << result.problem;
  EXPECT_THAT(result.recording->samples, ElementsAre(1, 2, 3));
}

TEST(WavReader, UsesWhatThereIsOfATruncatedDataChunk) {
  const WavResult result = readWav(riff({chunk("fmt ", Header{}.bytes()), chunk("data", twoFrames, 1000000)}));
  ASSERT_TRUE(result.recording) << result.problem;
  EXPECT_EQ(2u, result.recording->frameCount());
}

TEST(WavReader, CutsATrailingPartialFrame) {
  const WavResult result = readWav(riff({chunk("fmt ", Header{}.bytes()), chunk("data", Bytes(11, 1))}));
  ASSERT_TRUE(result.recording);
  EXPECT_EQ(8u, result.recording->samples.size());
}

TEST(WavReader, TakesTheRestOfAStreamWithOpenSizes) {
  for (std::int64_t open : {std::int64_t{0xFFFFFFFF}, std::int64_t{0}}) {
    const WavResult result = readWav(riff({chunk("fmt ", Header{}.bytes()), chunk("data", twoFrames, open)}, open));
    ASSERT_TRUE(result.recording) << result.problem;
    EXPECT_EQ(twoFrames, result.recording->samples) << "size " << open;
  }
}

TEST(WavReader, TakesAnEmptyDataChunkInASoundFileAsEmpty) {
  const WavResult result =
      readWav(riff({chunk("fmt ", Header{}.bytes()), chunk("data", {}), chunk("LIST", Bytes(64, 3))}));
  EXPECT_FALSE(result.recording);
  EXPECT_EQ("the file holds no samples", result.problem);
}

TEST(WavReader, ReadsTheLongFileVariant) {
  Bytes file = riff(
      {chunk("ds64", Bytes(28, 0)), chunk("fmt ", Header{}.bytes()), chunk("data", twoFrames, 0xFFFFFFFF)}, 0xFFFFFFFF);
  file[1] = 'F';
  file[2] = '6';
  file[3] = '4';
  const WavResult result = readWav(file);
  ASSERT_TRUE(result.recording) << result.problem;
  EXPECT_EQ(2u, result.recording->frameCount());
}

TEST(WavReader, ScalesSamplesOfEveryDepthToOne) {
  struct Case {
    std::uint16_t bits;
    Bytes lowest, zero, half;
  };
  const Case cases[] = {{8, {0}, {128}, {192}},
                        {16, {0, 0x80}, {0, 0}, {0, 0x40}},
                        {24, {0, 0, 0x80}, {0, 0, 0}, {0, 0, 0x40}},
                        {32, {0, 0, 0, 0x80}, {0, 0, 0, 0}, {0, 0, 0, 0x40}}};
  for (const Case& one : cases) {
    Bytes samples = one.lowest;  // frame 0: lowest, zero; frame 1: half, lowest
    append(samples, one.zero);
    append(samples, one.half);
    append(samples, one.lowest);
    Header header;
    header.bits = one.bits;
    const WavResult result = readWav(riff({chunk("fmt ", header.bytes()), chunk("data", samples)}));
    ASSERT_TRUE(result.recording) << result.problem;
    EXPECT_EQ(-1.0, result.recording->sample(0, 0)) << one.bits;
    EXPECT_EQ(0.0, result.recording->sample(0, 1)) << one.bits;
    EXPECT_EQ(0.5, result.recording->sample(1, 0)) << one.bits;
    EXPECT_EQ(-1.0, result.recording->sample(1, 1)) << one.bits;
  }
}

struct Refusal {
  const char* name;
  Bytes file;
  const char* problem;
};

Bytes withHeader(const Bytes& format) { return riff({chunk("fmt ", format), chunk("data", Bytes(144, 1))}); }

class WavReaderRefuses : public testing::TestWithParam<Refusal> {};

TEST_P(WavReaderRefuses, SayingWhy) {
  const WavResult result = readWav(GetParam().file);
  EXPECT_FALSE(result.recording);
  EXPECT_THAT(result.problem, HasSubstr(GetParam().problem));
  EXPECT_EQ(std::string::npos, result.problem.find('\n'));
}

const std::string text = "This is a text file, longer than any header that a WAV file could have.";

INSTANTIATE_TEST_SUITE_P(
    WavFiles, WavReaderRefuses,
    testing::Values(Refusal{"Empty", {}, "empty"}, Refusal{"Text", Bytes(text.begin(), text.end()), "not a WAV file"},
                    Refusal{"OnlyRiff", {'R', 'I', 'F', 'F'}, "not a WAV file"},
                    Refusal{"BigEndian", {'R', 'I', 'F', 'X', 0, 0, 0, 4, 'W', 'A', 'V', 'E'}, "RIFX"},
                    Refusal{"NoChunks", riff({}), "without a format chunk"},
                    Refusal{"NoData", riff({chunk("fmt ", Header{}.bytes())}), "without a data chunk"},
                    Refusal{"NoFormat", riff({chunk("data", Bytes(8, 1))}), "without a format chunk"},
                    Refusal{"ShortFormat", withHeader(Bytes(14, 1)), "format chunk is too short"},
                    Refusal{"Float", withHeader(Header{.tag = 3, .bits = 32}.bytes()), "floating-point"},
                    Refusal{"ExtensibleFloat", withHeader(extensible(Header{.bits = 32}, 3)), "floating-point"},
                    Refusal{"ALaw", withHeader(Header{.tag = 6, .bits = 8}.bytes()), "0x0006"},
                    Refusal{"ExtensibleTooShort", withHeader(Header{.tag = 0xFFFE}.bytes()), "extensible"},
                    Refusal{"NoChannels", withHeader(Header{.channels = 0}.bytes()), "0 channels"},
                    Refusal{"NineteenChannels", withHeader(Header{.channels = 19}.bytes()), "19 channels"},
                    Refusal{"ManyChannels", withHeader(Header{.channels = 65535, .bits = 8}.bytes()), "65535 channels"},
                    Refusal{"NoBits", withHeader(Header{.bits = 0}.bytes()), "0-bit"},
                    Refusal{"TwelveBits", withHeader(Header{.bits = 12}.bytes()), "12-bit"},
                    Refusal{"SixtyFourBits", withHeader(Header{.bits = 64}.bytes()), "64-bit"},
                    Refusal{"NoRate", withHeader(Header{.rate = 0}.bytes()), "0 Hz"},
                    Refusal{"AbsurdRate", withHeader(Header{.rate = 4000000000u}.bytes()), "4000000000 Hz"},
                    Refusal{"WrongFrameSize", withHeader(Header{.blockAlign = 6}.bytes()), "frames of 6 bytes"},
                    Refusal{"LessThanAFrame", riff({chunk("fmt ", Header{}.bytes()), chunk("data", {1, 2, 3})}),
                            "no samples"}),
    [](const testing::TestParamInfo<Refusal>& tested) { return tested.param.name; });

/// Whatever is cut off or overwritten, the reader stays inside the bytes (the sanitizer build watches) and answers.
TEST(WavReader, SurvivesEveryTruncationAndRandomDamage) {
  const Bytes whole = riff({chunk("JUNK", Bytes(5, 0)), chunk("fmt ", extensible({}, 1)), chunk("data", Bytes(64, 3))});
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    const WavResult result = readWav(cut);
    EXPECT_NE(result.recording.has_value(), !result.problem.empty()) << length;
  }
  std::mt19937 random(20260101);
  for (int round = 0; round < 20000; ++round) {
    Bytes damaged = whole;
    for (unsigned hits = random() % 4 + 1; hits > 0; --hits)
      damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
    const WavResult result = readWav(damaged);
    ASSERT_NE(result.recording.has_value(), !result.problem.empty());
    if (result.recording) {
      ASSERT_GE(result.recording->frameCount(), 1u);
    }
  }
}

}  // namespace
