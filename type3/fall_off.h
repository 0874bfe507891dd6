#pragma once

#include "common/line_list.h"

#include <cstdint>
#include <span>

namespace av::type3 {

/// Lets the columns fall when the audio has stopped, a step a timer tick.
class FallOff {
 public:
  static constexpr std::uint32_t holdMs = 500;  ///< so long columns stay after the last block
  static constexpr double stepPx = 5.0;

  enum class Step {
    none,     ///< nothing has changed
    falling,  ///< columns have changed: a redraw is due
    ended,    ///< all have fallen: the bands go to zero, and a redraw is due a last time
  };

  /// A block has been shown.
  void blockArrived(std::uint32_t nowMs) noexcept {
    m_active = true;
    m_lastBlockMs = nowMs;
  }

  /// A timer tick. Columns whose peak is above zero fall by `stepPx`, not below zero; their peaks are the line list's to
  /// lower. Times are tick counts that wrap at 2^32. [under the line lock]
  Step tick(std::span<LineInfo> columns, bool autoRepaint, std::uint32_t nowMs) noexcept;

  bool isActive() const noexcept { return m_active; }

 private:
  bool m_active = false;
  std::uint32_t m_lastBlockMs = 0;
};

}  // namespace av::type3
