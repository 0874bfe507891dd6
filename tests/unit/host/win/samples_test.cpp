// First, so that it is compiled as a host would include it: with nothing before it.
#include "host/samples.h"

#include "common/win/audio_input.h"
#include "support/allocation_count.h"
#include "support/win/guarded_bytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <thread>
#include <vector>

namespace {

using av::support::GuardedBytes;
using avhost::Int24;
using avhost::Packed24;
using avhost::SampleBlocks;

constexpr std::int32_t largest = 2147483647;
constexpr std::int32_t smallest = -2147483647 - 1;

/// The bytes that the controls read out of a block, as numbers of that type.
template <class Stored>
std::vector<Stored> readBack(IUnknown* block) {
  const av::AudioInput input(block);
  std::vector<Stored> samples;
  if (!input.block()) return samples;
  samples.resize(static_cast<std::size_t>(input.block()->sampleBytes) / sizeof(Stored));
  EXPECT_EQ(samples.size() * sizeof(Stored), static_cast<std::size_t>(input.block()->sampleBytes));
  std::memcpy(samples.data(), input.block()->samples, samples.size() * sizeof(Stored));
  return samples;
}

/// A copy of the samples that ends at a page which must not be read.
template <class Sample>
GuardedBytes guarded(const std::vector<Sample>& samples) {
  std::vector<BYTE> bytes(samples.size() * sizeof(Sample));
  std::memcpy(bytes.data(), samples.data(), bytes.size());
  return GuardedBytes(bytes);
}
template <class Sample>
const Sample* samplesOf(const GuardedBytes& bytes) {
  return reinterpret_cast<const Sample*>(bytes.data());
}

/// The rule in wider arithmetic.
std::int32_t wideRule(long double sample) {
  if (std::isnan(sample)) return 0;
  const long double rounded = std::round(sample * 2147483648.0L);
  if (rounded > largest) return largest;
  return rounded < smallest ? smallest : static_cast<std::int32_t>(rounded);
}

TEST(Pcm32FromFloat, MapsFullScaleAndClipsWhatLiesBeyond) {
  EXPECT_EQ(0, avhost::pcm32FromFloat(0.0));
  EXPECT_EQ(0, avhost::pcm32FromFloat(-0.0));
  EXPECT_EQ(1073741824, avhost::pcm32FromFloat(0.5));
  EXPECT_EQ(-1073741824, avhost::pcm32FromFloat(-0.5));
  EXPECT_EQ(largest, avhost::pcm32FromFloat(1.0));
  EXPECT_EQ(largest - 127, avhost::pcm32FromFloat(std::nextafterf(1.0f, 0.0f)));  // 1 − 2^−24
  EXPECT_EQ(smallest, avhost::pcm32FromFloat(-1.0));
  EXPECT_EQ(smallest + 128, avhost::pcm32FromFloat(std::nextafterf(-1.0f, 0.0f)));
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const double loud : {1.0000001, 1.5, 3e38, 1e300, infinity}) {
    EXPECT_EQ(largest, avhost::pcm32FromFloat(loud)) << loud;
    EXPECT_EQ(smallest, avhost::pcm32FromFloat(-loud)) << -loud;
  }
}

