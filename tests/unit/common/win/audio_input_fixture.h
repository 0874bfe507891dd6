#pragma once

// What the tests of AudioInput say of the host's side: buffers that tell the truth, and the calls they expect.

#include "common/pcm_decode.h"
#include "common/win/audio_input.h"
#include "support/win/guarded_bytes.h"
#include "support/win/scripted_audio_data.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace av::test {

using support::AudioDataScript;
using support::GuardedBytes;
using support::ScriptedAudioData;

inline const std::vector<std::string> packedConversation = {
    "packed GetBufferSize", "packed GetBuffer", "packed GetBufferSize", "packed GetDataSize", "packed GetBuffer"};
inline const std::vector<std::string> frameConversation = {"frame GetFormatSize", "frame GetFormat", "frame GetBuffer",
                                                           "frame GetDataSize"};

inline std::vector<std::string> conversation(std::initializer_list<std::vector<std::string>> pieces) {
  std::vector<std::string> result = {"query frame", "query packed"};
  for (const auto& piece : pieces) result.insert(result.end(), piece.begin(), piece.end());
  return result;
}

/// A packed buffer that tells the truth about itself.
inline AudioDataScript packed(const GuardedBytes& memory) {
  AudioDataScript script;
  script.offersPackedData = true;
  script.packedData.buffers = {memory.data()};
  script.packedData.bufferSizes = {memory.size()};
  script.packedData.dataSizes = {memory.size()};
  return script;
}

/// Frame data that tells the truth about itself.
inline AudioDataScript frames(const GuardedBytes& format, const GuardedBytes& samples) {
  AudioDataScript script;
  script.offersFrameData = true;
  script.frameData.formats = {format.data()};
  script.frameData.formatSizes = {static_cast<ULONG>(format.size())};
  script.frameData.buffers = {samples.data()};
  script.frameData.bufferSizes = {samples.size()};
  script.frameData.dataSizes = {samples.size()};
  return script;
}

/// Reads every sample of the block, so that a size beyond the buffer would meet the guard page.
inline double sumOfSamples(const av::AudioBlock& block) {
  const auto held = av::frameCount(block.format, block.sampleBytes);
  if (!held || *held <= 0) return 0;
  const auto count = static_cast<std::size_t>(*held);
  std::vector<std::vector<double>> arrays(block.format.nChannels, std::vector<double>(count));
  std::vector<std::span<double>> spans(arrays.begin(), arrays.end());
  av::decodeChannels(block, count, av::EightBitRule::signedAsStored, spans);
  double sum = 0;
  for (const auto& array : arrays) {
    for (const double value : array) sum += value;
  }
  return sum;
}

/// Unpacks one argument and checks that every reference came back.
template <class Check>
void unpack(ScriptedAudioData& data, Check&& check) {
  {
    AudioInput input(&data);
    if (input.block() != nullptr) sumOfSamples(*input.block());
    check(input.block());
  }
  EXPECT_EQ(0, data.references());
}

inline void expectDropped(ScriptedAudioData& data) {
  unpack(data, [](const av::AudioBlock* block) { EXPECT_EQ(nullptr, block); });
}

}  // namespace av::test
