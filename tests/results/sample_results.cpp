#include "common/mono_mix.h"
#include "common/pcm_decode.h"
#include "common/sample_scale.h"
#include "dsp/correlation.h"
#include "results/result_kinds.h"
#include "type1/settings.h"
#include "type1/smoothing.h"
#include "type2/analysis_length.h"
#include "type3/mixdown.h"

#include <array>

namespace av::test {
namespace {

constexpr std::array<int, 4> depths{8, 16, 24, 32};
constexpr std::array<int, 4> channelCounts{1, 2, 3, 6};
constexpr int frames = 517;

/// Calls `use(pcm)` for blocks of all depths and several numbers of channels.
template <class Use>
void forEachBlock(Use use) {
  for (const int bits : depths)
    for (const int channels : channelCounts) use(pcmNoise(bits, channels, frames, 3));
}

std::vector<double> decodedChannels() {
  std::vector<double> values;
  forEachBlock([&](const Pcm& pcm) {
    for (const EightBitRule rule : {EightBitRule::invertedUnsigned, EightBitRule::signedAsStored}) {
      std::vector<double> left(frames);
      std::vector<double> right(frames);
      const std::array<std::span<double>, 2> channels{left, right};
      decodeChannels(pcm.block(), frames, rule, channels);
      append(values, left);
      append(values, right);
    }
  });
  return values;
}

std::vector<double> means() {
  std::vector<double> values;
  forEachBlock([&](const Pcm& pcm) {
    std::vector<double> mono(frames);
    for (const EightBitRule rule : {EightBitRule::invertedUnsigned, EightBitRule::signedAsStored}) {
      mixToMono(pcm.block(), rule, mono);
      append(values, mono);
    }
    values.push_back(type3::mixDown(pcm.block(), mono));
    append(values, mono);
  });
  return values;
}

std::vector<double> correlations() {
  std::vector<double> values;
  for (unsigned seed = 1; seed < 200; ++seed)
    values.push_back(dsp::correlation(numbers(64 + seed, 32767, seed), numbers(64 + seed, 32767, seed / 2)));
  return values;
}

std::vector<double> smoothedLevels() {
  std::vector<double> values;
  for (const unsigned seed : {1u, 2u, 3u}) {
    const std::vector<double> analysis = numbers(1024, 200, seed);
    std::vector<double> display = numbers(1024, 200, seed + 10);
    for (int step = 0; step < 20; ++step) {
      values.push_back(type1::smoothToward(analysis, display) ? 1 : 0);
      append(values, display);
    }
  }
  return values;
}

std::vector<double> dynamicRanges() {
  std::vector<double> values;
  for (int bits = 1; bits <= 64; ++bits) values.push_back(dynamicRangeDb(fullScaleValue(bits)));
  return values;
}

std::vector<double> windowSizes() {
  std::vector<double> values;
  for (int size = 0; size <= 20000; ++size) values.push_back(type1::roundWindowSize(size));
  return values;
}

std::vector<double> analysisLengths() {
  std::vector<double> values;
  for (int length = 0; length <= 48000; ++length) values.push_back(type2::analysisLength(length));
  return values;
}

}  // namespace

std::vector<ResultKind> sampleResults() {
  return {{"decoded channels", MadeWith::arithmetic, "", decodedChannels},
          {"means of the channels", MadeWith::arithmetic, "", means},
          {"correlations", MadeWith::arithmetic, "", correlations},
          {"smoothing steps", MadeWith::arithmetic, "dB", smoothedLevels},
          {"dynamic ranges, from the depth", MadeWith::mathsLibrary, "dB", dynamicRanges},
          {"rounded window sizes, of every put to 20000", MadeWith::mathsLibrary, "samples", windowSizes},
          {"the meter's analysis lengths, of every block to 48000 frames", MadeWith::mathsLibrary, "frames",
           analysisLengths}};
}

std::vector<ResultKind> resultKinds() {
  std::vector<ResultKind> all;
  for (auto* const part : {sampleResults, transformResults, pictureResults, measuredPictureResults})
    for (const ResultKind& kind : part()) all.push_back(kind);
  return all;
}

}  // namespace av::test
