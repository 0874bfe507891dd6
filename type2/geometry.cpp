#include "type2/geometry.h"

#include "gfx/saturate.h"

#include <algorithm>

namespace av::type2 {
namespace {

/// Longer than any picture: segments and gaps beyond it leave the same room, and their sums stay within int.
constexpr std::int32_t beyondPicturesPx = 1000000;

/// The settings' sizes in 64 bits, where no sum of them can overflow.
struct Sizes {
  std::int64_t lineCount;
  std::int64_t lineInterval;
  std::int64_t segment;
  std::int64_t gap;
  std::int64_t pitch;
  std::int64_t margin;  ///< on each side

  Sizes(const MeterSettings& settings, std::int32_t lines) noexcept
      : lineCount(std::max(lines, fewestLines)),
        lineInterval(settings.lineInterval),
        segment(std::min(settings.spotHeightPx, beyondPicturesPx)),
        gap(std::min(settings.spotIntervalPx, beyondPicturesPx)),
        pitch(std::max<std::int64_t>(segment + gap, 1)),
        margin(std::int64_t{std::clamp(settings.borderWidthPx, -32767, 32767)} + 1) {}

  std::int64_t lineWidth(std::int64_t innerWidth) const noexcept {
    return (innerWidth - (lineCount - 1) * lineInterval) / lineCount;
  }
  std::int64_t segmentCount(std::int64_t innerHeight) const noexcept { return (innerHeight + gap) / pitch; }
};

}  // namespace

MeterGeometry computeGeometry(const MeterSettings& settings, std::int32_t lineCount, const Rect& client) noexcept {
  const Sizes sizes(settings, lineCount);
  const auto margin = static_cast<int>(sizes.margin);
  MeterGeometry geometry;
  geometry.client = client;
  geometry.inner = {client.left + margin, client.top + margin, client.right - margin, client.bottom - margin};
  const std::int64_t innerHeight = geometry.inner.height();
  const std::int64_t lineWidth = sizes.lineWidth(geometry.inner.width());
  const std::int64_t lineStep = lineWidth + sizes.lineInterval;
  const std::int64_t imageHeight = sizes.segmentCount(innerHeight) * sizes.pitch - sizes.gap;

  geometry.lineCount = static_cast<int>(sizes.lineCount);
  geometry.segmentPx = static_cast<int>(sizes.segment);
  geometry.gapPx = static_cast<int>(sizes.gap);
  geometry.pitchPx = static_cast<int>(sizes.pitch);
  geometry.lineWidthPx = clampToInt(lineWidth);
  geometry.lineStepPx = clampToInt(lineStep);
  geometry.imageHeightPx = clampToInt(imageHeight);
  geometry.barsOrigin = {geometry.inner.left, geometry.inner.top};
  if (settings.autoSize == 0 && settings.lineType < 4 && geometry.hasBars()) {
    const std::int64_t left =
        (std::int64_t{client.right} + client.left + sizes.lineInterval - sizes.lineCount * lineStep) / 2;
    geometry.barsOrigin = {clampToInt(left), clampToInt(geometry.inner.top + (innerHeight - imageHeight) / 2)};
  }
  return geometry;
}

Size snappedSize(const MeterSettings& settings, std::int32_t lineCount, Size size) noexcept {
  const Sizes sizes(settings, lineCount);
  const std::int64_t lineWidth = std::max<std::int64_t>(sizes.lineWidth(size.widthPx - 2 * sizes.margin), 1);
  std::int64_t segments = std::max<std::int64_t>(sizes.segmentCount(size.heightPx - 2 * sizes.margin), 5);
  if (settings.alignmentX != 0 && segments % 2 == 0) --segments;
  return {clampToInt(sizes.lineCount * (lineWidth + sizes.lineInterval) - sizes.lineInterval + 2 * sizes.margin),
          clampToInt(segments * sizes.pitch - sizes.gap + 2 * sizes.margin)};
}

}  // namespace av::type2
