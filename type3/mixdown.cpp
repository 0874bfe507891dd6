#include "type3/mixdown.h"

#include "common/mono_mix.h"
#include "common/sample_scale.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace av::type3 {
namespace {

/// Bytes of a frame; 0 where there are fewer than 8 bits.
constexpr std::int64_t frameBytes(const AudioFormatBlock& format) noexcept {
  return std::int64_t{format.nChannels} * format.wBitsPerSample / 8;
}

}  // namespace

bool isAnalysed(const AudioBlock& block) noexcept {
  return isAcceptedFormatTag(block.format.wFormatTag) && block.samples != nullptr && frameBytes(block.format) > 0;
}

double mixDown(const AudioBlock& block, std::span<double> mono) noexcept {
  const int bits = block.format.wBitsPerSample;
  if (!isDecodedDepth(bits)) {
    std::ranges::fill(mono, 0.0);
    return 0.0;
  }
  const std::int64_t frames = std::max<std::int64_t>(block.sampleBytes, 0) / frameBytes(block.format);
  const std::size_t taken = std::min(mono.size(), static_cast<std::size_t>(frames));
  std::ranges::fill(mono.subspan(taken), 0.0);
  if (bits == 24) {
    std::ranges::fill(mono.first(taken), static_cast<double>(frames));
  } else {
    mixToMono(block, EightBitRule::invertedUnsigned, mono);
  }
  const bool needsFrames = bits == 8 || bits == 24;
  return needsFrames && taken == 0 ? 0.0 : powerOfTwo(bits - 1);
}

}  // namespace av::type3
