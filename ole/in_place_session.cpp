#include "ole/in_place_session.h"

#include "ole/control.h"

namespace av::ole {

using Microsoft::WRL::ComPtr;

namespace {

SIZE sizeOf(const RECT& rect) noexcept { return {rect.right - rect.left, rect.bottom - rect.top}; }

}  // namespace

HRESULT InPlaceSession::activate(bool userInterface) {
  const ComPtr<IOleClientSite> client = m_control.clientSite();
  if (!client) return S_OK;
  if (!m_active) {
    const HRESULT entered = enter(*client.Get());
    if (FAILED(entered)) return entered;
  } else if (m_window.handle()) {
    ShowWindow(m_window.handle(), SW_SHOWNA);
  }
  HRESULT result = S_OK;
  if (userInterface) {
    result = activateUserInterface();
    if (FAILED(result)) return result;
  }
  client->ShowObject();
  return result;
}

HRESULT InPlaceSession::enter(IOleClientSite& client) {
  ComPtr<IOleInPlaceSite> site;
  const HRESULT found = client.QueryInterface(IID_PPV_ARGS(&site));
  if (FAILED(found) || !site) return FAILED(found) ? found : E_NOINTERFACE;

  const HRESULT possible = site->CanInPlaceActivate();
  if (possible != S_OK) return FAILED(possible) ? possible : E_FAIL;

  ComPtr<IOleInPlaceSiteWindowless> windowless;
  if (m_control.info().windowOnly || FAILED(site.As(&windowless)) || windowless->CanWindowlessActivate() != S_OK)
    windowless.Reset();
  ComPtr<IOleInPlaceSiteEx> extended;
  site.As(&extended);
  if (windowless && !extended) windowless.Reset();  // cannot be told what kind of activation this is
  if (m_active) return S_OK;                        // activated from inside the questions

  m_site = site;
  m_extended = extended;
  m_windowless = windowless;
  m_active = true;
  const unsigned entry = ++m_entry;
  BOOL noRedraw = FALSE;
  const HRESULT announced =
      extended ? extended->OnInPlaceActivateEx(&noRedraw, windowless ? DWORD{ACTIVATE_WINDOWLESS} : DWORD{0})
               : site->OnInPlaceActivate();
  if (entry != m_entry || !m_active) return overtaken();
  if (FAILED(announced)) {
    m_active = false;
    forget();
    return announced;
  }

  HWND parent = nullptr;
  if (!windowless) {
    const HRESULT parented = site->GetWindow(&parent);
    if (entry != m_entry || !m_active) return overtaken();
    if (FAILED(parented)) return fail(parented);
  }

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
  if (windowless) {
    m_control.resized(sizeOf(position));
    return entry == m_entry && m_active ? S_OK : overtaken();
  }
  const bool made = m_window.create(parent, position, m_control);
  if (entry != m_entry || !m_active) return overtaken();
  if (!made) return fail(E_FAIL);
  if (noRedraw) ValidateRect(m_window.handle(), nullptr);  // what the container shows there is the control's picture
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
  const ComPtr<IOleInPlaceSiteEx> extended = m_extended;
  if (extended) {
    const HRESULT allowed = extended->RequestUIActivate();
    if (!m_active) return E_FAIL;
    if (m_userInterfaceActive) return S_OK;
    // Only S_FALSE denies. Containers that do not implement the question fail it, and mean nothing by that.
    if (allowed == S_FALSE) {
      site->OnUIDeactivate(FALSE);  // lets the container put the focus right again
      return OLEOBJ_S_CANNOT_DOVERB_NOW;
    }
  }
  m_userInterfaceActive = true;
  const HRESULT announced = site->OnUIActivate();
  if (FAILED(announced)) {
    m_userInterfaceActive = false;
    return announced;
  }
  if (!m_userInterfaceActive) return E_FAIL;  // deactivated meanwhile
  if (const ComPtr<IOleInPlaceSiteWindowless> windowless = m_windowless) {
    windowless->SetFocus(TRUE);
  } else if (m_window.handle()) {
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
  const ComPtr<IOleInPlaceSiteEx> extended = m_extended;
  // A windowless control looks the same inactive; a window that goes leaves the container's background.
  const BOOL noRedraw = m_windowless ? TRUE : FALSE;
  m_window.destroy();
  forget();
  if (extended) {
    extended->OnInPlaceDeactivateEx(noRedraw);
  } else if (site) {
    site->OnInPlaceDeactivate();
  }
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
  const SIZE old = sizeOf(m_position), wanted = sizeOf(position);
  const bool resized = old.cx != wanted.cx || old.cy != wanted.cy;
  m_position = position;
  if (m_windowless) {
    if (resized) m_control.resized(wanted);
  } else if (HWND window = m_window.handle()) {
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

void InPlaceSession::windowMoved() noexcept {
  const HWND window = m_window.handle();
  RECT place{};
  if (!window || !GetWindowRect(window, &place)) return;
  MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
  OffsetRect(&m_position, place.left - m_position.left, place.top - m_position.top);
}

void InPlaceSession::requestPosition(const RECT& position) {
  const ComPtr<IOleInPlaceSite> site = m_site;
  if (m_active && site) site->OnPosRectChange(&position);
}

void InPlaceSession::invalidate() {
  const ComPtr<IOleInPlaceSiteWindowless> windowless = m_windowless;
  if (m_active && windowless) windowless->InvalidateRect(nullptr, FALSE);
}

std::optional<SIZE> InPlaceSession::clientSize() const noexcept {
  if (!m_active) return std::nullopt;
  if (m_windowless) return sizeOf(m_position);
  RECT client{};
  if (!m_window.handle() || !GetClientRect(m_window.handle(), &client)) return std::nullopt;
  return SIZE{client.right, client.bottom};
}

void InPlaceSession::abandon() noexcept {
  m_active = false;
  m_userInterfaceActive = false;
  m_window.destroy();
  forget();
}

void InPlaceSession::forget() noexcept {
  m_site.Reset();
  m_extended.Reset();
  m_windowless.Reset();
  m_frame.Reset();
  m_document.Reset();
}

}  // namespace av::ole
