#pragma once

#include "ole/part.h"

#include <ocidl.h>

namespace av::ole {

/// IOleControl: ambient changes and event freezing; the control has no mnemonics. [control thread]
class OleControl final : public ControlPart<IOleControl> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP GetControlInfo(CONTROLINFO* info) override;
  STDMETHODIMP OnMnemonic(MSG* message) override;
  STDMETHODIMP OnAmbientPropertyChange(DISPID member) override;
  STDMETHODIMP FreezeEvents(BOOL freeze) override;

  bool eventsAreFrozen() const noexcept { return m_freezeCount > 0; }

 private:
  int m_freezeCount = 0;
};

}  // namespace av::ole
