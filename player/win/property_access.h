#pragma once

#include "player/win/property_info.h"

#include <windows.h>

#include <oaidl.h>

#include <optional>
#include <string>
#include <string_view>

namespace avplayer {

/// What a get or put answered.
struct Answer {
  HRESULT result = S_OK;
  std::wstring text;  ///< of the error information; of the system where there is none
  bool sent = true;   ///< false: the text made no value, the object was not asked
};

using Index = std::optional<LONG>;

/// The value as text (player/value_text.h). `text` stays as it is on failure.
Answer getText(IDispatch& object, const Property& property, Index index, std::string& text);

/// Puts the value that `text` stands for.
Answer putText(IDispatch& object, const Property& property, Index index, std::string_view text);

}  // namespace avplayer
