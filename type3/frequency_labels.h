#pragma once

#include "type3/frequency_axis.h"
#include "type3/layout.h"
#include "type3/text_strip.h"

namespace av::type3 {

/// Adds the unit and the labels of the frequency scale to its strip, which lies along the bottom: round numbers of hertz,
/// each centred under the place where columns show that frequency. Linear axes are labelled in even steps, logarithmic ones
/// by as many of each decade's numbers as have room; both halves of a mirrored axis alike, with 0 in the centre.
void addFrequencyLabels(TextStrip& strip, const FrequencyAxis& axis, const AnalyserLayout& layout,
                        const ColumnGeometry& geometry);

}  // namespace av::type3
