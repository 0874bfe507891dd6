#include "host/recording_site.h"

#include "host/recording_container.h"

namespace av::test {

namespace {

std::string flag(BOOL value) { return value ? "1" : "0"; }

}  // namespace

STDMETHODIMP RecordingSite::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  using Site = RecordingContainer::Site;
  const RecordingContainer::Traits& traits = m_container.traits();
  if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
    *object = static_cast<IOleClientSite*>(this);
  } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite) {
    if (traits.site >= Site::plain) *object = static_cast<IOleInPlaceSite*>(this);
  } else if (iid == IID_IOleInPlaceSiteEx) {
    if (traits.site >= Site::extended) *object = static_cast<IOleInPlaceSiteEx*>(this);
  } else if (iid == IID_IOleInPlaceSiteWindowless) {
    if (traits.site >= Site::windowless) *object = static_cast<IOleInPlaceSiteWindowless*>(this);
  } else if (iid == IID_IOleControlSite) {
    if (traits.controlSite) *object = static_cast<IOleControlSite*>(this);
  } else if (iid == IID_IDispatch) {
    if (traits.ambients) *object = static_cast<IDispatch*>(this);
  }
  if (!*object) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

// IOleClientSite

STDMETHODIMP RecordingSite::SaveObject() {
  const HRESULT result = party.note("IOleClientSite::SaveObject");
  return SUCCEEDED(result) ? m_container.saveControl() : result;
}

STDMETHODIMP RecordingSite::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  if (moniker) *moniker = nullptr;
  return party.note("IOleClientSite::GetMoniker", "", E_NOTIMPL);
}

STDMETHODIMP RecordingSite::GetContainer(IOleContainer** container) {
  const bool there = m_container.traits().oleContainer;
  const HRESULT result = party.note("IOleClientSite::GetContainer", "", there ? S_OK : E_NOINTERFACE);
  if (!container) return E_POINTER;
  *container = nullptr;
  if (SUCCEEDED(result) && there) {
    *container = &m_container.m_oleContainer;
    (*container)->AddRef();
  }
  return result;
}

STDMETHODIMP RecordingSite::ShowObject() { return party.note("IOleClientSite::ShowObject"); }

STDMETHODIMP RecordingSite::OnShowWindow(BOOL show) { return party.note("IOleClientSite::OnShowWindow", flag(show)); }

STDMETHODIMP RecordingSite::RequestNewObjectLayout() {
  return party.note("IOleClientSite::RequestNewObjectLayout", "", E_NOTIMPL);
}

// IOleWindow

STDMETHODIMP RecordingSite::GetWindow(HWND* window) {
  const HRESULT result = party.note("IOleInPlaceSite::GetWindow");
  if (!window) return E_POINTER;
  *window = SUCCEEDED(result) ? m_container.window() : nullptr;
  return result;
}

STDMETHODIMP RecordingSite::ContextSensitiveHelp(BOOL) { return party.note("IOleInPlaceSite::ContextSensitiveHelp"); }

// IOleInPlaceSite

STDMETHODIMP RecordingSite::CanInPlaceActivate() { return party.note("IOleInPlaceSite::CanInPlaceActivate"); }

STDMETHODIMP RecordingSite::OnInPlaceActivate() { return party.note("IOleInPlaceSite::OnInPlaceActivate"); }

STDMETHODIMP RecordingSite::OnUIActivate() { return party.note("IOleInPlaceSite::OnUIActivate"); }

STDMETHODIMP RecordingSite::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position,
                                             RECT* clip, OLEINPLACEFRAMEINFO* frameInfo) {
  const HRESULT result = party.note("IOleInPlaceSite::GetWindowContext");
  if (!frame || !document || !position || !clip || !frameInfo) return E_POINTER;
  *frame = nullptr;
  *document = nullptr;
  if (FAILED(result)) return result;
  *frame = &m_container.m_frame;
  (*frame)->AddRef();
  if (m_container.traits().documentWindow) {
    *document = &m_container.m_document;
    (*document)->AddRef();
  }
  *position = m_container.controlRect();
  *clip = m_container.clientRect();
  frameInfo->fMDIApp = FALSE;
  frameInfo->hwndFrame = m_container.window();
  frameInfo->haccel = nullptr;
  frameInfo->cAccelEntries = 0;
  return result;
}

STDMETHODIMP RecordingSite::Scroll(SIZE) { return party.note("IOleInPlaceSite::Scroll", "", S_FALSE); }

// The container takes the focus back when its control gives up the user interface.
STDMETHODIMP RecordingSite::OnUIDeactivate(BOOL undoable) {
  const HRESULT result = party.note("IOleInPlaceSite::OnUIDeactivate", flag(undoable));
  if (SUCCEEDED(result)) m_container.focusControl(false);
  return result;
}

STDMETHODIMP RecordingSite::OnInPlaceDeactivate() {
  m_container.m_windowlessActive = false;
  return party.note("IOleInPlaceSite::OnInPlaceDeactivate");
}

STDMETHODIMP RecordingSite::DiscardUndoState() { return party.note("IOleInPlaceSite::DiscardUndoState"); }

STDMETHODIMP RecordingSite::DeactivateAndUndo() { return party.note("IOleInPlaceSite::DeactivateAndUndo"); }

STDMETHODIMP RecordingSite::OnPosRectChange(const RECT* position) {
  const HRESULT result = party.note("IOleInPlaceSite::OnPosRectChange", position ? text(*position) : "null");
  return SUCCEEDED(result) && position ? m_container.moveControl(*position) : result;
}

// IOleInPlaceSiteEx

