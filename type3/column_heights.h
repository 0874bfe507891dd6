#pragma once

#include "common/line_list.h"
#include "type3/column_kernel.h"
#include "type3/settings.h"

#include <cstdint>
#include <span>

namespace av::type3 {

/// Height in pixels of a column whose band has the amplitude `band` (see foldBands) in a column area of `areaHeightPx`:
/// a whole number of segments, the last one lit whole, so that a column may be up to a segment higher than the area.
///
/// The level is 20·log10(2·band ÷ `fftLength`) dB, argument and logarithm rounded to single precision, and lies linearly
/// between −`ScaleYMax` at the foot and −`ScaleYMin` at the top, in whole dB. A band that is not above zero, or no number,
/// lies at the foot. With `AlignmentY` columns have half the height. 0 where `ScaleYMin` is not below `ScaleYMax`.
int columnHeightPx(double band, const AnalyserSettings& settings, std::int32_t fftLength, int areaHeightPx,
                   const ColumnKernel& kernel = *columnKernels().front()) noexcept;

/// Writes the heights of all bands into their columns; see writeLine. [under the line lock]
void writeColumnHeights(std::span<LineInfo> columns, std::span<const double> bands, const AnalyserSettings& settings,
                        std::int32_t fftLength, int areaHeightPx, std::uint32_t nowMs) noexcept;

/// Writes the heights of all bands in a column area of another height. Peaks that stand on their column go with it, the
/// others stay in proportion to the area; the time when a peak was raised stays too. [under the line lock]
void moveColumns(std::span<LineInfo> columns, std::span<const double> bands, const AnalyserSettings& settings,
                 std::int32_t fftLength, int fromHeightPx, int toHeightPx) noexcept;

/// Columns and peaks of a column area `fromHeightPx` high as they stand in one of `toHeightPx`; as they are where the
/// former has no height. [under the line lock]
void scaleColumns(std::span<LineInfo> columns, int fromHeightPx, int toHeightPx) noexcept;

}  // namespace av::type3
