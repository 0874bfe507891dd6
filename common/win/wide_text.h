#pragma once

#include <string>

namespace av {

/// Text of the portable core as Windows takes it: both are UTF-16.
inline std::wstring wideText(const std::u16string& text) { return {text.begin(), text.end()}; }

}  // namespace av
