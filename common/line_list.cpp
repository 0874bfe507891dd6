#include "common/line_list.h"

#include <algorithm>
#include <cstddef>

namespace av {

void LineList::SetLineCount(std::int32_t count) {
  // Made before the lock is taken and freed after it is given back: nobody waits for the allocator.
  std::vector<LineInfo> lines(static_cast<std::size_t>(std::max(count, 0)));
  const std::lock_guard guard(m_lock);
  m_lines.swap(lines);
  m_count = std::max(count, 0);
}

void LineList::SetHoldTime(std::int32_t holdMs) noexcept {
  const std::lock_guard guard(m_lock);
  for (LineInfo& line : m_lines) line.holdMs = holdMs;
}

void LineList::ResetLines(std::uint32_t nowMs) noexcept {
  const std::lock_guard guard(m_lock);
  for (LineInfo& line : m_lines) writeLine(line, emptyLineValue, nowMs);
}

}  // namespace av
