#include "ole/ole_object.h"

#include "ole/control.h"
#include "ole/verb_enumerator.h"

#include <cstring>
#include <cwchar>

namespace av::ole {

using Microsoft::WRL::ComPtr;

STDMETHODIMP OleObject::SetClientSite(IOleClientSite* site) {
  const KeepAlive alive(control());
  control().setClientSite(site);
  return S_OK;
}

STDMETHODIMP OleObject::GetClientSite(IOleClientSite** site) {
  if (!site) return E_POINTER;
  *site = control().clientSite();
  if (*site) (*site)->AddRef();
  return S_OK;
}

STDMETHODIMP OleObject::SetHostNames(LPCOLESTR, LPCOLESTR) { return S_OK; }

STDMETHODIMP OleObject::Close(DWORD saveOption) {
  const KeepAlive alive(control());
  control().inPlace().deactivate();
  // The content can be lost without asking: a prompt would need words that belong to the container.
  if (control().isDirty() && saveOption != OLECLOSE_NOSAVE) {
    const ComPtr<IOleClientSite> site = control().clientSite();
    if (site) site->SaveObject();  // being saved, the control tells its advise sinks
  }
  const ComPtr<IOleAdviseHolder> holder = m_adviseHolder;
  if (holder) holder->SendOnClose();
  return S_OK;
}

STDMETHODIMP OleObject::SetMoniker(DWORD, IMoniker*) { return E_NOTIMPL; }

STDMETHODIMP OleObject::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  if (moniker) *moniker = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP OleObject::InitFromData(IDataObject*, BOOL, DWORD) { return E_NOTIMPL; }

STDMETHODIMP OleObject::GetClipboardData(DWORD, IDataObject** data) {
  if (data) *data = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP OleObject::DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) {
  const KeepAlive alive(control());
  InPlaceSession& session = control().inPlace();
  HRESULT result = S_OK;
  switch (verb) {
    case OLEIVERB_PRIMARY:
    case OLEIVERB_SHOW:
    case OLEIVERB_INPLACEACTIVATE: result = session.activate(false); break;
    case OLEIVERB_UIACTIVATE: result = session.activate(true); break;
    case OLEIVERB_HIDE: return session.hide();
    case OLEIVERB_DISCARDUNDOSTATE: return S_OK;
    default:
      // Negative verbs are OLE's own; of the others the primary one stands in, as the protocol asks.
      if (verb < 0) return E_NOTIMPL;
      result = session.activate(false);
      if (result == S_OK) result = OLEOBJ_S_INVALIDVERB;
      break;
  }
  control().activationVerbDone();
  return result;
}

STDMETHODIMP OleObject::EnumVerbs(IEnumOLEVERB** verbs) {
  if (!verbs) return E_POINTER;
  // None are registered, so the registry has no better answer.
  return createVerbEnumerator(verbs);
}

STDMETHODIMP OleObject::Update() { return S_OK; }

STDMETHODIMP OleObject::IsUpToDate() { return S_OK; }

STDMETHODIMP OleObject::GetUserClassID(CLSID* classId) {
  if (!classId) return E_POINTER;
  *classId = control().info().classId;
  return S_OK;
}

STDMETHODIMP OleObject::GetUserType(DWORD, LPOLESTR* userType) {
  if (!userType) return E_POINTER;
  const wchar_t* name = control().info().userType;
  const std::size_t bytes = (std::wcslen(name) + 1) * sizeof(wchar_t);
  *userType = static_cast<LPOLESTR>(CoTaskMemAlloc(bytes));
  if (!*userType) return E_OUTOFMEMORY;
  std::memcpy(*userType, name, bytes);
  return S_OK;
}

STDMETHODIMP OleObject::SetExtent(DWORD aspect, SIZEL* himetric) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (!himetric) return E_POINTER;
  if (himetric->cx < 0 || himetric->cy < 0) return E_INVALIDARG;
  const SIZEL old = control().extentHimetric();
  if (old.cx == himetric->cx && old.cy == himetric->cy) return S_OK;
  control().setExtent(*himetric);
  control().setDirty(true);
  if (!control().inPlace().isActive()) control().requestRedraw();
  return S_OK;
}

STDMETHODIMP OleObject::GetExtent(DWORD aspect, SIZEL* himetric) {
  if (!himetric) return E_POINTER;
  *himetric = {};
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  *himetric = control().extentHimetric();
  return S_OK;
}

STDMETHODIMP OleObject::Advise(IAdviseSink* sink, DWORD* connection) {
  if (!connection) return E_POINTER;
  *connection = 0;
  if (!sink) return E_INVALIDARG;  // not every system's holder looks
  if (!m_adviseHolder) {
    const HRESULT created = CreateOleAdviseHolder(&m_adviseHolder);
    if (FAILED(created)) return created;
  }
  return m_adviseHolder->Advise(sink, connection);
}

STDMETHODIMP OleObject::Unadvise(DWORD connection) {
  return m_adviseHolder ? m_adviseHolder->Unadvise(connection) : OLE_E_NOCONNECTION;
}

STDMETHODIMP OleObject::EnumAdvise(IEnumSTATDATA** connections) {
  if (!connections) return E_POINTER;
  *connections = nullptr;
  return m_adviseHolder ? m_adviseHolder->EnumAdvise(connections) : S_OK;
}

STDMETHODIMP OleObject::GetMiscStatus(DWORD aspect, DWORD* status) {
  if (!status) return E_POINTER;
  *status = aspect == DVASPECT_CONTENT ? control().info().miscStatus : 0;
  return S_OK;
}

STDMETHODIMP OleObject::SetColorScheme(LOGPALETTE*) { return E_NOTIMPL; }

void OleObject::saved() {
  const ComPtr<IOleAdviseHolder> holder = m_adviseHolder;
  if (holder) holder->SendOnSave();
}

}  // namespace av::ole
