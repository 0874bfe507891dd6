#include "ole/control.h"

#include "ole/extent.h"

namespace av::ole {

Control::Control(IUnknown* outer, const ControlInfo& info) noexcept
    : Object(outer), m_info(info), m_extent{5080, 5080} {}

Control::~Control() = default;

void* Control::findInterface(REFIID iid) noexcept {
  if (iid == IID_IOleObject) return static_cast<IOleObject*>(&m_oleObject);
  if (iid == IID_IOleControl) return static_cast<IOleControl*>(&m_oleControl);
  if (iid == IID_IOleInPlaceObject || iid == IID_IOleWindow) return static_cast<IOleInPlaceObject*>(&m_inPlaceObject);
  if (iid == IID_IOleInPlaceActiveObject) return static_cast<IOleInPlaceActiveObject*>(&m_inPlaceActiveObject);
  if (iid == IID_IViewObject || iid == IID_IViewObject2 || iid == IID_IViewObjectEx)
    return static_cast<IViewObjectEx*>(&m_viewObject);
  if (iid == IID_IPersist || iid == IID_IPersistStreamInit || iid == IID_IPersistStream)
    return static_cast<IPersistStreamInit*>(&m_persistStream);
  if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2)
    return static_cast<IProvideClassInfo2*>(&m_classInfo);
  if (iid == IID_ISupportErrorInfo) return static_cast<ISupportErrorInfo*>(&m_errorInfoSupport);
  return nullptr;
}

void Control::setClientSite(IOleClientSite* site) {
  const Microsoft::WRL::ComPtr<IOleClientSite> old = m_clientSite;
  if (!site) m_inPlace.deactivate();
  m_clientSite = site;
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
    case WM_KILLFOCUS: {
      Microsoft::WRL::ComPtr<IOleControlSite> site;
      if (m_clientSite && SUCCEEDED(m_clientSite.As(&site))) site->OnFocus(message == WM_SETFOCUS);
      break;
    }
    case WM_MOUSEACTIVATE: m_inPlace.activateUserInterface(); break;
    default: break;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

void Control::leaveContainer() noexcept {
  m_inPlace.abandon();
  m_clientSite.Reset();
}

}  // namespace av::ole
