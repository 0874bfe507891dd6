#include "ole/in_place_active_object.h"

#include "ole/control.h"

namespace av::ole {

STDMETHODIMP InPlaceActiveObject::GetWindow(HWND* window) {
  if (!window) return E_POINTER;
  *window = control().inPlace().window();
  return *window ? S_OK : E_FAIL;
}

STDMETHODIMP InPlaceActiveObject::ContextSensitiveHelp(BOOL) { return S_OK; }

// S_FALSE leaves every key to the container, Tab and arrows included.
STDMETHODIMP InPlaceActiveObject::TranslateAccelerator(LPMSG) { return S_FALSE; }

STDMETHODIMP InPlaceActiveObject::OnFrameWindowActivate(BOOL) { return S_OK; }

STDMETHODIMP InPlaceActiveObject::OnDocWindowActivate(BOOL activate) {
  if (activate) return S_OK;
  const KeepAlive alive(control());
  return control().inPlace().deactivateUserInterface();
}

STDMETHODIMP InPlaceActiveObject::ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) { return S_OK; }

STDMETHODIMP InPlaceActiveObject::EnableModeless(BOOL) { return S_OK; }

}  // namespace av::ole
