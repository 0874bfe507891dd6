// The player: the three controls in one window, with everything that they can do within reach.

#include "host/create.h"
#include "player/options.h"
#include "player/win/picture.h"
#include "player/win/player_window.h"
#include "player/win/trace.h"

#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

namespace avplayer {

namespace {

constexpr int exitFailure = 1;
constexpr int exitBadInput = 2;
constexpr wchar_t title[] = L"QELAudioVisualization4 Player";

std::vector<std::wstring> arguments() {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::wstring> list;
  for (int i = 1; words && i < count; ++i) list.emplace_back(words[i]);
  LocalFree(words);
  return list;
}

/// Tells what went wrong: to whoever reads the trace, else in a box.
int fail(const std::wstring& text, bool traced, int code) {
  trace(L"failed " + text);
  if (!traced) MessageBoxW(nullptr, text.c_str(), title, MB_OK | MB_ICONERROR);
  return code;
}

int runMessages(PlayerWindow& window) {
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (window.translate(message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

int run() {
  const OptionsResult parsed = parseOptions(arguments());
  if (parsed.options.trace) enableTrace();
  if (!parsed.problem.empty()) return fail(parsed.problem, parsed.options.trace, exitBadInput);
  if (parsed.options.help) {
    MessageBoxW(nullptr, usage, title, MB_OK);
    return 0;
  }
  const avhost::Apartment apartment;
  if (FAILED(apartment.result())) return fail(L"COM does not start.", parsed.options.trace, exitFailure);
  const GdiplusSession gdiplus;
  const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS | ICC_WIN95_CLASSES};
  InitCommonControlsEx(&classes);
  PlayerWindow window(parsed.options);
  const std::wstring problem = window.open();
  if (!problem.empty()) return fail(problem, parsed.options.trace, exitFailure);
  return runMessages(window);
}

}  // namespace

}  // namespace avplayer

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) { return avplayer::run(); }
