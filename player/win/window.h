#pragma once

#include "player/window_layout.h"

#include <windows.h>

namespace avplayer {

/// A window whose messages go to a method of its object. The object outlives the window, which its destructor ends.
class Window {
 public:
  Window() = default;
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  HWND hwnd() const noexcept { return m_handle; }
  void place(const Box& box) const noexcept {
    SetWindowPos(m_handle, nullptr, box.x, box.y, box.width, box.height, SWP_NOZORDER | SWP_NOACTIVATE);
  }
  void show(bool visible) const noexcept { ShowWindow(m_handle, visible ? SW_SHOWNA : SW_HIDE); }
  void redraw() const noexcept { InvalidateRect(m_handle, nullptr, FALSE); }

 protected:
  virtual ~Window() {
    if (m_handle) DestroyWindow(m_handle);
  }

  struct Creation {
    const wchar_t* className;
    const wchar_t* title = L"";
    DWORD style = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
    DWORD exStyle = 0;
    HWND parent = nullptr;
    Box box = {};
  };

  bool create(const Creation& creation) noexcept {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
    windowClass.hIcon = LoadIconW(windowClass.hInstance, reinterpret_cast<const wchar_t*>(UINT_PTR{1}));
    windowClass.lpszClassName = creation.className;
    RegisterClassExW(&windowClass);  // a second object finds it there
    const Box& box = creation.box;
    return CreateWindowExW(creation.exStyle, creation.className, creation.title, creation.style, box.x, box.y,
                           box.width, box.height, creation.parent, nullptr, windowClass.hInstance, this) != nullptr;
  }

  virtual LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(m_handle, message, wParam, lParam);
  }

 private:
  static LRESULT CALLBACK procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* window = reinterpret_cast<Window*>(GetWindowLongPtrW(handle, GWLP_USERDATA));
    if (message == WM_NCCREATE) {
      window = static_cast<Window*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
      SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(window));
      window->m_handle = handle;
    }
    if (!window) return DefWindowProcW(handle, message, wParam, lParam);
    const LRESULT result = window->onMessage(message, wParam, lParam);
    if (message == WM_NCDESTROY) {
      SetWindowLongPtrW(handle, GWLP_USERDATA, 0);
      window->m_handle = nullptr;
    }
    return result;
  }

  HWND m_handle = nullptr;
};

}  // namespace avplayer
