#include "host/recording_container.h"

#include <objidl.h>
#include <ocidl.h>
#include <windowsx.h>

namespace av::test {

using Microsoft::WRL::ComPtr;

namespace {

constexpr wchar_t className[] = L"av.RecordingContainer";

LONG himetric(LONG pixels, int capability) {
  HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, capability);
  ReleaseDC(nullptr, screen);
  return MulDiv(pixels, 2540, dpi);
}

}  // namespace

RecordingContainer::RecordingContainer(const Traits& traits) : m_traits(traits) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = CS_DBLCLKS;
  windowClass.lpfnWndProc = windowProcedure;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  windowClass.lpszClassName = className;
  RegisterClassExW(&windowClass);  // fails for every container but the first
  m_window = CreateWindowExW(0, className, L"recording container", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 40, 40, 500,
                             400, nullptr, nullptr, windowClass.hInstance, this);
  m_frame.window = m_window;
  m_document.window = m_window;
  ShowWindow(m_window, SW_SHOWNORMAL);
  SetForegroundWindow(m_window);
  UpdateWindow(m_window);
}

RecordingContainer::~RecordingContainer() { destroyWindow(); }

void RecordingContainer::destroyWindow() {
  if (m_window) DestroyWindow(m_window);
  m_window = nullptr;
}

void RecordingContainer::take(ComPtr<IOleObject>&& control) {
  m_control = std::move(control);
  m_frame.letGo(false);
  m_document.letGo(false);
}

ULONG RecordingContainer::releaseControl() {
  if (!m_control) return 0;
  m_frame.letGo(true);
  m_document.letGo(true);
  IOleObject* const last = m_control.Detach();
  return last->Release();
}

HRESULT RecordingContainer::site() { return m_control->SetClientSite(&m_site); }

HRESULT RecordingContainer::unsite() { return m_control->SetClientSite(nullptr); }

HRESULT RecordingContainer::advise() {
  const HRESULT result = m_control->Advise(&m_sink, &m_adviseCookie);
  if (FAILED(result)) return result;
  ComPtr<IViewObject> view;
  const HRESULT found = m_control.As(&view);
  return FAILED(found) ? found : view->SetAdvise(DVASPECT_CONTENT, 0, &m_sink);
}

HRESULT RecordingContainer::unadvise() {
  ComPtr<IViewObject> view;
  HRESULT result = m_control.As(&view);
  if (SUCCEEDED(result)) result = view->SetAdvise(DVASPECT_CONTENT, 0, nullptr);
  const HRESULT ended = m_adviseCookie ? m_control->Unadvise(m_adviseCookie) : S_OK;
  m_adviseCookie = 0;
  return FAILED(result) ? result : ended;
}

HRESULT RecordingContainer::doVerb(LONG verb) {
  const RECT rect = m_rect;
  return m_control->DoVerb(verb, nullptr, &m_site, 0, m_window, &rect);
}

HRESULT RecordingContainer::close(DWORD saveOption) { return m_control->Close(saveOption); }

IOleInPlaceObject* RecordingContainer::inPlaceObject() const {
  IOleInPlaceObject* object = nullptr;
  if (!m_control || FAILED(m_control->QueryInterface(IID_PPV_ARGS(&object)))) return nullptr;
  object->Release();
  return object;
}

HRESULT RecordingContainer::uiDeactivate() {
  IOleInPlaceObject* const object = inPlaceObject();
  return object ? object->UIDeactivate() : E_UNEXPECTED;
}

HRESULT RecordingContainer::inPlaceDeactivate() {
  IOleInPlaceObject* const object = inPlaceObject();
  return object ? object->InPlaceDeactivate() : E_UNEXPECTED;
}

HRESULT RecordingContainer::resize(SIZE sizePx) {
  SIZEL extent{himetric(sizePx.cx, LOGPIXELSX), himetric(sizePx.cy, LOGPIXELSY)};
  const HRESULT sized = m_control->SetExtent(DVASPECT_CONTENT, &extent);
  if (FAILED(sized)) return sized;
  if (!m_control) return S_OK;  // gone inside the call
  m_rect.right = m_rect.left + sizePx.cx;
  m_rect.bottom = m_rect.top + sizePx.cy;
  return moveControl(m_rect);
}

