#include "gfx/win/gdiplus_text_measure.h"

#include "gfx/saturate.h"
#include "gfx/win/ascii_text.h"

#include <algorithm>
#include <cmath>

namespace av {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

void GdiplusTextMeasure::use(GpGraphics* graphics, const GpFont* font) noexcept {
  m_graphics = graphics;
  m_font = font;
  m_known.clear();
}

void GdiplusTextMeasure::release() noexcept {
  use(nullptr, nullptr);
  m_format.reset();
}

Size GdiplusTextMeasure::measure(std::string_view text) const {
  if (!m_graphics || !m_font) return {};
  if (const auto known = m_known.find(text); known != m_known.end()) return known->second;
  if (!m_format) m_format = createCentredFormat();
  m_hasFailed = m_hasFailed || !m_format;
  if (!m_format) return {};
  const AsciiText wide(text);
  const RectF unbounded(0, 0, 0, 0);
  RectF box;
  if (GdipMeasureString(m_graphics, wide.data(), wide.length(), m_font, &unbounded, m_format.get(), &box, nullptr,
                        nullptr) != Ok) {
    m_hasFailed = true;
    return {};
  }
  const auto whole = [](REAL length) { return std::min(truncToInt(std::ceil(double{length})), largestTextPx); };
  const Size size{whole(box.Width), whole(box.Height)};
  // Scales that follow the signal's dynamic range would otherwise collect texts for ever.
  if (m_known.size() >= 512) m_known.clear();
  m_known.emplace(text, size);
  return size;
}

}  // namespace av
