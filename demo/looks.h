#pragma once

#include <windows.h>

#include <QELAudioVisualization4.h>

#include <span>
#include <string_view>

namespace avdemo {

/// One picture of a recording: a name that ends its file name, and the properties that make it.
struct Look {
  std::wstring_view name;
  SIZE sizePx;  ///< that suits it, at 96 DPI
  void (*shape)(IAudioVisualization4Type1& view);
  void (*theme)(IAudioVisualization4Type1& view);
};

/// Every view of the control as it comes, and in colours of the host's own: a dark and a light theme.
std::span<const Look> allLooks();

}  // namespace avdemo
