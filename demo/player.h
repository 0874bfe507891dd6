#pragma once

#include "demo/wav_reader.h"

#include <windows.h>

#include <QELAudioVisualization4.h>

namespace avdemo {

/// Plays a recording into the view at its own pace, block by block, while messages are dispatched, and ends with the
/// loudest block: the last second before it, or what there is. Then waits until the view has come to rest. Throws a
/// Failure.
void playToLoudestBlock(IAudioVisualization4Type1& view, const WavRecording& recording);

/// Two sine tones, 440 Hz on the left and 1,760 Hz on the right, for when there is no recording.
WavRecording generatedTones();

}  // namespace avdemo
