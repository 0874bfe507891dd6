#include "ole/quick_activate.h"

#include "ole/control.h"

namespace av::ole {

STDMETHODIMP QuickActivation::QuickActivate(QACONTAINER* container, QACONTROL* answers) {
  if (!container || !answers) return E_POINTER;
  if (container->cbSize < sizeof *container || answers->cbSize < sizeof *answers) return E_INVALIDARG;
  const KeepAlive alive(control());
  const ULONG answersBytes = answers->cbSize;
  *answers = {};
  answers->cbSize = answersBytes;

  if (container->pClientSite) control().setClientSite(container->pClientSite);
  ViewObject& view = control().viewObject();
  if (container->pAdviseSink) view.SetAdvise(DVASPECT_CONTENT, 0, container->pAdviseSink);
  ConnectionPoint* const events = control().events();
  if (container->pUnkEventSink && events) events->Advise(container->pUnkEventSink, &answers->dwEventCookie);

  answers->dwMiscStatus = control().info().miscStatus;
  view.GetViewStatus(&answers->dwViewStatus);
  answers->dwPropNotifyCookie = 0;
  answers->dwPointerActivationPolicy = 0;  // an inactive control does not follow the pointer
  return S_OK;
}

STDMETHODIMP QuickActivation::SetContentExtent(LPSIZEL himetric) {
  return control().oleObject().SetExtent(DVASPECT_CONTENT, himetric);
}

STDMETHODIMP QuickActivation::GetContentExtent(LPSIZEL himetric) {
  return control().oleObject().GetExtent(DVASPECT_CONTENT, himetric);
}

}  // namespace av::ole
