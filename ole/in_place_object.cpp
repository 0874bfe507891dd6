#include "ole/in_place_object.h"

#include "ole/control.h"

namespace av::ole {

STDMETHODIMP InPlaceObject::GetWindow(HWND* window) {
  if (!window) return E_POINTER;
  *window = control().inPlace().window();
  return *window ? S_OK : E_FAIL;
}

STDMETHODIMP InPlaceObject::ContextSensitiveHelp(BOOL) { return S_OK; }

STDMETHODIMP InPlaceObject::InPlaceDeactivate() {
  const KeepAlive alive(control());
  return control().inPlace().deactivate();
}

STDMETHODIMP InPlaceObject::UIDeactivate() {
  const KeepAlive alive(control());
  return control().inPlace().deactivateUserInterface();
}

STDMETHODIMP InPlaceObject::SetObjectRects(LPCRECT position, LPCRECT clip) {
  if (!position || !clip) return E_INVALIDARG;
  const KeepAlive alive(control());
  return control().inPlace().setObjectRects(*position, *clip);
}

STDMETHODIMP InPlaceObject::ReactivateAndUndo() { return INPLACE_E_NOTUNDOABLE; }

STDMETHODIMP InPlaceObject::OnWindowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
  if (!result) return E_POINTER;
  *result = 0;
  return control().windowlessMessage(message, wParam, lParam, *result) ? S_OK : S_FALSE;
}

STDMETHODIMP InPlaceObject::GetDropTarget(IDropTarget** target) {
  if (!target) return E_POINTER;
  *target = nullptr;
  return E_NOTIMPL;
}

}  // namespace av::ole
