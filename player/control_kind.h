#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace avplayer {

/// The three controls, in the order in which they are numbered in the window.
enum class ControlKind { view, meter, analyser };

inline constexpr std::size_t controlCount = 3;
inline constexpr std::array<ControlKind, controlCount> allControls = {ControlKind::view, ControlKind::meter,
                                                                      ControlKind::analyser};

constexpr std::size_t indexOf(ControlKind control) noexcept { return static_cast<std::size_t>(control); }

/// The word before the dot in a preset's lines, and on the panel's tabs.
constexpr std::string_view shortName(ControlKind control) noexcept {
  constexpr std::string_view names[] = {"View", "Meter", "Analyser"};
  return names[indexOf(control)];
}

}  // namespace avplayer
