#pragma once

#include "gfx/argb.h"

#include <array>
#include <cstdint>

namespace av::type1 {

inline constexpr int maxChannels = 18;

/// Everything a host can set on the view, with its defaults, save the scale font (an object of the platform).
/// Booleans are automation booleans (0 or −1 from well-behaved hosts) and come back as they were put.
struct ViewSettings {
  std::int32_t visualizationType = 1;
  std::int16_t visualizationSmooth = -1;
  Argb backColor = opaqueBlack;
  Argb gridColor = argbFromRgb(169, 169, 169);
  Argb scaleColor = opaqueBlack;  ///< the shell reads the system's button-face colour once at construction
  Argb borderColor = opaqueBlack;
  /// Index 0 is the text colour, index c the line colour of channel c − 1: hosts rely on the shared table.
  std::array<Argb, maxChannels + 1> textAndLineColors = {
      opaqueBlack,
      argbFromRgb(240, 128, 128), argbFromRgb(255, 255, 0), argbFromRgb(0, 128, 0),
      argbFromRgb(0, 0, 255),     argbFromRgb(138, 43, 226), argbFromRgb(0, 255, 255),
      argbFromRgb(255, 140, 0),   argbFromRgb(255, 0, 255),  argbFromRgb(64, 224, 208),
      opaqueBlack, opaqueBlack, opaqueBlack, opaqueBlack, opaqueBlack,
      opaqueBlack, opaqueBlack, opaqueBlack, opaqueBlack};
  std::int16_t scaleXVisible = -1;
  std::int16_t scaleYVisible = -1;
  std::int32_t scaleYMin = 0;     ///< percent of the dynamic range
  std::int32_t scaleYMax = 100;   ///< percent of the dynamic range
  std::int16_t gridVisible = -1;
  double dynamicRangeDb = 90.308733622833976;  ///< 20·log10(32767); every accepted block overwrites it
  std::int32_t borderType = 0;
  std::int32_t fftWindowSize = 1024;  ///< N: a power of two from 64 to 16384
  std::int32_t fftWindowType = 0;
  std::int32_t fftViewType = 1;
};

}  // namespace av::type1
