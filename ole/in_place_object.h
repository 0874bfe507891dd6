#pragma once

#include "ole/part.h"

#include <ocidl.h>

namespace av::ole {

/// IOleInPlaceObject and IOleInPlaceObjectWindowless: what the container asks of the active control and, if that has no
/// window, which messages it passes on. [control thread]
class InPlaceObject final : public ControlPart<IOleInPlaceObjectWindowless> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;
  STDMETHODIMP InPlaceDeactivate() override;
  STDMETHODIMP UIDeactivate() override;
  STDMETHODIMP SetObjectRects(LPCRECT position, LPCRECT clip) override;
  STDMETHODIMP ReactivateAndUndo() override;
  STDMETHODIMP OnWindowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override;
  STDMETHODIMP GetDropTarget(IDropTarget** target) override;
};

}  // namespace av::ole
