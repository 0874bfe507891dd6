#include "common/win/audio_input.h"

#include "support/win/wave_bytes.h"
#include "unit/common/win/audio_input_fixture.h"

#include <gmock/gmock.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

namespace av::test {
namespace {

using support::BufferScript;
using support::countedBytes;
using support::WaveHeader;
using support::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;

// --- the conversation ---

TEST(AudioInput, AsksForBothInterfacesAndThenStopsWhenThereIsNeither) {
  ScriptedAudioData data({});
  expectDropped(data);
  EXPECT_THAT(data.calls(), ElementsAreArray(conversation({})));
}

TEST(AudioInput, ARefusedQueryThatLeavesAWildPointerIsStillARefusal) {
  AudioDataScript script;
  script.garbageOnRefusedQuery = true;
  ScriptedAudioData data(script);
  expectDropped(data);
}

TEST(AudioInput, ReadsPackedDataInItsOrderOfCalls) {
  const auto samples = countedBytes(40);
  GuardedBytes memory(WaveHeader{}.bytes() + samples);
  ScriptedAudioData data(packed(memory));
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(1, block->format.wFormatTag);
    EXPECT_EQ(2, block->format.nChannels);
    EXPECT_EQ(44100u, block->format.nSamplesPerSec);
    EXPECT_EQ(176400u, block->format.nAvgBytesPerSec);
    EXPECT_EQ(4, block->format.nBlockAlign);
    EXPECT_EQ(16, block->format.wBitsPerSample);
    EXPECT_EQ(0, block->format.cbSize);
    EXPECT_EQ(memory.data() + 18, block->samples);
    EXPECT_EQ(40, block->sampleBytes);
  });
  EXPECT_THAT(data.calls(), ElementsAreArray(conversation({packedConversation})));
}

TEST(AudioInput, ReadsFrameDataInItsOrderOfCalls) {
  GuardedBytes format(WaveHeader{.tag = 65534, .channels = 1, .sampleRateHz = 48000, .bits = 24}.bytes());
  GuardedBytes samples(countedBytes(33));
  ScriptedAudioData data(frames(format, samples));
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(65534, block->format.wFormatTag);
    EXPECT_EQ(1, block->format.nChannels);
    EXPECT_EQ(48000u, block->format.nSamplesPerSec);
    EXPECT_EQ(24, block->format.wBitsPerSample);
    EXPECT_EQ(samples.data(), block->samples);
    EXPECT_EQ(33, block->sampleBytes);
  });
  EXPECT_THAT(data.calls(), ElementsAreArray(conversation({frameConversation})));
}

TEST(AudioInput, OfBothInterfacesTheFrameDataWins) {
  GuardedBytes memory(WaveHeader{.channels = 6, .sampleRateHz = 8000, .bits = 8}.bytes() + countedBytes(60));
  GuardedBytes format(WaveHeader{.channels = 1}.bytes());
  GuardedBytes samples(countedBytes(10));
  AudioDataScript script = frames(format, samples);
  script.offersPackedData = true;
  script.packedData = packed(memory).packedData;
  ScriptedAudioData data(script);
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(1, block->format.nChannels);
    EXPECT_EQ(44100u, block->format.nSamplesPerSec);
    EXPECT_EQ(samples.data(), block->samples);
    EXPECT_EQ(10, block->sampleBytes);
  });
  EXPECT_THAT(data.calls(), ElementsAreArray(conversation({packedConversation, frameConversation})));
}

TEST(AudioInput, HoldsItsInterfacesUntilItIsDestroyed) {
  GuardedBytes memory(WaveHeader{}.bytes() + countedBytes(40));
  GuardedBytes format(WaveHeader{}.bytes());
  GuardedBytes samples(countedBytes(8));
  AudioDataScript script = frames(format, samples);
  script.offersPackedData = true;
  script.packedData = packed(memory).packedData;
  ScriptedAudioData data(script);
  {
    AudioInput input(&data);
    EXPECT_EQ(2, data.references());
  }
  EXPECT_EQ(0, data.references());
}

// --- packed buffers ---

