#include "ole/control_window.h"

#include "ole/accessible.h"
#include "ole/module_instance.h"
#include "ole/oleacc_library.h"

#include <cwchar>
#include <iterator>
#include <utility>

namespace av::ole {

namespace {

// The name carries the module's address: a second copy of the DLL in one process has a class of its own.
struct ClassName {
  wchar_t text[64];
  ClassName() noexcept {
    std::swprintf(text, std::size(text), L"QELAudioVisualization4.Control.%p", static_cast<void*>(moduleInstance()));
  }
};

}  // namespace

ControlWindow::ControlWindow() noexcept = default;

ControlWindow::~ControlWindow() { destroy(); }

bool ControlWindow::create(HWND parent, const RECT& position, WindowClient& client) noexcept {
  const ClassName className;
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  // Double clicks are part of the mouse events; a resize repaints everything, since the picture scales with the size.
  windowClass.style = CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = procedure;
  windowClass.hInstance = moduleInstance();
  windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // IDC_ARROW
  windowClass.lpszClassName = className.text;
  if (!RegisterClassExW(&windowClass) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) return false;

  m_client = &client;
  CreateWindowExW(0, className.text, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, position.left,
                  position.top, position.right - position.left, position.bottom - position.top, parent, nullptr,
                  moduleInstance(), this);
  if (!m_window) m_client = nullptr;
  return m_window != nullptr;
}

void ControlWindow::destroy() noexcept {
  m_client = nullptr;
  disconnectAccessible();
  if (m_window) DestroyWindow(m_window);
}

LRESULT CALLBACK ControlWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    auto* self = static_cast<ControlWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
    self->m_window = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  auto* self = reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (!self) return DefWindowProcW(window, message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    self->disconnectAccessible();
    self->m_window = nullptr;
    self->m_client = nullptr;
    return DefWindowProcW(window, message, wParam, lParam);
  }
  // Some systems extend the sign of the object's identifier to 64 bits and some do not.
  if (message == WM_GETOBJECT && static_cast<LONG>(static_cast<DWORD>(lParam)) == OBJID_CLIENT) {
    if (const LRESULT object = self->accessibleObject(wParam)) return object;
  }
  // 0 is no registered message but WM_NULL.
  if (message >= 0xC000 && message == self->m_announceMessage) {
    self->announceValue(true);
    return 0;
  }
  return self->m_client ? self->m_client->windowMessage(window, message, wParam, lParam)
                        : DefWindowProcW(window, message, wParam, lParam);
}

LRESULT ControlWindow::accessibleObject(WPARAM wParam) noexcept {
  if (!m_accessible && m_client) {
    if (AccessibleSubject* const subject = m_client->accessibleSubject()) {
      m_accessible = Accessible::create(m_window, *subject);
      if (m_accessible) m_announceMessage = RegisterWindowMessageW(L"QELAudioVisualization4.ValueHasSettled");
    }
  }
  const Microsoft::WRL::ComPtr<Accessible> object = m_accessible;
  return object ? lresultFromObject(__uuidof(IAccessible), wParam, object.Get()) : 0;
}

void ControlWindow::announceValue(bool atOnce) noexcept {
  const Microsoft::WRL::ComPtr<Accessible> object = m_accessible;
  if (object) object->announceValue(GetTickCount(), atOnce);
}

void ControlWindow::disconnectAccessible() noexcept {
  m_announceMessage = 0;
  const Microsoft::WRL::ComPtr<Accessible> object = std::move(m_accessible);
  if (object) object->disconnect();
}

void unregisterControlWindowClass() noexcept { UnregisterClassW(ClassName().text, moduleInstance()); }

}  // namespace av::ole
