#pragma once

#include "fuzz/input.h"
#include "fuzz/property_rows.h"
#include "type1/settings.h"
#include "type2/settings.h"
#include "type3/settings.h"

#include <array>

// The rows of the three controls with what docs/behaviour.md and the headers promise of them, written down anew.

namespace av::fuzz {

inline constexpr std::array viewRows = {
    access<type1::rule::visualizationType>(),
    access<type1::rule::visualizationSmooth>(),
    access<type1::rule::backColor>(swappedColour),
    access<type1::rule::gridColor>(swappedColour),
    access<type1::rule::scaleColor>(swappedColour),
    access<type1::rule::borderColor>(swappedColour),
    access<type1::rule::scaleXVisible>(),
    access<type1::rule::scaleYVisible>(),
    access<type1::rule::scaleYMin>(),
    access<type1::rule::scaleYMax>(),
    access<type1::rule::gridVisible>(),
    access<type1::rule::dynamicRange>(),
    access<type1::rule::borderType>(),
    access<type1::rule::fftWindowSize>(nearestWindowSize),
    access<type1::rule::fftWindowType>(),
    access<type1::rule::fftViewType>(),
};

inline constexpr std::array meterRows = {
    access<type2::rule::lineType>(),
    access<type2::rule::lineInterval>(clampedTo(0, noLimit)),
    access<type2::rule::backColor>(swappedColour),
    access<type2::rule::borderColor>(swappedColour),
    access<type2::rule::lineLowColor>(swappedColour),
    access<type2::rule::lineMidColor>(swappedColour),
    access<type2::rule::lineHighColor>(swappedColour),
    access<type2::rule::backLineLowColor>(swappedColour),
    access<type2::rule::backLineMidColor>(swappedColour),
    access<type2::rule::backLineHighColor>(swappedColour),
    access<type2::rule::tickDelayTime>(),
    access<type2::rule::tickReleaseTime>(),
    access<type2::rule::tickVisible>(),
    access<type2::rule::spotHeight>(clampedTo(0, noLimit)),
    access<type2::rule::spotInterval>(clampedTo(0, noLimit)),
    access<type2::rule::midPoint>(clampedTo(0, 100)),
    access<type2::rule::highPoint>(clampedTo(0, 100)),
    access<type2::rule::alignmentY>(),
    access<type2::rule::alignmentX>(),
    access<type2::rule::borderType>(),
    access<type2::rule::borderWidth>(),
    access<type2::rule::autoSize>(),
    access<type2::rule::fftWindowSize>(),
    access<type2::rule::fftWindowType>(),
    access<type2::rule::fftViewType>(),
};

inline constexpr std::array analyserRows = {
    access<type3::rule::scaleXVisible>(),
    access<type3::rule::scaleYVisible>(),
    access<type3::rule::scaleYMax>(refusedOutside(0, noLimit)),
    access<type3::rule::scaleYMin>(refusedOutside(0, noLimit)),
    access<type3::rule::backColor>(),
    access<type3::rule::backLineHighColor>(),
    access<type3::rule::backLineMidColor>(),
    access<type3::rule::backLineLowColor>(),
    access<type3::rule::lineHighColor>(),
    access<type3::rule::lineMidColor>(),
    access<type3::rule::lineLowColor>(),
    access<type3::rule::midPoint>(refusedOutside(0, 100)),
    access<type3::rule::highPoint>(refusedOutside(0, 100)),
    access<type3::rule::lineInterval>(refusedOutside(0, noLimit)),
    access<type3::rule::spotInterval>(refusedOutside(0, noLimit)),
    access<type3::rule::spotHeight>(refusedOutside(0, noLimit)),
    access<type3::rule::lineCount>(refusedOutside(4, 200)),
    access<type3::rule::tickVisible>(),
    access<type3::rule::dynamicRange>(refusedOutside(0, 200)),
    access<type3::rule::scaleColor>(),
    access<type3::rule::borderColor>(),
    access<type3::rule::borderType>(refusedOutside(0, 3)),
    access<type3::rule::autoRepaint>(),
    access<type3::rule::xScaleType>(refusedOutside(0, 1)),
    access<type3::rule::tickColor>(),
    access<type3::rule::alignmentX>(refusedOutside(0, 1)),
    access<type3::rule::alignmentY>(refusedOutside(0, 1)),
    access<type3::rule::viewType>(refusedOutside(0, 3)),
    access<type3::rule::autoSize>(),
};

/// Puts up to `most` properties as a host does: what is refused changes nothing.
template <class Settings, std::size_t count>
void putAnyProperties(Input& input, Settings& settings, const std::array<PropertyAccess<Settings>, count>& rows,
                      int most) {
  for (int puts = input.ConsumeIntegralInRange<int>(0, most); puts > 0; --puts) {
    const auto& row = rows[input.ConsumeIntegralInRange<std::size_t>(0, count - 1)];
    row.put(settings, row.toWire(anyLong(input)));
  }
}

}  // namespace av::fuzz
