#pragma once

#include "host/call_log.h"

#include <windows.h>

#include <oaidl.h>
#include <ocidl.h>
#include <olectl.h>
#include <oleidl.h>

namespace av::test {

class RecordingContainer;

/// The site of a recording container: all interfaces that a control can ask of its client site. Which of them it
/// offers, its container decides.
class RecordingSite final : public IOleClientSite,
                            public IOleInPlaceSiteWindowless,
                            public IOleControlSite,
                            public IDispatch {
 public:
  RecordingSite(RecordingContainer& container, CallLog& log) : party(log, "site"), m_container(container) {}

  CountedParty party;

  // IUnknown. Questions for interfaces are no part of the conversation.
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return party.addRef(); }
  STDMETHODIMP_(ULONG) Release() override { return party.release(); }

  // IOleClientSite
  STDMETHODIMP SaveObject() override;
  STDMETHODIMP GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
  STDMETHODIMP GetContainer(IOleContainer** container) override;
  STDMETHODIMP ShowObject() override;
  STDMETHODIMP OnShowWindow(BOOL show) override;
  STDMETHODIMP RequestNewObjectLayout() override;

  // IOleWindow
  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;

  // IOleInPlaceSite
  STDMETHODIMP CanInPlaceActivate() override;
  STDMETHODIMP OnInPlaceActivate() override;
  STDMETHODIMP OnUIActivate() override;
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position, RECT* clip,
                                OLEINPLACEFRAMEINFO* frameInfo) override;
  STDMETHODIMP Scroll(SIZE extent) override;
  STDMETHODIMP OnUIDeactivate(BOOL undoable) override;
  STDMETHODIMP OnInPlaceDeactivate() override;
  STDMETHODIMP DiscardUndoState() override;
  STDMETHODIMP DeactivateAndUndo() override;
  STDMETHODIMP OnPosRectChange(const RECT* position) override;

  // IOleInPlaceSiteEx
  STDMETHODIMP OnInPlaceActivateEx(BOOL* noRedraw, DWORD flags) override;
  STDMETHODIMP OnInPlaceDeactivateEx(BOOL noRedraw) override;
  STDMETHODIMP RequestUIActivate() override;

  // IOleInPlaceSiteWindowless
  STDMETHODIMP CanWindowlessActivate() override;
  STDMETHODIMP GetCapture() override;
  STDMETHODIMP SetCapture(BOOL capture) override;
  STDMETHODIMP GetFocus() override;
  STDMETHODIMP SetFocus(BOOL focus) override;
  STDMETHODIMP GetDC(const RECT* rect, DWORD flags, HDC* context) override;
  STDMETHODIMP ReleaseDC(HDC context) override;
  STDMETHODIMP InvalidateRect(const RECT* rect, BOOL erase) override;
  STDMETHODIMP InvalidateRgn(HRGN region, BOOL erase) override;
  STDMETHODIMP ScrollRect(INT dx, INT dy, const RECT* scroll, const RECT* clip) override;
  STDMETHODIMP AdjustRect(RECT* rect) override;
  STDMETHODIMP OnDefWindowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override;

  // IOleControlSite
  STDMETHODIMP OnControlInfoChanged() override;
  STDMETHODIMP LockInPlaceActive(BOOL lock) override;
  STDMETHODIMP GetExtendedControl(IDispatch** control) override;
  STDMETHODIMP TransformCoords(POINTL* himetric, POINTF* container, DWORD flags) override;
  STDMETHODIMP TranslateAccelerator(MSG* message, DWORD modifiers) override;
  STDMETHODIMP OnFocus(BOOL gained) override;
  STDMETHODIMP ShowPropertyFrame() override;

  // IDispatch: the ambient properties
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* argumentError) override;

 private:
  RecordingContainer& m_container;
};

}  // namespace av::test
