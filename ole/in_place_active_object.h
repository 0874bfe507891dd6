#pragma once

#include "ole/part.h"

#include <oleidl.h>

namespace av::ole {

/// IOleInPlaceActiveObject: what frame and document tell the UI-active control. It has neither accelerators nor tools.
/// [control thread]
class InPlaceActiveObject final : public ControlPart<IOleInPlaceActiveObject> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;
  STDMETHODIMP TranslateAccelerator(LPMSG message) override;
  STDMETHODIMP OnFrameWindowActivate(BOOL activate) override;
  STDMETHODIMP OnDocWindowActivate(BOOL activate) override;
  STDMETHODIMP ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window, BOOL frame) override;
  STDMETHODIMP EnableModeless(BOOL enable) override;
};

}  // namespace av::ole
