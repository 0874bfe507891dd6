#pragma once

#include "common/audio_block.h"
#include "common/sample_readers.h"

#include <cstddef>
#include <span>

namespace av {

/// Splits the first `frames` frames of a block into one array a channel, each sample as a double on its own integer
/// scale (no scaling to ±1).
///
/// `channels[c]` receives channel c: at most as many samples as it has room for; an empty span skips the channel.
/// Channels of the block beyond `channels.size()` are stepped over, spans beyond the block's channels are left alone.
/// Frames that the block does not hold are not read, and what stands behind the decoded samples is not written.
///
/// Returns false, with nothing written, for a depth that is not decoded; see isDecodedDepth().
bool decodeChannels(const AudioBlock& block, std::size_t frames, EightBitRule eightBitRule,
                    std::span<const std::span<double>> channels,
                    const SampleKernel& kernel = *sampleKernels().front()) noexcept;

}  // namespace av