TEST(AudioInput, APackedBufferOf18BytesOrLessIsNotEvenFetched) {
  for (const LONG size : {18L, 17L, 1L, 0L, -1L, LONG_MIN}) {
    AudioDataScript script;
    script.offersPackedData = true;
    script.packedData.bufferSizes = {size};
    ScriptedAudioData data(script);
    expectDropped(data);
    EXPECT_THAT(data.calls(), ElementsAre("query frame", "query packed", "packed GetBufferSize")) << size;
  }
}

TEST(AudioInput, ANullPackedBufferEndsTheConversation) {
  AudioDataScript script;
  script.offersPackedData = true;
  script.packedData.bufferSizes = {1000};
  ScriptedAudioData data(script);
  expectDropped(data);
  EXPECT_THAT(data.calls(), ElementsAre("query frame", "query packed", "packed GetBufferSize", "packed GetBuffer"));
}

TEST(AudioInput, APackedBufferThatIsGoneAtTheSecondLookDropsTheBlock) {
  GuardedBytes memory(WaveHeader{}.bytes() + countedBytes(40));
  AudioDataScript script = packed(memory);
  script.packedData.buffers = {memory.data(), nullptr};
  ScriptedAudioData data(script);
  expectDropped(data);
  EXPECT_THAT(data.calls(), ElementsAreArray(conversation({packedConversation})));
}

TEST(AudioInput, PackedExtraBytesAreKeptAndTheSamplesFollowThem) {
  const auto extra = countedBytes(22);
  GuardedBytes memory(WaveHeader{.tag = 65534, .extraBytes = 22}.bytes() + extra + countedBytes(16));
  ScriptedAudioData data(packed(memory));
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(22, block->format.cbSize);
    EXPECT_EQ(0, std::memcmp(extra.data(), block->format.extra, extra.size()));
    EXPECT_EQ(0, block->format.extra[22]);
    EXPECT_EQ(memory.data() + 40, block->samples);
    EXPECT_EQ(16, block->sampleBytes);
  });
}

TEST(AudioInput, APackedBufferThatEqualsItsHeaderStillGivesTheHeaderFields) {
  const auto extra = countedBytes(10);
  GuardedBytes memory(WaveHeader{.channels = 3, .bits = 24, .extraBytes = 10}.bytes() + extra);
  ScriptedAudioData data(packed(memory));
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(3, block->format.nChannels);
    EXPECT_EQ(24, block->format.wBitsPerSample);
    EXPECT_EQ(10, block->format.cbSize);
    EXPECT_EQ(0, block->format.extra[0]);  // only a buffer that is longer than its header has its extra bytes copied
    EXPECT_EQ(0, block->sampleBytes);
  });
  EXPECT_THAT(data.calls(), ElementsAreArray(conversation({packedConversation})));
}

TEST(AudioInput, APackedHeaderThatClaimsMoreThanTheBufferHasNoFrames) {
  GuardedBytes memory(WaveHeader{.extraBytes = 65535}.bytes() + countedBytes(40));
  ScriptedAudioData data(packed(memory));
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(65535, block->format.cbSize);
    EXPECT_EQ(58 - 65553, block->sampleBytes);
  });
}

TEST(AudioInput, OfALongPackedHeader180BytesAreCopiedAndAllAreSteppedOver) {
  for (const unsigned extraBytes : {161u, 162u, 163u, 1000u, 65535u}) {
    const auto extra = countedBytes(extraBytes);
    GuardedBytes memory(WaveHeader{.extraBytes = extraBytes}.bytes() + extra + std::vector<BYTE>{7, 0, 9, 0});
    ScriptedAudioData data(packed(memory));
    unpack(data, [&](const av::AudioBlock* block) {
      ASSERT_NE(nullptr, block);
      EXPECT_EQ(extraBytes, block->format.cbSize);
      const std::size_t kept = std::min<std::size_t>(extraBytes, sizeof block->format.extra);
      EXPECT_EQ(0, std::memcmp(extra.data(), block->format.extra, kept));
      EXPECT_EQ(memory.data() + 18 + extraBytes, block->samples);
      EXPECT_EQ(4, block->sampleBytes);
      EXPECT_EQ(16.0, sumOfSamples(*block));
    });
  }
}

