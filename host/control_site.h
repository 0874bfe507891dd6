#pragma once

// What a hosted control sees of its container: the client site, the in-place site and frame, the control site, the
// view-change sink and the ambient properties, in one object. For hosts; C++11 and the Windows headers only.
// Hosts use it through avhost::Container.

#include <windows.h>

#include <oaidl.h>
#include <objbase.h>
#include <ocidl.h>
#include <olectl.h>
#include <oleidl.h>
#include <wrl/client.h>

namespace avhost {

/// What the container tells its control when asked for an ambient property.
struct Ambients {
  bool userMode = true;  ///< false: a designer, where the user edits the control
  OLE_COLOR backColor = 0x80000000u | COLOR_BTNFACE;
  OLE_COLOR foreColor = 0x80000000u | COLOR_BTNTEXT;
  /// The control's name for users of screen readers; null: the control's own. The text has to outlive the site.
  const wchar_t* displayName = nullptr;
};

/// Every method is called on the control's thread. [control thread]
/// The reference count is the usual one; a control that behaves has given all references back when it is closed.
class ControlSite final : public IOleClientSite,
                          public IOleInPlaceSite,
                          public IOleInPlaceFrame,
                          public IOleControlSite,
                          public IAdviseSink,
                          public IDispatch {
 public:
  template <class Interface>
  using ComPtr = Microsoft::WRL::ComPtr<Interface>;

  ControlSite(HWND window, const Ambients& ambients) noexcept : m_window(window), m_ambients(ambients) {}

  // What the container reads and sets.

  void setControlRect(const RECT& rectPx) noexcept { m_controlRectPx = rectPx; }
  const RECT& controlRect() const noexcept { return m_controlRectPx; }  ///< right and bottom exclusive, client pixels
  bool isInPlaceActive() const noexcept { return m_inPlaceActive; }
  bool isUiActive() const noexcept { return m_uiActive; }
  unsigned viewChanges() const noexcept { return m_viewChanges; }  ///< notices through the advise sink so far
  IOleInPlaceActiveObject* activeObject() const noexcept { return m_activeObject.Get(); }

  /// The control in its in-place role, by which the site answers the control's wish for another rectangle.
  void setInPlaceObject(IOleInPlaceObject* object) noexcept { m_inPlaceObject = object; }

  /// Cuts the site loose from window and control; whoever still holds it finds a site that refuses everything.
  void disconnect() noexcept {
    m_window = nullptr;
    m_inPlaceObject.Reset();
    m_activeObject.Reset();
  }

  // IUnknown

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) *object = static_cast<IOleClientSite*>(this);
    else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite) *object = static_cast<IOleInPlaceSite*>(this);
    else if (iid == IID_IOleInPlaceUIWindow || iid == IID_IOleInPlaceFrame)
      *object = static_cast<IOleInPlaceFrame*>(this);
    else if (iid == IID_IOleControlSite) *object = static_cast<IOleControlSite*>(this);
    else if (iid == IID_IAdviseSink) *object = static_cast<IAdviseSink*>(this);
    else if (iid == IID_IDispatch) *object = static_cast<IDispatch*>(this);
    if (!*object) return E_NOINTERFACE;  // IOleInPlaceSiteEx and -Windowless too: the control gets a window of its own
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

  // IOleClientSite

  STDMETHODIMP SaveObject() override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker** moniker) override {
    if (moniker) *moniker = nullptr;
    return E_NOTIMPL;
  }
  STDMETHODIMP GetContainer(IOleContainer** container) override {
    if (container) *container = nullptr;
    return E_NOINTERFACE;  // one control, no siblings to list
  }
  STDMETHODIMP ShowObject() override { return S_OK; }
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

  // IOleWindow, of the in-place site and of the frame

  STDMETHODIMP GetWindow(HWND* window) override {
    if (!window) return E_POINTER;
    *window = m_window;
    return m_window ? S_OK : E_FAIL;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return S_OK; }

  // IOleInPlaceSite

  STDMETHODIMP CanInPlaceActivate() override { return m_window ? S_OK : S_FALSE; }
  STDMETHODIMP OnInPlaceActivate() override {
    m_inPlaceActive = true;
    return S_OK;
  }
  STDMETHODIMP OnUIActivate() override {
    m_uiActive = true;
    return S_OK;
  }
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position, RECT* clip,
                                OLEINPLACEFRAMEINFO* frameInfo) override {
    if (frame) *frame = nullptr;
    if (document) *document = nullptr;  // the frame is the only window of the container
    if (!frame || !document || !position || !clip || !frameInfo) return E_POINTER;
    if (!m_window) return E_FAIL;
    *frame = this;
    AddRef();
    *position = m_controlRectPx;
    GetClientRect(m_window, clip);
    frameInfo->fMDIApp = FALSE;
    frameInfo->hwndFrame = m_window;
    frameInfo->haccel = nullptr;
    frameInfo->cAccelEntries = 0;
    return S_OK;
  }
  STDMETHODIMP Scroll(SIZE) override { return S_FALSE; }
  STDMETHODIMP OnUIDeactivate(BOOL) override {
    m_uiActive = false;
    return S_OK;
  }
  STDMETHODIMP OnInPlaceDeactivate() override {
    m_inPlaceActive = false;
    m_uiActive = false;
    return S_OK;
  }
  STDMETHODIMP DiscardUndoState() override { return E_NOTIMPL; }
  STDMETHODIMP DeactivateAndUndo() override {
    const ComPtr<IOleInPlaceObject> object = m_inPlaceObject;
    return object ? object->InPlaceDeactivate() : E_UNEXPECTED;
  }
  STDMETHODIMP OnPosRectChange(const RECT* position) override {
    if (!position) return E_INVALIDARG;
    const ComPtr<IOleInPlaceObject> object = m_inPlaceObject;
    if (!m_window || !object) return E_UNEXPECTED;
    m_controlRectPx = *position;
    RECT clip;
    GetClientRect(m_window, &clip);
    return object->SetObjectRects(&m_controlRectPx, &clip);
  }

  // IOleInPlaceUIWindow and IOleInPlaceFrame: no tool bars, menus or status line to share

  STDMETHODIMP GetBorder(RECT*) override { return INPLACE_E_NOTOOLSPACE; }
  STDMETHODIMP RequestBorderSpace(const BORDERWIDTHS*) override { return INPLACE_E_NOTOOLSPACE; }
  STDMETHODIMP SetBorderSpace(const BORDERWIDTHS*) override { return S_OK; }
  STDMETHODIMP SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override {
    m_activeObject = m_window ? object : nullptr;
    return S_OK;
  }
  STDMETHODIMP InsertMenus(HMENU, OLEMENUGROUPWIDTHS*) override { return E_NOTIMPL; }
  STDMETHODIMP SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
  STDMETHODIMP RemoveMenus(HMENU) override { return E_NOTIMPL; }
  STDMETHODIMP SetStatusText(LPCOLESTR) override { return S_OK; }
  STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }
  STDMETHODIMP TranslateAccelerator(MSG*, WORD) override { return S_FALSE; }

  // IOleControlSite

  STDMETHODIMP OnControlInfoChanged() override { return S_OK; }
  STDMETHODIMP LockInPlaceActive(BOOL) override { return S_OK; }
  STDMETHODIMP GetExtendedControl(IDispatch** control) override {
    if (control) *control = nullptr;
    return E_NOTIMPL;
  }
  /// Between the control's HIMETRIC units and the container's pixels at the screen's logical DPI.
  STDMETHODIMP TransformCoords(POINTL* himetric, POINTF* container, DWORD flags) override {
    if (!himetric || !container) return E_POINTER;
    HDC screen = GetDC(nullptr);
    const float pixelsX = static_cast<float>(GetDeviceCaps(screen, LOGPIXELSX)) / 2540.0f;
    const float pixelsY = static_cast<float>(GetDeviceCaps(screen, LOGPIXELSY)) / 2540.0f;
    ReleaseDC(nullptr, screen);
    if (flags & XFORMCOORDS_HIMETRICTOCONTAINER) {
      container->x = static_cast<float>(himetric->x) * pixelsX;
      container->y = static_cast<float>(himetric->y) * pixelsY;
    } else if (flags & XFORMCOORDS_CONTAINERTOHIMETRIC) {
      himetric->x = static_cast<LONG>(container->x / pixelsX + (container->x < 0 ? -0.5f : 0.5f));
      himetric->y = static_cast<LONG>(container->y / pixelsY + (container->y < 0 ? -0.5f : 0.5f));
    } else {
      return E_INVALIDARG;
    }
    return S_OK;
  }
  STDMETHODIMP TranslateAccelerator(MSG*, DWORD) override { return S_FALSE; }
  STDMETHODIMP OnFocus(BOOL) override { return S_OK; }
  STDMETHODIMP ShowPropertyFrame() override { return E_NOTIMPL; }

  // IAdviseSink

  STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override {}
  STDMETHODIMP_(void) OnViewChange(DWORD, LONG) override {
    ++m_viewChanges;
    // An active control paints its own window; only a picture that the container draws has to be drawn again.
    if (m_window && !m_inPlaceActive) InvalidateRect(m_window, &m_controlRectPx, FALSE);
  }
  STDMETHODIMP_(void) OnRename(IMoniker*) override {}
  STDMETHODIMP_(void) OnSave() override {}
  STDMETHODIMP_(void) OnClose() override {}

  // IDispatch: the ambient properties

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info) *info = nullptr;
    return E_NOTIMPL;
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  STDMETHODIMP Invoke(DISPID property, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                      UINT*) override {
    if (!(flags & DISPATCH_PROPERTYGET)) return DISP_E_MEMBERNOTFOUND;
    if (!result) return E_POINTER;
    VariantInit(result);
    switch (property) {
      case DISPID_AMBIENT_USERMODE: return answer(*result, m_ambients.userMode);
      case DISPID_AMBIENT_UIDEAD: return answer(*result, false);
      case DISPID_AMBIENT_MESSAGEREFLECT: return answer(*result, false);
      case DISPID_AMBIENT_DISPLAYASDEFAULT: return answer(*result, false);
      case DISPID_AMBIENT_SUPPORTSMNEMONICS: return answer(*result, false);
      case DISPID_AMBIENT_AUTOCLIP: return answer(*result, true);
      case DISPID_AMBIENT_SHOWHATCHING: return answer(*result, false);
      case DISPID_AMBIENT_SHOWGRABHANDLES: return answer(*result, false);
      case DISPID_AMBIENT_BACKCOLOR: return answer(*result, static_cast<LONG>(m_ambients.backColor));
      case DISPID_AMBIENT_FORECOLOR: return answer(*result, static_cast<LONG>(m_ambients.foreColor));
      case DISPID_AMBIENT_DISPLAYNAME: return answer(*result, m_ambients.displayName);
      case DISPID_AMBIENT_LOCALEID: return answer(*result, static_cast<LONG>(GetUserDefaultLCID()));
      default: return DISP_E_MEMBERNOTFOUND;
    }
  }

 private:
  ~ControlSite() = default;

  static HRESULT answer(VARIANT& result, bool value) noexcept {
    V_VT(&result) = VT_BOOL;
    V_BOOL(&result) = value ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }
  static HRESULT answer(VARIANT& result, LONG value) noexcept {
    V_VT(&result) = VT_I4;
    V_I4(&result) = value;
    return S_OK;
  }

  static HRESULT answer(VARIANT& result, const wchar_t* text) noexcept {
    if (!text) return DISP_E_MEMBERNOTFOUND;
    V_BSTR(&result) = SysAllocString(text);
    if (!V_BSTR(&result)) return E_OUTOFMEMORY;
    V_VT(&result) = VT_BSTR;
    return S_OK;
  }

  ULONG m_references = 1;
  HWND m_window;
  Ambients m_ambients;
  RECT m_controlRectPx = {};
  ComPtr<IOleInPlaceObject> m_inPlaceObject;
  ComPtr<IOleInPlaceActiveObject> m_activeObject;
  bool m_inPlaceActive = false;
  bool m_uiActive = false;
  unsigned m_viewChanges = 0;
};

}  // namespace avhost
