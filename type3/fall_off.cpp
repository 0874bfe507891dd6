#include "type3/fall_off.h"

#include <algorithm>

namespace av::type3 {

auto FallOff::tick(std::span<LineInfo> columns, bool autoRepaint, std::uint32_t nowMs) noexcept -> Step {
  if (!m_active || !autoRepaint || nowMs - m_lastBlockMs < holdMs) return Step::none;
  bool falling = false;
  for (LineInfo& column : columns) {
    if (!(column.peak > 0)) continue;
    column.value = std::max(column.value - stepPx, 0.0);
    falling = true;
  }
  if (falling) return Step::falling;
  m_active = false;
  return Step::ended;
}

}  // namespace av::type3
