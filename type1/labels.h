#pragma once

#include "gfx/frame_parts.h"
#include "gfx/text_measure.h"
#include "type1/layout.h"
#include "type1/settings.h"

#include <cstdint>
#include <vector>

namespace av::type1 {

/// Appends the scale's texts: the horizontal labels, the vertical labels, the unit texts. None when no scale is visible
/// or there is no font.
///
/// Labels read as the pointer does at their place, in the X-Y views too: on type 6 levels alone, on type 7 sample indices
/// and mirrored levels. The X-Y views have no horizontal unit text, since it would call sample indices hertz.
/// Horizontal labels stand where their rule puts them and are never dropped for one another. Vertical labels stand where
/// the pointer reads their value, within 1, so many of them as look well. Unit texts stand above the numbers of the
/// vertical scale or in a corner of its strip, and at the right end of the horizontal strip or at its left one. Both give
/// way rather than touch another text or leave their strip.
void addScaleTexts(std::vector<TextRun>& texts, const ViewSettings& settings, std::uint32_t sampleRateHz,
                   const ViewLayout& layout, const TextMeasure& measure);

}  // namespace av::type1
