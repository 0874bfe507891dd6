#pragma once

#include "type2/band_fold.h"

#include <span>
#include <string>

namespace av::type2 {

/// What the meter shows, in words for a screen reader: the loudest line's level in dB and the middle of its band, the
/// mean of its bins' frequencies. `valuesDb`: the lines' values, from left to right; those that are no number count as
/// nothing. "silence" where no line is audible (`isAudible`). Of lines that are equally loud, the lowest band.
/// Allocates the text, and room for the frequencies (std::bad_alloc).
std::u16string spokenValue(std::span<const double> valuesDb, const MeterAxis& axis);

}  // namespace av::type2
