#pragma once

#include "common/line_list.h"
#include "type2/band_ratio.h"

#include <cstdint>
#include <span>

namespace av::type2 {

/// How the levels of a spectrum are spread over the lines.
enum class BandLayout {
  linear,               ///< low bands left, all bands equally wide
  linearMirrored,       ///< low bands in the centre, spreading to both sides
  logarithmic,          ///< low bands left, each band wider than the last by the same factor
  logarithmicMirrored,  ///< the same from the centre to both sides
};

/// Where the bands of a meter's lines lie.
struct MeterAxis {
  BandLayout layout = BandLayout::linear;
  int analysisLength = 0;  ///< frames that were transformed; half as many bins hold a level
  std::uint32_t sampleRateHz = 44100;
};

/// `FFTViewType`·2 combined bit by bit with `AlignmentY`: 1, 2 and 3 are the last three layouts, everything else is linear.
BandLayout bandLayout(std::int32_t fftViewType, std::int32_t alignmentY) noexcept;

/// Writes one band into every line (see writeLine). `levels[k]` is the level of bin k in dB, from bin 1 to the last
/// bin M; element 0 is not read, and bins above M, which the highest logarithmic bands reach for, read as bin M.
///
/// A band is the mean of the levels of its bins, in dB. Where a linear layout has more lines than levels, a band has no
/// bin at all and its mean is no number; such a value is written as it is, and so are all bands when there is no level.
void foldBands(BandLayout layout, std::span<const double> levels, std::span<LineInfo> lines, std::uint32_t nowMs,
               BandRatio& ratio);

}  // namespace av::type2
