#pragma once

#include "player/preset_file.h"

#include <string_view>
#include <vector>

namespace avplayer {

/// The presets that the player brings along. They say what differs from the controls' defaults.
std::vector<Preset> builtinPresets();

/// Their text, in the form of the preset file.
std::string_view builtinPresetText();

/// The look of a fresh player.
inline constexpr std::string_view firstPreset = "Midnight";

/// The controls' own defaults, a preset without values.
inline constexpr std::string_view defaultsPreset = "As it comes";

}  // namespace avplayer
