#pragma once

// Waits that keep the message loop of a control's thread turning. Timer ticks, paints and calls from other apartments
// arrive as messages; a thread that sleeps instead starves its controls. For hosts; C++11 and the Windows headers only.

#include <windows.h>

namespace avhost {

/// Dispatches messages until `done()` is true or `timeoutMs` milliseconds have passed; returns the last `done()`.
/// `done` is asked after every message and at least every 10 ms. A WM_QUIT ends the wait and is put back for the
/// host's own loop.  // [control thread]
template <class Predicate>
bool pumpUntil(DWORD timeoutMs, Predicate done) {
  const ULONGLONG startMs = GetTickCount64();
  for (;;) {
    MSG message;
    const bool found = PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;
    if (found && message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return done();
    }
    if (found) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    if (done()) return true;
    const ULONGLONG elapsedMs = GetTickCount64() - startMs;
    if (elapsedMs < timeoutMs) {
      const DWORD leftMs = static_cast<DWORD>(timeoutMs - elapsedMs);
      if (!found) MsgWaitForMultipleObjectsEx(0, nullptr, leftMs < 10 ? leftMs : 10, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    } else if (!found || elapsedMs >= timeoutMs + 1000ull) {
      return false;  // the queue is empty, or messages come faster than they can be dispatched
    }
  }
}

/// Dispatches messages for `durationMs` milliseconds; 0: only those that wait already.  // [control thread]
inline void pumpMessages(DWORD durationMs) {
  pumpUntil(durationMs, [] { return false; });
}

}  // namespace avhost
