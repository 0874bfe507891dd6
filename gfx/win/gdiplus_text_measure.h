#pragma once

#include "gfx/text_measure.h"
#include "gfx/win/gdiplus_handles.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

namespace av {

/// Measures texts as GDI+ will draw them. Remembers what it has measured, since scales ask for the same texts in every
/// frame. [control thread, under the drawing lock]
class GdiplusTextMeasure final : public TextMeasure {
 public:
  /// Measures in `font` on `graphics` from now on; either may be null, every text is 0 × 0 then. Both have to outlive
  /// their use. To be called whenever the font or the surface was replaced.
  void use(Gdiplus::GpGraphics* graphics, const Gdiplus::GpFont* font) noexcept;

  Size measure(std::string_view text) const override;

  /// Whether the system has failed to measure a text since this was last asked, so that a frame of these sizes is none.
  bool takeFailure() noexcept { return std::exchange(m_hasFailed, false); }

  /// Lets the GDI+ object go; has to happen before the GDI+ token ends.
  void release() noexcept;

 private:
  Gdiplus::GpGraphics* m_graphics = nullptr;
  const Gdiplus::GpFont* m_font = nullptr;
  mutable bool m_hasFailed = false;
  mutable StringFormatHandle m_format;
  mutable std::map<std::string, Size, std::less<>> m_known;
};

}  // namespace av
