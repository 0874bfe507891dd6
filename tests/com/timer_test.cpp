// The repaint timer as a host of the finished DLL sees it: ticks that draw, however the control was made, and an end
// that leaves nothing behind.

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/create.h"
#include "host/message_pump.h"
#include "host/process_threads.h"
#include "host/window_picture.h"
#include "support/win/dll.h"
#include "support/win/registry_snapshot.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <gtest/gtest.h>
#include <wrl/client.h>

#include <cmath>
#include <string>
#include <vector>

namespace av::test {
namespace {

using Microsoft::WRL::ComPtr;

std::wstring braced(REFGUID guid) {
  wchar_t text[39];
  StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
  return text;
}

/// Everything that the registry says about our interfaces, type library and classes.
RegistryEntries ourEntries() {
  RegistryEntries all;
  for (const GUID& iid : {IID_IAudioVisualizationTemplate, IID_IAudioVisualization4Type1, IID_IAudioVisualization4Type2,
                          IID_IAudioVisualization4Type3, DIID__IAudioVisualization4Type1Events})
    all.merge(snapshotOfClasses(L"Interface\\" + braced(iid)));
  for (const GUID& clsid :
       {CLSID_CAudioVisualization4Type1, CLSID_CAudioVisualization4Type2, CLSID_CAudioVisualization4Type3})
    all.merge(snapshotOfClasses(L"CLSID\\" + braced(clsid)));
  all.merge(snapshotOfClasses(L"TypeLib\\" + braced(LIBID_QELAudioVisualization4)));
  return all;
}

/// A loud block of one channel: with the type 2 and smoothing on, each tick lifts the curve.
void sendLoudBlock(IAudioVisualization4Type1* view) {
  std::vector<std::int16_t> samples(1024);
  std::uint32_t state = 12345;
  for (std::int16_t& sample : samples) sample = static_cast<std::int16_t>((state = state * 1664525 + 1013904223) >> 16);
  const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
  EXPECT_EQ(S_OK, view->SendAudioData(avhost::audioFrames(format, samples.data(), 2048).get()));
}

class ViewTimer : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, m_apartment.result());
    const LoadedDll dll;
    ASSERT_EQ(S_OK, dll.unregisterServer());
    ASSERT_TRUE(ourEntries().empty()) << "the registry still knows the library";
  }

  void TearDown() override {
    // Wine writes a type library that it finds through a manifest into the registry.
    const LoadedDll dll;
    EXPECT_EQ(S_OK, dll.canUnloadNow());
    EXPECT_EQ(S_OK, dll.unregisterServer());
    EXPECT_TRUE(ourEntries().empty());
  }

  static void prepare(IAudioVisualization4Type1* view) {
    ASSERT_EQ(S_OK, view->put_VisualizationType(2));
    sendLoudBlock(view);
  }

  /// Hosts the control and waits for ticks to draw: one that starts the curve's rise and one that goes on with it.
  static void expectTicksThatDraw(IAudioVisualization4Type1* view) {
    prepare(view);
    avhost::Container container;
    ASSERT_EQ(S_OK, container.open({.title = L"test", .clientSizePx = {300, 200}}));
    ASSERT_EQ(S_OK, container.host(view));
    UpdateWindow(container.controlWindow());
    WindowPicture last = pictureOf(container.controlWindow());
    for (int tick = 0; tick < 3; ++tick) {
      EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return pictureOf(container.controlWindow()) != last; })) << tick;
      last = pictureOf(container.controlWindow());
    }
    EXPECT_EQ(0u, container.close());
  }

  static void expectTicksOfAnUnregisteredControl() {
    avhost::ControlLibrary library;
    ASSERT_EQ(S_OK, library.loadBesideProgram(L"QELAudioVisualization4.dll"));
    ComPtr<IAudioVisualization4Type1> view;
    ASSERT_EQ(S_OK, library.create(CLSID_CAudioVisualization4Type1, view.GetAddressOf()));
    expectTicksThatDraw(view.Get());
    EXPECT_EQ(S_FALSE, library.canUnloadNow());
    EXPECT_EQ(0u, view.Reset());
    EXPECT_EQ(S_OK, library.canUnloadNow());
    EXPECT_TRUE(library.unload());
    EXPECT_EQ(nullptr, GetModuleHandleW(L"QELAudioVisualization4.dll")) << "a worker still holds the library";
  }

  avhost::Apartment m_apartment;
};

TEST_F(ViewTimer, DrawsWhenNothingIsRegistered) { expectTicksOfAnUnregisteredControl(); }

TEST_F(ViewTimer, DrawsWhenOnlyTheTypeLibraryIsRegistered) {
  std::wstring path = dllPath();
  ComPtr<ITypeLib> library;
  ASSERT_EQ(S_OK, LoadTypeLibEx(path.c_str(), REGKIND_REGISTER, &library));
  ASSERT_FALSE(ourEntries().empty());
  expectTicksOfAnUnregisteredControl();
}

TEST_F(ViewTimer, DrawsWhenTheRegistryNamesALibraryThatIsGone) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(S_OK, LoadTypeLibEx(dllPath().c_str(), REGKIND_NONE, &library));
  std::wstring gone = L"C:\\no such folder\\gone.dll";
  ASSERT_EQ(S_OK, RegisterTypeLib(library.Get(), gone.data(), nullptr));
  expectTicksOfAnUnregisteredControl();
}

