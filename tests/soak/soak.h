#pragma once

#include "tests/soak/footprint.h"
#include "tests/soak/hosted_control.h"
#include "tests/soak/random_blocks.h"
#include "tests/soak/random_source.h"

#include "host/create.h"

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <vector>

namespace av::soak {

/// What was done so far.
struct Deeds {
  std::atomic<long long> blocks{0};
  long long paints = 0;  ///< of windows
  long long draws = 0;   ///< off-screen
  long long puts = 0;
  long long lives = 0;  ///< of three controls each
};

/// The three controls, life after life, on this thread and, half of the time, an audio thread.
class Soak {
 public:
  explicit Soak(std::uint64_t seed);

  /// Loads the library that lies beside the program.
  bool load() { return SUCCEEDED(m_library.loadBesideProgram(L"QELAudioVisualization4.dll")); }

  /// Does everything once that makes the system's libraries keep something for the rest of the process.
  void warmUp();

  /// Three controls from their birth to their end, which comes soon after the deadline (of the tick count).
  void live(ULONGLONG deadline);

  /// What is left when the last controls have gone, with the threads of their timers.
  Footprint rest();

  const avhost::ControlLibrary& controlsDll() const { return m_library; }
  const Deeds& deeds() const { return m_deeds; }
  std::size_t peakBytes() const { return m_peakBytes; }

 private:
  void makeTrouble(HostedControl& control);
  void dispatchMessages(const std::vector<HostedControl*>& controls);

  RandomSource m_random;
  std::vector<SoakBlock> m_blocks;
  avhost::ControlLibrary m_library;
  Deeds m_deeds;
  std::size_t m_peakBytes = 0;
};

}  // namespace av::soak
