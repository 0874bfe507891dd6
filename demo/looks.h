#pragma once

#include <windows.h>

#include <QELAudioVisualization4.h>

#include <span>

namespace avdemo {

/// One picture of a recording: a name that ends its file name, and the properties that make it.
struct Look {
  const wchar_t* name;
  void (*apply)(IAudioVisualization4Type1& view);
};

/// The control as it comes, and once more in a host's own colours.
std::span<const Look> allLooks();

}  // namespace avdemo
