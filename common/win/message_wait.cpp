#include "common/win/message_wait.h"

#include <optional>

namespace av {

namespace {

/// Puts a quit request back that was taken off the queue, once no more messages are taken from it.
class KeptQuit {
 public:
  KeptQuit() = default;
  KeptQuit(const KeptQuit&) = delete;
  KeptQuit& operator=(const KeptQuit&) = delete;
  ~KeptQuit() {
    if (m_exitCode) PostQuitMessage(*m_exitCode);
  }
  void keep(const MSG& quit) noexcept { m_exitCode = static_cast<int>(quit.wParam); }

 private:
  std::optional<int> m_exitCode;
};

}  // namespace

WaitResult waitDispatchingMessages(HANDLE handle, DWORD timeoutMs) noexcept {
  const DWORD startTick = GetTickCount();
  KeptQuit quit;
  for (;;) {
    DWORD remainingMs = INFINITE;
    if (timeoutMs != INFINITE) {
      const DWORD elapsedMs = GetTickCount() - startTick;
      remainingMs = elapsedMs < timeoutMs ? timeoutMs - elapsedMs : 0;
    }
    // Input that was seen but not taken counts too, or a message that somebody else peeked at would be left lying.
    const DWORD result = MsgWaitForMultipleObjectsEx(1, &handle, remainingMs, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED_0) return WaitResult::signalled;
    if (result == WAIT_TIMEOUT) return WaitResult::timedOut;
    if (result != WAIT_OBJECT_0 + 1) return WaitResult::failed;
    // One message at a time, with a look at the handle in between: a window that posts to itself without end must
    // not keep the wait from ending. Peeking also lets sent messages in.
    MSG message;
    if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (message.message == WM_QUIT) {
        quit.keep(message);
      } else {
        TranslateMessage(&message);
        DispatchMessageW(&message);
      }
    }
    // A stream of messages must not outlast the time limit either.
    if (timeoutMs != INFINITE && GetTickCount() - startTick >= timeoutMs)
      return WaitForSingleObject(handle, 0) == WAIT_OBJECT_0 ? WaitResult::signalled : WaitResult::timedOut;
  }
}

}  // namespace av
