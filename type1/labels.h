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
/// Horizontal labels stand where their rule puts them and are never dropped for one another. Vertical labels stand where
/// the pointer reads their value, within 1, and unit texts in a corner of their strips: top right or bottom right, bottom
/// right or bottom left. Both give way rather than touch another text or leave their strip.
void addScaleTexts(std::vector<TextRun>& texts, const ViewSettings& settings, std::uint32_t sampleRateHz,
                   const ViewLayout& layout, const TextMeasure& measure);

}  // namespace av::type1
