#pragma once

#include <windows.h>

#include <string>
#include <utility>

namespace av::companion {

/// Thrown inside the companion where a call is refused, and caught at the method that was called, which makes error
/// information of it. `text` says what is wrong, beginning in lower case.
struct Failure {
  Failure(HRESULT failure, std::wstring why) : result(failure), text(std::move(why)) {}
  HRESULT result;
  std::wstring text;
};

/// An argument that makes no sense.
inline Failure badArgument(std::wstring text) { return {E_INVALIDARG, std::move(text)}; }

/// A call that comes too early or too late.
inline Failure badMoment(std::wstring text) { return {E_UNEXPECTED, std::move(text)}; }

/// What the system says of a file.
Failure fileFailure(DWORD systemError, const std::wstring& path);

}  // namespace av::companion
