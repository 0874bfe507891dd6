#pragma once

#include <windows.h>

#include <string>

namespace avdemo {

/// Something that the demo cannot go on after; carries the line for the user.
struct Failure {
  std::wstring text;
};

/// Throws a Failure that names what was tried when `result` is an error.
inline void require(HRESULT result, const wchar_t* what) {
  if (SUCCEEDED(result)) return;
  wchar_t code[16];
  wsprintfW(code, L"0x%08lX", static_cast<unsigned long>(result));
  throw Failure{std::wstring(what) + L" failed: " + code};
}

}  // namespace avdemo
