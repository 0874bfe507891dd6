#pragma once

#include <optional>
#include <string>
#include <vector>

namespace avplayer {

/// What the command line asks for.
struct Options {
  std::wstring file;                   ///< empty: the demonstration sound
  bool silent = false;                 ///< plays by the clock, no sound device is tried
  std::optional<bool> loop;            ///< empty: the demonstration sound loops, files do not
  bool paused = false;                 ///< shows the moment `atS` and waits
  double atS = 0;                      ///< where it begins
  int width96 = 1180, height96 = 760;  ///< of the client area, at 96 DPI
  std::wstring preset;                 ///< by name; empty: the first one
  std::wstring presetFile;             ///< empty: in the user's application data
  std::wstring snapshotFolder;         ///< empty: the user's pictures
  std::wstring selected;               ///< view, meter or analyser
  std::wstring picture;                ///< saves a picture of the window there and ends
  bool panel = true;
  bool fullScreen = false;
  bool registered = false;  ///< creates the controls by their class identifiers
  bool trace = false;       ///< says on the standard output what happens, for programs that drive the window
  bool help = false;
};

struct OptionsResult {
  Options options;
  std::wstring problem;  ///< one line for the user; empty where all is well
};

/// `arguments` without the program's name.
OptionsResult parseOptions(const std::vector<std::wstring>& arguments);

extern const wchar_t usage[];

}  // namespace avplayer
