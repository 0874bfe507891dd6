// The controls in the container that Windows brings along: the window class AtlAxWin of atl.dll.

#include "host/audio_buffers.h"
#include "host/manifest_test.h"
#include "host/message_pump.h"
#include "host/window_picture.h"

#include <ocidl.h>
#include <oleidl.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace av::test {
namespace {

/// The few functions of atl.dll that host a control, found at run time: there is no import library of it for 32-bit
/// programs.
class SystemContainer {
 public:
  /// Registers the window class; once in a process, a second time fails.
  bool init() const {
    static const bool done = function<BOOL WINAPI()>("AtlAxWinInit")();
    return done;
  }
  HRESULT createControl(const wchar_t* name, HWND window, IUnknown** container) const {
    return function<HRESULT WINAPI(LPCOLESTR, HWND, IStream*, IUnknown**)>("AtlAxCreateControl")(name, window, nullptr,
                                                                                                 container);
  }
  HRESULT attachControl(IUnknown* control, HWND window, IUnknown** container) const {
    return function<HRESULT WINAPI(IUnknown*, HWND, IUnknown**)>("AtlAxAttachControl")(control, window, container);
  }
  HRESULT control(HWND window, IUnknown** control) const {
    return function<HRESULT WINAPI(HWND, IUnknown**)>("AtlAxGetControl")(window, control);
  }

 private:
  template <class Signature>
  Signature* function(const char* name) const {
    return reinterpret_cast<Signature*>(reinterpret_cast<void*>(GetProcAddress(m_atl, name)));
  }

  HMODULE m_atl = LoadLibraryW(L"atl.dll");  // stays loaded: it keeps the window class
};

std::wstring textOf(REFCLSID classId) {
  wchar_t text[39];
  StringFromGUID2(classId, text, ARRAYSIZE(text));
  return text;
}

class SystemContainerTest : public ManifestTest {
 protected:
  void SetUp() override {
    ManifestTest::SetUp();
    ASSERT_TRUE(m_atl.init());
    m_frame = CreateWindowExW(0, L"STATIC", L"frame", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 500, 400, nullptr,
                              nullptr, nullptr, nullptr);
    ASSERT_TRUE(m_frame);
  }

  void TearDown() override {
    DestroyWindow(m_frame);
    ManifestTest::TearDown();
    // Each container starts OLE for itself and never ends it; the next test expects a thread without.
    APTTYPE apartment{};
    APTTYPEQUALIFIER qualifier{};
    while (CoGetApartmentType(&apartment, &qualifier) == S_OK && apartment != APTTYPE_MTA) OleUninitialize();
  }

  /// `title`: what the container is to create; empty for a container without a control.
  HWND openContainer(const std::wstring& title, SIZE sizePx = {200, 100}) const {
    const HWND window = CreateWindowExW(0, L"AtlAxWin", title.c_str(), WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 10, 20,
                                        sizePx.cx, sizePx.cy, m_frame, nullptr, nullptr, nullptr);
    EXPECT_TRUE(window);
    return window;
  }

  template <class Interface>
  ComPtr<Interface> controlOf(HWND container) const {
    ComPtr<IUnknown> control;
    ComPtr<Interface> face;
    EXPECT_EQ(S_OK, m_atl.control(container, &control));
    if (control) {
      EXPECT_EQ(S_OK, control.As(&face));
    }
    return face;
  }

  static HWND windowOf(IUnknown* control) {
    ComPtr<IOleWindow> face;
    HWND window = nullptr;
    if (FAILED(control->QueryInterface(IID_PPV_ARGS(&face))) || FAILED(face->GetWindow(&window))) return nullptr;
    return window;
  }

  static SIZE clientSize(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
  }

  SystemContainer m_atl;
  HWND m_frame = nullptr;
};

// Wine 8's container sets, next to the right rectangle, an extent that is none (208 x 104 HIMETRIC for 200 x 100 pixels),
// offers to host without a window and then neither redraws nor forwards the mouse to a control that accepts. The level
// meter always asks for a window, and what the view shows is checked here, not what it would be told of the mouse.

/// A control with a window of its own, in each of the three ways to get one into the container.
class MeterInSystemContainer : public SystemContainerTest {
 protected:
  const CLSID& m_classId = CLSID_CAudioVisualization4Type2;

  /// The control is hosted, active, and fills its container.
  void expectHosted(HWND container, SIZE sizePx = {200, 100}) {
    m_control = controlOf<IOleObject>(container);
    ASSERT_TRUE(m_control);
    CLSID classId{};
    EXPECT_EQ(S_OK, m_control->GetUserClassID(&classId));
    EXPECT_EQ(m_classId, classId);
    m_window = windowOf(m_control.Get());
    ASSERT_TRUE(IsWindow(m_window));
    EXPECT_EQ(container, GetParent(m_window));
    EXPECT_TRUE(IsWindowVisible(m_window));
    expectFills(container, sizePx);
  }

