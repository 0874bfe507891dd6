#pragma once

#include "gfx/text_measure.h"

#include <windows.h>

namespace av {

/// Measures texts as GDI will draw them on a device context that the font is selected into. [control thread]
class GdiTextMeasure final : public TextMeasure {
 public:
  /// `dc` outlives this object's use, with the font selected.
  explicit GdiTextMeasure(HDC dc) noexcept : m_dc(dc) {}

  Size measure(std::string_view text) const override;

  /// Height of a line in pixels; 0 where the system fails.
  int lineHeightPx() const noexcept;

  /// Whether the system has failed to measure anything so far, so that a layout of these sizes is none.
  bool hasFailed() const noexcept { return m_hasFailed; }

 private:
  HDC m_dc;
  mutable bool m_hasFailed = false;
};

}  // namespace av
