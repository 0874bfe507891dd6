#pragma once

#include "ole/accessible_subject.h"
#include "ole/class_info.h"
#include "ole/connection_points.h"
#include "ole/in_place_active_object.h"
#include "ole/in_place_object.h"
#include "ole/in_place_session.h"
#include "ole/object.h"
#include "ole/ole_control.h"
#include "ole/ole_object.h"
#include "ole/persist_property_bag.h"
#include "ole/persist_storage.h"
#include "ole/persist_stream.h"
#include "ole/quick_activate.h"
#include "ole/view_object.h"

#include <oleidl.h>
#include <wrl/client.h>

#include <atomic>
#include <initializer_list>
#include <optional>
#include <string>

namespace av::ole {

/// What the framework has to know of a control class.
struct ControlInfo {
  CLSID classId;
  const wchar_t* userType;              ///< the friendly name
  DWORD miscStatus;                     ///< OLEMISC bits of the content aspect
  bool windowOnly = false;              ///< never active without a window of its own
  IID eventInterfaceId = {};            ///< the default event dispinterface; GUID_NULL: no events
  const wchar_t* accessibleName = L"";  ///< what the control is called where its host has no name for it
  LONG accessibleRole = 0;              ///< one of ROLE_SYSTEM_...
};

/// An OLE control without its subject: site, extent, in-place activation, view, persistence of the extent. One
/// interface family a part, each in its own file; this class holds what they share.
///
/// A derived control draws, handles window messages and adds its own interfaces.
class Control : public Object, public WindowClient, private AccessibleSubject {
 public:
  // --- what a derived control provides -------------------------------------------------------------------------

  /// Paints the whole control into `bounds` (pixels of `target`, mapping mode MM_TEXT). [thread of the caller]
  virtual void draw(HDC target, const RECT& bounds) = 0;
  /// After a verb of the in-place activation kind was handled, whatever its result. [control thread]
  virtual void activationVerbDone() {}
  /// The client area has a new size, in pixels. [control thread]
  virtual void resized(SIZE /*client*/) {}
  /// A message of the control's window, before the framework looks at it. True: handled, `result` is the answer.
  /// Windowless, a message that the container passes on; pointer positions count from the control's corner either way.
  virtual bool handleMessage(UINT /*message*/, WPARAM /*wParam*/, LPARAM /*lParam*/, LRESULT& /*result*/) {
    return false;
  }
  /// What the control shows and what kind of picture that is, in words for screen readers. Calls nobody. std::bad_alloc
  /// where there is no room for the text. [control thread]
  virtual std::wstring spokenValue() { return {}; }
  virtual std::wstring spokenDescription() { return {}; }
  /// The dual interface, for class information and error information.
  virtual REFIID dispatchInterfaceId() const noexcept = 0;

  // --- what parts and derived controls share ---------------------------------------------------------------------

  const ControlInfo& info() const noexcept { return m_info; }
  IOleClientSite* clientSite() const noexcept { return m_clientSite.Get(); }
  /// Replaces the client site; null ends the embedding.
  void setClientSite(IOleClientSite* site);
  InPlaceSession& inPlace() noexcept { return m_inPlace; }
  OleObject& oleObject() noexcept { return m_oleObject; }
  ViewObject& viewObject() noexcept { return m_viewObject; }
  /// The connection point of the event interface; null for a control without events.
  ConnectionPoint* events() noexcept { return m_connectionPoints.events(); }

  /// Sends an event with the given arguments to all sinks; see ConnectionPoint::fire. While the container has frozen the
  /// events they are dropped, not kept: each speaks of a moment that has passed by then.
  HRESULT fireEvent(DISPID event, std::initializer_list<LONG> arguments);

  SIZEL extentHimetric() const noexcept { return m_extent; }
  void setExtent(SIZEL himetric) noexcept { m_extent = himetric; }
  /// Takes the extent of that many pixels of the screen, unless the one that it has comes to as many. [control thread]
  void takeExtentOf(SIZE pixels);
  /// Takes the extent of that many pixels, and asks the container for a place of that size; see
  /// InPlaceSession::requestPosition. [control thread]
  void requestSize(SIZE pixels);
  bool isDirty() const noexcept { return m_dirty; }
  void setDirty(bool dirty) noexcept { m_dirty = dirty; }
  /// A persisted extent has arrived: it is the control's extent now, and nothing is left to be saved.
  void extentLoaded(SIZEL himetric);
  /// The control's own content was saved: nothing is left to be saved, and the advise sinks are told.
  void saved();

  /// Whether the caller runs on the thread that made the control. Hosts push blocks from other threads as well.
  bool onControlThread() const noexcept { return GetCurrentThreadId() == m_threadId; }
  /// What the active control draws on; see InPlaceSession::clientSize. A windowless control has this as well.
  std::optional<SIZE> clientSize() const noexcept { return m_inPlace.clientSize(); }
  /// In-place active with a window of its own.
  bool hasActiveWindow() const noexcept { return m_inPlace.isActive() && m_inPlace.window(); }
  /// Draws at once into the control's own window where it has one, else asks the container to redraw.
  void drawNow();
  /// Asks for a later redraw: invalidates the window, or tells the view's sink that the picture has changed.
  void requestRedraw();
  /// Whether a block on another thread has asked for a redraw that only the control thread can ask its site for; the
  /// request is taken away. [control thread]
  bool takeRedrawRequest() noexcept { return m_redrawRequested.exchange(false); }

  AccessibleSubject* accessibleSubject() noexcept override { return this; }
  LRESULT windowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
  /// A message that the container passes on to the windowless control. False: not handled.
  bool windowlessMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

 protected:
  /// Two inches square until the container or a stream says otherwise.
  Control(IUnknown* outer, const ControlInfo& info) noexcept;
  ~Control() override;

  void* findInterface(REFIID iid) noexcept override;
  /// Takes window and site away. A derived control calls this in its own tearDown(), where its order of ending says so.
  void leaveContainer() noexcept;

 private:
  void focusChanged(bool gained);

  // AccessibleSubject
  LONG accessibleRole() const noexcept override;
  std::wstring accessibleName() override;
  std::wstring accessibleDescription() override;
  std::wstring accessibleValue() override;
  HRESULT accessibleTakeFocus() override;

  const ControlInfo m_info;
  const DWORD m_threadId = GetCurrentThreadId();
  Microsoft::WRL::ComPtr<IOleClientSite> m_clientSite;
  SIZEL m_extent;
  bool m_dirty = false;
  std::atomic<bool> m_redrawRequested{false};

  InPlaceSession m_inPlace{*this};
  OleObject m_oleObject{*this};
  OleControl m_oleControl{*this};
  InPlaceObject m_inPlaceObject{*this};
  InPlaceActiveObject m_inPlaceActiveObject{*this};
  ViewObject m_viewObject{*this};
  PersistStream m_persistStream{*this};
  PersistStorage m_persistStorage{*this};
  PersistPropertyBag m_persistPropertyBag{*this};
  QuickActivation m_quickActivate{*this};
  ConnectionPointContainer m_connectionPoints{*this};
  ClassInfo m_classInfo{*this};
  ErrorInfoSupport m_errorInfoSupport{*this};
};

}  // namespace av::ole
