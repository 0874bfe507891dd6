#include "ole/control.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace av::ole {

namespace {

/// How far a message's coordinate lies from `origin`, as messages carry it: 16 bits with a sign. A control that is
/// scrolled far out of its container's window may be further away than these can say.
WORD distanceOnAxis(WORD coordinate, LONG origin) noexcept {
  using Limits = std::numeric_limits<std::int16_t>;
  const std::int64_t distance = std::int64_t{static_cast<std::int16_t>(coordinate)} - origin;
  return static_cast<WORD>(std::clamp<std::int64_t>(distance, Limits::min(), Limits::max()));
}

LONG himetricFromPixels(LONG pixels, int dotsPerInch) noexcept { return MulDiv(pixels, 2540, dotsPerInch); }
LONG pixelsFromHimetric(LONG himetric, int dotsPerInch) noexcept { return MulDiv(himetric, dotsPerInch, 2540); }

}  // namespace

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
  ConnectionPoint* const point = events();
  if (!point || m_oleControl.eventsAreFrozen()) return S_OK;
  const KeepAlive alive(*this);
  return point->fire(event, arguments);
}

void Control::extentLoaded(SIZEL himetric) {
  m_extent = himetric;
  m_dirty = false;
  if (!m_inPlace.isActive()) requestRedraw();
}

void Control::takeExtentOf(SIZE pixels) {
  HDC screen = GetDC(nullptr);
  if (!screen) return;
  const int dpiX = GetDeviceCaps(screen, LOGPIXELSX), dpiY = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  // Many extents mean the same pixels: one that does so already is the container's own and stays.
  if (pixelsFromHimetric(m_extent.cx, dpiX) == pixels.cx && pixelsFromHimetric(m_extent.cy, dpiY) == pixels.cy) return;
  m_extent = {himetricFromPixels(pixels.cx, dpiX), himetricFromPixels(pixels.cy, dpiY)};
  m_dirty = true;
}

void Control::requestSize(SIZE pixels) {
  takeExtentOf(pixels);
  const RECT& now = m_inPlace.position();
  m_inPlace.requestPosition({now.left, now.top, now.left + pixels.cx, now.top + pixels.cy});
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
      // Hosts that want a picture without asking for WM_PRINTCLIENT pass their device context with this one.
      if (wParam != 0) return windowMessage(window, WM_PRINTCLIENT, wParam, PRF_CLIENT);
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
    case WM_SIZE: resized({LOWORD(lParam), HIWORD(lParam)}); break;
    case WM_MOVE: m_inPlace.windowMoved(); break;
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
    lParam = MAKELPARAM(distanceOnAxis(LOWORD(lParam), position.left), distanceOnAxis(HIWORD(lParam), position.top));
  }
  // A window would hear of this by WM_MOUSEACTIVATE, and the press would not reach it if that had ended it.
  if (message == WM_LBUTTONDOWN || message == WM_MBUTTONDOWN || message == WM_RBUTTONDOWN) {
    m_inPlace.activateUserInterface();
    if (!m_inPlace.isWindowless()) return false;
  }
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