TEST_F(ViewTimer, DrawsWhenTheManifestWasActiveDuringCreationOnly) {
  avhost::ActivationContext manifest;
  ASSERT_EQ(S_OK, manifest.openFile(besideProgram(L"QELAudioVisualization4.manifest").c_str()));
  ComPtr<IAudioVisualization4Type1> view;
  ASSERT_EQ(S_OK, manifest.create(CLSID_CAudioVisualization4Type1, view.GetAddressOf()));
  manifest.close();
  expectTicksThatDraw(view.Get());
  EXPECT_EQ(0u, view.Reset());
  CoFreeUnusedLibrariesEx(0, 0);
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(nullptr, GetModuleHandleW(L"QELAudioVisualization4.dll"));
}

TEST_F(ViewTimer, DrawsWhenTheLibraryIsRegistered) {
  {
    const LoadedDll dll;
    ASSERT_EQ(S_OK, dll.registerServer());
  }
  ComPtr<IAudioVisualization4Type1> view;
  ASSERT_EQ(S_OK, avhost::createRegistered(CLSID_CAudioVisualization4Type1, view.GetAddressOf()));
  expectTicksThatDraw(view.Get());
  EXPECT_EQ(0u, view.Reset());
  CoFreeUnusedLibrariesEx(0, 0);
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(nullptr, GetModuleHandleW(L"QELAudioVisualization4.dll"));
}

/// One hosted control of a library that was loaded by its path.
class TickingView : public ViewTimer {
 protected:
  void SetUp() override {
    ViewTimer::SetUp();
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(L"QELAudioVisualization4.dll"));
    ASSERT_EQ(S_OK, m_library.create(CLSID_CAudioVisualization4Type1, m_view.GetAddressOf()));
    prepare(m_view.Get());
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {300, 200}}));
  }
  void TearDown() override {
    m_container.close();
    EXPECT_EQ(0u, m_view ? m_view.Reset() : 0u);
    EXPECT_EQ(S_OK, m_library.canUnloadNow());
    EXPECT_TRUE(m_library.unload());
    ViewTimer::TearDown();
  }
  void activate() {
    ASSERT_EQ(S_OK, m_container.host(m_view.Get()));
    UpdateWindow(m_container.controlWindow());
  }
  WindowPicture picture() const { return pictureOf(m_container.controlWindow()); }

  avhost::ControlLibrary m_library;
  ComPtr<IAudioVisualization4Type1> m_view;
  avhost::Container m_container;
};

TEST_F(TickingView, DrawsFirstAfterTwoPeriods) {
  const DWORD start = GetTickCount();
  activate();
  const WindowPicture before = picture();
  ASSERT_TRUE(avhost::pumpUntil(10000, [&] { return picture() != before; }));
  EXPECT_GE(GetTickCount() - start, 60u);
}

TEST_F(TickingView, TicksArriveAsMessagesAndNotOtherwise) {
  activate();
  const WindowPicture before = picture();
  Sleep(300);  // ten periods, while this thread dispatches nothing
  EXPECT_EQ(before, picture());
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return picture() != before; }));
}

TEST_F(TickingView, BlocksAloneDoNotStartTheTimer) {
  const int threads = threadsOfThisProcess();
  sendLoudBlock(m_view.Get());
  EXPECT_EQ(threads, threadsOfThisProcess());
}

TEST_F(TickingView, LosesItsWorkerWithItsLastReference) {
  activate();
  avhost::pumpMessages(150);
  const int ticking = threadsOfThisProcess();
  EXPECT_EQ(0u, m_container.close());
  EXPECT_EQ(0u, m_view.Reset());
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
  EXPECT_EQ(ticking - 1, threadsOfThisProcess());
}

TEST_F(TickingView, MayBeReleasedWhileATickWaitsForThisThread) {
  activate();
  Sleep(200);  // a tick has been sent and waits to be dispatched
  EXPECT_EQ(0u, m_container.close());
  EXPECT_EQ(0u, m_view.Reset());
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
}

TEST_F(TickingView, MayOutliveItsContainerAndStillTick) {
  activate();
  avhost::pumpMessages(100);
  EXPECT_EQ(0u, m_container.close());
  avhost::pumpMessages(150);
  avhost::Container another;
  ASSERT_EQ(S_OK, another.open({.title = L"another", .clientSizePx = {300, 200}}));
  ASSERT_EQ(S_OK, another.host(m_view.Get()));
  UpdateWindow(another.controlWindow());
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(2));  // from the floor again
  sendLoudBlock(m_view.Get());
  const WindowPicture before = pictureOf(another.controlWindow());
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return pictureOf(another.controlWindow()) != before; }));
  EXPECT_EQ(0u, another.close());
}

TEST_F(TickingView, TwoHundredLivesLeaveNoThread) {
  const auto live = [&] {
    ComPtr<IAudioVisualization4Type1> view;
    ASSERT_EQ(S_OK, m_library.create(CLSID_CAudioVisualization4Type1, view.GetAddressOf()));
    avhost::Container container;
    ASSERT_EQ(S_OK, container.open({.clientSizePx = {100, 80}, .visible = false}));
    ASSERT_EQ(S_OK, container.host(view.Get()));
    ASSERT_EQ(0u, container.close());
    ASSERT_EQ(0u, view.Reset());
  };
  live();  // COM keeps a few threads of its own from now on
  const int threads = threadsOfThisProcess();
  for (int i = 0; i < 200 && !HasFatalFailure(); ++i) live();
  EXPECT_EQ(threads, threadsOfThisProcess());
}

}  // namespace
}  // namespace av::test
