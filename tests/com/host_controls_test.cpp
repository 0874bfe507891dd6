// host/controls.h on the finished DLL: every way to the controls, what is taken when there are several, and that the
// controls of each tick.

#include "host/container.h"
#include "host/controls.h"
#include "host/message_pump.h"
#include "host/meter_test.h"
#include "host/samples.h"
#include "host/window_picture.h"
#include "support/win/dll.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <gtest/gtest.h>
#include <wrl/client.h>

#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

namespace av::test {
namespace {

namespace fs = std::filesystem;
using avhost::Controls;

const CLSID* const classes[] = {&CLSID_CAudioVisualization4Type1, &CLSID_CAudioVisualization4Type2,
                                &CLSID_CAudioVisualization4Type3};

constexpr HRESULT moduleNotFound = HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);

class HostControls : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, LoadedDll().unregisterServer());
    fs::remove_all(m_folder);
    ASSERT_TRUE(fs::create_directory(m_folder));
  }
  void TearDown() override {
    // Wine writes a type library that it finds through a manifest into the registry.
    EXPECT_EQ(S_OK, LoadedDll().unregisterServer());
    CoFreeUnusedLibrariesEx(0, 0);
    std::error_code ignored;  // a DLL that COM still keeps loaded stays until the next run
    fs::remove_all(m_folder, ignored);
  }

  void copyToFolder(const wchar_t* fileName) {
    ASSERT_TRUE(CopyFileW(besideProgram(fileName).c_str(), (m_folder / fileName).c_str(), TRUE)) << GetLastError();
  }

  static ComPtr<IAudioVisualizationTemplate> create(const Controls& controls, REFCLSID classId) {
    ComPtr<IAudioVisualizationTemplate> control;
    EXPECT_EQ(S_OK, controls.create(classId, control.GetAddressOf()));
    return control;
  }

  /// Shows one of each and sends it one block; from then on only ticks can change the picture. The view's curve rises
  /// with them, the meter's bars come with the first one, the analyser's columns fall after half a second.
  static void expectThatAllControlsTick(const Controls& controls) {
    ComPtr<IAudioVisualizationTemplate> shown[3];
    avhost::Container containers[3];
    WindowPicture before[3];
    for (int i = 0; i < 3; ++i) {
      shown[i] = create(controls, *classes[i]);
      ASSERT_TRUE(shown[i]);
      ComPtr<IAudioVisualization4Type1> view;
      if (SUCCEEDED(shown[i].As(&view))) {
        ASSERT_EQ(S_OK, view->put_VisualizationType(2));
      }
      ASSERT_EQ(S_OK, containers[i].show(shown[i].Get(), {.clientSizePx = {400, 200}, .positionPx = {0, 200 * i}}));
      UpdateWindow(containers[i].controlWindow());
      ASSERT_EQ(S_OK, sendNoise(shown[i].Get()));
      before[i] = pictureOf(containers[i].controlWindow());
    }
    for (int i = 0; i < 3; ++i) {
      const auto ticked = [&] { return pictureOf(containers[i].controlWindow()) != before[i]; };
      EXPECT_TRUE(avhost::pumpUntil(10000, ticked)) << "control " << i + 1;
    }
    for (avhost::Container& container : containers) EXPECT_EQ(0u, container.close());
  }

  const fs::path m_folder = besideProgram(L"host-controls-test");
};

TEST_F(HostControls, TakeTheManifestBesideTheProgramFirst) {
  Controls controls;
  ASSERT_EQ(S_OK, controls.open());
  EXPECT_EQ(Controls::Way::manifest, controls.way());
  EXPECT_TRUE(controls.activationContext().isOpen());
  EXPECT_EQ(E_UNEXPECTED, controls.open()) << "once is enough";
  EXPECT_EQ(Controls::Way::manifest, controls.way());
  expectThatAllControlsTick(controls);
}

TEST_F(HostControls, TakeTheLibraryWhereItHasNoManifest) {
  ASSERT_NO_FATAL_FAILURE(copyToFolder(L"QELAudioVisualization4.dll"));
  Controls controls;
  ASSERT_EQ(S_OK, controls.open(m_folder.c_str()));
  EXPECT_EQ(Controls::Way::library, controls.way());
  EXPECT_FALSE(controls.activationContext().isOpen());
  expectThatAllControlsTick(controls);
}

TEST_F(HostControls, TakeTheLibraryWhereItsManifestIsBroken) {
  ASSERT_NO_FATAL_FAILURE(copyToFolder(L"QELAudioVisualization4.dll"));
  std::ofstream(m_folder / L"QELAudioVisualization4.manifest") << "<assembly";
  Controls controls;
  ASSERT_EQ(S_OK, controls.open(m_folder.c_str()));
  EXPECT_EQ(Controls::Way::library, controls.way());
}

TEST_F(HostControls, TakeTheRegistrationWhereThereIsNothingElse) {
  ASSERT_EQ(S_OK, LoadedDll().registerServer());
  Controls controls;
  ASSERT_EQ(S_OK, controls.open(m_folder.c_str()));
  EXPECT_EQ(Controls::Way::registration, controls.way());
  expectThatAllControlsTick(controls);
}

