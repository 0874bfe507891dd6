#pragma once

#include "type3/layout.h"
#include "type3/settings.h"
#include "type3/text_strip.h"

namespace av::type3 {

/// Adds the unit and the labels of the level scale to its strip, which is as high as the column area and ends at the right
/// edge: round numbers of decibels below full scale, written with a minus sign, evenly spaced, each centred at the height
/// where a column of that level ends. With columns that grow from the middle both halves have their labels. At most
/// `DynamicRange` labels; none without a range.
void addLevelLabels(TextStrip& strip, const AnalyserSettings& settings, const AnalyserLayout& layout);

}  // namespace av::type3
