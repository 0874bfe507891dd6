#pragma once

#include "player/playback.h"

#include <windows.h>

#include <memory>
#include <mutex>
#include <thread>

namespace avplayer {

/// A playback with a thread of its own that keeps the device's queue filled, whatever the window is busy with. Every
/// method may be called from any thread.
class SoundThread {
 public:
  /// `silent`: no device is tried.
  explicit SoundThread(bool silent);
  /// Stops at once, also in the middle of a sound.
  ~SoundThread();
  SoundThread(const SoundThread&) = delete;
  SoundThread& operator=(const SoundThread&) = delete;

  struct State {
    bool playing = false;
    bool looping = false;
    Output output = Output::silent;
    std::int64_t position = 0;  ///< the frame that is heard now
  };

  State state();
  void load(std::shared_ptr<const Sound> sound);
  void setLoop(bool loop);
  void play();
  void pause();
  void seek(std::int64_t frame);

  /// Milliseconds of a clock that only goes forward.
  static double nowMs();

 private:
  void run();

  HANDLE m_wake;  ///< a buffer is done, or the thread shall end
  std::mutex m_lock;
  bool m_ending = false;
  Playback m_playback;
  std::thread m_thread;
};

}  // namespace avplayer
