#include "gfx/win/gdi_text_measure.h"

#include "gfx/win/ascii_text.h"

#include <algorithm>

namespace av {

Size GdiTextMeasure::measure(std::string_view text) const {
  const AsciiText wide(text);
  SIZE extent{};
  if (!GetTextExtentPoint32W(m_dc, wide.data(), wide.length(), &extent)) return {};
  return {std::min<int>(extent.cx, largestTextPx), std::min<int>(extent.cy, largestTextPx)};
}

int GdiTextMeasure::lineHeightPx() const noexcept {
  TEXTMETRICW metrics{};
  return GetTextMetricsW(m_dc, &metrics) ? metrics.tmHeight : 0;
}

}  // namespace av
