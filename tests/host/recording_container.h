#pragma once

#include "host/call_log.h"
#include "host/recording_parties.h"
#include "host/recording_site.h"

#include <windows.h>

#include <oleidl.h>
#include <wrl/client.h>

namespace av::test {

/// A container that writes down every call that its control makes, answers as a well-behaved container does, and can
/// be told to fail a call or to do something inside of it: close, release, unsite or resize the control.
///
/// It holds no reference to itself: when it is left by its control, the counts of its parties are zero.
/// [control thread]
class RecordingContainer {
 public:
  /// How much of an in-place site the container has.
  enum class Site { none, plain, extended, windowless };

  struct Traits {
    Site site = Site::plain;
    bool ambients = true;        ///< the site answers IDispatch
    bool controlSite = true;     ///< the site answers IOleControlSite
    bool documentWindow = true;  ///< GetWindowContext gives a document window besides the frame
    bool oleContainer = true;    ///< GetContainer gives one
    SIZE controlSize{200, 100};  ///< pixels
  };

  RecordingContainer() : RecordingContainer(Traits{}) {}
  explicit RecordingContainer(const Traits& traits);
  ~RecordingContainer();
  RecordingContainer(const RecordingContainer&) = delete;
  RecordingContainer& operator=(const RecordingContainer&) = delete;

  CallLog log;

  /// Takes the caller's reference on the control: with releaseControl() the container gives up the only one.
  void take(Microsoft::WRL::ComPtr<IOleObject>&& control);
  IOleObject* control() const { return m_control.Get(); }
  /// Lets the control go as it is, sited, active or not. Returns the references that others hold.
  ULONG releaseControl();

  // What a container does with its control. None of these holds a reference of its own meanwhile: when the container
  // lets the control go inside of the call, nobody has one.

  /// SetClientSite.
  HRESULT site();
  HRESULT unsite();
  /// Asks for close notices (IOleObject::Advise) and view changes (IViewObject::SetAdvise).
  HRESULT advise();
  HRESULT unadvise();
  HRESULT doVerb(LONG verb);
  HRESULT close(DWORD saveOption = OLECLOSE_NOSAVE);
  HRESULT uiDeactivate();
  HRESULT inPlaceDeactivate();
  /// SetExtent by the screen's DPI, then SetObjectRects.
  HRESULT resize(SIZE sizePx);
  /// SetObjectRects and no word of the extent: as containers answer IOleInPlaceSite::OnPosRectChange.
  HRESULT moveControl(const RECT& position);

  HWND window() const { return m_window; }
  const Traits& traits() const { return m_traits; }
  /// Where the control is, in pixels of window().
  const RECT& controlRect() const { return m_rect; }
  /// The control's own window, null while it has none.
  HWND controlWindow() const;
  const RecordingWindow& frame() const { return m_frame; }
  const RecordingWindow& document() const { return m_document; }

  /// References on the site and the other parties that the control, or somebody on its behalf, still holds.
  long references() const;

  /// Destroys the window, with whatever children it has.
  void destroyWindow();

 private:
  friend class RecordingSite;

  IOleInPlaceObject* inPlaceObject() const;  ///< not counted
  HRESULT saveControl();
  void focusControl(bool focus);
  RECT clientRect() const;
  /// Passes mouse messages over the windowless control's rectangle on to it; true when it has handled one.
  bool forwardMouse(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);

  static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  const Traits m_traits;
  RecordingSite m_site{*this, log};
  RecordingWindow m_frame{log, "frame", true};
  RecordingWindow m_document{log, "document", false};
  RecordingSink m_sink{log};
  RecordingOleContainer m_oleContainer{log};
  Microsoft::WRL::ComPtr<IOleObject> m_control;
  HWND m_window = nullptr;
  RECT m_rect{10, 20, 10 + m_traits.controlSize.cx, 20 + m_traits.controlSize.cy};
  DWORD m_adviseCookie = 0;
  bool m_windowlessActive = false;
  bool m_windowlessFocus = false;
};

/// Everybody has let go of the container, and nobody broke COM's rules on the way.
testing::AssertionResult isLeftAlone(const RecordingContainer& container);

}  // namespace av::test
