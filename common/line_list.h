#pragma once

#include "common/lockable.h"
#include "common/relaxed.h"

#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace av {

/// One line (bar, column) of a segmented control, with its peak. Levels are in dB in the level meter and in pixels in the
/// spectrum analyser; times are the system's tick count in milliseconds, which wraps at 2^32.
struct LineInfo {
  std::int32_t holdMs = 1000;  ///< how long a peak stays before it falls
  double value = -91.0;
  double peak = -91.0;
  std::uint32_t peakTime = 0;  ///< tick count when `peak` was last raised

  friend bool operator==(const LineInfo&, const LineInfo&) = default;
};

/// The value of a line that shows nothing; what fresh and reset lines hold.
inline constexpr double emptyLineValue = -91.0;

/// Writes a new value; a peak that it exceeds rises to it and is held anew from `nowMs` on. A value that is not a number
/// is written as it is and raises nothing.
inline void writeLine(LineInfo& line, double value, std::uint32_t nowMs) noexcept {
  line.value = value;
  if (value > line.peak) {
    line.peak = value;
    line.peakTime = nowMs;
  }
}

/// One period of a line's fall: a peak whose hold time has passed falls by 1; one that the value stands above is caught
/// by it and held anew. `tickCount()` → milliseconds.
/// The time since the raise is a signed 32-bit difference: right across the tick count's wrap, and a peak older than
/// 2^31 ms (24.8 days) waits until that difference is positive again.
template <class TickCount>
void lowerPeak(LineInfo& line, TickCount&& tickCount) {
  const auto heldMs = static_cast<std::int32_t>(tickCount() - line.peakTime);
  if (line.holdMs <= heldMs) line.peak -= 1.0;
  if (line.value > line.peak) {
    line.peak = line.value;
    line.peakTime = tickCount();
  }
}

/// The lines of a segmented control, guarded by one lock. The analysis writes them, the drawing copies them, the fall
/// thread lowers their peaks.
class LineList {
 public:
  /// `lock` guards the lines and everything in them; it may be taken again by the thread that holds it.
  explicit LineList(Lockable& lock) noexcept : m_lock(lock) {}
  LineList(const LineList&) = delete;
  LineList& operator=(const LineList&) = delete;

  /// How many lines there are; 0 until the first SetLineCount. [any thread]
  std::int32_t count() const noexcept { return m_count; }

  /// Replaces all lines by `count` fresh ones (none for a negative count), which hold their peaks for 1000 ms whatever
  /// SetHoldTime said before. Throws std::bad_alloc, with nothing changed.
  void SetLineCount(std::int32_t count);

  /// How long the lines that exist now hold their peaks, in milliseconds; 0 or less: not at all.
  void SetHoldTime(std::int32_t holdMs) noexcept;

  /// Empties every line. Peaks stay where they are and fall by and by.
  void ResetLines(std::uint32_t nowMs) noexcept;

  /// One period of the fall of all peaks; see lowerPeak. [fall thread]
  template <class TickCount>
  void FallStep(TickCount&& tickCount) {
    const std::lock_guard guard(m_lock);
    for (LineInfo& line : m_lines) lowerPeak(line, tickCount);
  }

  /// Calls `use` with a span of all lines while the lock is held. [any thread]
  template <class Use>
  void withLines(Use&& use) {
    const std::lock_guard guard(m_lock);
    use(std::span(m_lines));
  }

 private:
  Lockable& m_lock;
  std::vector<LineInfo> m_lines;
  Relaxed<std::int32_t> m_count = 0;  ///< read by hosts while another thread changes the lines
};

}  // namespace av
