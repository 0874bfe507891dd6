#pragma once

#include "common/audio_block.h"

#include <span>

namespace av::type3 {

/// Whether a block is analysed: integer PCM with samples and whole bytes in a frame. Others are dropped and change nothing.
bool isAnalysed(const AudioBlock& block) noexcept;

/// Mixes a block to mono: each element becomes the mean of a frame's samples, on their own integer scale. Frames beyond
/// `mono.size()` are ignored, elements beyond the block's frames become 0.
///
/// Two depths are kept as hosts have always seen them: 8 bits are read as 128 − byte, upside down; and the samples of 24
/// bits are never read, every frame being the number of frames in the block, a constant.
///
/// Returns the full-scale value of the samples, 2^(bits − 1). It is 0, with all elements 0, for other depths than 8, 16,
/// 24 and 32 bits, and for blocks of 8 and 24 bits of which no frame was taken.
double mixDown(const AudioBlock& block, std::span<double> mono) noexcept;

}  // namespace av::type3