  void expectFills(HWND container, SIZE sizePx) const {
    EXPECT_EQ(sizePx.cx, clientSize(m_window).cx);
    EXPECT_EQ(sizePx.cy, clientSize(m_window).cy);
    RECT place{}, outer{};
    GetWindowRect(m_window, &place);
    GetWindowRect(container, &outer);
    EXPECT_EQ(outer.left, place.left);
    EXPECT_EQ(outer.top, place.top);
  }

  void expectGone(HWND container) {
    EXPECT_FALSE(IsWindow(container));
    EXPECT_FALSE(IsWindow(m_window));
    EXPECT_EQ(0u, m_control.Reset()) << "references were lost";
  }

  ComPtr<IOleObject> m_control;
  HWND m_window = nullptr;
};

TEST_F(MeterInSystemContainer, IsCreatedFromTheWindowsTitleAndGoesWithTheWindow) {
  const HWND container = openContainer(textOf(m_classId));
  expectHosted(container);
  DestroyWindow(container);
  expectGone(container);
}

TEST_F(MeterInSystemContainer, GoesWithTheContainersParent) {
  const HWND container = openContainer(textOf(m_classId));
  expectHosted(container);
  DestroyWindow(m_frame);
  expectGone(container);
}

TEST_F(MeterInSystemContainer, IsCreatedInAnEmptyContainer) {
  const HWND container = openContainer(L"");
  ComPtr<IUnknown> host;
  ASSERT_EQ(S_OK, m_atl.createControl(textOf(m_classId).c_str(), container, &host));
  EXPECT_TRUE(host);
  expectHosted(container);
  host.Reset();
  DestroyWindow(container);
  expectGone(container);
}

TEST_F(MeterInSystemContainer, IsAttachedByAHostThatCreatesItItself) {
  const auto made = create<IOleObject>(m_classId);
  ASSERT_TRUE(made);
  const HWND container = openContainer(L"");
  ComPtr<IUnknown> host;
  ASSERT_EQ(S_OK, m_atl.attachControl(made.Get(), container, &host));
  expectHosted(container);
  EXPECT_EQ(made.Get(), m_control.Get());
  host.Reset();
  DestroyWindow(container);
  EXPECT_FALSE(IsWindow(m_window));
  m_control.Reset();
  made->AddRef();
  EXPECT_EQ(1u, made->Release()) << "only the host's own reference is left";
}

TEST_F(MeterInSystemContainer, FollowsTheContainersSize) {
  const HWND container = openContainer(textOf(m_classId));
  expectHosted(container);
  for (const SIZE size : {SIZE{60, 40}, SIZE{300, 200}, SIZE{1, 1}, SIZE{200, 100}}) {
    SetWindowPos(container, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
    expectFills(container, size);
  }
  // Moved, the control comes along with its parent.
  SetWindowPos(container, nullptr, 100, 50, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  expectFills(container, {200, 100});
  DestroyWindow(container);
  expectGone(container);
}

TEST_F(MeterInSystemContainer, PaintsItsWholeWindow) {
  const HWND container = openContainer(textOf(m_classId));
  expectHosted(container);
  UpdateWindow(m_window);
  const WindowPicture before = pictureOf(m_window);
  // Somebody scribbles over it.
  HDC target = GetDC(m_window);
  const RECT everything{0, 0, 200, 100};
  FillRect(target, &everything, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  ReleaseDC(m_window, target);
  ASSERT_NE(before, pictureOf(m_window));
  InvalidateRect(m_window, nullptr, FALSE);
  UpdateWindow(m_window);
  EXPECT_EQ(before, pictureOf(m_window));
  EXPECT_FALSE(GetUpdateRect(m_window, nullptr, FALSE)) << "the control must validate what it paints";
  DestroyWindow(container);
  expectGone(container);
}

TEST_F(MeterInSystemContainer, TakesTheFocusWithAClickAndSurvivesEveryMouseMessage) {
  const HWND container = openContainer(textOf(m_classId));
  expectHosted(container);
  SetForegroundWindow(m_frame);
  SetFocus(m_frame);
  ASSERT_NE(m_window, GetFocus());
  POINT inside{50, 30};
  ClientToScreen(m_window, &inside);
  SetCursorPos(inside.x, inside.y);
  INPUT click[2] = {};
  click[0].type = click[1].type = INPUT_MOUSE;
  click[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
  click[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
  ASSERT_EQ(2u, SendInput(2, click, sizeof(INPUT)));
  EXPECT_TRUE(avhost::pumpUntil(2000, [&] { return GetFocus() == m_window; }));
  for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_RBUTTONDOWN, WM_RBUTTONUP,
                             WM_MBUTTONDOWN, WM_MBUTTONUP, WM_MOUSEWHEEL, WM_MOUSELEAVE, WM_CAPTURECHANGED})
    SendMessageW(m_window, message, MK_LBUTTON, MAKELPARAM(199, 99));
  EXPECT_EQ(nullptr, GetCapture());
  DestroyWindow(container);
  expectGone(container);
}

TEST_F(MeterInSystemContainer, IsReleasedByItsHostBeforeTheContainerGoes) {
  const HWND container = openContainer(textOf(m_classId));
  expectHosted(container);
  EXPECT_LT(0u, m_control.Reset()) << "the container holds it";
  EXPECT_TRUE(IsWindow(m_window));
  EXPECT_EQ(S_FALSE, m_dll.canUnloadNow());
  DestroyWindow(container);
  EXPECT_FALSE(IsWindow(m_window));
  EXPECT_EQ(S_OK, m_dll.canUnloadNow());
}

TEST_F(MeterInSystemContainer, StandsBesideAnotherOne) {
  const HWND first = openContainer(textOf(m_classId)), second = openContainer(textOf(m_classId));
  const auto other = controlOf<IOleObject>(first);
  expectHosted(second);
  EXPECT_NE(other.Get(), m_control.Get());
  EXPECT_NE(windowOf(other.Get()), m_window);
  DestroyWindow(second);
  expectGone(second);
  EXPECT_TRUE(IsWindow(windowOf(other.Get())));
  DestroyWindow(first);
}

class ViewInSystemContainer : public SystemContainerTest {
 protected:
  /// What the container shows, in the control's own window or, where it has none, in the container's.
  WindowPicture picture(HWND container) const {
    const HWND own = windowOf(controlOf<IOleObject>(container).Get());
    const HWND shown = own && own != container ? own : container;
    RedrawWindow(shown, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    return pictureOf(shown);
  }
};

TEST_F(ViewInSystemContainer, ShowsItsPictureInEverySize) {
  const HWND container = openContainer(textOf(CLSID_CAudioVisualization4Type1));
  const auto view = controlOf<IAudioVisualization4Type1>(container);
  ASSERT_TRUE(view);
  ASSERT_EQ(S_OK, view->put_BackColor(RGB(10, 20, 30)));
  ASSERT_EQ(S_OK, view->put_ScaleColor(RGB(200, 100, 50)));
  for (const SIZE size : {SIZE{200, 100}, SIZE{320, 240}, SIZE{120, 80}}) {
    SetWindowPos(container, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
    const WindowPicture shown = picture(container);
    EXPECT_EQ(size.cx, shown.width);
    EXPECT_EQ(size.cy, shown.height);
    const auto count = [&](std::uint32_t pixel) { return std::count(shown.pixels.begin(), shown.pixels.end(), pixel); };
    EXPECT_LT(0, count(0x0A141E)) << "background";
    EXPECT_LT(0, count(0xC86432)) << "scale strips";
    EXPECT_EQ(0, count(0xFFFFFF)) << "the container's own background shows through";
  }
  DestroyWindow(container);
}

TEST_F(ViewInSystemContainer, ShowsBlocksAndGoesWithTheWindow) {
  const HWND container = openContainer(textOf(CLSID_CAudioVisualization4Type1));
  auto view = controlOf<IAudioVisualization4Type1>(container);
  ASSERT_TRUE(view);
  ASSERT_EQ(S_OK, view->put_VisualizationSmooth(VARIANT_FALSE));
  const WindowPicture before = picture(container);
  std::vector<std::int16_t> samples(1024);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::int16_t>(i % 100 * 600 - 30000);
  const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
  ASSERT_EQ(S_OK, view->SendAudioData(avhost::audioFrames(format, samples.data(), 2048).get()));
  EXPECT_NE(before, picture(container));
  DestroyWindow(container);
  EXPECT_EQ(0u, view.Reset()) << "references were lost";
}

TEST_F(ViewInSystemContainer, KeepsTickingUntilItIsReleased) {
  // The repaint worker marshals into this thread; the container lets go of the control while ticks are on their way.
  const HWND container = openContainer(textOf(CLSID_CAudioVisualization4Type1));
  auto view = controlOf<IAudioVisualization4Type1>(container);
  ASSERT_TRUE(view);
  avhost::pumpMessages(100);
  DestroyWindow(container);
  avhost::pumpMessages(100);
  EXPECT_EQ(0u, view.Reset());
}

}  // namespace
}  // namespace av::test