HRESULT RecordingContainer::moveControl(const RECT& position) {
  m_rect = position;
  IOleInPlaceObject* const object = inPlaceObject();
  const RECT clip = clientRect();
  return object ? object->SetObjectRects(&position, &clip) : E_UNEXPECTED;
}

HRESULT RecordingContainer::saveControl() {
  ComPtr<IPersistStreamInit> persist;
  ComPtr<IStream> stream;
  if (!m_control || FAILED(m_control.As(&persist))) return E_FAIL;
  const HRESULT made = CreateStreamOnHGlobal(nullptr, TRUE, &stream);
  return FAILED(made) ? made : persist->Save(stream.Get(), TRUE);
}

void RecordingContainer::focusControl(bool focus) {
  if (m_traits.site != Site::windowless) {
    if (!focus && m_window) SetFocus(m_window);
    return;
  }
  // A windowless control hears of the focus through its container, which has the real one.
  if (m_window) SetFocus(m_window);
  if (m_windowlessFocus == focus) return;
  m_windowlessFocus = focus;
  ComPtr<IOleInPlaceObjectWindowless> object;
  LRESULT ignored = 0;
  if (m_control && SUCCEEDED(m_control.As(&object)))
    object->OnWindowMessage(focus ? WM_SETFOCUS : WM_KILLFOCUS, 0, 0, &ignored);
}

RECT RecordingContainer::clientRect() const {
  RECT client{};
  if (m_window) GetClientRect(m_window, &client);
  return client;
}

HWND RecordingContainer::controlWindow() const {
  IOleInPlaceObject* const object = inPlaceObject();
  HWND window = nullptr;
  return object && SUCCEEDED(object->GetWindow(&window)) ? window : nullptr;
}

long RecordingContainer::references() const {
  return m_site.party.references() + m_frame.party.references() + m_document.party.references() +
         m_sink.party.references() + m_oleContainer.party.references();
}

LRESULT CALLBACK RecordingContainer::windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE)
    SetWindowLongPtrW(window, GWLP_USERDATA,
                      reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
  auto* self = reinterpret_cast<RecordingContainer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self && message == WM_PAINT && self->m_control && !self->controlWindow()) {
    PAINTSTRUCT paint;
    HDC target = BeginPaint(window, &paint);
    ComPtr<IViewObject> view;
    const RECTL bounds{self->m_rect.left, self->m_rect.top, self->m_rect.right, self->m_rect.bottom};
    if (SUCCEEDED(self->m_control.As(&view)))  // an active windowless control knows its rectangle
      view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, self->m_windowlessActive ? nullptr : &bounds,
                 nullptr, nullptr, 0);
    EndPaint(window, &paint);
    return 0;
  }
  LRESULT result = 0;
  if (self && self->forwardMouse(message, wParam, lParam, &result)) return result;
  return DefWindowProcW(window, message, wParam, lParam);
}

bool RecordingContainer::forwardMouse(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
  const bool pointer = message >= WM_MOUSEFIRST && message <= WM_MOUSELAST;
  // Wheel messages count from the screen's corner and have no business in these tests.
  if (!pointer || message == WM_MOUSEWHEEL || message == WM_MOUSEHWHEEL || !m_windowlessActive || !m_control)
    return false;
  if (!PtInRect(&m_rect, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)})) return false;
  ComPtr<IOleInPlaceObjectWindowless> object;
  return SUCCEEDED(m_control.As(&object)) && object->OnWindowMessage(message, wParam, lParam, result) == S_OK;
}

testing::AssertionResult isLeftAlone(const RecordingContainer& container) {
  if (container.references() == 0 && container.log.complaints().empty()) return testing::AssertionSuccess();
  testing::AssertionResult failure = testing::AssertionFailure();
  failure << container.references() << " references on the container are left";
  for (const std::string& complaint : container.log.complaints()) failure << "\n  " << complaint;
  return failure;
}

}  // namespace av::test
