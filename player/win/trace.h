#pragma once

#include <string>

namespace avplayer {

/// Says a line on the standard output when the command line asked for it: for programs that drive the window.
void trace(const std::wstring& line);
void enableTrace();

}  // namespace avplayer
