// Runs the program of docs/tutorial.md as it stands there and saves what its window shows after two seconds of its sound.

#include "demo/failure.h"
#include "demo/window_picture.h"
#include "host/container.h"
#include "host/controls.h"
#include "host/message_pump.h"
#include "host/samples.h"

#include <windows.h>

#include <cstdio>
#include <filesystem>

namespace {

constexpr int blocksToShow = 88;  // two seconds
constexpr DWORD restMs = 3000;    // twice what the smoothed curves need to stand still

std::filesystem::path pictureFile;
int blocks = 0;

BOOL CALLBACK takeFirst(HWND window, LPARAM found) {
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

/// The program's window; null when it has closed.
HWND programWindow() {
  HWND window = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), takeFirst, reinterpret_cast<LPARAM>(&window));
  return window;
}

}  // namespace

namespace avhost {

/// Stands in for pumpMessages in the program, which calls it once behind each block: hurries to the block that is shown,
/// lets the control come to rest, keeps its picture and closes the window, as a user would.
void pumpToPicture(DWORD) {
  if (++blocks < blocksToShow) return pumpMessages(0);
  pumpMessages(restMs);
  const HWND window = programWindow();
  const HWND control = GetWindow(window, GW_CHILD);
  if (!control) throw avdemo::Failure{L"the program shows no control"};
  UpdateWindow(control);
  avdemo::saveWindowPicture(control, pictureFile);
  DestroyWindow(window);
}

}  // namespace avhost

#define main runTutorial
#define pumpMessages pumpToPicture
#include "tutorial_listing.h"  // made of the page by CMake
#undef pumpMessages
#undef main

int wmain(int argc, wchar_t** argv) {
  if (argc != 2) {
    std::fputs("tutorial_picture FILE.png\n", stderr);
    return 2;
  }
  pictureFile = argv[1];
  SetProcessDPIAware();  // otherwise the system pretends 96 DPI and stretches the window
  try {
    const avdemo::GdiplusSession gdiplus;
    const int code = runTutorial();
    if (code == 0 && blocks != blocksToShow) throw avdemo::Failure{L"the program ended before its picture was taken"};
    return code;
  } catch (const avdemo::Failure& failure) {
    std::fwprintf(stderr, L"tutorial_picture: %ls\n", failure.text.c_str());
    return 1;
  }
}
