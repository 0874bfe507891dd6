// Lives that end early, late, on other threads' calls or ten thousand times; a library at a path in no code page.

#include "host/any_control_test.h"
#include "host/message_pump.h"
#include "support/win/holdings.h"

#include <atomic>
#include <thread>

namespace av::test {
namespace {

class HostileLifetime : public AnyControlTest {
 protected:
  void expectItStillDraws() {
    ASSERT_EQ(S_OK, send(std::vector<std::int16_t>(2048)));
    const WindowPicture silent = shown();
    ASSERT_EQ(S_OK, sendNoise());
    EXPECT_FALSE(silent == shown());
  }
};

TEST_P(HostileLifetime, ATickThatWaitsWhileTheControlIsClosedFindsNothingToDraw) {
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  ASSERT_EQ(S_OK, sendNoise());
  avhost::pumpMessages(60);
  Sleep(60);  // a tick comes and is not dispatched
  ASSERT_EQ(S_OK, m_control->Close(OLECLOSE_NOSAVE));
  EXPECT_FALSE(window());
  avhost::pumpMessages(60);
  EXPECT_EQ(S_OK, sendNoise());
  EXPECT_EQ(0u, m_container.close());
  avhost::pumpMessages(50);
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  expectItStillDraws();
}

TEST_P(HostileLifetime, TwoApartmentsHaveControlsOfTheirOwn) {
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  const CLSID& controlClass = classId();
  std::atomic<bool> done{false};
  int otherTicks = 0;
  std::thread other([&] {
    {
      const avhost::Apartment apartment;
      EXPECT_EQ(S_OK, apartment.result());
      for (int life = 0; life < 2; ++life) {
        ComPtr<IAudioVisualizationTemplate> control;
        EXPECT_EQ(S_OK, m_library.create(controlClass, control.GetAddressOf()));
        avhost::Container container;
        EXPECT_EQ(S_OK, container.open({.title = L"other", .clientSizePx = {200, 100}}));
        EXPECT_EQ(S_OK, container.host(control.Get()));
        EXPECT_EQ(S_OK, control->SendAudioData(nullptr));
        otherTicks += avhost::pumpUntil(80, [] { return false; }) ? 0 : 1;
        EXPECT_EQ(0u, container.close());
        EXPECT_EQ(0u, control.Reset());
      }
    }
    done = true;
  });
  EXPECT_TRUE(avhost::pumpUntil(60000, [&] {
    EXPECT_EQ(S_OK, sendNoise());
    return done.load();
  }));
  other.join();
  EXPECT_EQ(2, otherTicks);
  expectItStillDraws();
}

TEST_P(HostileLifetime, CallsOfOtherThreadsArriveThroughAProxyAndTheLastReleaseMayToo) {
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  ComPtr<IDispatch> dispatch;
  ASSERT_EQ(S_OK, m_audio.As(&dispatch));
  ComPtr<IStream> parcel;
  ASSERT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(IID_IDispatch, dispatch.Get(), &parcel));
  dispatch.Reset();
  const std::vector<PutProperty> properties = putProperties(*m_audio.Get());
  std::atomic<int> stage{0};
  std::thread other([&] {
    EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    {
      ComPtr<IDispatch> proxy;
      EXPECT_EQ(S_OK, CoGetInterfaceAndReleaseStream(parcel.Detach(), IID_IDispatch,
                                                     reinterpret_cast<void**>(proxy.GetAddressOf())));
      for (const PutProperty& property : properties) {
        if (!proxy || property.type == VT_DISPATCH || property.indexed) continue;
        VARIANT value;
        VariantInit(&value);
        DISPPARAMS none{};
        const DISPID id = property.id;
        EXPECT_EQ(S_OK,
                  proxy->Invoke(id, IID_NULL, LOCALE_NEUTRAL, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr));
        // What has just been read is taken, save a window's parameter, which not every window has.
        const HRESULT result = putValue(*proxy.Get(), property, value);
        EXPECT_TRUE(result == S_OK || property.name == L"FFTWindowParam") << id << std::hex << " " << result;
      }
      stage = 1;
      while (stage == 1) Sleep(5);
    }
    CoUninitialize();
    stage = 3;
  });
  EXPECT_TRUE(avhost::pumpUntil(30000, [&] { return stage == 1; }));
  EXPECT_EQ(0u, m_container.close());
  m_audio.Reset();
  m_control.Reset();
  EXPECT_EQ(S_FALSE, m_library.canUnloadNow()) << "the proxy holds the control";
  stage = 2;
  EXPECT_TRUE(avhost::pumpUntil(30000, [&] { return stage == 3; }));
  other.join();
  EXPECT_TRUE(avhost::pumpUntil(5000, [&] { return m_library.canUnloadNow() == S_OK; }));
}

/// A library of its own, at a path that no code page can say.
TEST_P(HostileLifetime, ALibraryInAFolderWithUmlautsAndIdeographsLoadsTicksAndDraws) {
  const std::wstring folder = besideProgram(L"Pr\u00FCfst\u00E4nde \u97F3\u58F0 " + std::to_wstring(GetParam()));
  const std::wstring copy = folder + L"\\" + dllName;
  CreateDirectoryW(folder.c_str(), nullptr);
  ASSERT_TRUE(CopyFileW(dllPath().c_str(), copy.c_str(), FALSE));
  {
    avhost::ControlLibrary library;
    ASSERT_EQ(S_OK, library.load(copy.c_str()));
    ASSERT_NE(m_library.module(), library.module());
    m_audio.Reset();
    ASSERT_EQ(0u, m_control.Reset());
    ASSERT_EQ(S_OK, library.create(classId(), m_control.GetAddressOf()));
    m_audio = as<IAudioVisualizationTemplate>();
    ASSERT_NO_FATAL_FAILURE(activate({320, 160}));  // puts by name, so its type library is read
    expectItStillDraws();
    avhost::pumpMessages(120);
    EXPECT_EQ(0u, m_container.close());
    m_audio.Reset();
    EXPECT_EQ(0u, m_control.Reset());
    EXPECT_TRUE(avhost::pumpUntil(5000, [&] { return library.canUnloadNow() == S_OK; }));
    EXPECT_TRUE(library.unload());
  }
  // Wine registers the type library when ticks begin, and cannot unregister it once its file is gone.
  EXPECT_EQ(S_OK, LoadedDll(copy).unregisterServer());
  EXPECT_TRUE(DeleteFileW(copy.c_str()));
  EXPECT_TRUE(RemoveDirectoryW(folder.c_str()));
}

class FullHostileLifetime : public HostileLifetime {
 protected:
  /// Unsited, with a block now and then; every hundredth in a window.
  void live(int number) {
    ComPtr<IAudioVisualizationTemplate> control = create<IAudioVisualizationTemplate>(classId());
    const std::vector<std::int16_t> samples(2048, 9000);
    const WAVEFORMATEX mono16{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
    if (number % 100 == 0) {
      avhost::Container container;
      ASSERT_EQ(S_OK, container.open({.title = L"test", .clientSizePx = {320, 160}}));
      ASSERT_EQ(S_OK, container.host(control.Get()));
      ASSERT_EQ(S_OK, control->SendAudioData(avhost::audioFrames(mono16, samples.data(), 4096).get()));
      avhost::pumpMessages(0);
      ASSERT_EQ(0u, container.close());
    } else if (number % 10 == 0) {
      ASSERT_EQ(S_OK, control->SendAudioData(avhost::audioFrames(mono16, samples.data(), 4096).get()));
    }
    ASSERT_EQ(0u, control.Reset());
  }
};

TEST_P(FullHostileLifetime, TenThousandCreationsLeaveNothingBehind) {
  m_audio.Reset();
  ASSERT_EQ(0u, m_control.Reset());
  for (int i = 0; i < 200; ++i) ASSERT_NO_FATAL_FAILURE(live(i));  // what the system keeps for itself is there by now
  avhost::pumpMessages(100);
  ASSERT_EQ(S_OK, m_library.canUnloadNow());
  const Holdings before = Holdings::now();
  for (int i = 0; i < 10000; ++i) ASSERT_NO_FATAL_FAILURE(live(i)) << i;
  avhost::pumpMessages(100);
  ASSERT_EQ(S_OK, m_library.canUnloadNow());
  EXPECT_EQ(before, Holdings::now());
}

/// A worker that calls into an apartment at the moment of its end may never come back, and keeps the library then: so
/// this one is a copy.
TEST_P(FullHostileLifetime, TheApartmentMayGoBeforeTheControlWhichAnswersAndEndsInTime) {
  const std::wstring folder = besideProgram(L"apartment " + std::to_wstring(GetParam()));
  const std::wstring copy = folder + L"\\" + dllName;
  CreateDirectoryW(folder.c_str(), nullptr);
  ASSERT_TRUE(CopyFileW(dllPath().c_str(), copy.c_str(), FALSE));
  avhost::ControlLibrary library;
  ASSERT_EQ(S_OK, library.load(copy.c_str()));
  std::thread host([&] {
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    ComPtr<IAudioVisualizationTemplate> control;
    ASSERT_EQ(S_OK, library.create(classId(), control.GetAddressOf()));
    avhost::Container container;
    ASSERT_EQ(S_OK, container.open({.title = L"test", .clientSizePx = {320, 160}}));
    ASSERT_EQ(S_OK, container.host(control.Get()));
    const std::vector<std::int16_t> samples(2048, 9000);
    const WAVEFORMATEX mono16{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
    const auto block = avhost::audioFrames(mono16, samples.data(), 4096);
    EXPECT_EQ(S_OK, control->SendAudioData(block.get()));
    avhost::pumpMessages(120);
    CoUninitialize();
    Sleep(60);  // ticks that reach nobody
    EXPECT_EQ(S_OK, control->SendAudioData(block.get()));
    EXPECT_EQ(S_OK, control->Repaint());
    EXPECT_EQ(S_OK, control->_OnTimer());
    const DWORD start = GetTickCount();
    EXPECT_EQ(0u, container.close());
    EXPECT_EQ(0u, control.Reset());
    EXPECT_GT(10000u, GetTickCount() - start);
  });
  host.join();
  LoadedDll(copy).unregisterServer();  // Wine registers the type library when ticks begin
}

INSTANTIATE_TEST_SUITE_P(, HostileLifetime, eachControl);
INSTANTIATE_TEST_SUITE_P(, FullHostileLifetime, eachControl);

}  // namespace
}  // namespace av::test
