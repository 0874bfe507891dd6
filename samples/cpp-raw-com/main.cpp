// The level meter with nothing but the Windows headers and the library's own: a window, a site and a buffer object
// written by hand, and a tone that swells and fades, until the window is closed.

#include <windows.h>

#include <mmreg.h>
#include <ocidl.h>
#include <oleidl.h>

#include <QELAudioVisualization4.h>

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

constexpr IID frameDataId = {0x9B7FEC49, 0x99A8, 0x4FEF, {0xA9, 0xE2, 0x38, 0xE1, 0xAB, 0xC8, 0x74, 0xDB}};

// A buffer object, IAudioFrameData: the controls call slots 10 to 12, 33 and 34 of its table and none of the others.
// It lives on the stack and does not count references, since the control has given all back when SendAudioData returns.
#define RESERVED(slot) \
  virtual HRESULT STDMETHODCALLTYPE reserved##slot() { return E_NOTIMPL; }

// (The formatter takes rows of slots for one declaration.)
// clang-format off
class FrameData final : public IUnknown {
 public:
  FrameData(const WAVEFORMATEX& format, void* samples, LONG bytes)
      : m_format(format), m_samples(samples), m_bytes(bytes) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == frameDataId ? this : nullptr;
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }

  RESERVED(3) RESERVED(4) RESERVED(5) RESERVED(6) RESERVED(7) RESERVED(8) RESERVED(9)
  virtual HRESULT STDMETHODCALLTYPE GetBuffer(BYTE** buffer) {  // slot 10
    *buffer = static_cast<BYTE*>(m_samples);
    return S_OK;
  }
  virtual HRESULT STDMETHODCALLTYPE GetBufferSize(LONG* bytes) {  // 11
    *bytes = m_bytes;
    return S_OK;
  }
  virtual HRESULT STDMETHODCALLTYPE GetDataSize(LONG* bytes) {  // 12
    *bytes = m_bytes;
    return S_OK;
  }
  RESERVED(13) RESERVED(14) RESERVED(15) RESERVED(16) RESERVED(17) RESERVED(18) RESERVED(19) RESERVED(20) RESERVED(21)
  RESERVED(22) RESERVED(23) RESERVED(24) RESERVED(25) RESERVED(26) RESERVED(27) RESERVED(28) RESERVED(29) RESERVED(30)
  RESERVED(31) RESERVED(32)
  virtual HRESULT STDMETHODCALLTYPE GetFormat(BYTE** format) {  // 33
    *format = reinterpret_cast<BYTE*>(&m_format);
    return S_OK;
  }
  virtual HRESULT STDMETHODCALLTYPE GetFormatSize(ULONG* bytes) {  // 34
    *bytes = sizeof m_format;
    return S_OK;
  }

 private:
  WAVEFORMATEX m_format;
  void* m_samples;
  LONG m_bytes;
};
// clang-format on

// What the control sees of its container. It outlives the control, so it does not count references either.
class Site final : public IOleClientSite, public IOleInPlaceSite, public IOleInPlaceFrame {
 public:
  explicit Site(HWND window) : m_window(window) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) *object = static_cast<IOleClientSite*>(this);
    if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite) *object = static_cast<IOleInPlaceSite*>(this);
    if (iid == IID_IOleInPlaceUIWindow || iid == IID_IOleInPlaceFrame) *object = static_cast<IOleInPlaceFrame*>(this);
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }

  // IOleClientSite
  STDMETHODIMP SaveObject() override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker** moniker) override {
    *moniker = nullptr;
    return E_NOTIMPL;
  }
  STDMETHODIMP GetContainer(IOleContainer** container) override {
    *container = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP ShowObject() override { return S_OK; }
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

  // IOleWindow
  STDMETHODIMP GetWindow(HWND* window) override {
    *window = m_window;
    return S_OK;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return S_OK; }

  // IOleInPlaceSite
  STDMETHODIMP CanInPlaceActivate() override { return S_OK; }
  STDMETHODIMP OnInPlaceActivate() override { return S_OK; }
  STDMETHODIMP OnUIActivate() override { return S_OK; }
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position, RECT* clip,
                                OLEINPLACEFRAMEINFO* info) override {
    *frame = this;
    *document = nullptr;
    GetClientRect(m_window, position);
    *clip = *position;
    info->fMDIApp = FALSE;
    info->hwndFrame = m_window;
    info->haccel = nullptr;
    info->cAccelEntries = 0;
    return S_OK;
  }
  STDMETHODIMP Scroll(SIZE) override { return S_FALSE; }
  STDMETHODIMP OnUIDeactivate(BOOL) override { return S_OK; }
  STDMETHODIMP OnInPlaceDeactivate() override { return S_OK; }
  STDMETHODIMP DiscardUndoState() override { return E_NOTIMPL; }
  STDMETHODIMP DeactivateAndUndo() override { return E_NOTIMPL; }
  STDMETHODIMP OnPosRectChange(const RECT*) override { return S_OK; }

  // IOleInPlaceUIWindow and IOleInPlaceFrame
  STDMETHODIMP GetBorder(RECT*) override { return INPLACE_E_NOTOOLSPACE; }
  STDMETHODIMP RequestBorderSpace(const BORDERWIDTHS*) override { return INPLACE_E_NOTOOLSPACE; }
  STDMETHODIMP SetBorderSpace(const BORDERWIDTHS*) override { return S_OK; }
  STDMETHODIMP SetActiveObject(IOleInPlaceActiveObject*, LPCOLESTR) override { return S_OK; }
  STDMETHODIMP InsertMenus(HMENU, OLEMENUGROUPWIDTHS*) override { return E_NOTIMPL; }
  STDMETHODIMP SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
  STDMETHODIMP RemoveMenus(HMENU) override { return E_NOTIMPL; }
  STDMETHODIMP SetStatusText(LPCOLESTR) override { return S_OK; }
  STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }
  STDMETHODIMP TranslateAccelerator(MSG*, WORD) override { return S_FALSE; }

 private:
  HWND m_window;
};

