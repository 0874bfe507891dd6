#pragma once

#include "gfx/argb.h"
#include "type3/settings.h"

#include <span>

namespace av::type3 {

/// Cuts the gaps between segments into a column of pixels: segments of `SpotHeight` rows with `SpotInterval` rows of
/// `gapColour` above each, counted from the bottom up. `mirrored`: from the middle up, and mirrored into the lower half,
/// except the last gap of the upper half, which has no mirror image; hosts know the pictures.
/// Nothing is cut where `SpotInterval` is 0.
void cutSegmentGaps(std::span<Argb> column, const AnalyserSettings& settings, Argb gapColour, bool mirrored) noexcept;

}  // namespace av::type3
