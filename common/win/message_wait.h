#pragma once

#include <windows.h>

namespace av {

enum class WaitResult { signalled, timedOut, failed };

/// Waits for `handle` while the calling thread keeps dispatching its window messages, sent and posted: calls that COM
/// delivers to this thread complete meanwhile. A WM_QUIT that arrives is kept for the caller's own message loop.
/// May be called for several handles in turn. `timeoutMs` INFINITE: no limit.
/// `failed`: the handle cannot be waited for.
// [any thread]
WaitResult waitDispatchingMessages(HANDLE handle, DWORD timeoutMs = INFINITE) noexcept;

}  // namespace av
