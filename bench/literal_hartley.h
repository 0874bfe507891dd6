#pragma once

#include <cstddef>
#include <span>

namespace av::bench {

/// The level meter's transform by its plain operations, one after the other: reordering, then stages of the spans 4, 16,
/// 64, ..., whose factors are computed as the stage starts. `buffer` reaches to the next multiple of the largest span.
void literalRadix4Hartley(std::span<double> buffer, std::size_t length) noexcept;

/// The view's: the same, for powers of two, with a stage of span 2 where the length is no power of four.
void literalHartley(std::span<double> values) noexcept;

/// Levels in dB over the bins 1 to N/2 − 1 of a transform, each with its logarithm and its root; the level of a bin that
/// holds nothing is `emptyDb`, and none is below `floorDb`.
void literalLevels(std::span<double> hartley, double fullScale, double emptyDb, double floorDb) noexcept;

/// Multiplies the samples by one of the windows that have their apex in the middle, weight by weight; 3 is the raised
/// cosine, and others than 1 to 4 do nothing.
void literalCentredWindow(std::span<double> samples, int type) noexcept;

}  // namespace av::bench
