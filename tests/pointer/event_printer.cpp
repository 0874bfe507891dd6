// Shows the view in a window and prints its mouse events, for real_pointer_test.py:
//   event_printer VISUALIZATIONTYPE FFTVIEWTYPE
// First a line "view X Y WIDTH HEIGHT YSCALEWIDTH XSCALEHEIGHT" (X, Y: the view's corner on the screen), then one line
// for each event: its name and its arguments. Ends when its standard input does: 0, or 1 if something went wrong.

#include "host/container.h"
#include "host/create.h"
#include "host/message_pump.h"
#include "host/scale_strips.h"
#include "host/view_events.h"

#include <QELAudioVisualization4.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

void say(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
  std::putchar('\n');
  std::fflush(stdout);
}

struct Printer final : avhost::ViewEvents {
  void mouseMove(LONG x, LONG y, LONG xValue, LONG yValue) override { place("MouseMove", x, y, xValue, yValue); }
  void mouseUp(LONG x, LONG y, LONG xValue, LONG yValue) override { place("MouseUp", x, y, xValue, yValue); }
  void mouseDown(LONG x, LONG y, LONG xValue, LONG yValue) override { place("MouseDown", x, y, xValue, yValue); }
  void mouseClick(LONG x, LONG y) override { say("MouseClick %ld %ld", x, y); }
  void mouseDblClick() override { say("MouseDblClick"); }

 private:
  static void place(const char* event, LONG x, LONG y, LONG xValue, LONG yValue) {
    say("%s %ld %ld %ld %ld", event, x, y, xValue, yValue);
  }
};

/// Waits for the end of the standard input, then ends the main thread's message loop.
DWORD WINAPI waitForEnd(void* mainThread) {
  char ignored[64];
  DWORD read = 0;
  while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), ignored, sizeof ignored, &read, nullptr) && read > 0) {
  }
  PostThreadMessageW(*static_cast<DWORD*>(mainThread), WM_QUIT, 0, 0);
  return 0;
}

int run(int argumentCount, wchar_t** arguments) {
  if (argumentCount != 3) return 1;
  using Microsoft::WRL::ComPtr;
  const avhost::Apartment apartment;
  avhost::ControlLibrary library;
  ComPtr<IAudioVisualization4Type1> view;
  avhost::Container container;
  Printer printer;
  if (FAILED(library.loadBesideProgram(L"QELAudioVisualization4.dll")) ||
      FAILED(library.create(CLSID_CAudioVisualization4Type1, view.GetAddressOf())) ||
      FAILED(container.open({.title = L"events", .clientSizePx = {320, 240}, .positionPx = {100, 80}})) ||
      FAILED(container.host(view.Get())))
    return 1;
  view->put_VisualizationType(wcstol(arguments[1], nullptr, 10));
  view->put_FFTViewType(wcstol(arguments[2], nullptr, 10));
  avhost::pumpMessages(500);  // the screen's manager may still be moving the window
  const av::test::ScaleStrips strips = av::test::lookAtStrips(view.Get(), container.controlWindow());
  if (FAILED(printer.connect(view.Get()))) return 1;
  POINT corner{};
  ClientToScreen(container.controlWindow(), &corner);
  say("view %ld %ld %d %d %d %d", corner.x, corner.y, strips.clientWidthPx, strips.clientHeightPx, strips.yScaleWidthPx,
      strips.xScaleHeightPx);

  DWORD self = GetCurrentThreadId();
  const HANDLE waiter = CreateThread(nullptr, 0, waitForEnd, &self, 0, nullptr);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  WaitForSingleObject(waiter, INFINITE);
  CloseHandle(waiter);
  printer.disconnect();
  const bool balanced = container.close() == 0 && view.Reset() == 0 && library.canUnloadNow() == S_OK;
  return balanced ? 0 : 1;
}

}  // namespace

int wmain(int argumentCount, wchar_t** arguments) { return run(argumentCount, arguments); }
