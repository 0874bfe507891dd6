#pragma once

#include "QELAudioVisualization4.h"
#include "common/line_list.h"
#include "common/win/critical_section.h"
#include "common/win/timer1.h"

#include <cstdint>
#include <type_traits>

namespace av {

/// The line list of a control with its critical section and its fall thread. `Interface`: the control's dispatch
/// interface.
/// Destroyed in the order that keeps the thread from lines and lock that are gone: thread, lines, lock.
template <class Interface>
class CMyLineList {
  static_assert(std::is_base_of_v<IAudioVisualizationTemplate, Interface>);

 public:
  explicit CMyLineList(WorkerPlatform& platform = systemWorkerPlatform()) noexcept : m_fall(m_lines, platform) {}

  /// The lines themselves; see there who may do what.
  LineList& lines() noexcept { return m_lines; }
  const LineList& lines() const noexcept { return m_lines; }

  /// Lets the peaks fall by 1 every `periodMs` milliseconds (0 or less: 1 ms) from now on, also if that was switched off.
  /// [control thread]
  void StartFall(std::int32_t periodMs) noexcept {
    m_fall.setPeriod(periodMs);
    m_fall.Start();
  }

  /// Switches the fall on or off; off, it returns when the thread has slept its period out. [control thread]
  void SetTickRunning(bool on) noexcept {
    if (on) {
      m_fall.Start();
    } else {
      m_fall.Stop();
    }
  }

  bool isTickRunning() const noexcept { return m_fall.isRunning(); }

 private:
  CriticalSection m_section;
  LineList m_lines{m_section};
  CTimer1 m_fall;
};

}  // namespace av
