#pragma once

#include <cstdint>

namespace av {

/// A colour as 0xAARRGGBB, the order in which GDI+ takes it.
using Argb = std::uint32_t;

constexpr Argb argbFromRgb(unsigned red, unsigned green, unsigned blue) noexcept {
  return 0xFF000000u | (red & 0xFFu) << 16 | (green & 0xFFu) << 8 | (blue & 0xFFu);
}

inline constexpr Argb opaqueBlack = argbFromRgb(0, 0, 0);

/// An automation colour (0x00BBGGRR) as opaque ARGB. A plain byte shuffle: the system-colour flag in the high byte is
/// lost on purpose, system colours are not resolved.
constexpr Argb argbFromOleColor(std::uint32_t oleColor) noexcept {
  return argbFromRgb(oleColor, oleColor >> 8, oleColor >> 16);
}

/// The way back; alpha is dropped.
constexpr std::uint32_t oleColorFromArgb(Argb colour) noexcept {
  return (colour & 0xFFu) << 16 | (colour & 0xFF00u) | (colour >> 16 & 0xFFu);
}

}  // namespace av