/// What the window procedure and the loop share.
struct Host {
  IOleInPlaceObject* inPlace = nullptr;
  bool closed = false;
};

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  Host* const host = reinterpret_cast<Host*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (host && message == WM_CLOSE) {
    host->closed = true;  // the control goes before its window
    return 0;
  }
  if (host && message == WM_SIZE && host->inPlace) {
    RECT client;
    GetClientRect(window, &client);
    host->inPlace->SetObjectRects(&client, &client);
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

HWND openWindow(Host& host) {
  WNDCLASSEXW description = {};
  description.cbSize = sizeof description;
  description.lpfnWndProc = windowProcedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  description.lpszClassName = L"RawComSample";
  RegisterClassExW(&description);
  const HWND window =
      CreateWindowExW(0, description.lpszClassName, L"Swell", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                      CW_USEDEFAULT, 640, 360, nullptr, nullptr, description.hInstance, nullptr);
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&host));
  ShowWindow(window, SW_SHOWNORMAL);
  return window;
}

/// Makes the manifest beside the program the thread's, where there is one. Otherwise the library has to be registered.
void useManifestBesideProgram() {
  wchar_t path[1024] = {};
  GetModuleFileNameW(nullptr, path, 900);
  for (DWORD end = lstrlenW(path); end > 0 && path[end - 1] != L'\\'; --end) path[end - 1] = 0;
  lstrcatW(path, L"QELAudioVisualization4.manifest");
  ACTCTXW description = {};
  description.cbSize = sizeof description;
  description.lpSource = path;
  const HANDLE context = CreateActCtxW(&description);
  ULONG_PTR cookie = 0;
  if (context != INVALID_HANDLE_VALUE) ActivateActCtx(context, &cookie);
}

bool activate(IOleObject* object, Site& site, HWND window) {
  IPersistStreamInit* persist = nullptr;
  RECT client;
  GetClientRect(window, &client);
  if (FAILED(object->SetClientSite(&site))) return false;
  if (SUCCEEDED(object->QueryInterface(IID_PPV_ARGS(&persist)))) {
    persist->InitNew();
    persist->Release();
  }
  return SUCCEEDED(object->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &site, 0, window, &client));
}

/// One block of 1,024 frames: 440 Hz with all its harmonics, four seconds from one swell to the next.
void sendBlock(IAudioVisualization4Type2* meter, double& seconds) {
  constexpr DWORD rateHz = 44100;
  const WAVEFORMATEX format = {WAVE_FORMAT_PCM, 1, rateHz, rateHz * 2, 2, 16, 0};
  std::int16_t samples[1024];
  for (std::int16_t& sample : samples) {
    const double saw = std::fmod(seconds * 440, 1.0) * 2 - 1;
    sample = static_cast<std::int16_t>(saw * 16000 * (1.001 - std::cos(seconds * 1.5708)));
    seconds += 1.0 / rateHz;
  }
  FrameData block(format, samples, sizeof samples);
  meter->SendAudioData(&block);
}

void run(IAudioVisualization4Type2* meter, const Host& host) {
  double seconds = 0;
  DWORD dueMs = GetTickCount();
  while (!host.closed) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {  // the meter's ticks arrive as messages
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    const DWORD nowMs = GetTickCount();
    if (static_cast<LONG>(nowMs - dueMs) >= 0) {
      sendBlock(meter, seconds);
      dueMs = nowMs + 23;
    }
    MsgWaitForMultipleObjectsEx(0, nullptr, 5, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  }
}

}  // namespace

int main() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  useManifestBesideProgram();
  IAudioVisualization4Type2* meter = nullptr;
  const HRESULT created = CoCreateInstance(__uuidof(CAudioVisualization4Type2), nullptr, CLSCTX_INPROC_SERVER,
                                           __uuidof(IAudioVisualization4Type2), reinterpret_cast<void**>(&meter));
  if (FAILED(created)) {
    std::fprintf(stderr, "There is no level meter: %08lX\n", static_cast<unsigned long>(created));
    return 1;
  }
  Host host;
  const HWND window = openWindow(host);
  Site site(window);
  IOleObject* object = nullptr;
  meter->QueryInterface(IID_PPV_ARGS(&object));
  meter->QueryInterface(IID_PPV_ARGS(&host.inPlace));
  if (activate(object, site, window)) run(meter, host);

  host.inPlace->Release();
  host.inPlace = nullptr;
  object->Close(OLECLOSE_NOSAVE);
  object->SetClientSite(nullptr);
  object->Release();
  meter->Release();
  DestroyWindow(window);
  CoUninitialize();
  return 0;
}
