#pragma once

// A plain container: one window that hosts one control. For hosts; C++11 and the Windows headers only.
//
//   avhost::Controls controls;
//   controls.open();
//   Microsoft::WRL::ComPtr<IAudioVisualization4Type1> view;
//   controls.create(__uuidof(CAudioVisualization4Type1), view.GetAddressOf());
//   avhost::Container container;
//   container.show(view.Get(), {.title = L"View", .clientSizePx = {640, 360}});  // C++20; before it, see Window
//   ...                      // push audio, run the message loop
//   container.close();

#include "host/control_site.h"

#include <windows.h>

#include <oleidl.h>
#include <wrl/client.h>

#include <new>

namespace avhost {

/// A length in pixels as HIMETRIC (0.01 mm), the unit of extents, at `dpi` dots an inch; rounded to nearest.
inline LONG himetricFromPixels(LONG pixels, int dpi) noexcept { return MulDiv(pixels, 2540, dpi); }

/// The screen's logical resolution (96 at 100 %).
inline SIZE screenDpi() noexcept {
  HDC screen = GetDC(nullptr);
  const SIZE dpi = {GetDeviceCaps(screen, LOGPIXELSX), GetDeviceCaps(screen, LOGPIXELSY)};
  ReleaseDC(nullptr, screen);
  return dpi;
}

/// Hosts one control in a window of its own, which it fills. All methods are called on the thread that made the
/// control, which must pump messages. [control thread]
/// Offers no windowless site: the control gets a child window.
class Container {
 public:
  template <class Interface>
  using ComPtr = Microsoft::WRL::ComPtr<Interface>;

  struct Window {
    const wchar_t* title = L"";
    SIZE clientSizePx = {640, 360};
    HWND parent = nullptr;  ///< null: a top-level window; otherwise a child at `positionPx` of this one
    POINT positionPx = {CW_USEDEFAULT, CW_USEDEFAULT};
    bool visible = true;
    Ambients ambients = {};
  };

  Container() = default;
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;
  ~Container() { close(); }

  /// Creates the window. Fails with the system's error, or E_UNEXPECTED when it is open already.
  HRESULT open(const Window& description) noexcept {
    if (m_window) return E_UNEXPECTED;
    const HINSTANCE instance = ownModule();
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = windowProcedure;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
    windowClass.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    windowClass.lpszClassName = L"avhost.Container";
    if (!RegisterClassExW(&windowClass) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) return lastError();

    const DWORD style = (description.parent ? WS_CHILD : WS_OVERLAPPEDWINDOW) | WS_CLIPCHILDREN;
    RECT frame = {0, 0, description.clientSizePx.cx, description.clientSizePx.cy};
    AdjustWindowRectEx(&frame, style, FALSE, 0);
    POINT position = description.positionPx;
    if (description.parent && position.x == CW_USEDEFAULT) position = {0, 0};
    m_ambients = description.ambients;
    // The handle is stored by WM_NCCREATE.
    if (!CreateWindowExW(0, windowClass.lpszClassName, description.title, style, position.x, position.y,
                         frame.right - frame.left, frame.bottom - frame.top, description.parent, nullptr, instance,
                         this))
      return lastError();
    if (description.visible) ShowWindow(m_window, description.parent ? SW_SHOW : SW_SHOWNORMAL);
    return S_OK;
  }

  /// Sites the control, gives it the window's client area and runs `verb` on it (OLEIVERB_INPLACEACTIVATE activates
  /// without the focus, OLEIVERB_SHOW and OLEIVERB_UIACTIVATE take more). A failure undoes what was done.
  /// A control that was not loaded from a stream is told so (InitNew) first.
  HRESULT host(IUnknown* control, LONG verb = OLEIVERB_INPLACEACTIVATE) noexcept {
    if (!control) return E_POINTER;
    if (!m_window || m_site) return E_UNEXPECTED;
    ComPtr<IOleObject> object;
    HRESULT result = control->QueryInterface(IID_PPV_ARGS(object.GetAddressOf()));
    if (FAILED(result)) return result;
    m_site = new (std::nothrow) ControlSite(m_window, m_ambients);
    if (!m_site) return E_OUTOFMEMORY;
    m_object = object;
    result = site(verb);
    if (FAILED(result)) releaseControl();
    return result;
  }

