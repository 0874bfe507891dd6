#pragma once

#include "demo/picture_list.h"

#include <windows.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace avdemo {

struct Options {
  std::filesystem::path outFolder = L".";
  std::optional<SIZE> sizePx;           ///< of the control; empty: a size that suits the display's DPI
  std::vector<std::wstring> looks;      ///< names of the looks to draw; empty: all
  std::vector<ListedPicture> pictures;  ///< not recordings are drawn but these; empty: recordings
  bool registered = false;  ///< create the control by its class identifier instead of loading the library beside us
  bool help = false;
  std::vector<std::filesystem::path> recordings;
};

extern const wchar_t usage[];

/// Reads the command line; throws a Failure with one line for the user when it makes no sense.
Options parseOptions(int argc, const wchar_t* const* argv);

}  // namespace avdemo
