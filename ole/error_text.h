#pragma once

#include <windows.h>
#include <unknwn.h>

namespace av::ole {

/// Leaves `text` on the thread as the error information of a failing method of `interfaceId` and returns `result`, so
/// that a refusal is one expression. Scripts and Visual Basic show text and `source` to their user; a caller that reads
/// neither gets the bare result as ever. Where no memory is left for the text, the result goes without one.
HRESULT refuse(HRESULT result, REFIID interfaceId, const wchar_t* source, const wchar_t* text) noexcept;

}  // namespace av::ole
