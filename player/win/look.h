#pragma once

#include "player/preset_file.h"
#include "player/win/hosted_control.h"

#include <array>
#include <string>
#include <vector>

namespace avplayer {

using Controls = std::array<HostedControl, controlCount>;

/// All that a preset keeps of the controls as they are.
Preset captureLook(const Controls& controls, std::string name, int dpi);

/// What a preset asks for that a control has not taken: "Meter.LineType = x: why".
using LookProblems = std::vector<std::wstring>;

/// Gives the controls the look of `preset`; what it does not name gets the value in `defaults`. Lengths in pixels grow
/// with the display from the preset's DPI to `dpi`.
LookProblems applyLook(Controls& controls, const Preset& defaults, const Preset& preset, int dpi);

}  // namespace avplayer
