#pragma once

#include "common/line_list.h"
#include "common/relaxed.h"
#include "common/win/unique_handle.h"
#include "common/win/worker_platform.h"

#include <cstdint>
#include <memory>

namespace av {

/// The fall timer: a thread that lowers the peaks of a line list once a period. It sleeps plainly, so the real period is
/// the sleep plus the step.
///
/// Every start has a running flag of its own. A start that is made while a stop still waits (the wait dispatches messages,
/// which may bring another put) therefore begins a thread of its own, and the one that is being waited for ends all the
/// same.
///
/// All methods: [control thread]
class CTimer1 {
 public:
  /// `lines` outlives this object.
  explicit CTimer1(LineList& lines, WorkerPlatform& platform = systemWorkerPlatform()) noexcept;
  /// Ends the thread's sleep at once and waits for its end, while messages are dispatched.
  ~CTimer1();
  CTimer1(const CTimer1&) = delete;
  CTimer1& operator=(const CTimer1&) = delete;

  /// The length of every sleep from the next one on, in milliseconds; 0 and less sleep 1 ms.
  void setPeriod(std::int32_t periodMs) noexcept { m_periodMs = periodMs; }

  /// Starts the thread unless it runs. Where there is no thread to be had, nothing runs and a later start may succeed.
  void Start() noexcept;

  /// Ends the thread after the sleep that it is in, and waits for that while window messages are dispatched.
  void Stop() noexcept;

  bool isRunning() const noexcept { return m_run != nullptr; }

 private:
  struct Run;
  static DWORD WINAPI threadMain(void* argument);

  LineList& m_lines;
  WorkerPlatform& m_platform;
  const UniqueHandle m_ending;  ///< signalled when no thread may sleep any longer; null where the system had no event
  Relaxed<std::int32_t> m_periodMs = 0;
  std::unique_ptr<Run> m_run;
};

}  // namespace av
