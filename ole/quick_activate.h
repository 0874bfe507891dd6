#pragma once

#include "ole/part.h"

#include <ocidl.h>

namespace av::ole {

/// IQuickActivate: site, sinks and answers in one call, before the control is loaded or initialised. [control thread]
class QuickActivation final : public ControlPart<IQuickActivate> {
 public:
  using ControlPart::ControlPart;

  /// Takes the site, the view's sink and the event sink; the ambient values are not needed, and nobody is told of
  /// property changes, so their sink is not taken. A sink that cannot be connected shows as cookie 0.
  STDMETHODIMP QuickActivate(QACONTAINER* container, QACONTROL* answers) override;
  STDMETHODIMP SetContentExtent(LPSIZEL himetric) override;
  STDMETHODIMP GetContentExtent(LPSIZEL himetric) override;
};

}  // namespace av::ole
