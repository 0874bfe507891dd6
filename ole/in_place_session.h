#pragma once

#include "ole/control_window.h"

#include <ocidl.h>
#include <oleidl.h>
#include <wrl/client.h>

#include <atomic>
#include <optional>

namespace av::ole {

class Control;

/// The conversation with an in-place site: from activation to deactivation, with the control's own child window or,
/// where the site allows it and the control does not insist, without.
/// All of it runs on the control thread. The container may do anything inside a call that it is given, also close or
/// release the control; after each such call the session looks at its own state again.
///
/// What is said to the container, in this order (Ex: where the site has IOleInPlaceSiteEx):
///   activation     CanInPlaceActivate, [CanWindowlessActivate,] OnInPlaceActivate or -Ex, [GetWindow, unless
///                  windowless,] GetWindowContext; at the end of every showing verb ShowObject
///   user interface [Ex: RequestUIActivate; refused: OnUIDeactivate and no more,] OnUIActivate, focus (by the site's
///                  SetFocus, if windowless), SetActiveObject and SetBorderSpace of the frame, then of the document
///   and back       SetActiveObject(null) of frame and document, OnUIDeactivate
///   deactivation   (user interface back,) OnInPlaceDeactivate or -Ex
class InPlaceSession {
 public:
  explicit InPlaceSession(Control& control) noexcept : m_control(control) {}

  /// Activates in place (and the user interface, if asked): makes the window, or shows it if it was hidden.
  /// Without a client site nothing happens and the result is S_OK; a site that is no in-place site, or says that it
  /// cannot, gives a failure.
  HRESULT activate(bool userInterface);
  HRESULT activateUserInterface();
  HRESULT deactivate();
  HRESULT deactivateUserInterface();
  HRESULT hide();
  /// `position`, `clip`: pixels of the parent's client area.
  HRESULT setObjectRects(const RECT& position, const RECT& clip);
  /// The control's window was moved, by whomever: requests for another place start from where it is now.
  void windowMoved() noexcept;
  /// Asks the container for another place. Its answer, if it agrees, comes as setObjectRects, mostly before this returns.
  void requestPosition(const RECT& position);
  /// Windowless: asks the site to have the control drawn again.
  void invalidate();

  bool isActive() const noexcept { return m_active; }
  /// Active without a window of its own.
  bool isWindowless() const noexcept { return m_active && m_windowless; }
  bool isUserInterfaceActive() const noexcept { return m_userInterfaceActive; }
  HWND window() const noexcept { return m_window.handle(); }
  /// For what the window shows; windowless there is nobody to be told. See ControlWindow.
  void valueMayHaveChanged() noexcept { m_window.valueMayHaveChanged(); }  // [control thread]
  void valueHasSettled() noexcept { m_window.valueHasSettled(); }          // [any thread]
  IOleInPlaceSite* site() const noexcept { return m_site.Get(); }
  const RECT& position() const noexcept { return m_position; }
  /// What the active control has to draw on, in pixels: its window's client area or, windowless, its rectangle in the
  /// site's window. None while it is inactive.
  std::optional<SIZE> clientSize() const noexcept;

  /// Drops window and site without a word to the container: for the control's end.
  void abandon() noexcept;

 private:
  HRESULT enter(IOleClientSite& client);
  HRESULT fail(HRESULT reason);
  /// The answer of an activation in whose middle the container closed the control, or closed and activated it again.
  HRESULT overtaken() const noexcept;
  void forget() noexcept;

  Control& m_control;
  Microsoft::WRL::ComPtr<IOleInPlaceSite> m_site;
  Microsoft::WRL::ComPtr<IOleInPlaceSiteEx> m_extended;            // m_site, where it has this
  Microsoft::WRL::ComPtr<IOleInPlaceSiteWindowless> m_windowless;  // m_site, while it stands in for a window
  Microsoft::WRL::ComPtr<IOleInPlaceFrame> m_frame;
  Microsoft::WRL::ComPtr<IOleInPlaceUIWindow> m_document;
  ControlWindow m_window;
  RECT m_position{};
  unsigned m_entry = 0;               // counts activations: each is over when a later one has begun
  std::atomic<bool> m_active{false};  // read by blocks on the audio thread
  bool m_userInterfaceActive = false;
  bool m_clipped = false;  // the window carries a region
};

}  // namespace av::ole
