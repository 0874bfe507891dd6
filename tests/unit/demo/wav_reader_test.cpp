#include "demo/wav_reader.h"

#include "support/wav_file.h"

#include <gmock/gmock.h>

namespace {

using namespace av::support;
using avdemo::readWav;
using avdemo::WavResult;
using testing::HasSubstr;

// What is read of a file, good or damaged, tests/unit/wave says.

TEST(WavReader, KeepsSamplesAndFormatAsTheyStandInTheFile) {
  const Bytes twoFrames = {1, 0, 2, 0, 3, 0, 4, 0};
  const Bytes format = extensible({}, 1);
  const WavResult result = readWav(riff({chunk("fmt ", format), chunk("data", twoFrames)}));
  ASSERT_TRUE(result.recording) << result.problem;
  EXPECT_EQ(2, result.recording->channels);
  EXPECT_EQ(16, result.recording->bitsPerSample);
  EXPECT_EQ(16, result.recording->fileBitsPerSample);
  EXPECT_EQ(44100u, result.recording->sampleRateHz);
  EXPECT_EQ(2u, result.recording->frameCount());
  EXPECT_EQ(twoFrames, result.recording->samples);
  EXPECT_EQ(format, result.recording->format);
}

/// The header of 32-bit mono.
Bytes plain32() {
  Bytes bytes = WavFormat{.channels = 1, .bits = 32}.bytes();
  append(bytes, 0, 2);
  return bytes;
}

TEST(WavReader, MakesOf24BitsAndOfFloatingPointWhatEveryControlReads) {
  const WavResult packed = readWav(wavFile({.channels = 1, .bits = 24}, {0, 0, 0x40}));
  ASSERT_TRUE(packed.recording) << packed.problem;
  EXPECT_EQ(24, packed.recording->fileBitsPerSample);
  const WavResult floating = readWav(wavFile({.tag = 3, .channels = 1, .bits = 64}, bytesOf<double>({0.5})));
  ASSERT_TRUE(floating.recording) << floating.problem;
  EXPECT_EQ(64, floating.recording->fileBitsPerSample);
  for (const auto* each : {&packed.recording, &floating.recording}) {
    EXPECT_EQ(32, (*each)->bitsPerSample);
    EXPECT_EQ(1u, (*each)->frameCount());
    EXPECT_EQ((Bytes{0, 0, 0, 0x40}), (*each)->samples);
    EXPECT_EQ(plain32(), (*each)->format);
  }
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
    const WavResult result = readWav(wavFile({.bits = one.bits}, samples));
    ASSERT_TRUE(result.recording) << result.problem;
    EXPECT_EQ(-1.0, result.recording->sample(0, 0)) << one.bits;
    EXPECT_EQ(0.0, result.recording->sample(0, 1)) << one.bits;
    EXPECT_EQ(0.5, result.recording->sample(1, 0)) << one.bits;
    EXPECT_EQ(-1.0, result.recording->sample(1, 1)) << one.bits;
  }
}

TEST(WavReader, RefusesFilesWithoutAWholeFrameAndSaysWhyOfTheRest) {
  EXPECT_EQ("the file holds no samples", readWav(wavFile({}, {1, 2, 3})).problem);
  EXPECT_EQ("the file holds no samples", readWav(wavFile({}, {})).problem);
  EXPECT_THAT(readWav(Bytes(100, 'x')).problem, HasSubstr("not a WAV file"));
}

}  // namespace
