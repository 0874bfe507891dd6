#include "tests/soak/hosted_control.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace av::soak {

using Microsoft::WRL::ComPtr;

volatile LONG faults = 0;

void HostedControl::expect(bool held, const wchar_t* what) {
  if (held) return;
  // The first hundred say enough.
  if (InterlockedIncrement(&faults) <= 100) std::fwprintf(stderr, L"soak: %ls was not as it should be\n", what);
}

HostedControl::HostedControl(const avhost::ControlLibrary& library, REFCLSID classId, Keeping keeping,
                             RandomSource& random)
    : m_random(random), m_keeping(keeping) {
  expect(library.create(classId, m_control.GetAddressOf()) == S_OK, L"creating a control");
  m_properties.emplace(*m_control.Get());
  expect(m_properties->size() > 10, L"the list of properties");
  if (keeping != Keeping::unsited) activate();
}

void HostedControl::activate() {
  const SIZE size = {static_cast<LONG>(m_random.between(1, 400)), static_cast<LONG>(m_random.between(1, 300))};
  expect(m_container.open({.title = L"soak", .clientSizePx = size, .positionPx = {0, 0}}) == S_OK, L"opening a window");
  if (m_keeping == Keeping::window) {
    expect(m_container.host(m_control.Get()) == S_OK, L"hosting");
    return;
  }
  m_site = std::make_unique<test::WindowlessSite>(m_container.window());
  ComPtr<IOleObject> object;
  m_control.As(&object);
  const RECT place = {0, 0, size.cx, size.cy};
  m_site->rect = place;
  expect(object->SetClientSite(m_site.get()) == S_OK, L"siting");
  expect(object->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, m_site.get(), 0, m_container.window(), &place) == S_OK,
         L"activation without a window");
}

HostedControl::~HostedControl() {
  if (m_site) {
    ComPtr<IOleObject> object;
    m_control.As(&object);
    object->Close(OLECLOSE_NOSAVE);
    object->SetClientSite(nullptr);
    object.Reset();
    expect(m_site->references == 1, L"the count of references on a site");
  }
  expect(m_container.close() == 0, L"the count of references on a container's site");
  expect(m_control.Reset() == 0, L"the count of references on a control");
}

void HostedControl::putProperty() {
  const HRESULT result = m_properties->putAny(*m_control.Get(), m_random);
  expect(result == S_OK || result == DISP_E_EXCEPTION || result == DISP_E_OVERFLOW, L"a put's answer");
}

void HostedControl::put(const wchar_t* property, LONG value) {
  VARIANTARG argument;
  VariantInit(&argument);
  argument.vt = VT_I4;
  argument.lVal = value;
  DISPID named = DISPID_PROPERTYPUT, id = DISPID_UNKNOWN;
  DISPPARAMS parameters{&argument, &named, 1, 1};
  std::wstring name = property;
  LPOLESTR names = name.data();
  expect(m_control->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &id) == S_OK, L"a property's name");
  m_control->Invoke(id, IID_NULL, LOCALE_NEUTRAL, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr, nullptr);
}

void HostedControl::resize() {
  const bool extreme = m_random.chance(5);
  const LONG width = extreme ? m_random.oneOf<LONG>({0, 1, 2, 1200}) : static_cast<LONG>(m_random.between(1, 400));
  const LONG height = extreme ? m_random.oneOf<LONG>({0, 1, 2, 1200}) : static_cast<LONG>(m_random.between(1, 500));
  if (m_keeping == Keeping::window) {
    m_container.resize({width, height});
  } else if (m_keeping == Keeping::windowless) {
    ComPtr<IOleInPlaceObject> object;
    m_control.As(&object);
    const RECT place = {0, 0, width, height};
    m_site->rect = place;
    object->SetObjectRects(&place, &place);
  } else {
    ComPtr<IOleObject> object;
    m_control.As(&object);
    SIZEL extent = {avhost::himetricFromPixels(width, 96), avhost::himetricFromPixels(height, 96)};
    object->SetExtent(DVASPECT_CONTENT, &extent);
  }
}

void HostedControl::draw(Canvas canvas) {
  ComPtr<IViewObject> view;
  m_control.As(&view);
  const LONG width = static_cast<LONG>(m_random.between(1, 400)), height = static_cast<LONG>(m_random.between(1, 300));
  const RECTL bounds = {0, 0, width, height};
  ++m_draws;
  if (canvas == Canvas::metafile) {
    const HDC metafile = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, metafile, &bounds, &bounds, nullptr, 0);
    DeleteEnhMetaFile(CloseEnhMetaFile(metafile));
    return;
  }
  const HDC screen = GetDC(nullptr);
  const HDC context = CreateCompatibleDC(screen);
  const HBITMAP bitmap = canvas == Canvas::monochrome ? CreateBitmap(width, height, 1, 1, nullptr)
                                                      : CreateCompatibleBitmap(screen, width, height);
  const HGDIOBJ old = SelectObject(context, bitmap);
  const HRESULT result =
      view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, context, &bounds, nullptr, nullptr, 0);
  expect(result == S_OK, L"drawing off-screen");
  SelectObject(context, old);
  DeleteObject(bitmap);
  DeleteDC(context);
  ReleaseDC(nullptr, screen);
}

void HostedControl::persist() {
  ComPtr<IPersistStreamInit> persist;
  m_control.As(&persist);
  ComPtr<IStream> stream;
  CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf());
  expect(persist->Save(stream.Get(), TRUE) == S_OK, L"saving");
  if (m_random.chance(30)) {  // cut off or overwritten
    ULARGE_INTEGER size;
    size.QuadPart = static_cast<ULONGLONG>(m_random.upTo(11));
    if (m_random.chance(50)) {
      stream->SetSize(size);
    } else {
      LARGE_INTEGER place;
      place.QuadPart = static_cast<LONGLONG>(size.QuadPart);
      stream->Seek(place, STREAM_SEEK_SET, nullptr);
      const std::uint8_t byte = static_cast<std::uint8_t>(m_random.upTo(255));
      stream->Write(&byte, 1, nullptr);
    }
  }
  stream->Seek({}, STREAM_SEEK_SET, nullptr);
  persist->Load(stream.Get());
}

void HostedControl::disturb() {
  if (const HWND target = window()) {
    const UINT message = m_random.oneOf<UINT>({WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK,
                                               WM_SETFOCUS, WM_KILLFOCUS, WM_SYSCOLORCHANGE, WM_ERASEBKGND});
    SendMessageW(target, message, 0, MAKELPARAM(m_random.upTo(800) - 50, m_random.upTo(600) - 50));
  }
  if (m_keeping == Keeping::window && m_random.chance(30))
    m_container.doVerb(m_random.oneOf<LONG>(
        {OLEIVERB_HIDE, OLEIVERB_SHOW, OLEIVERB_UIACTIVATE, OLEIVERB_INPLACEACTIVATE, OLEIVERB_PRIMARY, -9, 77}));
  if (m_random.chance(10)) m_control->_OnTimer();
  if (m_random.chance(10)) m_control->Repaint();
}

HWND HostedControl::window() const {
  if (m_keeping == Keeping::window) return m_container.controlWindow();
  ComPtr<IOleInPlaceObject> object;
  HWND own = nullptr;
  if (m_keeping == Keeping::windowless && SUCCEEDED(m_control.As(&object)) && FAILED(object->GetWindow(&own)))
    own = nullptr;
  return own;
}

}  // namespace av::soak
