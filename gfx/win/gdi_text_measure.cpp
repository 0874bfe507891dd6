#include "gfx/win/gdi_text_measure.h"

#include "gfx/win/ascii_text.h"

#include <algorithm>

namespace av {

Size GdiTextMeasure::measure(std::string_view text) const {
  const AsciiText wide(text);
  SIZE extent{};
  if (!GetTextExtentPoint32W(m_dc, wide.data(), wide.length(), &extent)) {
    m_hasFailed = true;
    return {};
  }
  return {std::min<int>(extent.cx, largestTextPx), std::min<int>(extent.cy, largestTextPx)};
}

int GdiTextMeasure::lineHeightPx() const noexcept {
  TEXTMETRICW metrics{};
  if (GetTextMetricsW(m_dc, &metrics)) return metrics.tmHeight;
  m_hasFailed = true;
  return 0;
}

}  // namespace av
