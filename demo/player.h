#pragma once

#include "demo/wav_reader.h"

#include <windows.h>

#include <QELAudioVisualization4.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace avdemo {

/// Plays a recording into a control at its own pace, block by block, while messages are dispatched. All methods throw a
/// Failure.
class Player {
 public:
  /// Blocks have `blockFrames` frames. Control and recording outlive the player.
  Player(IAudioVisualizationTemplate& control, const WavRecording& recording, LONG blockFrames)
      : m_control(control), m_recording(recording), m_blockFrames(static_cast<std::size_t>(blockFrames)) {}

  /// The loudest block, after the last second before it or what there is.
  void playToLoudestBlock();
  /// Silence.
  void playSilence(DWORD lengthMs);
  /// Nothing.
  void rest(DWORD lengthMs);

 private:
  void play(const std::vector<std::uint8_t>& samples);

  IAudioVisualizationTemplate& m_control;
  const WavRecording& m_recording;
  std::size_t m_blockFrames;
  double m_dueMs = 0;  ///< when the next block is due, on the system's tick count
};

/// Two sine tones, 440 Hz on the left and 1,760 Hz on the right, for when there is no recording.
WavRecording generatedTones();

}  // namespace avdemo
