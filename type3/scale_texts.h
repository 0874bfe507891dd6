#pragma once

#include "gfx/frame_parts.h"
#include "gfx/text_measure.h"
#include "type3/bands.h"
#include "type3/layout.h"
#include "type3/settings.h"

#include <vector>

namespace av::type3 {

/// Appends the texts of both scales, in black: unit and frequencies along the bottom, unit and levels along the right side.
/// None of a scale without a strip. Each label is centred where the columns show what it says; no two texts touch, and
/// none leaves its strip. Labels give way to the unit texts; a unit that does not fit is left out.
void addScaleTexts(std::vector<TextRun>& texts, const AnalyserSettings& settings, const BandAxis& axis,
                   const AnalyserLayout& layout, const TextMeasure& measure);

}  // namespace av::type3
