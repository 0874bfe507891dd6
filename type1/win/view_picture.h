#pragma once

#include "gfx/win/gdiplus_text_measure.h"
#include "gfx/win/gdiplus_token.h"
#include "gfx/win/offscreen.h"
#include "type1/frame.h"
#include "type1/layout.h"
#include "type1/win/view_painter.h"

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <cstdint>

namespace av::type1 {

/// The view's picture: GDI+, the scale font, the layout of the window and the off-screen surface that every paint goes
/// through. [control thread, or the audio thread that pushes a block; under the drawing lock]
class ViewPicture {
 public:
  /// Starts GDI+ for this control, makes the default font and loads the gradients of the bar spectra.
  ViewPicture() noexcept;

  /// Computes the layout of the control's window, `client` pixels large; below 2 × 2 the old one stays. Takes notice of
  /// a font object whose properties a host has changed since the last time.
  void layout(const ViewSettings& settings, std::uint32_t sampleRateHz, SIZE client);

  /// The layout of the control's window as it was last computed; all 0 before that.
  const ViewLayout& windowLayout() const noexcept { return m_layout; }

  /// Draws the frame of this moment and copies it to `bounds` of `target` in one piece. `inWindow`: into the control's own
  /// window, by the layout that was computed for it; elsewhere the layout is that of the rectangle.
  /// If GDI+ fails, what the target shows stays. Throws std::bad_alloc.
  void paint(HDC target, const RECT& bounds, bool inWindow, const ViewSettings& settings, const ViewSignal& signal);

  /// The scale font, counted for the caller.
  HRESULT font(IFontDisp** font) const;
  /// Takes another scale font and gives the old one back in its place. The drawing font is made when it is next needed.
  void exchangeFont(Microsoft::WRL::ComPtr<IFontDisp>& font) noexcept;

  /// Lets all drawing resources go: the control is at its end.
  void discard() noexcept;

 private:
  enum class FontCheck {
    onlyMissing,  ///< the drawing font is made if there is none
    changedToo,   ///< it is also made again if the font object's properties have changed since
  };
  bool prepare(Size size, FontCheck fontCheck);
  void discardDrawingFont() noexcept;

  GdiplusToken m_token;  // before everything that GDI+ owns
  Microsoft::WRL::ComPtr<IFontDisp> m_font;
  FontHandle m_drawingFont;      // made from m_font when it is first needed
  LOGFONTW m_fontDescription{};  // what m_drawingFont was made from
  int m_textHeightPx = 0;
  bool m_isMeasured = false;  // m_textHeightPx is that of the font, and 0 only where there is none
  OffscreenSurface m_surface;
  ViewPainter m_painter;
  GdiplusTextMeasure m_measure;
  Gdiplus::GpGraphics* m_measuredOn = nullptr;
  ViewLayout m_layout;
  bool m_isLaidOut = true;  // false: m_layout was computed without the font's height, as the system failed
  ViewFrame m_frame;
};

}  // namespace av::type1
