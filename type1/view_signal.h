#pragma once

#include "type1/settings.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace av::type1 {

/// What the drawing reads of the analysis: views into its arrays, valid under the drawing lock only.
struct ViewSignal {
  bool dataReceived = false;       ///< no curve is drawn before the first analysed block
  int channelCount = 2;            ///< channels in use, at most maxChannels
  std::int32_t windowSize = 1024;  ///< N
  std::uint32_t sampleRateHz = 44100;
  double fullScale = 32767.0;  ///< largest sample magnitude of the current sample width
  /// Per channel N samples (waveform and X-Y views) or levels in dB; empty where a slot holds no array.
  std::array<std::span<const double>, maxChannels> analysis{};
  /// Per channel the smoothed copy that spectrum views draw while smoothing is on.
  std::array<std::span<const double>, maxChannels> display{};

  /// Channels that can hold an array.
  std::size_t channelsInUse() const noexcept {
    return static_cast<std::size_t>(std::clamp(channelCount, 0, maxChannels));
  }

  /// The levels of a channel that spectrum views draw.
  std::span<const double> spectrum(std::size_t channel, const ViewSettings& settings) const noexcept {
    return settings.visualizationSmooth ? display[channel] : analysis[channel];
  }
};

}  // namespace av::type1