TEST(AudioInput, ThePackedDataSizeBoundsTheSamplesFromBelowAndTheBufferFromAbove) {
  GuardedBytes memory(WaveHeader{}.bytes() + countedBytes(40));
  const struct {
    LONG dataSize;
    std::int32_t sampleBytes;
  } cases[] = {{58, 40},
               {57, 39},
               {22, 4},
               {18, 0},
               {17, -1},
               {0, -18},
               {-1, -19},
               {59, 40},
               {100000, 40},
               {LONG_MAX, 40},
               {LONG_MIN, LONG_MIN},
               {LONG_MIN + 17, LONG_MIN},
               {LONG_MIN + 19, LONG_MIN + 1}};
  for (const auto& one : cases) {
    AudioDataScript script = packed(memory);
    script.packedData.dataSizes = {one.dataSize};
    ScriptedAudioData data(script);
    unpack(data, [&](const av::AudioBlock* block) {
      ASSERT_NE(nullptr, block);
      EXPECT_EQ(one.sampleBytes, block->sampleBytes) << one.dataSize;
    });
  }
}

TEST(AudioInput, TheSecondPackedBufferSizeCountsForTheSamples) {
  GuardedBytes memory(WaveHeader{}.bytes() + countedBytes(40));
  const struct {
    LONG secondSize;
    std::int32_t sampleBytes;
  } cases[] = {{38, 20}, {18, 0}, {0, -18}, {-5, -23}, {LONG_MIN, LONG_MIN}};
  for (const auto& one : cases) {
    AudioDataScript script = packed(memory);
    script.packedData.bufferSizes = {memory.size(), one.secondSize};
    ScriptedAudioData data(script);
    unpack(data, [&](const av::AudioBlock* block) {
      ASSERT_NE(nullptr, block);
      EXPECT_EQ(one.sampleBytes, block->sampleBytes) << one.secondSize;
    });
  }
}

TEST(AudioInput, ABufferThatGrowsBetweenTheSizesIsNotReadThroughTheOldPointer) {
  // The first pointer reaches 20 bytes only; the header names 100 extra bytes, which the second buffer holds.
  const auto header = WaveHeader{.extraBytes = 100}.bytes();
  GuardedBytes small(header + countedBytes(2));
  GuardedBytes large(header + countedBytes(108));
  AudioDataScript script = packed(large);
  script.packedData.buffers = {small.data(), large.data()};
  script.packedData.bufferSizes = {small.size(), large.size()};
  ScriptedAudioData data(script);
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(large.data() + 118, block->samples);
    EXPECT_EQ(8, block->sampleBytes);
  });
}

TEST(AudioInput, OddLengthsEndWithAPartialFrameThatIsIgnored) {
  for (std::size_t bytes = 0; bytes <= 13; ++bytes) {
    GuardedBytes memory(WaveHeader{.channels = 2, .bits = 24}.bytes() + countedBytes(bytes));
    ScriptedAudioData data(packed(memory));
    if (bytes == 0) {
      expectDropped(data);  // 18 bytes are no more than a header
      continue;
    }
    unpack(data, [&](const av::AudioBlock* block) {
      ASSERT_NE(nullptr, block);
      EXPECT_EQ(static_cast<std::int32_t>(bytes / 6), av::frameCount(block->format, block->sampleBytes));
    });
  }
}

// --- frame data ---

TEST(AudioInput, OfALongFormatBlock180BytesAreCopied) {
  for (const ULONG size : {180ul, 181ul, 4000ul, 0x7FFFFFFFul, 0x80000000ul, 0xFFFFFFFFul}) {
    const auto bytes = WaveHeader{.extraBytes = 162}.bytes() + countedBytes(162);
    GuardedBytes format(bytes);  // exactly 180: the guard page shows that not one more is read
    GuardedBytes samples(countedBytes(8));
    AudioDataScript script = frames(format, samples);
    script.frameData.formatSizes = {size};
    ScriptedAudioData data(script);
    unpack(data, [&](const av::AudioBlock* block) {
      ASSERT_NE(nullptr, block);
      EXPECT_EQ(0, std::memcmp(bytes.data(), &block->format, 180)) << size;
    });
  }
}

TEST(AudioInput, AShortFormatBlockLeavesTheRestZero) {
  const auto header = WaveHeader{.extraBytes = 99}.bytes();
  GuardedBytes format(std::vector<BYTE>(header.begin(), header.begin() + 16));
  GuardedBytes samples(countedBytes(8));
  ScriptedAudioData data(frames(format, samples));
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(16, block->format.wBitsPerSample);
    EXPECT_EQ(0, block->format.cbSize);
  });
}

