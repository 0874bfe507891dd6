// The headers for hosts on the finished DLL: the few lines that a host needs.

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/create.h"
#include "host/message_pump.h"

#include <QELAudioVisualization4.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Microsoft::WRL::ComPtr;

const WAVEFORMATEX stereo = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};

std::wstring besideProgram(const wchar_t* fileName) {
  wchar_t path[1024] = {};
  GetModuleFileNameW(nullptr, path, ARRAYSIZE(path));
  std::wstring folder = path;
  return folder.substr(0, folder.find_last_of(L"\\/") + 1) + fileName;
}

/// Pixels of `colour` in the control's window.
int countPixels(HWND window, COLORREF colour) {
  RECT client = {};
  GetClientRect(window, &client);
  HDC context = GetDC(window);
  int count = 0;
  for (int y = 0; y < client.bottom; ++y)
    for (int x = 0; x < client.right; ++x) count += GetPixel(context, x, y) == colour;
  ReleaseDC(window, context);
  return count;
}

/// Hosts the view, sends it one block, and waits for its second channel's curve (yellow by default) to show up.
void expectADrawnBlock(const ComPtr<IAudioVisualization4Type1>& view) {
  avhost::Container container;
  ASSERT_EQ(S_OK, container.open({.title = L"View", .clientSizePx = {200, 120}, .positionPx = {0, 0}}));
  ASSERT_EQ(S_OK, container.host(view.Get()));
  const std::vector<std::int16_t> samples(2 * 1024, 8000);
  const LONG sampleBytes = static_cast<LONG>(samples.size() * sizeof samples[0]);
  ASSERT_EQ(S_OK, view->SendAudioData(avhost::audioFrames(stereo, samples.data(), sampleBytes).get()));
  constexpr COLORREF yellow = RGB(255, 255, 0);
  EXPECT_TRUE(avhost::pumpUntil(5000, [&] { return countPixels(container.controlWindow(), yellow) >= 50; }));
  EXPECT_EQ(0u, container.close()) << "references that the view keeps on its closed container";
}

TEST(HostHeaders, ShowABlockInAViewLoadedBesideTheProgramAndUnloadTheLibrary) {
  const avhost::Apartment apartment;
  avhost::ControlLibrary library;
  ASSERT_EQ(S_OK, library.loadBesideProgram(L"QELAudioVisualization4.dll"));
  ComPtr<IAudioVisualization4Type1> view;
  ASSERT_EQ(S_OK, library.create(CLSID_CAudioVisualization4Type1, view.GetAddressOf()));
  expectADrawnBlock(view);
  EXPECT_EQ(S_FALSE, library.canUnloadNow());
  view.Reset();
  EXPECT_EQ(S_OK, library.canUnloadNow());
  EXPECT_TRUE(library.unload());
  EXPECT_EQ(nullptr, GetModuleHandleW(L"QELAudioVisualization4.dll"));
}

TEST(HostHeaders, ShowABlockInAViewCreatedThroughItsManifest) {
  const avhost::Apartment apartment;
  avhost::ActivationContext manifest;
  ASSERT_EQ(S_OK, manifest.openFile(besideProgram(L"QELAudioVisualization4.manifest").c_str()));
  ComPtr<IAudioVisualization4Type1> view;
  ASSERT_EQ(S_OK, manifest.create(CLSID_CAudioVisualization4Type1, view.GetAddressOf()));
  expectADrawnBlock(view);
}

TEST(HostHeaders, HostTheOtherControlsToo) {
  const avhost::Apartment apartment;
  avhost::ControlLibrary library;
  ASSERT_EQ(S_OK, library.loadBesideProgram(L"QELAudioVisualization4.dll"));
  for (const CLSID& classId : {CLSID_CAudioVisualization4Type2, CLSID_CAudioVisualization4Type3}) {
    ComPtr<IAudioVisualizationTemplate> control;
    ASSERT_EQ(S_OK, library.create(classId, control.GetAddressOf()));
    avhost::Container container;
    ASSERT_EQ(S_OK, container.open({.clientSizePx = {200, 120}}));
    EXPECT_EQ(S_OK, container.host(control.Get()));
    EXPECT_NE(nullptr, container.controlWindow());
    EXPECT_EQ(0u, container.close());
  }
}

}  // namespace