TEST(Pcm32FromFloat, TakesWhatIsNoNumberForSilence) {
  EXPECT_EQ(0, avhost::pcm32FromFloat(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(0, avhost::pcm32FromFloat(-std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(0, avhost::pcm32FromFloat(std::numeric_limits<double>::denorm_min()));
}

TEST(Pcm32FromFloat, RoundsToTheNearestIntegerAndHalvesAwayFromZero) {
  constexpr double step = 1.0 / 2147483648.0;
  EXPECT_EQ(0, avhost::pcm32FromFloat(0.49 * step));
  EXPECT_EQ(0, avhost::pcm32FromFloat(std::nextafter(0.5, 0.0) * step)) << "adding a half would lift it to one";
  EXPECT_EQ(1, avhost::pcm32FromFloat(0.5 * step));
  EXPECT_EQ(-1, avhost::pcm32FromFloat(-0.5 * step));
  EXPECT_EQ(3, avhost::pcm32FromFloat(2.5 * step));
  EXPECT_EQ(-3, avhost::pcm32FromFloat(-2.5 * step));
  EXPECT_EQ(largest - 1, avhost::pcm32FromFloat(2147483646.25 * step));
  EXPECT_EQ(largest, avhost::pcm32FromFloat(2147483646.5 * step));
  EXPECT_EQ(smallest, avhost::pcm32FromFloat(-2147483647.5 * step));
  EXPECT_EQ(smallest + 1, avhost::pcm32FromFloat(-2147483647.25 * step));
}

TEST(Pcm32FromFloat, FollowsItsRuleForAnyBits) {
  std::mt19937_64 random(20240817);
  for (int i = 0; i < 100000; ++i) {
    const std::uint64_t bits = random();
    double any;
    std::memcpy(&any, &bits, sizeof any);
    ASSERT_EQ(wideRule(any), avhost::pcm32FromFloat(any)) << any;
    const double inRange = std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())), -63 - i % 40);
    ASSERT_EQ(wideRule(inRange), avhost::pcm32FromFloat(inRange)) << inRange;
  }
}

TEST(SampleBlocks, DescribeTheirFormat) {
  SampleBlocks blocks(48000, 6);
  const std::vector<float> samples(12);
  const av::AudioInput input(blocks.interleaved(samples.data(), 2));
  ASSERT_NE(nullptr, input.block());
  const av::AudioFormatBlock& format = input.block()->format;
  EXPECT_EQ(1, format.wFormatTag);
  EXPECT_EQ(6, format.nChannels);
  EXPECT_EQ(48000u, format.nSamplesPerSec);
  EXPECT_EQ(32, format.wBitsPerSample);
  EXPECT_EQ(24, format.nBlockAlign);
  EXPECT_EQ(48000u * 24, format.nAvgBytesPerSec);
  EXPECT_EQ(0, format.cbSize);
}

/// Where the controls find the samples, and how many bits each has.
template <class Sample>
void expectNoCopy(SampleBlocks& blocks, unsigned bits) {
  std::vector<Sample> samples(6);
  const av::AudioInput input(blocks.interleaved(samples.data(), 3));
  ASSERT_NE(nullptr, input.block());
  EXPECT_EQ(reinterpret_cast<BYTE*>(samples.data()), input.block()->samples);
  EXPECT_EQ(6 * sizeof(Sample), static_cast<std::size_t>(input.block()->sampleBytes));
  EXPECT_EQ(bits, input.block()->format.wBitsPerSample);
}

TEST(SampleBlocks, HandInterleavedIntegersOnWithoutACopy) {
  SampleBlocks blocks(44100, 2, Packed24::keep);
  expectNoCopy<std::int16_t>(blocks, 16);
  expectNoCopy<Int24>(blocks, 24);
  expectNoCopy<std::int32_t>(blocks, 32);
  expectNoCopy<LONG>(blocks, 32);
}

TEST(SampleBlocks, ConvertInterleavedFloats) {
  SampleBlocks blocks(44100, 2);
  const GuardedBytes floats = guarded<float>({0.0f, 1.0f, -1.0f, 0.25f, std::nanf(""), -2.0f});
  EXPECT_EQ((std::vector<std::int32_t>{0, largest, smallest, 536870912, 0, smallest}),
            readBack<std::int32_t>(blocks.interleaved(samplesOf<float>(floats), 3)));
  const GuardedBytes doubles = guarded<double>({0.5, -0.5});
  EXPECT_EQ((std::vector<std::int32_t>{1073741824, -1073741824}),
            readBack<std::int32_t>(blocks.interleaved(samplesOf<double>(doubles), 1)));
}

TEST(SampleBlocks, WidenPacked24BitSamplesUnlessTheyAreToBeKept) {
  const std::vector<Int24> packed = {{{0x01, 0x02, 0x03}}, {{0xFF, 0xFF, 0xFF}}, {{0x00, 0x00, 0x80}}};
  const GuardedBytes samples = guarded(packed);
  SampleBlocks blocks(44100, 1);
  EXPECT_EQ((std::vector<std::int32_t>{0x03020100, -256, smallest}),
            readBack<std::int32_t>(blocks.interleaved(samplesOf<Int24>(samples), 3)));
  SampleBlocks keeping(44100, 1, Packed24::keep);
  EXPECT_EQ((std::vector<BYTE>{1, 2, 3, 0xFF, 0xFF, 0xFF, 0, 0, 0x80}),
            readBack<BYTE>(keeping.interleaved(samplesOf<Int24>(samples), 3)));
}

TEST(SampleBlocks, InterleavePlanesOfEveryType) {
  SampleBlocks blocks(44100, 3);
  {
    const GuardedBytes a = guarded<std::int16_t>({1, 2}), b = guarded<std::int16_t>({-3, 4}),
                       c = guarded<std::int16_t>({5, -32768});
    const std::int16_t* planes[] = {samplesOf<std::int16_t>(a), samplesOf<std::int16_t>(b), samplesOf<std::int16_t>(c)};
    EXPECT_EQ((std::vector<std::int16_t>{1, -3, 5, 2, 4, -32768}), readBack<std::int16_t>(blocks.planar(planes, 2)));
  }
  {
    const GuardedBytes a = guarded<float>({0.5f, -0.5f}), b = guarded<float>({2.0f, 0.0f}),
                       c = guarded<float>({0.25f, -1.0f});
    const float* const planes[] = {samplesOf<float>(a), samplesOf<float>(b), samplesOf<float>(c)};
    EXPECT_EQ((std::vector<std::int32_t>{1073741824, largest, 536870912, -1073741824, 0, smallest}),
              readBack<std::int32_t>(blocks.planar(planes, 2)));
  }
  Int24 one[] = {{{1, 0, 0}}}, two[] = {{{2, 0, 0}}}, three[] = {{{3, 0, 0}}};
  Int24* writable[] = {one, two, three};
  EXPECT_EQ((std::vector<std::int32_t>{256, 512, 768}), readBack<std::int32_t>(blocks.planar(writable, 1)));
  SampleBlocks keeping(44100, 3, Packed24::keep);
  EXPECT_EQ((std::vector<BYTE>{1, 0, 0, 2, 0, 0, 3, 0, 0}), readBack<BYTE>(keeping.planar(writable, 1)));
}

TEST(SampleBlocks, AllocateNothingOnceTheirMemoryIsLargeEnough) {
  SampleBlocks blocks(44100, 2);
  const std::vector<float> samples(2048);
  const float* const planes[] = {samples.data(), samples.data()};
  IUnknown* const first = blocks.interleaved(samples.data(), 1024);
  const std::uint64_t before = av::test::allocationCount();
  for (std::size_t frames = 0; frames <= 1024; frames += 64) {
    EXPECT_EQ(first, blocks.interleaved(samples.data(), frames));
    EXPECT_EQ(first, blocks.planar(planes, frames));
  }
  EXPECT_EQ(before, av::test::allocationCount());
  blocks.planar(planes, 1025);
  EXPECT_LT(before, av::test::allocationCount()) << "the counter counts";
}

TEST(SampleBlocks, LeaveABlockAloneThatSomebodyHolds) {
  SampleBlocks blocks(44100, 1);
  const float early[] = {0.5f}, late[] = {-0.5f};
  avhost::Block held(blocks.interleaved(early, 1));
  held->AddRef();
  IUnknown* const next = blocks.interleaved(late, 1);
  EXPECT_NE(held.get(), next);
  EXPECT_EQ((std::vector<std::int32_t>{1073741824}), readBack<std::int32_t>(held.get()));
  EXPECT_EQ((std::vector<std::int32_t>{-1073741824}), readBack<std::int32_t>(next));
  EXPECT_EQ(next, blocks.interleaved(early, 1)) << "nobody holds this one";
}

TEST(SampleBlocks, MayChangeTypeAndThreadFromBlockToBlock) {
  SampleBlocks blocks(44100, 1);
  const std::int16_t integers[] = {7};
  const float floats[] = {-1.0f};
  EXPECT_EQ((std::vector<std::int16_t>{7}), readBack<std::int16_t>(blocks.interleaved(integers, 1)));
  std::thread([&] {
    EXPECT_EQ((std::vector<std::int32_t>{smallest}), readBack<std::int32_t>(blocks.interleaved(floats, 1)));
  }).join();
  EXPECT_EQ((std::vector<std::int16_t>{7}), readBack<std::int16_t>(blocks.interleaved(integers, 1)));
}

TEST(SampleBlocks, RefuseWhatNoBlockCanHold) {
  EXPECT_THROW(SampleBlocks(44100, 0), std::invalid_argument);
  EXPECT_THROW(SampleBlocks(44100, 16384), std::invalid_argument);
  EXPECT_NO_THROW(SampleBlocks(44100, 16383));
  SampleBlocks blocks(44100, 2);
  const std::int16_t none[] = {0};
  EXPECT_NO_THROW(blocks.interleaved(none, 536870911)) << "2^31 − 4 bytes";
  EXPECT_THROW(blocks.interleaved(none, 536870912), std::length_error);
  EXPECT_THROW(blocks.interleaved(static_cast<const float*>(nullptr), SIZE_MAX), std::length_error);
}

}  // namespace
