#include "ole/control.h"

#include "ole/extent.h"

namespace av::ole {

Control::Control(IUnknown* outer, const ControlInfo& info) noexcept
    : Object(outer), m_info(info), m_extent{5080, 5080} {}

Control::~Control() = default;

void* Control::findInterface(REFIID iid) noexcept {
  if (iid == IID_IOleObject) return static_cast<IOleObject*>(&m_oleObject);
  if (iid == IID_IOleControl) return static_cast<IOleControl*>(&m_oleControl);
  if (iid == IID_IOleInPlaceObject || iid == IID_IOleInPlaceObjectWindowless || iid == IID_IOleWindow)
    return static_cast<IOleInPlaceObjectWindowless*>(&m_inPlaceObject);
  if (iid == IID_IOleInPlaceActiveObject) return static_cast<IOleInPlaceActiveObject*>(&m_inPlaceActiveObject);
  if (iid == IID_IViewObject || iid == IID_IViewObject2 || iid == IID_IViewObjectEx)
    return static_cast<IViewObjectEx*>(&m_viewObject);
  if (iid == IID_IPersist || iid == IID_IPersistStreamInit || iid == IID_IPersistStream)
    return static_cast<IPersistStreamInit*>(&m_persistStream);
  if (iid == IID_IPersistStorage) return static_cast<IPersistStorage*>(&m_persistStorage);
  if (iid == IID_IPersistPropertyBag) return static_cast<IPersistPropertyBag*>(&m_persistPropertyBag);
  if (iid == IID_IQuickActivate) return static_cast<IQuickActivate*>(&m_quickActivate);
  if (iid == IID_IConnectionPointContainer) return static_cast<IConnectionPointContainer*>(&m_connectionPoints);
  if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2)
    return static_cast<IProvideClassInfo2*>(&m_classInfo);
  if (iid == IID_ISupportErrorInfo) return static_cast<ISupportErrorInfo*>(&m_errorInfoSupport);
  return nullptr;
}

void Control::setClientSite(IOleClientSite* site) {
  const Microsoft::WRL::ComPtr<IOleClientSite> old = m_clientSite;
  if (site != old.Get()) m_inPlace.deactivate();  // the old site is where it is active
  m_clientSite = site;
}

HRESULT Control::fireEvent(DISPID event, std::initializer_list<LONG> arguments) {
  constexpr std::size_t most = 8;
  ConnectionPoint* const point = events();
  if (!point || m_oleControl.eventsAreFrozen()) return S_OK;
  if (arguments.size() > most) return E_INVALIDARG;
  const KeepAlive alive(*this);
  VARIANT reversed[most];
  auto* next = reversed + arguments.size();
  for (const LONG argument : arguments) {
    --next;
    VariantInit(next);
    V_VT(next) = VT_I4;
    V_I4(next) = argument;
  }
  return point->fire(event, reversed, static_cast<UINT>(arguments.size()));
}

void Control::extentLoaded(SIZEL himetric) {
  m_extent = himetric;
  m_dirty = false;
  if (!m_inPlace.isActive()) requestRedraw();
}

void Control::saved() {
  m_dirty = false;
  m_oleObject.saved();
}

void Control::drawNow() {
  if (!hasActiveWindow()) return requestRedraw();
  const HWND window = m_inPlace.window();
  RECT client{};
  if (!GetClientRect(window, &client)) return;
  if (HDC target = GetDC(window)) {
    draw(target, client);
    ReleaseDC(window, target);
  }
}

void Control::requestRedraw() {
  if (hasActiveWindow()) {
    InvalidateRect(m_inPlace.window(), nullptr, FALSE);
  } else if (m_inPlace.isWindowless()) {
    // The site belongs to this thread's apartment; a block on another one leaves word for the next tick.
    if (onControlThread()) {
      m_inPlace.invalidate();
    } else {
      m_redrawRequested = true;
    }
  } else if (!m_inPlace.isActive()) {
    m_viewObject.viewChanged();
  }
}

LRESULT Control::windowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const KeepAlive alive(*this);
  LRESULT result = 0;
  if (handleMessage(message, wParam, lParam, result)) return result;
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT paint;
      if (HDC target = BeginPaint(window, &paint)) {
        RECT client{};
        GetClientRect(window, &client);
        draw(target, client);
        EndPaint(window, &paint);
      }
      return 0;
    }
    case WM_PRINTCLIENT: {
      RECT client{};
      GetClientRect(window, &client);
      draw(reinterpret_cast<HDC>(wParam), client);
      return 0;
    }
    case WM_ERASEBKGND: return 1;  // the picture covers everything
    case WM_SIZE: resized(); break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: focusChanged(message == WM_SETFOCUS); break;
    case WM_MOUSEACTIVATE: m_inPlace.activateUserInterface(); break;
    default: break;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

bool Control::windowlessMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
  if (!m_inPlace.isWindowless()) return false;
  const KeepAlive alive(*this);
  // Containers give positions in their window; those of wheel messages count from the screen's corner and stay.
  const bool pointer = message >= WM_MOUSEFIRST && message <= WM_MOUSELAST;
  if (pointer && message != WM_MOUSEWHEEL && message != WM_MOUSEHWHEEL) {
    const RECT& position = m_inPlace.position();
    lParam = MAKELPARAM(static_cast<short>(LOWORD(lParam)) - position.left,
                        static_cast<short>(HIWORD(lParam)) - position.top);
  }
  // A window would hear of this by WM_MOUSEACTIVATE.
  if (message == WM_LBUTTONDOWN || message == WM_MBUTTONDOWN || message == WM_RBUTTONDOWN)
    m_inPlace.activateUserInterface();
  if (handleMessage(message, wParam, lParam, result)) return true;
  if (message != WM_SETFOCUS && message != WM_KILLFOCUS) return false;
  focusChanged(message == WM_SETFOCUS);
  return true;
}

void Control::focusChanged(bool gained) {
  Microsoft::WRL::ComPtr<IOleControlSite> site;
  if (m_clientSite && SUCCEEDED(m_clientSite.As(&site))) site->OnFocus(gained);
}

void Control::leaveContainer() noexcept {
  m_inPlace.abandon();
  if (ConnectionPoint* const point = events()) point->disconnectAll();
  m_viewObject.disconnect();
  m_oleObject.disconnect();
  m_clientSite.Reset();
}

}  // namespace av::ole
