#pragma once

#include <windows.h>

#include <ocidl.h>
#include <oleidl.h>

namespace av::test {

/// A client site in a window that offers to be the control's window too. What it is asked is counted; what it answers can
/// be set. Lives on the stack: the count starts at 1 and frees nothing.
class WindowlessSite final : public IOleClientSite, public IOleInPlaceSiteWindowless {
 public:
  explicit WindowlessSite(HWND window) : m_window(window) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
      *object = static_cast<IOleClientSite*>(this);
    } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite ||
               (iid == IID_IOleInPlaceSiteEx && !hidesExtended) || iid == IID_IOleInPlaceSiteWindowless) {
      *object = static_cast<IOleInPlaceSiteWindowless*>(this);
    }
    if (*object) AddRef();
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }

  STDMETHODIMP SaveObject() override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP GetContainer(IOleContainer** container) override {
    *container = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP ShowObject() override { return S_OK; }
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

  STDMETHODIMP GetWindow(HWND* window) override {
    *window = m_window;
    return S_OK;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return S_OK; }

  STDMETHODIMP CanInPlaceActivate() override { return S_OK; }
  STDMETHODIMP OnInPlaceActivate() override {  // sites like this hear the other one
    return hidesExtended ? S_OK : E_UNEXPECTED;
  }
  STDMETHODIMP OnUIActivate() override {
    ++uiActivations;
    return uiActivationAnswer;
  }
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position, RECT* clip,
                                OLEINPLACEFRAMEINFO*) override {
    *frame = nullptr;
    *document = nullptr;
    *position = rect;
    *clip = visible.right ? visible : rect;
    return S_OK;
  }
  STDMETHODIMP Scroll(SIZE) override { return E_NOTIMPL; }
  STDMETHODIMP OnUIDeactivate(BOOL) override { return S_OK; }
  STDMETHODIMP OnInPlaceDeactivate() override { return hidesExtended ? S_OK : E_UNEXPECTED; }
  STDMETHODIMP DiscardUndoState() override { return E_NOTIMPL; }
  STDMETHODIMP DeactivateAndUndo() override { return E_NOTIMPL; }
  STDMETHODIMP OnPosRectChange(const RECT* position) override {
    ++positionRequests;
    requested = *position;
    if (!grantsPositions) return S_OK;
    rect = *position;
    return control ? control->SetObjectRects(&rect, &rect) : S_OK;
  }

  STDMETHODIMP OnInPlaceActivateEx(BOOL* noRedraw, DWORD flags) override {
    *noRedraw = showsPicture;
    activationFlags = flags;
    return activationAnswer;
  }
  STDMETHODIMP OnInPlaceDeactivateEx(BOOL) override {
    ++deactivations;
    return S_OK;
  }
  STDMETHODIMP RequestUIActivate() override { return uiAnswer; }

  STDMETHODIMP CanWindowlessActivate() override { return windowlessAnswer; }
  STDMETHODIMP GetCapture() override { return S_FALSE; }
  STDMETHODIMP SetCapture(BOOL) override {
    ++captures;
    return S_OK;
  }
  STDMETHODIMP GetFocus() override { return focus ? S_OK : S_FALSE; }
  STDMETHODIMP SetFocus(BOOL wanted) override {
    focus = wanted != FALSE;
    return S_OK;
  }
  STDMETHODIMP GetDC(const RECT*, DWORD, HDC*) override { return E_NOTIMPL; }
  STDMETHODIMP ReleaseDC(HDC) override { return E_NOTIMPL; }
  STDMETHODIMP InvalidateRect(const RECT* part, BOOL) override {
    if (!part) ++invalidations;
    return S_OK;
  }
  STDMETHODIMP InvalidateRgn(HRGN, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP ScrollRect(INT, INT, const RECT*, const RECT*) override { return E_NOTIMPL; }
  STDMETHODIMP AdjustRect(RECT*) override { return E_NOTIMPL; }
  STDMETHODIMP OnDefWindowMessage(UINT, WPARAM, LPARAM, LRESULT*) override { return S_FALSE; }

  RECT rect{10, 20, 210, 140};
  RECT visible{};              ///< the clip at activation; without one the whole rectangle
  bool hidesExtended = false;  ///< answers no IOleInPlaceSiteEx
  BOOL showsPicture = FALSE;   ///< the container says that the control need not be drawn anew
  HRESULT uiActivationAnswer = S_OK;
  IOleInPlaceObject* control = nullptr;  ///< not counted; hears of granted positions
  HRESULT windowlessAnswer = S_OK;
  HRESULT activationAnswer = S_OK;
  HRESULT uiAnswer = S_OK;
  bool grantsPositions = true;
  bool focus = false;
  DWORD activationFlags = 77;
  RECT requested{};
  int positionRequests = 0;
  int uiActivations = 0;
  int deactivations = 0;
  int captures = 0;
  int invalidations = 0;
  ULONG references = 1;

 private:
  HWND m_window;
};

}  // namespace av::test
