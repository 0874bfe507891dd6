#pragma once

#include "ole/part.h"

#include <oleidl.h>
#include <wrl/client.h>

namespace av::ole {

/// IOleObject: the embedding conversation. [control thread]
class OleObject final : public ControlPart<IOleObject> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP SetClientSite(IOleClientSite* site) override;
  STDMETHODIMP GetClientSite(IOleClientSite** site) override;
  STDMETHODIMP SetHostNames(LPCOLESTR application, LPCOLESTR object) override;
  STDMETHODIMP Close(DWORD saveOption) override;
  STDMETHODIMP SetMoniker(DWORD which, IMoniker* moniker) override;
  STDMETHODIMP GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
  STDMETHODIMP InitFromData(IDataObject* data, BOOL creation, DWORD reserved) override;
  STDMETHODIMP GetClipboardData(DWORD reserved, IDataObject** data) override;
  STDMETHODIMP DoVerb(LONG verb, LPMSG message, IOleClientSite* activeSite, LONG index, HWND parent,
                      LPCRECT position) override;
  STDMETHODIMP EnumVerbs(IEnumOLEVERB** verbs) override;
  STDMETHODIMP Update() override;
  STDMETHODIMP IsUpToDate() override;
  STDMETHODIMP GetUserClassID(CLSID* classId) override;
  STDMETHODIMP GetUserType(DWORD form, LPOLESTR* userType) override;
  STDMETHODIMP SetExtent(DWORD aspect, SIZEL* himetric) override;
  STDMETHODIMP GetExtent(DWORD aspect, SIZEL* himetric) override;
  STDMETHODIMP Advise(IAdviseSink* sink, DWORD* connection) override;
  STDMETHODIMP Unadvise(DWORD connection) override;
  STDMETHODIMP EnumAdvise(IEnumSTATDATA** connections) override;
  STDMETHODIMP GetMiscStatus(DWORD aspect, DWORD* status) override;
  STDMETHODIMP SetColorScheme(LOGPALETTE* palette) override;

  /// Tells the advise sinks that the control was saved.
  void saved();
  /// Lets the advise sinks go without a word: the control is at its end.
  void disconnect() noexcept { m_adviseHolder.Reset(); }

 private:
  Microsoft::WRL::ComPtr<IOleAdviseHolder> m_adviseHolder;
};

}  // namespace av::ole
