#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>
#include <string_view>

namespace avdemo {

/// What a late-bound call answered.
struct Answer {
  HRESULT result = S_OK;  ///< the accessor's own one where the call ended in an exception
  std::wstring text;      ///< the value that was read, or what the control says of a refusal
};

/// Puts a property as a script would: `assignment` is NAME=VALUE or, with an index, NAME(INDEX)=VALUE. Values are texts
/// that automation converts; #RRGGBB is a colour, `bool N` a boolean of that number, and a property that holds a font takes
/// FACE,POINTS or FACE,POINTS,WEIGHT. [control thread]
Answer putNamed(IDispatch& control, std::wstring_view assignment);

/// Reads NAME or NAME(INDEX). Whole numbers and booleans are written as decimal numbers, colours as 0x00BBGGRR, a font as
/// FACE,POINTS,WEIGHT. [control thread]
Answer getNamed(IDispatch& control, std::wstring_view name);

}  // namespace avdemo
