#pragma once

#include "common/audio_block.h"
#include "common/sample_readers.h"

#include <span>

namespace av {

/// Mixes the first `mono.size()` frames of a block to mono: each element becomes the mean of the frame's samples, on
/// their own integer scale. The sums are whole numbers below 2^53 and thus exact; the mean is rounded once.
///
/// Frames that the block does not hold are not read, and their elements are not written. Returns false, with nothing
/// written, for a depth that is not decoded; see isDecodedDepth().
bool mixToMono(const AudioBlock& block, EightBitRule eightBitRule, std::span<double> mono,
               const SampleKernel& kernel = *sampleKernels().front()) noexcept;

}  // namespace av
