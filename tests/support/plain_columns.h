#pragma once

#include "gfx/saturate.h"
#include "simd/decibels.h"
#include "type3/settings.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

// Amplitudes and heights of the spectrum analyser one column after the other, in the plain operations whose bits the
// vectors have to have.

namespace av::test {

inline double plainAmplitude(double sum, double bins, double fullScale) {
  const auto mean = static_cast<float>(sum / bins);
  return static_cast<double>(std::sqrt(mean)) / fullScale;
}

inline int plainWholeSegments(int heightPx, const type3::AnalyserSettings& settings) {
  if (settings.spotIntervalPx <= 0) return heightPx;
  const std::int64_t pitch = std::int64_t{settings.spotHeightPx} + settings.spotIntervalPx;
  const std::int64_t segments = (heightPx + pitch - 1) / pitch;
  return segments > 0 ? clampToInt(segments * pitch - settings.spotIntervalPx) : 0;
}

inline int plainColumnHeight(double amplitude, const type3::AnalyserSettings& settings, std::int32_t fftLength,
                             int areaHeightPx) {
  const double bottomDb = -static_cast<double>(settings.scaleYMax);
  const double topDb = -static_cast<double>(settings.scaleYMin);
  const double rangeDb = topDb - bottomDb;
  if (!(rangeDb > 0)) return 0;
  double level = bottomDb;
  if (amplitude > 0) {
    const auto relative = static_cast<float>(amplitude / fftLength * 2.0);
    const auto logarithm = static_cast<float>(decibels(static_cast<double>(relative)) / 10.0);
    level = 20.0 * static_cast<double>(logarithm);
  }
  const double part = settings.alignmentY != 0 ? 0.5 : 1.0;
  const int wholeDb = truncToInt((std::clamp(level, bottomDb, topDb) - bottomDb) * part);
  return plainWholeSegments(truncToInt(wholeDb / rangeDb * areaHeightPx), settings);
}

}  // namespace av::test
