#pragma once

#include "player/value_text.h"

#include <windows.h>

#include <optional>
#include <string>

namespace avplayer {

// The system's dialogs. Empty when the user thought better of it.

std::optional<COLORREF> askForColour(HWND owner, COLORREF shown);
std::optional<FontText> askForFont(HWND owner, const FontText& shown);
std::optional<std::wstring> askForWavFile(HWND owner);

}  // namespace avplayer
