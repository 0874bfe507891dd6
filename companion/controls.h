#pragma once

#include "companion/automation_object.h"
#include "companion/control_maker.h"

#include <AudioBlocks.h>

namespace av::companion {

/// `AudioBlocks.Controls`: creates the controls, for hosts that know names only.
class ControlsObject final : public AutomationObject<IControls> {
 public:
  explicit ControlsObject(IUnknown* outer) noexcept : AutomationObject(outer, L"Controls") {}

  // IControls [control thread]
  STDMETHODIMP CreateControl(LONG number, IDispatch** created) override {
    return answer(L"CreateControl", created, [&] { return m_maker.create(number).Detach(); });
  }

 private:
  ControlMaker m_maker;
};

/// See ole::CreateFunction.
inline HRESULT createControls(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<ControlsObject>(outer, iid, object);
}

}  // namespace av::companion
