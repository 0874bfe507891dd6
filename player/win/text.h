#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>

namespace avplayer {

inline std::wstring wide(std::string_view utf8) {
  const int bytes = static_cast<int>(utf8.size());
  std::wstring text(utf8.size(), L'\0');
  if (bytes > 0)
    text.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, text.data(), bytes)));
  return text;
}

inline std::string narrow(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  std::string utf8(text.size() * 3, '\0');
  if (length > 0)
    utf8.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(),
                                                        static_cast<int>(utf8.size()), nullptr, nullptr)));
  return utf8;
}

/// What a window shows as its text.
inline std::wstring textOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

/// The text of a BSTR, which is freed; empty for null.
inline std::wstring taken(BSTR text) {
  std::wstring copy = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
  SysFreeString(text);
  return copy;
}

/// Such as 0x80070057.
inline std::wstring hexText(HRESULT result) {
  wchar_t code[16];
  wsprintfW(code, L"0x%08lX", static_cast<unsigned long>(result));
  return code;
}

}  // namespace avplayer
