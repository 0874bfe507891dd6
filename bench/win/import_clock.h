#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace av::bench {

/// A clock around each call that one loaded module makes of GDI, GDI+ and of the window system's drawing functions, for as
/// long as the object lives. One at a time, for calls of one thread.
class ImportClock {
 public:
  explicit ImportClock(HMODULE module);
  ~ImportClock();
  ImportClock(const ImportClock&) = delete;
  ImportClock& operator=(const ImportClock&) = delete;

  /// Runs what makes a frame and notes what it took.
  void frame(const std::function<void()>& make);
  /// Lines of a name, calls a frame and microseconds a frame: each function, "system", all of them, and "ours", the rest
  /// of the frame. Times are medians over the frames, so that frames in which other programs ran do not count.
  void print() const;

 private:
  struct Replacements;

  std::unique_ptr<Replacements> m_replacements;
  std::vector<std::vector<std::int64_t>> m_ticks;  // of each function in each frame
  std::vector<std::int64_t> m_frameTicks, m_systemTicks, m_ourTicks;
  std::vector<std::int64_t> m_calls;  // in all frames
  double m_ticksPerUs = 0;
};

}  // namespace av::bench
