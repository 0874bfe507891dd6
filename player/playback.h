#pragma once

#include "player/sound.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace avplayer {

/// Where sound goes out: a queue of short buffers of 16-bit stereo. Implemented over the platform's sound device, and by
/// tests. A method that says that the device is gone is not called again before the next open.
class SoundDevice {
 public:
  virtual ~SoundDevice() = default;
  /// Starts with an empty queue, at position 0, playing. False: there is no device that takes this rate.
  virtual bool open(std::uint32_t sampleRateHz) = 0;
  virtual void close() = 0;
  /// How many buffers can be queued now; negative: the device is gone.
  virtual int freeBuffers() = 0;
  /// Queues a buffer. False: the device is gone.
  virtual bool write(std::span<const std::int16_t> stereo) = 0;
  /// Frames heard since it was opened or emptied; empty: the device is gone.
  virtual std::optional<std::int64_t> playedFrames() = 0;
  /// Empties the queue at once and goes back to position 0. False: the device is gone.
  virtual bool empty() = 0;
  virtual bool pause() = 0;
  virtual bool resume() = 0;
};

/// What the sound comes out of.
enum class Output {
  device,
  silent,  ///< by wish: no device was tried
  none,    ///< no device could be opened
  lost     ///< the device went away; it goes on silently
};

/// Plays a sound into a device, or through the same time silently. The time is passed in, in milliseconds of any clock
/// that only goes forward; nothing here waits. Not for several threads at once.
class Playback {
 public:
  /// Null: silent by wish.
  explicit Playback(std::unique_ptr<SoundDevice> device);
  ~Playback();
  Playback(const Playback&) = delete;
  Playback& operator=(const Playback&) = delete;

  /// Takes a sound, from its begin, not playing.
  void load(std::shared_ptr<const Sound> sound, double nowMs);
  void setLoop(bool loop, double nowMs);
  /// From the begin where it had come to its end.
  void play(double nowMs);
  void pause(double nowMs);
  /// Frames outside the sound are brought to its ends.
  void seek(std::int64_t frame, double nowMs);
  /// Fills the device's queue, notices its end and the sound's. To be called every few tens of milliseconds.
  void step(double nowMs);

  bool isPlaying() const noexcept { return m_playing; }
  bool isLooping() const noexcept { return m_loop; }
  Output output() const noexcept { return m_output; }
  /// The frame that is heard now, from 0 to the number of frames.
  std::int64_t position() const noexcept { return m_position; }

 private:
  bool usesDevice() const noexcept { return m_output == Output::device; }
  void start(double nowMs);
  void updatePosition(double nowMs);
  void fillQueue(double nowMs);
  void noticeStandstill(std::int64_t played, double nowMs);
  void loseDevice(double nowMs);
  std::int64_t frames() const noexcept { return m_sound ? m_sound->frameCount() : 0; }

  std::unique_ptr<SoundDevice> m_device;
  std::shared_ptr<const Sound> m_sound;
  Output m_output = Output::silent;
  bool m_playing = false;
  bool m_loop = false;
  bool m_deviceOpen = false;
  bool m_devicePaused = false;
  std::int64_t m_position = 0;
  std::int64_t m_startFrame = 0;  ///< the sound's frame at the device's position 0, or at m_startMs
  double m_startMs = 0;           ///< of the silent clock
  std::int64_t m_nextFrame = 0;   ///< the next one to be queued
  std::int64_t m_lastPlayed = 0;  ///< the device's position when it was last seen moving
  double m_lastMovedMs = 0;
  std::vector<std::int16_t> m_stereo;
};

}  // namespace avplayer
