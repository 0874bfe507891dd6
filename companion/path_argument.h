#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

#include "companion/failure.h"

namespace av::companion {

/// The path in a method's argument. Throws a Failure for an empty one, and for one with a character of code 0: the system
/// would read up to there and open another file than the one that is named.
inline std::wstring pathFrom(BSTR argument) {
  std::wstring path = argument ? std::wstring(argument, SysStringLen(argument)) : std::wstring();
  if (path.empty()) throw badArgument(L"the path is empty.");
  if (path.find(L'\0') != std::wstring::npos) throw badArgument(L"the path has a character of code 0.");
  return path;
}

/// A path as an error's text bears it: without its middle where it is longer than paths are as a rule.
inline std::wstring shownPath(const std::wstring& path) {
  constexpr std::size_t partLength = 125;
  if (path.size() <= MAX_PATH) return path;
  return path.substr(0, partLength) + L" ... " + path.substr(path.size() - partLength);
}

}  // namespace av::companion
