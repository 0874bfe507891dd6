#pragma once

#include "player/control_kind.h"

namespace avplayer {

inline constexpr wchar_t programName[] = L"QELAudioVisualization4 Player";

/// The controls in file names, options and the trace.
inline constexpr const wchar_t* fileNames[controlCount] = {L"view", L"meter", L"analyser"};

}  // namespace avplayer
