#pragma once

#include "gfx/argb.h"
#include "type1/settings.h"
#include "type1/view_signal.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace av::type1 {

/// How many pairs of adjacent channels the X-Y views show: one less than channels, but one for a single one.
inline std::size_t pairCount(const ViewSignal& signal) {
  const std::size_t channels = signal.channelsInUse();
  return channels < 2 ? channels : channels - 1;
}

/// The line colour of a pair, from pair 0 on: that of its right channel, also where the left one is paired with itself.
inline Argb pairColour(const ViewSettings& settings, std::size_t pair) { return settings.textAndLineColors[pair + 2]; }

/// The window's samples of a pair: channel `pair` on the left and the next one on the right; a single channel is paired
/// with itself. Both empty where either holds no array.
struct PairSamples {
  std::span<const double> left;
  std::span<const double> right;

  PairSamples(const ViewSignal& signal, std::size_t pair) {
    const std::size_t other = std::min(pair + 1, signal.channelsInUse() - 1);
    const auto count = static_cast<std::size_t>(std::max(signal.windowSize, 0));
    if (signal.analysis[pair].size() < count || signal.analysis[other].size() < count) return;
    left = signal.analysis[pair].first(count);
    right = signal.analysis[other].first(count);
  }

  std::size_t size() const { return left.size(); }
  bool isEmpty() const { return left.empty(); }
};

}  // namespace av::type1
