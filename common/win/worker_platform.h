#pragma once

#include <windows.h>

namespace av {

/// What a repaint timer takes from the system, as a seam for its tests: threads, time and the activation context.
/// Outlives every worker thread: workers call `tickCount` and `sleepMs` until they end.
class WorkerPlatform {
 public:
  /// A thread with default security and stack size that runs at once. Null when there is none to be had.
  // [any thread]
  virtual HANDLE createThread(LPTHREAD_START_ROUTINE body, void* argument, DWORD& threadId) noexcept = 0;

  /// Milliseconds since the system started, wrapping at 2^32.
  // [any thread]
  virtual DWORD tickCount() noexcept = 0;

  // [repaint worker]
  virtual void sleepMs(DWORD durationMs) noexcept = 0;

  /// Runs `step(argument)` with this module's own manifest as the thread's activation context, so that marshalling
  /// finds the type library even when nothing is registered and the manifest that the control was created from is no
  /// longer active. A thread that is created by the step inherits the context.
  // [any thread]
  virtual void inModuleContext(void (*step)(void*), void* argument) noexcept = 0;

 protected:
  ~WorkerPlatform() = default;
};

/// The system itself.
WorkerPlatform& systemWorkerPlatform() noexcept;

}  // namespace av