STDMETHODIMP RecordingSite::OnInPlaceActivateEx(BOOL* noRedraw, DWORD flags) {
  if (noRedraw) *noRedraw = FALSE;
  const HRESULT result = party.note("IOleInPlaceSiteEx::OnInPlaceActivateEx", std::to_string(flags));
  m_container.m_windowlessActive = SUCCEEDED(result) && (flags & ACTIVATE_WINDOWLESS) != 0;
  return result;
}

STDMETHODIMP RecordingSite::OnInPlaceDeactivateEx(BOOL) {
  m_container.m_windowlessActive = false;
  return party.note("IOleInPlaceSiteEx::OnInPlaceDeactivateEx");
}

STDMETHODIMP RecordingSite::RequestUIActivate() { return party.note("IOleInPlaceSiteEx::RequestUIActivate"); }

// IOleInPlaceSiteWindowless

STDMETHODIMP RecordingSite::CanWindowlessActivate() {
  return party.note("IOleInPlaceSiteWindowless::CanWindowlessActivate");
}

STDMETHODIMP RecordingSite::GetCapture() { return party.note("IOleInPlaceSiteWindowless::GetCapture", "", S_FALSE); }

STDMETHODIMP RecordingSite::SetCapture(BOOL capture) {
  return party.note("IOleInPlaceSiteWindowless::SetCapture", flag(capture));
}

STDMETHODIMP RecordingSite::GetFocus() {
  return party.note("IOleInPlaceSiteWindowless::GetFocus", "", m_container.m_windowlessFocus ? S_OK : S_FALSE);
}

STDMETHODIMP RecordingSite::SetFocus(BOOL focus) {
  const HRESULT result = party.note("IOleInPlaceSiteWindowless::SetFocus", flag(focus));
  if (result == S_OK) m_container.focusControl(focus != FALSE);
  return result;
}

STDMETHODIMP RecordingSite::GetDC(const RECT*, DWORD, HDC* context) {
  const HRESULT result = party.note("IOleInPlaceSiteWindowless::GetDC");
  if (!context) return E_POINTER;
  *context = SUCCEEDED(result) ? ::GetDC(m_container.window()) : nullptr;
  return result;
}

STDMETHODIMP RecordingSite::ReleaseDC(HDC context) {
  ::ReleaseDC(m_container.window(), context);
  return party.note("IOleInPlaceSiteWindowless::ReleaseDC");
}

STDMETHODIMP RecordingSite::InvalidateRect(const RECT* rect, BOOL erase) {
  const HRESULT result = party.note("IOleInPlaceSiteWindowless::InvalidateRect", rect ? text(*rect) : "all");
  if (SUCCEEDED(result)) ::InvalidateRect(m_container.window(), rect ? rect : &m_container.controlRect(), erase);
  return result;
}

STDMETHODIMP RecordingSite::InvalidateRgn(HRGN, BOOL) { return party.note("IOleInPlaceSiteWindowless::InvalidateRgn"); }

STDMETHODIMP RecordingSite::ScrollRect(INT, INT, const RECT*, const RECT*) {
  return party.note("IOleInPlaceSiteWindowless::ScrollRect");
}

STDMETHODIMP RecordingSite::AdjustRect(RECT*) { return party.note("IOleInPlaceSiteWindowless::AdjustRect"); }

STDMETHODIMP RecordingSite::OnDefWindowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
  const HRESULT answer = party.note("IOleInPlaceSiteWindowless::OnDefWindowMessage", std::to_string(message));
  if (result) *result = DefWindowProcW(m_container.window(), message, wParam, lParam);
  return answer;
}

// IOleControlSite

STDMETHODIMP RecordingSite::OnControlInfoChanged() { return party.note("IOleControlSite::OnControlInfoChanged"); }

STDMETHODIMP RecordingSite::LockInPlaceActive(BOOL lock) {
  return party.note("IOleControlSite::LockInPlaceActive", flag(lock));
}

STDMETHODIMP RecordingSite::GetExtendedControl(IDispatch** control) {
  if (control) *control = nullptr;
  return party.note("IOleControlSite::GetExtendedControl", "", E_NOTIMPL);
}

STDMETHODIMP RecordingSite::TransformCoords(POINTL*, POINTF*, DWORD) {
  return party.note("IOleControlSite::TransformCoords", "", E_NOTIMPL);
}

STDMETHODIMP RecordingSite::TranslateAccelerator(MSG*, DWORD) {
  return party.note("IOleControlSite::TranslateAccelerator", "", S_FALSE);
}

STDMETHODIMP RecordingSite::OnFocus(BOOL gained) { return party.note("IOleControlSite::OnFocus", flag(gained)); }

STDMETHODIMP RecordingSite::ShowPropertyFrame() {
  return party.note("IOleControlSite::ShowPropertyFrame", "", E_NOTIMPL);
}

// IDispatch

STDMETHODIMP RecordingSite::GetTypeInfoCount(UINT* count) {
  if (count) *count = 0;
  return party.note("IDispatch::GetTypeInfoCount");
}

STDMETHODIMP RecordingSite::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info) *info = nullptr;
  return party.note("IDispatch::GetTypeInfo", "", E_NOTIMPL);
}

STDMETHODIMP RecordingSite::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
  return party.note("IDispatch::GetIDsOfNames", "", DISP_E_UNKNOWNNAME);
}

STDMETHODIMP RecordingSite::Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) {
  const HRESULT answer = party.note("IDispatch::Invoke", std::to_string(member), DISP_E_MEMBERNOTFOUND);
  if (result) VariantInit(result);
  return answer;
}

}  // namespace av::test
