#pragma once

#include "player/playback.h"

#include <windows.h>
#include <mmsystem.h>

#include <array>

namespace avplayer {

/// The system's default sound device, through waveOut. `bufferDone` (an event of the caller's) is set whenever a buffer
/// has been played.
class WaveOutDevice final : public SoundDevice {
 public:
  explicit WaveOutDevice(HANDLE bufferDone) : m_bufferDone(bufferDone) {}
  ~WaveOutDevice() override { close(); }
  WaveOutDevice(const WaveOutDevice&) = delete;
  WaveOutDevice& operator=(const WaveOutDevice&) = delete;

  bool open(std::uint32_t sampleRateHz) override;
  void close() override;
  int freeBuffers() override;
  bool write(std::span<const std::int16_t> stereo) override;
  std::optional<std::int64_t> playedFrames() override;
  bool empty() override;
  bool pause() override;
  bool resume() override;

 private:
  /// A quarter of a second is queued: enough for a machine under load, and short enough for a seek.
  static constexpr std::size_t bufferCount = 6;
  struct Buffer {
    WAVEHDR header = {};
    std::vector<std::int16_t> samples;
    bool queued = false;
  };
  static bool isFree(const Buffer& buffer) { return !buffer.queued || (buffer.header.dwFlags & WHDR_DONE) != 0; }

  HANDLE m_bufferDone;
  HWAVEOUT m_device = nullptr;
  std::array<Buffer, bufferCount> m_buffers;
};

}  // namespace avplayer
