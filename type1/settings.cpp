#include "type1/settings.h"

#include <algorithm>
#include <cmath>

namespace av::type1 {
namespace {

bool isColorIndex(std::int32_t channel) noexcept { return channel >= 0 && channel <= maxChannels; }

}  // namespace

std::int32_t roundWindowSize(std::int32_t value) noexcept {
  const double size = std::clamp(value, minWindowSize, maxWindowSize);
  const int exponent = static_cast<int>(std::log(size) / std::log(2.0) + 0.5);
  return std::int32_t{1} << exponent;
}

std::optional<std::uint32_t> lineColor(const ViewSettings& settings, std::int32_t channel) noexcept {
  if (!isColorIndex(channel)) return std::nullopt;
  return oleColorFromArgb(settings.textAndLineColors[static_cast<std::size_t>(channel)]);
}

std::optional<Effects> putLineColor(ViewSettings& settings, std::int32_t channel, std::uint32_t oleColor) noexcept {
  if (!isColorIndex(channel)) return std::nullopt;
  settings.textAndLineColors[static_cast<std::size_t>(channel)] = argbFromOleColor(oleColor);
  return rule::lineColor.effects;
}

}  // namespace av::type1
