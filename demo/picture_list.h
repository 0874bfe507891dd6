#pragma once

#include "demo/wav_reader.h"

#include <windows.h>

#include <QELAudioVisualization4.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace avdemo {

/// A picture of a control with the given properties.
struct ListedPicture {
  std::wstring name;  ///< of its file, without extension
  const CLSID* control = nullptr;
  SIZE sizePx = {};
  std::vector<std::wstring> puts;        ///< before the sound; see putNamed
  std::vector<std::wstring> putsBehind;  ///< after it
  std::uint32_t blockFrames = 16384;
  std::uint16_t channels = 2;
  unsigned ticks = 0;  ///< of the control's timer after the second block
};

/// Reads a list: a picture a line, NAME CONTROL WIDTHxHEIGHT and then puts, separated by tabs. CONTROL is view, meter or
/// analyser; `frames=N` and `channels=N` among the puts say what blocks the sound comes in, `ticks=N` how often the timer
/// ticks after it; puts behind the word `then` come after the sound. Empty lines and those that begin with # are skipped.
/// Throws a Failure that names the line.
std::vector<ListedPicture> readPictureList(const std::filesystem::path& file);

/// Puts the properties of a fresh control and sends it two blocks of a made-up sound, the first one louder, so that its
/// ticks stand above the second one's bars. A smoothed display has come to rest in between. Throws a Failure.
void prepare(const ListedPicture& picture, IAudioVisualizationTemplate& control);

/// One block of that sound, always the same samples: partials that fall off towards high frequencies over a little noise,
/// a different balance in each channel. 16 bits, 44100 Hz.
WavRecording listedSound(std::uint32_t frames, std::uint16_t channels, bool loud);

}  // namespace avdemo
