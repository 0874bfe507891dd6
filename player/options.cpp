#include "player/options.h"

#include <cwchar>

namespace avplayer {

const wchar_t usage[] =
    L"avplayer [OPTIONS] [FILE.wav]\n\n"
    L"Plays a WAV file into the three controls; without one, a demonstration sound.\n\n"
    L"--silent\tplay by the clock, without a sound device\n"
    L"--loop, --once\tbegin again at the end, or stop there\n"
    L"--paused\tdo not play at once\n"
    L"--at SECONDS\tbegin there\n"
    L"--preset NAME\tthe look to begin with\n"
    L"--presets FILE\twhere presets are kept\n"
    L"--snapshots DIR\twhere snapshots go\n"
    L"--select NAME\tview, meter or analyser\n"
    L"--size WxH\tsize of the window, in units of 96 DPI\n"
    L"--no-panel\twithout the properties\n"
    L"--full-screen\tthe controls alone\n"
    L"--registered\tcreate the controls from the registry\n"
    L"--picture FILE\tsave a PNG of the window and end\n"
    L"--trace\t\tsay on the standard output what happens\n";

namespace {

/// A whole number from 100 to 8000.
bool readLength(const std::wstring& text, int& length) {
  constexpr long smallest = 100;
  constexpr long largest = 8000;
  wchar_t* end = nullptr;
  const long value = std::wcstol(text.c_str(), &end, 10);
  length = static_cast<int>(value);
  return !text.empty() && *end == L'\0' && value >= smallest && value <= largest;
}

bool readSize(const std::wstring& text, Options& options) {
  const std::size_t x = text.find(L'x');
  return x != std::wstring::npos && readLength(text.substr(0, x), options.width96) &&
         readLength(text.substr(x + 1), options.height96);
}

bool readSeconds(const std::wstring& text, double& seconds) {
  wchar_t* end = nullptr;
  seconds = std::wcstod(text.c_str(), &end);
  return !text.empty() && *end == L'\0' && seconds >= 0 && seconds < 1e7;
}

bool isControl(const std::wstring& name) { return name == L"view" || name == L"meter" || name == L"analyser"; }

/// One option; `value` gives the next argument. The result is the problem.
std::wstring readOption(const std::wstring& name, Options& options, bool& needsValue, const std::wstring* value) {
  needsValue = false;
  if (name == L"--silent") options.silent = true;
  else if (name == L"--loop") options.loop = true;
  else if (name == L"--once") options.loop = false;
  else if (name == L"--paused") options.paused = true;
  else if (name == L"--no-panel") options.panel = false;
  else if (name == L"--full-screen") options.fullScreen = true;
  else if (name == L"--registered") options.registered = true;
  else if (name == L"--trace") options.trace = true;
  else if (name == L"--help" || name == L"-h" || name == L"/?") options.help = true;
  else needsValue = true;
  if (!needsValue) return {};

  const bool known = name == L"--at" || name == L"--size" || name == L"--select" || name == L"--preset" ||
                     name == L"--presets" || name == L"--snapshots" || name == L"--picture";
  if (!known) return L"unknown option " + name + L"; --help lists them";
  if (!value) return name + L" needs a value";
  if (name == L"--preset") options.preset = *value;
  else if (name == L"--presets") options.presetFile = *value;
  else if (name == L"--snapshots") options.snapshotFolder = *value;
  else if (name == L"--picture") options.picture = *value;
  else if (name == L"--at" && !readSeconds(*value, options.atS)) return L"--at takes seconds, not \"" + *value + L"\"";
  else if (name == L"--size" && !readSize(*value, options))
    return L"--size takes WIDTHxHEIGHT from 100x100 to 8000x8000, not \"" + *value + L"\"";
  else if (name == L"--select" && !isControl(options.selected = *value))
    return L"--select takes view, meter or analyser, not \"" + *value + L"\"";
  return {};
}

}  // namespace

OptionsResult parseOptions(const std::vector<std::wstring>& arguments) {
  OptionsResult result;
  bool filesOnly = false;
  for (std::size_t i = 0; i < arguments.size() && result.problem.empty(); ++i) {
    const std::wstring& argument = arguments[i];
    const bool isFile = filesOnly || argument.empty() || (argument[0] != L'-' && argument != L"/?");
    if (isFile) {
      if (!result.options.file.empty()) result.problem = L"more than one file";
      result.options.file = argument;
    } else if (argument == L"--") {
      filesOnly = true;
    } else {
      bool needsValue = false;
      const std::wstring* value = i + 1 < arguments.size() ? &arguments[i + 1] : nullptr;
      result.problem = readOption(argument, result.options, needsValue, value);
      if (needsValue) ++i;
    }
  }
  return result;
}

}  // namespace avplayer
