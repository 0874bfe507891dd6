// First, so that it is compiled as a host would include it: with nothing before it.
#include "host/audio_buffers.h"

#include "common/win/audio_input.h"
#include "support/win/guarded_bytes.h"
#include "support/win/wave_bytes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using av::support::countedBytes;
using av::support::GuardedBytes;
using av::support::WaveHeader;
using av::support::operator+;

constexpr WAVEFORMATEX stereo = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};

ULONG referencesOf(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

TEST(AudioFrames, AreReadByTheControlsWithoutACopy) {
  GuardedBytes samples(countedBytes(40));
  const auto block = avhost::audioFrames(stereo, samples.data(), samples.size());
  {
    const av::AudioInput input(block.get());
    ASSERT_NE(nullptr, input.block());
    EXPECT_EQ(samples.data(), input.block()->samples);
    EXPECT_EQ(40, input.block()->sampleBytes);
    EXPECT_EQ(0, std::memcmp(&stereo, &input.block()->format, 18));
  }
  EXPECT_EQ(1u, referencesOf(block.get()));
}

TEST(AudioFrames, KeepTheFormatThatWasTemporary) {
  GuardedBytes samples(countedBytes(8));
  avhost::Block block;
  {
    WAVEFORMATEX format = stereo;
    block = avhost::audioFrames(format, samples.data(), samples.size());
    format.wFormatTag = 3;
  }
  const av::AudioInput input(block.get());
  ASSERT_NE(nullptr, input.block());
  EXPECT_EQ(1, input.block()->format.wFormatTag);
}

TEST(AudioFrames, CarryTheExtraBytesOfAnExtensibleFormat) {
  const auto extra = countedBytes(22);
  GuardedBytes format(WaveHeader{.tag = WAVE_FORMAT_EXTENSIBLE, .extraBytes = 22}.bytes() + extra);
  GuardedBytes samples(countedBytes(8));
  const auto block =
      avhost::audioFrames(*reinterpret_cast<const WAVEFORMATEX*>(format.data()), samples.data(), samples.size());
  const av::AudioInput input(block.get());
  ASSERT_NE(nullptr, input.block());
  EXPECT_EQ(22, input.block()->format.cbSize);
  EXPECT_EQ(0, std::memcmp(extra.data(), input.block()->format.extra, extra.size()));
}

TEST(AudioFrames, ReadNoMoreThan180BytesOfAFormat) {
  GuardedBytes format(WaveHeader{.tag = WAVE_FORMAT_EXTENSIBLE, .extraBytes = 65535}.bytes() + countedBytes(162));
  const auto block = avhost::audioFrames(*reinterpret_cast<const WAVEFORMATEX*>(format.data()), format.data(), 8);
  const av::AudioInput input(block.get());
  ASSERT_NE(nullptr, input.block());
  EXPECT_EQ(0, std::memcmp(format.data(), &input.block()->format, 180));
}

TEST(AudioFrames, IgnoreAnUnsetExtraSizeOfPlainPcm) {
  // Guarded right behind the 18 bytes: what the size field claims is not there.
  GuardedBytes format(WaveHeader{.extraBytes = 0xCDCD}.bytes());
  const auto block = avhost::audioFrames(*reinterpret_cast<const WAVEFORMATEX*>(format.data()), format.data(), 8);
  const av::AudioInput input(block.get());
  ASSERT_NE(nullptr, input.block());
  EXPECT_EQ(0, input.block()->format.cbSize);
}

TEST(PackedAudio, IsReadByTheControlsWithoutACopy) {
  GuardedBytes memory(WaveHeader{.channels = 1, .bits = 8, .extraBytes = 4}.bytes() + countedBytes(4 + 30));
  const auto block = avhost::packedAudio(memory.data(), memory.size());
  const av::AudioInput input(block.get());
  ASSERT_NE(nullptr, input.block());
  EXPECT_EQ(1, input.block()->format.nChannels);
  EXPECT_EQ(memory.data() + 22, input.block()->samples);
  EXPECT_EQ(30, input.block()->sampleBytes);
}

TEST(PackedAudio, MayBeValidInItsFirstBytesOnly) {
  GuardedBytes memory(WaveHeader{}.bytes() + countedBytes(40));
  const avhost::Block block(new avhost::PackedAudioData(memory.data(), memory.size(), 18 + 12));
  const av::AudioInput input(block.get());
  ASSERT_NE(nullptr, input.block());
  EXPECT_EQ(12, input.block()->sampleBytes);
}

TEST(BufferObject, AnswersForItsOwnInterfacesOnly) {
  const auto frames = avhost::audioFrames(stereo, nullptr, 0);
  const auto packed = avhost::packedAudio(nullptr, 0);
  const auto offers = [](IUnknown* object, REFIID iid) {
    void* found = object;
    const HRESULT result = object->QueryInterface(iid, &found);
    EXPECT_EQ(SUCCEEDED(result), found != nullptr);
    if (found != nullptr) static_cast<IUnknown*>(found)->Release();
    return result == S_OK;
  };
  for (IUnknown* const object : {frames.get(), packed.get()}) {
    EXPECT_TRUE(offers(object, IID_IUnknown));
    EXPECT_TRUE(offers(object, __uuidof(avhost::IMediaDataBuffer)));
    EXPECT_TRUE(offers(object, IID_IMarshal));
    EXPECT_FALSE(offers(object, IID_IDispatch));
    EXPECT_EQ(E_POINTER, object->QueryInterface(IID_IUnknown, nullptr));
    EXPECT_EQ(1u, referencesOf(object));
  }
  EXPECT_TRUE(offers(frames.get(), __uuidof(avhost::IAudioFrameData)));
  EXPECT_FALSE(offers(frames.get(), __uuidof(avhost::IPackedAudioData)));
  EXPECT_TRUE(offers(packed.get(), __uuidof(avhost::IPackedAudioData)));
  EXPECT_FALSE(offers(packed.get(), __uuidof(avhost::IAudioFrameData)));
}

TEST(BufferObject, RefusesNullOutPointers) {
  avhost::Block holder(new avhost::AudioFrameData(stereo, nullptr, 0));
  auto* const frames = static_cast<avhost::AudioFrameData*>(holder.get());
  EXPECT_EQ(E_POINTER, frames->GetBuffer(nullptr));
  EXPECT_EQ(E_POINTER, frames->GetBufferSize(nullptr));
  EXPECT_EQ(E_POINTER, frames->GetDataSize(nullptr));
  EXPECT_EQ(E_POINTER, frames->GetFormat(nullptr));
  EXPECT_EQ(E_POINTER, frames->GetFormatSize(nullptr));
}

TEST(BufferObject, CountsReferencesFromManyThreads) {
  const auto block = avhost::audioFrames(stereo, nullptr, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 20000; ++i) {
        IUnknown* found = nullptr;
        block->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&found));
        found->Release();
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(1u, referencesOf(block.get()));
}

TEST(BufferObject, ReachesAnotherApartmentAsItself) {
  ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  GuardedBytes samples(countedBytes(8));
  {
    const auto block = avhost::audioFrames(stereo, samples.data(), samples.size());
    IStream* stream = nullptr;
    ASSERT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(IID_IUnknown, block.get(), &stream));
    std::thread([&] {
      ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
      {
        avhost::Block arrived;
        IUnknown* raw = nullptr;
        ASSERT_EQ(S_OK, CoGetInterfaceAndReleaseStream(stream, IID_IUnknown, reinterpret_cast<void**>(&raw)));
        arrived.reset(raw);
        EXPECT_EQ(block.get(), arrived.get());
        const av::AudioInput input(arrived.get());
        ASSERT_NE(nullptr, input.block());
        EXPECT_EQ(samples.data(), input.block()->samples);
      }
      CoUninitialize();
    }).join();
    EXPECT_EQ(1u, referencesOf(block.get()));
  }
  CoUninitialize();
}

}  // namespace