  /// Opens the window and hosts the control in it, in-place active; a failure leaves no window.
  HRESULT show(IUnknown* control, const Window& description) noexcept {
    HRESULT result = open(description);
    if (FAILED(result)) return result;
    result = host(control);
    if (FAILED(result)) close();
    return result;
  }

  /// Runs a verb on the hosted control.
  HRESULT doVerb(LONG verb) noexcept {
    if (!m_site) return E_UNEXPECTED;
    const RECT rect = m_site->controlRect();
    // Both are held: the control may make its host close this container before the verb returns.
    const ComPtr<IOleObject> object = m_object;
    const ComPtr<IOleClientSite> clientSite = m_site;
    return object->DoVerb(verb, nullptr, clientSite.Get(), 0, m_window, &rect);
  }

  /// Gives the window another client size; the control follows.
  HRESULT resize(SIZE clientSizePx) noexcept {
    if (!m_window) return E_UNEXPECTED;
    RECT frame = {0, 0, clientSizePx.cx, clientSizePx.cy};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(m_window, GWL_STYLE)), FALSE, 0);
    return SetWindowPos(m_window, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
                        SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE)
               ? S_OK
               : lastError();
  }

  /// Offers a message to the control before the host's own translation: true when the control has taken it.
  bool translateAccelerator(MSG* message) noexcept {
    if (!m_site || !m_site->activeObject() || message->message < WM_KEYFIRST || message->message > WM_KEYLAST)
      return false;
    const ComPtr<IOleInPlaceActiveObject> active = m_site->activeObject();
    return active->TranslateAccelerator(message) == S_OK;
  }

  HWND window() const noexcept { return m_window; }

  /// The control's own window; null while it has none.
  HWND controlWindow() const noexcept {
    HWND window = nullptr;
    if (m_inPlaceObject && FAILED(m_inPlaceObject->GetWindow(&window))) window = nullptr;
    return window;
  }

  /// The hosted control's site, for what it reports (activation, view changes, rectangle); null without a control.
  const ControlSite* site() const noexcept { return m_site; }

  /// Takes the control down in the order that OLE asks for and lets it go: deactivate, end notices, close, unsite.
  /// Returns how many references on the site others still hold: 0 when the control behaved.
  ULONG releaseControl() noexcept {
    if (!m_site) return 0;
    ControlSite* const site = m_site;
    // Taken out first: whatever the control calls on its way down finds a container without a control.
    const ComPtr<IOleObject> object = static_cast<ComPtr<IOleObject>&&>(m_object);
    ComPtr<IOleInPlaceObject> inPlaceObject = static_cast<ComPtr<IOleInPlaceObject>&&>(m_inPlaceObject);
    ComPtr<IViewObject> viewObject = static_cast<ComPtr<IViewObject>&&>(m_viewObject);
    m_site = nullptr;
    if (inPlaceObject && site->isUiActive()) inPlaceObject->UIDeactivate();
    if (inPlaceObject && site->isInPlaceActive()) inPlaceObject->InPlaceDeactivate();
    if (viewObject) viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr);
    if (m_adviseCookie) object->Unadvise(m_adviseCookie);
    m_adviseCookie = 0;
    object->Close(OLECLOSE_NOSAVE);
    object->SetClientSite(nullptr);
    site->disconnect();
    return site->Release();
  }

  /// Releases the control and destroys the window; returns what releaseControl returns. Also done by the destructor,
  /// and when the user closes the window.
  ULONG close() noexcept {
    const ULONG left = releaseControl();
    if (m_window) DestroyWindow(m_window);
    return left;
  }

 private:
  HRESULT site(LONG verb) noexcept {
    DWORD status = 0;
    const bool siteFirst =
        SUCCEEDED(m_object->GetMiscStatus(DVASPECT_CONTENT, &status)) && (status & OLEMISC_SETCLIENTSITEFIRST) != 0;
    HRESULT result = S_OK;
    if (siteFirst) result = m_object->SetClientSite(m_site);
    if (SUCCEEDED(result)) result = initialise();
    if (SUCCEEDED(result) && !siteFirst) result = m_object->SetClientSite(m_site);
    if (FAILED(result)) return result;

    m_object.As(&m_inPlaceObject);
    m_object.As(&m_viewObject);
    m_site->setInPlaceObject(m_inPlaceObject.Get());
    m_object->Advise(m_site, &m_adviseCookie);
    if (m_viewObject) m_viewObject->SetAdvise(DVASPECT_CONTENT, 0, m_site);

    RECT client;
    GetClientRect(m_window, &client);
    setExtent(client);
    m_site->setControlRect(client);
    return doVerb(verb);
  }

  HRESULT initialise() noexcept {
    ComPtr<IPersistStreamInit> persist;
    if (FAILED(m_object.As(&persist))) return S_OK;
    const HRESULT result = persist->InitNew();
    return result == E_NOTIMPL || result == E_UNEXPECTED ? S_OK : result;  // E_UNEXPECTED: it was loaded already
  }

  void setExtent(const RECT& rectPx) noexcept {
    const SIZE dpi = screenDpi();
    SIZEL extent = {himetricFromPixels(rectPx.right - rectPx.left, dpi.cx),
                    himetricFromPixels(rectPx.bottom - rectPx.top, dpi.cy)};
    m_object->SetExtent(DVASPECT_CONTENT, &extent);
  }

  void fillClientArea() noexcept {
    if (!m_site || IsIconic(m_window)) return;
    RECT client;
    GetClientRect(m_window, &client);
    m_site->setControlRect(client);
    setExtent(client);
    if (m_site && m_inPlaceObject && m_site->isInPlaceActive()) {
      const ComPtr<IOleInPlaceObject> object = m_inPlaceObject;
      object->SetObjectRects(&client, &client);
    }
  }

  void paint() noexcept {
    PAINTSTRUCT paintStruct;
    HDC context = BeginPaint(m_window, &paintStruct);
    if (m_site && m_viewObject && !m_site->isInPlaceActive()) {
      const ComPtr<IViewObject> view = m_viewObject;
      const RECT& rect = m_site->controlRect();
      const RECTL bounds = {rect.left, rect.top, rect.right, rect.bottom};
      view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, context, &bounds, nullptr, nullptr, 0);
    }
    EndPaint(m_window, &paintStruct);
  }

  void focus() noexcept {
    if (!m_site || !m_site->isUiActive()) return;
    if (HWND control = controlWindow()) SetFocus(control);
  }

  static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Container* container = reinterpret_cast<Container*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_NCCREATE) {
      container = static_cast<Container*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
      SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(container));
      container->m_window = window;
    }
    if (message == WM_GETMINMAXINFO) {  // comes before WM_NCCREATE too
      // The host decides the size; the system would stop it at the screen's and at that of a title bar's buttons.
      reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {1, 1};
      reinterpret_cast<MINMAXINFO*>(lParam)->ptMaxTrackSize = {0x7FFF, 0x7FFF};
      return 0;
    }
    if (!container) return DefWindowProcW(window, message, wParam, lParam);
    switch (message) {
      case WM_SIZE: container->fillClientArea(); return 0;
      case WM_PAINT: container->paint(); return 0;
      case WM_SETFOCUS: container->focus(); return 0;
      case WM_DESTROY: container->releaseControl(); return 0;  // the control's window still exists here
      case WM_NCDESTROY:
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        container->m_window = nullptr;
        break;
      default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
  }

  /// The program or library that this header was compiled into.
  static HINSTANCE ownModule() noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&Container::windowProcedure), &module);
    return module;
  }

  static HRESULT lastError() noexcept {
    const DWORD error = GetLastError();
    return error ? HRESULT_FROM_WIN32(error) : E_FAIL;
  }

  HWND m_window = nullptr;
  ControlSite* m_site = nullptr;  ///< one reference is ours while a control is hosted
  Ambients m_ambients = {};
  ComPtr<IOleObject> m_object;
  ComPtr<IOleInPlaceObject> m_inPlaceObject;
  ComPtr<IViewObject> m_viewObject;
  DWORD m_adviseCookie = 0;
};

}  // namespace avhost
