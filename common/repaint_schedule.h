#pragma once

#include <atomic>
#include <cstdint>

namespace av {

/// The words that the control thread and its repaint workers share without a lock. Relaxed order is enough: each word
/// stands for itself, and a worker that sees a change one wait later is still right.
struct RepaintWords {
  std::atomic<std::uint32_t> m_nInterval{0};   ///< period in milliseconds
  std::atomic<std::int32_t> m_bRunning{0};     ///< workers loop while it is non-zero
  std::atomic<std::int32_t> m_bBusy{0};        ///< 1 while a worker waits out a period
  std::atomic<std::uint32_t> m_nStartTick{0};  ///< tick count when the youngest worker started
  std::atomic<std::uint32_t> m_nCurrentTick{0};
};

/// What a repaint worker does between start and end: wait a period, tick, wait again, until `m_bRunning` is zero.
/// The start tick is never advanced, so millisecond polling happens in the first period only and the first tick comes
/// after about two periods; later cycles last a period plus the tick itself. Nothing corrects the drift: a control that
/// paints slowly gets fewer ticks, never a queue of them.
///
/// `tickCount()` → milliseconds, wrapping at 2^32; `sleepMs(n)` waits n milliseconds; `tick()` calls the control.
// [repaint worker]
template <class TickCount, class SleepMs, class Tick>
void runRepaintSchedule(RepaintWords& words, TickCount&& tickCount, SleepMs&& sleepMs, Tick&& tick) {
  constexpr auto relaxed = std::memory_order_relaxed;
  words.m_nStartTick.store(tickCount(), relaxed);
  while (words.m_bRunning.load(relaxed) != 0) {
    words.m_bBusy.store(1, relaxed);
    std::uint32_t now = tickCount();
    words.m_nCurrentTick.store(now, relaxed);
    bool stopped = false;
    // Unsigned difference: right across the wrap after 49.7 days.
    while (now - words.m_nStartTick.load(relaxed) < words.m_nInterval.load(relaxed)) {
      sleepMs(1u);
      stopped = words.m_bRunning.load(relaxed) == 0;
      if (stopped) break;
      now = tickCount();
      words.m_nCurrentTick.store(now, relaxed);
    }
    // A stop during the polling is seen within a millisecond: no further period is slept through for it.
    if (!stopped) sleepMs(words.m_nInterval.load(relaxed));
    words.m_bBusy.store(0, relaxed);
    if (stopped || words.m_bRunning.load(relaxed) == 0) break;
    tick();
  }
}

}  // namespace av
