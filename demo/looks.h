#pragma once

#include <windows.h>

#include <QELAudioVisualization4.h>

#include <span>
#include <string_view>
#include <vector>

namespace avdemo {

/// One way to show a recording: a name that ends the file name of its picture, and what makes it.
struct Look {
  std::wstring_view name;
  const CLSID* control;  ///< which of the controls
  SIZE sizePx;           ///< that suits it, at 96 DPI
  DWORD restMs;          ///< how long after its last block it has come to rest
  unsigned restTicks;    ///< ticks that do the same where the machine was too busy for the control's own; 0: none
  /// Puts the properties of a fresh control of that class, on a display of `dpi`; returns how many frames the blocks have
  /// that suit it. Throws a Failure.
  LONG (*prepare)(IAudioVisualizationTemplate& control, int dpi);
  /// Not one picture at rest but several, NAME-1, NAME-2, ...: so many milliseconds after the sound has turned silent.
  std::span<const DWORD> momentsMs;
};

/// The view as it comes, and in colours of the host's own: a dark and a light theme.
std::span<const Look> viewLooks();

/// The level meter, in the same way.
std::span<const Look> meterLooks();

/// The spectrum analyser, in the same way.
std::span<const Look> analyserLooks();

/// Those of every control.
std::vector<Look> allLooks();

}  // namespace avdemo
