#pragma once

#include <windows.h>

#include <atomic>

namespace av::ole {

/// Takes the messages of a control's window.
class WindowClient {
 public:
  // [control thread]
  virtual LRESULT windowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;

 protected:
  ~WindowClient() = default;
};

/// The child window of an in-place active control. Its end is noticed whoever destroys it: the control, or the host
/// together with the parent window.
class ControlWindow {
 public:
  ControlWindow() = default;
  ~ControlWindow() { destroy(); }
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  /// Creates the visible child of `parent` at `position` (pixels of the parent's client area). False if Windows refuses.
  bool create(HWND parent, const RECT& position, WindowClient& client) noexcept;
  /// Destroys the window, if there is one; its last messages no longer reach the client.
  void destroy() noexcept;

  HWND handle() const noexcept { return m_window; }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  std::atomic<HWND> m_window{nullptr};  // read by blocks on the audio thread
  WindowClient* m_client = nullptr;
};

/// Removes the window class of this module; the module calls it when it is unloaded, since a class outlives the DLL
/// that registered it and would then point to code that is gone.
void unregisterControlWindowClass() noexcept;

}  // namespace av::ole
