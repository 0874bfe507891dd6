#pragma once

#include "gfx/argb.h"
#include "gfx/hls.h"
#include "gfx/saturate.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace av::type1 {

/// The colour of a balance between two channels, from −1 (opposite: orange) over 0 (one alone, or unrelated: lime) to 1
/// (equal: green). Values outside read as the nearest limit.
inline Argb balanceColour(double balance) noexcept {
  constexpr int hueSpan = 17;
  constexpr int hueCentre = 32;
  constexpr int lightness = 55;
  static constexpr auto colours = [] {
    std::array<Argb, 2 * hueSpan + 1> table{};
    for (int i = 0; i <= 2 * hueSpan; ++i) {
      table[static_cast<std::size_t>(i)] = argbFromHls(hueCentre - hueSpan + i, lightness, hlsMax);
    }
    return table;
  }();
  const int hue = std::clamp(truncToInt(balance * hueSpan + hueCentre), hueCentre - hueSpan, hueCentre + hueSpan);
  return colours[static_cast<std::size_t>(hue - (hueCentre - hueSpan))];
}

}  // namespace av::type1
