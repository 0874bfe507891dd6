#pragma once

#include "gfx/argb.h"

namespace av {

/// The largest hue, lightness and saturation. A hue of `hlsMax` is a full turn: red, green and blue lie a third apart.
inline constexpr int hlsMax = 140;

namespace detail {

/// One component of a fully given hue, between `lowest` and `highest`: it rises over a sixth of the circle, stays high
/// over a third, falls over a sixth and stays low over the last third.
constexpr int hlsComponent(int lowest, int highest, int hue) noexcept {
  constexpr int sixth = hlsMax / 6;
  constexpr int half = hlsMax / 2;
  constexpr int twoThirds = hlsMax * 2 / 3;
  constexpr int rounding = hlsMax / 12;
  if (hue < 0) hue += hlsMax;
  if (hue > hlsMax) hue -= hlsMax;
  if (hue < sixth) return lowest + ((highest - lowest) * hue + rounding) / sixth;
  if (hue < half) return highest;
  if (hue < twoThirds) return lowest + ((highest - lowest) * (twoThirds - hue) + rounding) / sixth;
  return lowest;
}

}  // namespace detail

/// An opaque colour from hue, lightness and saturation, each from 0 to `hlsMax`: the usual conversion in whole numbers
/// (bi-hexcone model), with its rounding at every division, so that the thirds and sixths of the circle are 46 and 23.
constexpr Argb argbFromHls(int hue, int lightness, int saturation) noexcept {
  constexpr int half = hlsMax / 2;
  constexpr int third = hlsMax / 3;
  const auto toByte = [](int component) { return static_cast<unsigned>((component * 255 + half) / hlsMax); };
  if (saturation == 0) {
    const unsigned grey = static_cast<unsigned>(lightness * 255 / hlsMax);
    return argbFromRgb(grey, grey, grey);
  }
  const int highest = lightness <= half ? (lightness * (hlsMax + saturation) + half) / hlsMax
                                        : lightness + saturation - (lightness * saturation + half) / hlsMax;
  const int lowest = 2 * lightness - highest;
  return argbFromRgb(toByte(detail::hlsComponent(lowest, highest, hue + third)),
                     toByte(detail::hlsComponent(lowest, highest, hue)),
                     toByte(detail::hlsComponent(lowest, highest, hue - third)));
}

}  // namespace av
