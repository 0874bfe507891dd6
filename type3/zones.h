#pragma once

#include "gfx/argb.h"
#include "type3/settings.h"

#include <span>

namespace av::type3 {

/// The colours of the three zones.
struct ZoneColours {
  Argb high;
  Argb mid;
  Argb low;
};

/// Paints the zones into a column of pixels, its top row first: the high colour above `HighPoint` percent of the height,
/// the middle one down to `MidPoint` percent, the low one below. `mirrored`: the same in the upper half, and its mirror
/// image in the lower half. Where `MidPoint` lies above `HighPoint` there is no middle zone, and the others overlap: the
/// one that is painted later stays.
///
/// Limits are computed in double precision and cut toward zero, which may cost a row; hosts know the pictures.
void paintSolidZones(std::span<Argb> column, const AnalyserSettings& settings, const ZoneColours& colours,
                     bool mirrored) noexcept;

/// The same with soft transitions: from the high to the middle colour over the last two thirds of the high zone and the
/// first third of the middle zone, from the middle to the low one over the last third of the middle zone and the first two
/// thirds of the low zone, counted from the top. The transitions lie unevenly about the limits on purpose.
///
/// A transition is that of the platform's rectangle gradient: row i of n has the colour i/n of the way, the channels cut
/// toward zero.
void paintGradientZones(std::span<Argb> column, const AnalyserSettings& settings, const ZoneColours& colours,
                        bool mirrored) noexcept;

}  // namespace av::type3
