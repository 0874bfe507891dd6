#pragma once

#include "host/message_pump.h"

#include <windows.h>

namespace av::test {

/// The mouse as a hand moves it: real input, which the system leads to the window under the pointer and makes double
/// clicks of. [control thread]
class Pointer {
 public:
  /// Lays the pointer where no window of the tests is: a window that is opened under it would hear of it at once.
  static void park() { put({GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1}); }

  /// Over the pixel (x, y) of the window's client area.
  static void moveTo(HWND window, int x, int y) {
    POINT place{x, y};
    ClientToScreen(window, &place);
    put(place);
  }

  static void press() { button(MOUSEEVENTF_LEFTDOWN); }
  static void release() { button(MOUSEEVENTF_LEFTUP); }
  static void click() {
    press();
    release();
  }

 private:
  static void put(POINT screen) {
    // 0 to 65535 from edge to edge; the smallest number that comes back as the wanted pixel.
    const auto absolute = [](LONG pixel, int metric) {
      const LONG size = GetSystemMetrics(metric);
      return (pixel * 65536 + size - 1) / size;
    };
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = absolute(screen.x, SM_CXSCREEN);
    input.mi.dy = absolute(screen.y, SM_CYSCREEN);
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    SendInput(1, &input, sizeof input);
    avhost::pumpUntil(2000, [&] {
      POINT now{};
      return GetCursorPos(&now) && now.x == screen.x && now.y == screen.y;
    });
    avhost::pumpMessages(20);  // a move is only delivered when the queue is looked at
  }

  static void button(DWORD flag) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flag;
    SendInput(1, &input, sizeof input);
    avhost::pumpMessages(20);
  }
};

}  // namespace av::test
