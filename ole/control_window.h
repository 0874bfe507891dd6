#pragma once

#include "ole/accessible_subject.h"

#include <windows.h>

#include <wrl/client.h>

#include <atomic>

namespace av::ole {

class Accessible;

/// Takes the messages of a control's window.
class WindowClient {
 public:
  // [control thread]
  virtual LRESULT windowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
  /// Who tells screen readers of the window; null: the system does, as of any window. [control thread]
  virtual AccessibleSubject* accessibleSubject() noexcept { return nullptr; }

 protected:
  ~WindowClient() = default;
};

/// The child window of an in-place active control. Its end is noticed whoever destroys it: the control, or the host
/// together with the parent window.
class ControlWindow {
 public:
  ControlWindow() noexcept;
  ~ControlWindow();
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  /// Creates the visible child of `parent` at `position` (pixels of the parent's client area). False if Windows refuses.
  bool create(HWND parent, const RECT& position, WindowClient& client) noexcept;
  /// Destroys the window, if there is one; its last messages no longer reach the client.
  void destroy() noexcept;

  HWND handle() const noexcept { return m_window; }

  /// What the window shows may have changed: tells clients that have asked for its accessible object, at most about once a
  /// second and where the words are others. Costs nothing where none has. [control thread]
  void valueMayHaveChanged() noexcept {
    if (m_announceMessage) announceValue(false);
  }
  /// The same without waiting for the second to pass, a message later: for a change that is the last one. [any thread]
  void valueHasSettled() noexcept {
    if (const UINT message = m_announceMessage) PostMessageW(m_window, message, 0, 0);
  }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  /// The answer to WM_GETOBJECT for the client area; 0 leaves it to the system.
  LRESULT accessibleObject(WPARAM wParam) noexcept;
  void announceValue(bool atOnce) noexcept;
  void disconnectAccessible() noexcept;

  std::atomic<HWND> m_window{nullptr};  // read by blocks on the audio thread
  WindowClient* m_client = nullptr;
  Microsoft::WRL::ComPtr<Accessible> m_accessible;  // from the first client that asks on
  std::atomic<UINT> m_announceMessage{0};           // 0: nobody has asked. Read by blocks on the audio thread
};

/// Removes the window class of this module; the module calls it when it is unloaded, since a class outlives the DLL
/// that registered it and would then point to code that is gone.
void unregisterControlWindowClass() noexcept;

}  // namespace av::ole
