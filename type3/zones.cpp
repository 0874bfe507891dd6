#include "type3/zones.h"

#include "gfx/saturate.h"

#include <algorithm>
#include <cstddef>

namespace av::type3 {
namespace {

/// Each channel as far on the way as `part` of `whole`, in the 16 bits that a gradient's corners have.
Argb between(Argb from, Argb to, int part, int whole) noexcept {
  Argb result = opaqueBlack;
  for (const int shift : {0, 8, 16}) {
    const std::int64_t a = (from >> shift & 0xFF) << 8;
    const std::int64_t b = (to >> shift & 0xFF) << 8;
    result |= static_cast<Argb>((a * (whole - part) + b * part) / whole / 256) << shift;
  }
  return result;
}

/// Paints stripes from the top down, each from where the one before it ended. A stripe whose end lies above its beginning
/// has no rows.
class Stripes {
 public:
  Stripes(std::span<Argb> column, int top) noexcept : m_column(column), m_at(top) {}

  void solid(int end, Argb colour) noexcept {
    rows(end, [colour](int, int) { return colour; });
  }
  void gradient(int end, Argb top, Argb bottom) noexcept {
    rows(end, [=](int row, int count) { return between(top, bottom, row, count); });
  }

 private:
  template <class ColourOf>
  void rows(int end, ColourOf colourOf) noexcept {
    const int height = static_cast<int>(m_column.size());
    for (int row = std::max(m_at, 0); row < std::min(end, height); ++row)
      m_column[static_cast<std::size_t>(row)] = colourOf(row - m_at, end - m_at);
    m_at = end;
  }

  std::span<Argb> m_column;
  int m_at;
};

}  // namespace

void paintSolidZones(std::span<Argb> column, const AnalyserSettings& settings, const ZoneColours& colours,
                     bool mirrored) noexcept {
  const int height = static_cast<int>(column.size());
  const int half = mirrored ? height / 2 : height;
  const int high = settings.highPointPercent;
  const int mid = settings.midPointPercent;
  const auto rows = [half](double part) { return truncToInt(part * half); };

  Stripes upper(column, 0);
  const int highEnd = rows(1 - high / 100.0);
  upper.solid(highEnd, colours.high);
  upper.solid(highEnd + rows(1 - (mid - high + 100) / 100.0), colours.mid);
  upper.solid(half, colours.low);
  if (!mirrored) return;

  const int middle = height / 2;
  Stripes lower(column, middle);
  lower.solid(middle + rows(mid / 100.0), colours.low);
  lower.solid(middle + rows(high / 100.0), colours.mid);
  lower.solid(height, colours.high);
}

void paintGradientZones(std::span<Argb> column, const AnalyserSettings& settings, const ZoneColours& colours,
                        bool mirrored) noexcept {
  const int height = static_cast<int>(column.size());
  const int half = mirrored ? height / 2 : height;
  const int high = settings.highPointPercent;
  const int mid = settings.midPointPercent;
  const auto rows = [half](int percent) { return static_cast<int>(std::int64_t{percent} * half / 100); };

  Stripes upper(column, 0);
  upper.solid(rows((2 * high - 200) / 3 - high + 100), colours.high);
  upper.gradient(rows((mid - high) * 2 / 3 - mid + 100), colours.high, colours.mid);
  upper.solid(rows(100 - (high - mid) / 3 - mid), colours.mid);
  upper.gradient(rows(100 - mid / 3), colours.mid, colours.low);
  upper.solid(half, colours.low);
  if (!mirrored) return;

  const int middle = height / 2;
  Stripes lower(column, middle);
  lower.solid(middle + rows(mid / 3), colours.low);
  lower.gradient(middle + rows((high - mid) / 3 + mid), colours.low, colours.mid);
  lower.solid(middle + rows((high - mid) * 2 / 3 + mid), colours.mid);
  lower.gradient(middle + rows((100 - high) * 2 / 3 + high), colours.mid, colours.high);
  lower.solid(height, colours.high);
}

}  // namespace av::type3
