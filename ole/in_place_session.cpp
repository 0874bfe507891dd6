#include "ole/in_place_session.h"

#include "ole/control.h"

namespace av::ole {

using Microsoft::WRL::ComPtr;

HRESULT InPlaceSession::activate(bool userInterface) {
  const ComPtr<IOleClientSite> client = m_control.clientSite();
  if (!client) return S_OK;
  if (!m_active) {
    const HRESULT entered = enter(*client.Get());
    if (FAILED(entered)) return entered;
  } else if (m_window.handle()) {
    ShowWindow(m_window.handle(), SW_SHOWNA);
  }
  if (userInterface) {
    const HRESULT activated = activateUserInterface();
    if (FAILED(activated)) return activated;
  }
  client->ShowObject();
  return S_OK;
}

HRESULT InPlaceSession::enter(IOleClientSite& client) {
  ComPtr<IOleInPlaceSite> site;
  const HRESULT found = client.QueryInterface(IID_PPV_ARGS(&site));
  if (FAILED(found) || !site) return FAILED(found) ? found : E_NOINTERFACE;

  const HRESULT possible = site->CanInPlaceActivate();
  if (possible != S_OK) return FAILED(possible) ? possible : E_FAIL;
  if (m_active) return S_OK;  // activated from inside the question

  m_site = site;
  m_active = true;
  const unsigned entry = ++m_entry;
  const HRESULT announced = site->OnInPlaceActivate();
  if (entry != m_entry || !m_active) return overtaken();
  if (FAILED(announced)) {
    m_active = false;
    m_site.Reset();
    return announced;
  }

  HWND parent = nullptr;
  const HRESULT parented = site->GetWindow(&parent);
  if (entry != m_entry || !m_active) return overtaken();
  if (FAILED(parented)) return fail(parented);

  RECT position{}, clip{};
  OLEINPLACEFRAMEINFO frameInfo{};
  frameInfo.cb = sizeof frameInfo;
  ComPtr<IOleInPlaceFrame> frame;
  ComPtr<IOleInPlaceUIWindow> document;
  const HRESULT placed = site->GetWindowContext(&frame, &document, &position, &clip, &frameInfo);
  if (entry != m_entry || !m_active) return overtaken();
  if (FAILED(placed)) return fail(placed);

  m_frame = frame;
  m_document = document;
  m_position = position;
  const bool made = m_window.create(parent, position, m_control);
  if (entry != m_entry || !m_active) return overtaken();
  if (!made) return fail(E_FAIL);
  // A control that is too small asks for another rectangle while its window is being made, and has it by now.
  return EqualRect(&m_position, &position) ? setObjectRects(position, clip) : S_OK;
}

HRESULT InPlaceSession::overtaken() const noexcept { return m_active ? S_OK : E_FAIL; }

HRESULT InPlaceSession::fail(HRESULT reason) {
  deactivate();
  return reason;
}

HRESULT InPlaceSession::activateUserInterface() {
  if (!m_active) return E_FAIL;
  if (m_userInterfaceActive) return S_OK;
  const ComPtr<IOleInPlaceSite> site = m_site;
  m_userInterfaceActive = true;
  const HRESULT announced = site->OnUIActivate();
  if (FAILED(announced)) {
    m_userInterfaceActive = false;
    return announced;
  }
  if (m_window.handle()) {
    const HWND focus = GetFocus();
    if (focus != m_window.handle() && !IsChild(m_window.handle(), focus)) SetFocus(m_window.handle());
  }
  // The control brings no tools: it takes the active object's place and asks for no border space.
  ComPtr<IOleInPlaceActiveObject> self;
  m_control.queryInterface(IID_PPV_ARGS(&self));
  const ComPtr<IOleInPlaceFrame> frame = m_frame;
  const ComPtr<IOleInPlaceUIWindow> document = m_document;
  if (frame && m_userInterfaceActive) {
    frame->SetActiveObject(self.Get(), nullptr);
    frame->SetBorderSpace(nullptr);
  }
  if (document && m_userInterfaceActive) {
    document->SetActiveObject(self.Get(), nullptr);
    document->SetBorderSpace(nullptr);
  }
  return S_OK;
}

HRESULT InPlaceSession::deactivateUserInterface() {
  if (!m_userInterfaceActive) return S_OK;
  m_userInterfaceActive = false;
  const ComPtr<IOleInPlaceSite> site = m_site;
  const ComPtr<IOleInPlaceFrame> frame = m_frame;
  const ComPtr<IOleInPlaceUIWindow> document = m_document;
  if (frame) frame->SetActiveObject(nullptr, nullptr);
  if (document) document->SetActiveObject(nullptr, nullptr);
  if (site) site->OnUIDeactivate(FALSE);
  return S_OK;
}

HRESULT InPlaceSession::deactivate() {
  if (!m_active) return S_OK;
  deactivateUserInterface();
  if (!m_active) return S_OK;  // deactivated again from inside OnUIDeactivate
  m_active = false;
  const ComPtr<IOleInPlaceSite> site = m_site;
  m_window.destroy();
  m_site.Reset();
  m_frame.Reset();
  m_document.Reset();
  if (site) site->OnInPlaceDeactivate();
  return S_OK;
}

HRESULT InPlaceSession::hide() {
  if (!m_active) return S_OK;
  deactivateUserInterface();
  if (m_window.handle()) ShowWindow(m_window.handle(), SW_HIDE);
  return S_OK;
}

HRESULT InPlaceSession::setObjectRects(const RECT& position, const RECT& clip) {
  if (!m_active) return E_UNEXPECTED;
  m_position = position;
  if (HWND window = m_window.handle()) {
    // An empty clip comes from containers that do not clip at all; it does not hide the control.
    RECT visible{};
    HRGN region = nullptr;
    if (IntersectRect(&visible, &position, &clip) && !EqualRect(&visible, &position)) {
      OffsetRect(&visible, -position.left, -position.top);
      region = CreateRectRgnIndirect(&visible);
    }
    if (region || m_clipped) SetWindowRgn(window, region, TRUE);  // owns the region from here on
    m_clipped = region != nullptr;
    SetWindowPos(window, nullptr, position.left, position.top, position.right - position.left,
                 position.bottom - position.top, SWP_NOZORDER | SWP_NOACTIVATE);
  }
  return S_OK;
}

void InPlaceSession::abandon() noexcept {
  m_active = false;
  m_userInterfaceActive = false;
  m_window.destroy();
  m_site.Reset();
  m_frame.Reset();
  m_document.Reset();
}

}  // namespace av::ole
