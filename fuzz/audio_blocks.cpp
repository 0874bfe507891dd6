// Wave formats and sample bytes as hosts deliver them: frames, decoded channels and mono mixes, of every tag, depth,
// channel count and size.

#include "common/mono_mix.h"
#include "common/pcm_decode.h"
#include "common/sample_scale.h"
#include "common/stream_format.h"
#include "fuzz/audio_input.h"
#include "fuzz/check.h"
#include "fuzz/targets.h"
#include "support/pcm_oracle.h"
#include "type3/mixdown.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <vector>

namespace av::fuzz {
namespace {

constexpr double untouched = 0.123456789;  // no sample has a fraction

bool isDecoded(int bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 32; }

/// Whole frames by one division, the sign set aside.
std::optional<std::int64_t> wholeFrames(const AudioFormatBlock& format, std::int64_t bytes) {
  const std::int64_t frameBytes = std::int64_t{format.nChannels} * (format.wBitsPerSample / 8);
  if (frameBytes == 0) return std::nullopt;
  return bytes < 0 ? -(-bytes / frameBytes) : bytes / frameBytes;
}

/// Sample `index` of the block, counted through all channels.
double sampleAt(const AudioBlock& block, std::size_t index, EightBitRule rule) {
  const int bits = block.format.wBitsPerSample;
  const std::uint8_t* const at = block.samples + index * static_cast<std::size_t>(bits / 8);
  if (bits == 8 && rule == EightBitRule::invertedUnsigned) return 128 - *at;
  return static_cast<double>(oracle::twosComplementSample(at, bits));
}

/// What a caller asks of the decoding.
struct Wish {
  std::size_t frames;
  std::size_t spanCount;
  std::uint32_t sizes;  ///< the spans' sizes follow from it
};

void checkChannels(const AudioBlock& block, std::size_t held, EightBitRule rule, const Wish& wish) {
  const auto [frames, spanCount, sizes] = wish;
  std::array<std::size_t, 21> begins{};
  for (std::size_t c = 0; c < spanCount; ++c) begins[c + 1] = begins[c] + (sizes >> c) % (frames + 2);
  std::vector<double> values(begins[spanCount], untouched);
  std::array<std::span<double>, 20> spans;
  for (std::size_t c = 0; c < spanCount; ++c)
    spans[c] = std::span(values).subspan(begins[c], begins[c + 1] - begins[c]);

  const bool decoded = decodeChannels(block, frames, rule, std::span(spans).first(spanCount));
  require(decoded == isDecoded(block.format.wBitsPerSample), "the four depths are decoded and no others");
  const std::size_t channels = block.format.nChannels;
  for (std::size_t c = 0; c < spanCount; ++c) {
    const std::size_t written = decoded && c < channels ? std::min({frames, held, spans[c].size()}) : 0;
    for (std::size_t i = 0; i < spans[c].size(); ++i) {
      const double expected = i < written ? sampleAt(block, i * channels + c, rule) : untouched;
      require(spans[c][i] == expected, "a channel holds its samples and nothing behind them");
    }
  }
}

void checkMono(const AudioBlock& block, std::size_t held, EightBitRule rule, std::size_t size) {
  std::vector<double> mono(size, untouched);
  const bool mixed = mixToMono(block, rule, mono);
  require(mixed == isDecoded(block.format.wBitsPerSample), "the four depths are mixed and no others");
  const std::size_t channels = block.format.nChannels;
  for (std::size_t i = 0; i < mono.size(); ++i) {
    double expected = untouched;
    if (mixed && i < held) {
      double sum = 0;
      for (std::size_t c = 0; c < channels; ++c) sum += sampleAt(block, i * channels + c, rule);
      expected = sum / static_cast<double>(channels);
    }
    require(mono[i] == expected, "a mono sample is the mean of its frame");
  }
}

void checkMixdown(const AudioBlock& block, std::size_t held, std::size_t size) {
  const AudioFormatBlock& format = block.format;
  const bool taken = (format.wFormatTag == 1 || format.wFormatTag == 0xFFFE) && block.samples != nullptr &&
                     std::uint32_t{format.nChannels} * format.wBitsPerSample >= 8;
  require(type3::isAnalysed(block) == taken, "the analyser takes integer PCM of a byte a frame and more");
  if (!taken) return;
  std::vector<double> mono(size, untouched);
  const double fullScale = type3::mixDown(block, mono);
  const int bits = format.wBitsPerSample;
  const bool decoded = isDecoded(bits);
  const bool counted = bits == 16 || bits == 32 || (decoded && std::min(size, held) > 0);
  require(fullScale == (counted ? std::exp2(bits - 1) : 0.0), "full scale is that of the depth");
  for (std::size_t i = 0; i < size; ++i) {
    if (i >= held || !decoded) require(mono[i] == 0, "what the block does not hold is silent");
    require(std::fabs(mono[i]) <= std::max(fullScale, static_cast<double>(held)), "no mean is above full scale");
  }
}

void checkFormat(const AudioFormatBlock& format) {
  const StreamFormat stream = streamFormatOf(format);
  require(stream.formatTag == format.wFormatTag && stream.channels == format.nChannels &&
              stream.samplesPerSec == format.nSamplesPerSec && stream.avgBytesPerSec == format.nAvgBytesPerSec &&
              stream.blockAlign == format.nBlockAlign && stream.bitsPerSample == format.wBitsPerSample &&
              stream.extraSize == format.cbSize,
          "the stream has the header's fields");
  const int bits = format.wBitsPerSample;
  const double fullScale = fullScaleValue(bits);
  if (bits >= 2 && bits <= 54)
    require(fullScale == static_cast<double>((std::int64_t{1} << (bits - 1)) - 1), "full scale is 2^(bits − 1) − 1");
  if (bits >= 2) require(dynamicRangeDb(fullScale) >= 0, "there is a dynamic range");
}

}  // namespace

void audioBlocks(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  const AudioFormatBlock format = anyFormat(input);
  const auto rule = input.ConsumeBool() ? EightBitRule::invertedUnsigned : EightBitRule::signedAsStored;
  const auto lie = input.ConsumeIntegralInRange<std::int32_t>(0, 7);
  const Wish wish{input.ConsumeIntegralInRange<std::size_t>(0, 70), input.ConsumeIntegralInRange<std::size_t>(0, 20),
                  input.ConsumeIntegral<std::uint32_t>()};
  checkFormat(format);

  const std::vector<std::uint8_t> samples = input.ConsumeRemainingBytes<std::uint8_t>();
  // Sizes below zero are lies that hosts tell; sizes that are too large cannot be noticed.
  const auto declared =
      lie == 0 ? -static_cast<std::int32_t>(samples.size()) : static_cast<std::int32_t>(samples.size());
  const AudioBlock block{format, samples.data(), declared};

  const auto frames = frameCount(format, declared);
  const auto expected = wholeFrames(format, declared);
  require(frames.has_value() == expected.has_value() && (!frames || *frames == *expected), "frames are whole ones");
  const std::size_t held = frames && *frames > 0 ? static_cast<std::size_t>(*frames) : 0;
  checkChannels(block, held, rule, wish);
  checkMono(block, held, rule, wish.frames);
  checkMixdown(block, held, wish.frames);
}

}  // namespace av::fuzz
