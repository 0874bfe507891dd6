#pragma once

#include "ole/part.h"

#include <oleidl.h>

namespace av::ole {

/// IOleInPlaceObject: what the container asks of the active control. [control thread]
class InPlaceObject final : public ControlPart<IOleInPlaceObject> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;
  STDMETHODIMP InPlaceDeactivate() override;
  STDMETHODIMP UIDeactivate() override;
  STDMETHODIMP SetObjectRects(LPCRECT position, LPCRECT clip) override;
  STDMETHODIMP ReactivateAndUndo() override;
};

}  // namespace av::ole
