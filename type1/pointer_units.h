#pragma once

#include "gfx/geometry.h"
#include "type1/layout.h"
#include "type1/settings.h"

#include <cstdint>

namespace av::type1 {

/// What lies under the pointer, in signal units.
struct PointerValue {
  int xValue = 0;  ///< a frequency in Hz, or a sample index within the window
  int yValue = 0;  ///< a level in dB

  friend constexpr bool operator==(const PointerValue&, const PointerValue&) = default;
};

/// Whether the pointer reads frequencies and levels (types 2 to 6, the X-Y view of type 6 included) or sample indices
/// and mirrored levels (all others, the X-Y view of type 7 included).
constexpr bool readsAsSpectrum(int visualizationType) noexcept {
  return visualizationType >= 2 && visualizationType <= 6;
}

/// Whether a move to `position` is worth an event: not over the scale strips, nor right of and below them. Left of and
/// above the plot, where only hosts that capture the mouse themselves see the pointer, it is. Without a layout it is not.
constexpr bool reportsMovesAt(const ViewLayout& layout, Point position) noexcept {
  return position.x < layout.plotWidth && position.y < layout.plotHeight;
}

/// The value under `x`, in pixels from the client area's left edge; positions outside the plot are answered too.
/// Saturates where the value leaves the range of int; a plot without width reads a limit, or 0 at its own edge.
int xValueAt(const ViewSettings& settings, std::uint32_t sampleRateHz, const ViewLayout& layout, int x);

/// The value under `y`, in pixels from the client area's top edge, fractions allowed.
int yValueAt(const ViewSettings& settings, const ViewLayout& layout, double y);

/// Both values at a position relative to the client area's corner.
PointerValue pointerValueAt(const ViewSettings& settings, std::uint32_t sampleRateHz, const ViewLayout& layout,
                            Point position);

}  // namespace av::type1