TEST_F(HostControls, TakeAManifestWithoutItsLibraryForNoWay) {
  ASSERT_NO_FATAL_FAILURE(copyToFolder(L"QELAudioVisualization4.manifest"));
  ASSERT_EQ(S_OK, LoadedDll().registerServer());
  Controls controls;
  ASSERT_EQ(S_OK, controls.open(m_folder.c_str()));
  EXPECT_EQ(Controls::Way::registration, controls.way());
  EXPECT_FALSE(controls.activationContext().isOpen());
}

TEST_F(HostControls, SayWhyThereAreNone) {
  Controls controls;
  EXPECT_EQ(REGDB_E_CLASSNOTREG, controls.open(m_folder.c_str()));
  EXPECT_EQ(Controls::Way::none, controls.way());
  std::ofstream(m_folder / L"QELAudioVisualization4.dll") << "no library";
  EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_BAD_EXE_FORMAT), controls.open(m_folder.c_str()));
  EXPECT_EQ(moduleNotFound, controls.openLibrary(L"C:\\no such folder\\QELAudioVisualization4.dll"));
  EXPECT_TRUE(FAILED(controls.openManifest(L"C:\\no such folder\\QELAudioVisualization4.manifest")));
  EXPECT_EQ(REGDB_E_CLASSNOTREG, controls.openRegistered());
  auto* none = reinterpret_cast<IUnknown*>(1);
  EXPECT_EQ(E_UNEXPECTED, controls.create(CLSID_CAudioVisualization4Type1, &none));
  EXPECT_EQ(nullptr, none);
  EXPECT_EQ(S_OK, controls.open()) << "a failure leaves it as it was";
}

TEST_F(HostControls, CannotLiveInTheMultiThreadedApartment) {
  std::thread([] {
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    {
      Controls controls;
      EXPECT_EQ(RPC_E_CHANGED_MODE, controls.open());
      EXPECT_EQ(RPC_E_CHANGED_MODE, controls.openRegistered());
    }
    CoUninitialize();
  }).join();
}

TEST_F(HostControls, UnloadTheLibraryAtTheirEnd) {
  ASSERT_EQ(nullptr, GetModuleHandleW(dllName));
  {
    Controls controls;
    ASSERT_EQ(S_OK, controls.openLibrary(dllPath().c_str()));
    EXPECT_TRUE(create(controls, CLSID_CAudioVisualization4Type3));
    EXPECT_NE(nullptr, GetModuleHandleW(dllName));
  }
  EXPECT_EQ(nullptr, GetModuleHandleW(dllName));
}

/// Pictures of a meter after one block, made by `send`.
template <class Send>
WindowPicture meterAfter(const Controls& controls, Send send) {
  ComPtr<IAudioVisualization4Type2> meter;
  EXPECT_EQ(S_OK, controls.create(CLSID_CAudioVisualization4Type2, meter.GetAddressOf()));
  EXPECT_EQ(S_OK, meter->put_TickVisible(VARIANT_FALSE));
  avhost::Container container;
  EXPECT_EQ(S_OK, container.show(meter.Get(), {.clientSizePx = {400, 200}, .positionPx = {0, 0}}));
  send(*meter.Get());
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return litPixels(pictureOf(container.controlWindow())) > 0; }));
  return pictureOf(container.controlWindow());
}

TEST_F(HostControls, ShowFloatsPlanesAnd24BitsAsTheirIntegersFromAnAudioThread) {
  Controls controls;
  ASSERT_EQ(S_OK, controls.open());
  const std::vector<std::int16_t> sixteen = noise(1024);
  std::vector<std::int32_t> integers;
  std::vector<float> floats;
  std::vector<avhost::Int24> packed;
  for (const std::int16_t sample : sixteen) {
    integers.push_back(sample * 65536);
    floats.push_back(static_cast<float>(sample) / 32768);
    packed.push_back({{0, static_cast<unsigned char>(sample & 0xFF), static_cast<unsigned char>(sample >> 8)}});
  }
  avhost::SampleBlocks mono(44100, 1);
  const WindowPicture expected = meterAfter(controls, [&](IAudioVisualization4Type2& meter) {
    EXPECT_EQ(S_OK, meter.SendAudioData(mono.interleaved(integers.data(), 1024)));
  });
  EXPECT_EQ(expected, meterAfter(controls, [&](IAudioVisualization4Type2& meter) {
              std::thread([&] { meter.SendAudioData(mono.interleaved(floats.data(), 1024)); }).join();
            }));
  EXPECT_EQ(expected, meterAfter(controls, [&](IAudioVisualization4Type2& meter) {
              EXPECT_EQ(S_OK, meter.SendAudioData(mono.interleaved(packed.data(), 1024)));
            }));
  avhost::SampleBlocks stereo(44100, 2);
  const float* const planes[] = {floats.data(), floats.data()};
  EXPECT_EQ(expected, meterAfter(controls, [&](IAudioVisualization4Type2& meter) {
              EXPECT_EQ(S_OK, meter.SendAudioData(stereo.planar(planes, 1024)));
            }));
}

}  // namespace
}  // namespace av::test
