#pragma once

#include "common/audio_block.h"

#include <cstddef>
#include <span>

namespace av::bench {

/// The value of one stored sample, its bytes put together one by one; 8 bits as signed numbers, or as 128 − byte.
double literalSample(const std::uint8_t* at, int bits, bool invertedBytes) noexcept;

/// Splits a block into its channels, a sample at a time.
void literalDecode(const AudioBlock& block, std::span<const std::span<double>> channels, bool invertedBytes) noexcept;

/// Mixes a block to mono, a frame at a time.
void literalMix(const AudioBlock& block, std::span<double> mono, bool invertedBytes) noexcept;

}  // namespace av::bench
