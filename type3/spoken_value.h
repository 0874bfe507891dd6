#pragma once

#include "type3/bands.h"

#include <cstdint>
#include <span>
#include <string>

namespace av::type3 {

/// What the analyser shows, in words for a screen reader: the loudest band's level in dB (as its column's height has it,
/// before it is cut to the scale) and the middle of its bins' frequencies. `bands`: one amplitude a column, as foldBands()
/// writes them for `axis` and `plan`. "silence" where no band is audible (`isAudible`). Of bands that are equally loud,
/// the lowest. Allocates the text, and room for the frequencies (std::bad_alloc).
std::u16string spokenValue(std::span<const double> bands, const BandAxis& axis, std::span<const BinRange> plan);

}  // namespace av::type3
