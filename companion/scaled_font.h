#pragma once

#include <windows.h>

#include <oaidl.h>
#include <ocidl.h>
#include <wrl/client.h>

namespace av::companion {

/// Gives a control's scale texts the size that they have on a screen of another resolution. Controls take their font's
/// points by the screen's resolution, so the control gets a copy of its font in another size.
class ScaledFont {
 public:
  /// Scales the font that `control` has now. What an earlier call made is replaced, what the host put since is the new
  /// measure. A control without a font is left alone, and so is one that refuses.
  void scale(IDispatch& control, int dpi, int screenDpi) noexcept;
  /// Gives the control its own font back, unless the host has put another one since.
  void restore(IDispatch& control) noexcept;

 private:
  Microsoft::WRL::ComPtr<IFontDisp> m_own;    // what the control had
  Microsoft::WRL::ComPtr<IFontDisp> m_given;  // what it got; null: nothing
};

}  // namespace av::companion
