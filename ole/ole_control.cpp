#include "ole/ole_control.h"

#include "ole/control.h"

namespace av::ole {

STDMETHODIMP OleControl::GetControlInfo(CONTROLINFO* info) {
  if (!info) return E_POINTER;
  info->hAccel = nullptr;
  info->cAccel = 0;
  info->dwFlags = 0;
  return S_OK;
}

STDMETHODIMP OleControl::OnMnemonic(MSG*) { return S_OK; }

// The controls take colours and fonts from their own properties only; no ambient changes a picture.
STDMETHODIMP OleControl::OnAmbientPropertyChange(DISPID) { return S_OK; }

STDMETHODIMP OleControl::FreezeEvents(BOOL freeze) {
  if (freeze) {
    ++m_freezeCount;
  } else if (m_freezeCount > 0) {
    --m_freezeCount;
  }
  return S_OK;
}

}  // namespace av::ole