TEST(AudioInput, AnEmptyFormatBlockLeavesTheTagZeroAndDropsTheBlock) {
  GuardedBytes format({});
  GuardedBytes samples(countedBytes(8));
  ScriptedAudioData data(frames(format, samples));
  expectDropped(data);
  EXPECT_THAT(data.calls(), ElementsAreArray(conversation({frameConversation})));
}

TEST(AudioInput, AnEmptyFormatBlockBesidePackedDataKeepsThePackedHeader) {
  GuardedBytes memory(WaveHeader{.channels = 1, .bits = 8}.bytes() + countedBytes(4));
  GuardedBytes format({});
  GuardedBytes samples(countedBytes(8));
  AudioDataScript script = frames(format, samples);
  script.offersPackedData = true;
  script.packedData = packed(memory).packedData;
  ScriptedAudioData data(script);
  unpack(data, [&](const av::AudioBlock* block) {
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(8, block->format.wBitsPerSample);
    EXPECT_EQ(samples.data(), block->samples);
  });
}

TEST(AudioInput, ANullFormatOrNullSamplesDropTheBlockButNoQuestionIsLeftOut) {
  GuardedBytes format(WaveHeader{}.bytes());
  GuardedBytes samples(countedBytes(8));
  GuardedBytes memory(WaveHeader{}.bytes() + countedBytes(40));
  for (const bool packedToo : {false, true}) {
    for (const bool formatIsNull : {false, true}) {
      AudioDataScript script = frames(format, samples);
      (formatIsNull ? script.frameData.formats : script.frameData.buffers) = {nullptr};
      if (packedToo) {
        script.offersPackedData = true;
        script.packedData = packed(memory).packedData;
      }
      ScriptedAudioData data(script);
      expectDropped(data);
      EXPECT_THAT(data.calls(), ElementsAreArray(packedToo ? conversation({packedConversation, frameConversation})
                                                           : conversation({frameConversation})));
    }
  }
}

TEST(AudioInput, NegativeFrameDataSizesHoldNoFrames) {
  GuardedBytes format(WaveHeader{}.bytes());
  GuardedBytes samples(countedBytes(8));
  for (const LONG size : {0L, -1L, -4L, LONG_MIN}) {
    AudioDataScript script = frames(format, samples);
    script.frameData.dataSizes = {size};
    ScriptedAudioData data(script);
    unpack(data, [&](const av::AudioBlock* block) {
      ASSERT_NE(nullptr, block);
      EXPECT_EQ(size, block->sampleBytes);
    });
  }
}

// --- what is accepted ---

TEST(AudioInput, TagsOtherThanPcmAndExtensibleAreDropped) {
  GuardedBytes samples(countedBytes(8));
  for (const unsigned tag : {0u, 2u, 3u, 7u, 85u, 65533u, 65535u}) {
    GuardedBytes format(WaveHeader{.tag = tag}.bytes());
    ScriptedAudioData separate(frames(format, samples));
    expectDropped(separate);
    GuardedBytes memory(WaveHeader{.tag = tag}.bytes() + countedBytes(40));
    ScriptedAudioData together(packed(memory));
    expectDropped(together);
    EXPECT_THAT(together.calls(), ElementsAreArray(conversation({packedConversation})));
  }
}

TEST(AudioInput, ZeroChannelsOrFewerThan8BitsAreDropped) {
  GuardedBytes samples(countedBytes(8));
  for (const WaveHeader header : {WaveHeader{.channels = 0}, WaveHeader{.bits = 0}, WaveHeader{.bits = 7}}) {
    GuardedBytes format(header.bytes());
    ScriptedAudioData data(frames(format, samples));
    expectDropped(data);
  }
}

TEST(AudioInput, DepthsThatAreNotDecodedAreAccepted) {
  GuardedBytes samples(countedBytes(64));
  for (const unsigned bits : {9u, 12u, 20u, 64u, 65535u}) {
    GuardedBytes format(WaveHeader{.bits = bits}.bytes());
    ScriptedAudioData data(frames(format, samples));
    unpack(data, [&](const av::AudioBlock* block) {
      ASSERT_NE(nullptr, block);
      EXPECT_EQ(bits, block->format.wBitsPerSample);
    });
  }
}

}  // namespace
}  // namespace av::test
