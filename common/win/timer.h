#pragma once

#include "common/win/critical_section.h"
#include "common/win/tick_object.h"
#include "common/win/worker_platform.h"
#include "ole/module_lock.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

namespace av {

/// The part of `CTimer` that does not depend on the control's type.
///
/// A worker thread calls the control's `_OnTimer` at a fixed period through a pointer that was marshalled to it, so
/// that every tick runs on the control's own thread, between the host's calls. See runRepaintSchedule for the timing.
///
/// Workers never touch the control or this object: what they share with it (the words, the stream) lives as long as
/// the last of them, and each holds a reference to the module that its code is in. So a worker that cannot be waited
/// for, because the control dies inside one of its ticks, still ends safely on its own.
///
/// All methods: [control thread], save those that say otherwise.
class RepaintTimer {
 public:
  RepaintTimer(const RepaintTimer&) = delete;
  RepaintTimer& operator=(const RepaintTimer&) = delete;

  /// Lets every thread call `Start` from now on, also one that is in no apartment: the way to this thread of the workers
  /// that it starts is laid here and kept in the process's table of interfaces, until `shutDown`. On this thread `Start`
  /// goes on marshalling for itself. False where the system refuses; then only this thread can start workers.
  bool allowStartOnAnyThread() noexcept;

  /// Starts a worker, or, when one runs, only gives it a new period, which counts from its next wait. Always returns 0;
  /// failures are not reported: without marshalling the worker ticks nobody, without a thread nothing ticks.
  /// After `clearRunning` a second worker starts even if the first has not woken yet; then both tick.
  /// `periodMs`: milliseconds. Does nothing once `cutLoose` or `shutDown` was called, and while `Stop` waits. On another
  /// thread it starts no worker unless `allowStartOnAnyThread` was called with success.
  // [any thread]
  std::uint32_t Start(std::uint32_t periodMs) noexcept;

  /// Clears the running flag and waits for the youngest worker to end, at most about a period, while window messages
  /// are dispatched: they carry the tick that may be on its way. Called inside a tick it does not wait, since that
  /// tick's worker cannot end before.
  void Stop() noexcept;

  /// Only clears the running flag: workers end after the wait they are in.
  // [any thread]
  void clearRunning() noexcept;

  /// First step of the control's destruction: clears the running flag; ticks that are delivered from now on, also
  /// inside later waits, no longer reach the control; no Start works any more.
  void cutLoose() noexcept;

  /// Last step: `cutLoose`, then waits for every worker that was ever started, while window messages are dispatched.
  /// Does not wait inside a tick (the control was released in its own `_OnTimer`), and gives up on a worker that hangs
  /// in a call to an apartment that is gone. Later calls do nothing.
  void shutDown() noexcept;

  /// Workers that are still alive.
  std::size_t liveWorkers() noexcept;

 protected:
  RepaintTimer(IAudioVisualizationTemplate* control, const IID& dispatchId, ole::ModuleLock& moduleLock,
               WorkerPlatform& platform);
  ~RepaintTimer();

 private:
  struct Shared;
  struct Worker;
  struct WorkerStart;

  static DWORD WINAPI workerMain(void* argument);
  static void runWorker(std::shared_ptr<Shared>&& owned);
  void registerTickObject() noexcept;
  bool onControlThread() const noexcept;
  bool canFetch() const noexcept;
  bool ensureTickObject() noexcept;
  void marshalAndCreateWorker() noexcept;
  IStream* marshalTickObject() noexcept;
  std::shared_ptr<Worker> createWorker() noexcept;
  void waitForEnd(const Worker& worker) noexcept;
  void forgetEndedWorkers() noexcept;

  IAudioVisualizationTemplate* const m_control;  ///< weak: the timer is a part of the control
  const IID m_dispatchId;
  ole::ModuleLock& m_moduleLock;
  WorkerPlatform& m_platform;
  const DWORD m_controlThreadId = GetCurrentThreadId();
  const std::shared_ptr<Shared> m_shared;
  /// Made when it is first needed; other threads read it only once it is in the table.
  Microsoft::WRL::ComPtr<TickObject> m_tickObject;

  CriticalSection m_lock;                          ///< guards what follows; never held while messages are dispatched
  std::vector<std::shared_ptr<Worker>> m_workers;  ///< every worker that may still be alive
  std::shared_ptr<Worker> m_youngest;              ///< the one that Stop waits for
  bool m_stopping = false;
  bool m_cutLoose = false;
  bool m_shutDown = false;
};

/// The repaint timer of a control.
/// `Class`: the control. `Interface`: its dispatch interface, derived from IAudioVisualizationTemplate.
/// `iid`: that interface's identifier, which is what marshalling looks up.
/// A member of the control; the control calls `cutLoose` and `shutDown` in its destructor, with its own reference count
/// pinned, since the waits dispatch messages.
template <class Class, class Interface, const IID* iid>
class CTimer final : public RepaintTimer {
  static_assert(std::is_base_of_v<IAudioVisualizationTemplate, Interface>);

 public:
  explicit CTimer(Class& control, ole::ModuleLock& moduleLock = ole::moduleLock(),
                  WorkerPlatform& platform = systemWorkerPlatform())
      : RepaintTimer(static_cast<Interface*>(&control), *iid, moduleLock, platform) {}
};

}  // namespace av
