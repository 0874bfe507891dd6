// What a paint costs besides its pixels: one copy to the window, no memory, and nothing that stays behind.

#include "host/audio_buffers.h"
#include "host/view_test.h"
#include "support/win/holdings.h"
#include "support/win/import_probe.h"
#include "support/win/waste_probes.h"

#include <objidl.h>
#include <propidl.h>

#include <gdiplus.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace av::test {
namespace {

// Functions of their own: a compiler may read an import's address once for a whole function, before the probe comes.

[[gnu::noinline]] void once() { DeleteDC(CreateCompatibleDC(nullptr)); }

[[gnu::noinline]] std::unique_ptr<std::vector<int>> plantedAllocation() {
  SysFreeString(SysAllocString(L"planted"));
  return std::make_unique<std::vector<int>>(100);
}

[[gnu::noinline]] Gdiplus::GpBitmap* plantedBitmap() {
  Gdiplus::GpBitmap* bitmap = nullptr;
  Gdiplus::DllExports::GdipCreateBitmapFromScan0(4, 4, 0, PixelFormat32bppPARGB, nullptr, &bitmap);
  return bitmap;
}

[[gnu::noinline]] void dispose(Gdiplus::GpBitmap* bitmap) { Gdiplus::DllExports::GdipDisposeImage(bitmap); }

TEST(ImportProbes, CountTheCallsOfOneModuleAndPutTheImportsBack) {
  const HMODULE program = GetModuleHandleW(nullptr);
  once();
  {
    const ImportProbe probe(program, {"CreateCompatibleDC", "DeleteDC", "NoSuchImport"});
    EXPECT_EQ(0, probe.calls());
    once();
    once();
    EXPECT_EQ(2, probe.calls("CreateCompatibleDC"));
    EXPECT_EQ(2, probe.calls("DeleteDC"));
    EXPECT_EQ(0, probe.calls("NoSuchImport"));
    EXPECT_EQ(4, probe.calls());
    {
      const ImportProbe second(program, {"DeleteDC"});
      once();
      EXPECT_EQ(1, second.calls("DeleteDC"));
    }
    EXPECT_EQ(3, probe.calls("DeleteDC"));
  }
  once();
}

TEST(ImportProbes, SeeAPlantedAllocation) {
  const ImportProbe probe(GetModuleHandleW(nullptr), allocators);
  const auto planted = plantedAllocation();
  EXPECT_EQ(1, probe.calls("SysAllocString"));
  EXPECT_LE(2, probe.calls("malloc"));
}

TEST(ImportProbes, SeeAPlantedGdiplusObject) {
  ULONG_PTR token = 0;
  const Gdiplus::GdiplusStartupInput input;
  ASSERT_EQ(Gdiplus::Ok, Gdiplus::GdiplusStartup(&token, &input, nullptr));
  {
    const ImportProbe probe(GetModuleHandleW(nullptr), namesIn(gdiplusPairs));
    Gdiplus::GpBitmap* const bitmap = plantedBitmap();
    ASSERT_NE(nullptr, bitmap);
    EXPECT_EQ((std::vector<long>{0, 1, 0, 0, 0, 0, 0, 0}), liveObjects(probe));
    dispose(bitmap);
    EXPECT_EQ(std::vector<long>(gdiplusPairs.size(), 0), liveObjects(probe));
  }
  Gdiplus::GdiplusShutdown(token);
}

struct Look {
  const char* name;
  LONG type;
  LONG axis;
};

constexpr Look looks[] = {{"Waveform", 1, 1},          {"Spectrum", 2, 1},          {"Octaves", 2, 2},
                          {"BarsOfType3", 3, 1},       {"OctaveBarsOfType3", 3, 2}, {"BarsOfType4", 4, 1},
                          {"OctaveBarsOfType4", 4, 2}, {"BarsOfType5", 5, 1},       {"OctaveBarsOfType5", 5, 2},
                          {"XyCurve", 6, 1},           {"BalanceLines", 7, 1},      {"NoView", 8, 1}};

void PrintTo(const Look& look, std::ostream* out) { *out << look.name; }

/// The view in a window, fed with a sound that changes from block to block. No message is dispatched but paints while something
/// is counted, so that the timer's ticks do not come in between.
class ViewWaste : public ViewTest, public testing::WithParamInterface<Look> {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    ASSERT_EQ(S_OK, m_view->put_FFTWindowSize(256));
    ASSERT_EQ(S_OK, m_view->put_FFTViewType(GetParam().axis));
    ASSERT_EQ(S_OK, m_view->put_VisualizationType(GetParam().type));
    ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_FALSE));
    m_random.seed(static_cast<unsigned>(GetParam().type));
  }

  /// A new block of soft noise over a tone; without smoothing it is drawn at once.
  void play() {
    for (std::size_t i = 0; i < m_samples.size(); ++i)
      m_samples[i] = static_cast<std::int16_t>((i / 16 % 2 == 0 ? 3000 : -3000) + static_cast<int>(m_random() % 999));
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
    ASSERT_EQ(S_OK, m_view->SendAudioData(avhost::audioFrames(format, m_samples.data(),
                                                              static_cast<LONG>(m_samples.size() * sizeof m_samples[0]))
                                              .get()));
  }

  void paint() {
    InvalidateRect(m_container.controlWindow(), nullptr, FALSE);
    UpdateWindow(m_container.controlWindow());
  }

  /// A paint with every block, every other one asked for by the system.
  void paintTimes(int count) {
    for (int i = 0; i < count; i += 2) {
      play();
      paint();
    }
  }

  void resizeTimes(int count) {
    for (int i = 0; i < count; ++i) {
      ASSERT_EQ(S_OK, m_container.resize({150 + i % 50, 100 + i % 37}));
      UpdateWindow(m_container.controlWindow());
      if (i % 4 == 0) play();
    }
  }

  void expectNothingLeft(int paints, int resizes) {
    activate({180, 130});
    awaitTheTimersFirstCall();
    resizeTimes(40);  // what the system keeps for itself is there by now
    paintTimes(20);
    ASSERT_EQ(S_OK, m_container.resize({180, 130}));
    paintTimes(4);
    const ImportProbe probe(m_library.module(), namesIn(gdiplusPairs));
    const Holdings before = Holdings::now();
    paintTimes(paints);
    EXPECT_EQ(before, Holdings::now()) << "after " << paints << " paints";
    EXPECT_EQ(0, probe.calls());
    resizeTimes(resizes);
    ASSERT_EQ(S_OK, m_container.resize({180, 130}));
    paintTimes(4);
    EXPECT_EQ(before, Holdings::now()) << "after " << resizes << " resizes";
    EXPECT_LE(resizes, probe.calls("GdipCreateBitmapFromScan0"));
    EXPECT_EQ(std::vector<long>(gdiplusPairs.size(), 0), liveObjects(probe));
  }

  std::vector<std::int16_t> m_samples = std::vector<std::int16_t>(512);
  std::mt19937 m_random;
};

TEST_P(ViewWaste, APaintIsOneCopyToTheWindow) {
  activate({320, 200});
  paintTimes(4);
  const ImportProbe probe(m_library.module(), {"BitBlt", "StretchBlt", "SetDIBitsToDevice", "StretchDIBits", "FillRect",
                                               "PatBlt", "AlphaBlend", "TransparentBlt", "GdipCreateFromHDC"});
  play();
  EXPECT_EQ(1, probe.calls());
  paint();
  EXPECT_EQ(2, probe.calls());
  EXPECT_EQ(2, probe.calls("BitBlt"));
}

TEST_P(ViewWaste, PaintingAllocatesNothing) {
  activate({320, 200});
  paintTimes(6);
  const ImportProbe probe(m_library.module(), allocators);
  paint();
  paintTimes(60);
  EXPECT_EQ(0, probe.calls());
  // The same probe sees what a change of size has to have.
  ASSERT_EQ(S_OK, m_container.resize({321, 201}));
  play();
  EXPECT_LT(0, probe.calls());
}

TEST_P(ViewWaste, AThousandPaintsAndTwoHundredResizesLeaveNothingBehind) { expectNothingLeft(1000, 200); }

INSTANTIATE_TEST_SUITE_P(, ViewWaste, testing::ValuesIn(looks),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

class FullViewWaste : public ViewWaste {};

TEST_P(FullViewWaste, TenThousandPaintsAndAThousandResizesLeaveNothingBehind) { expectNothingLeft(10000, 1000); }

INSTANTIATE_TEST_SUITE_P(, FullViewWaste, testing::ValuesIn(looks),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

class ViewObjects : public DllTest {};

TEST_F(ViewObjects, EverythingOfGdiplusThatTheDllMakesIsCounted) {
  const std::vector<std::string> watched = namesIn(gdiplusPairs);
  int makers = 0;
  for (const std::string& name : importedFunctions(m_library.module())) {
    const bool makes = name.rfind("GdipCreate", 0) == 0 || name.rfind("GdipClone", 0) == 0 ||
                       name == "GdiplusStartup" || name == "GdipGetImageGraphicsContext" ||
                       name.rfind("GdipGetGeneric", 0) == 0 || name.rfind("GdipLoadImage", 0) == 0;
    if (!makes) continue;
    ++makers;
    EXPECT_NE(watched.end(), std::ranges::find(watched, name)) << name;
  }
  EXPECT_GT(makers, 8);
}

TEST_F(ViewObjects, AViewEndsWhatItMakesOfGdiplus) {
  for (const bool hosted : {false, true}) {
    const ImportProbe probe(m_library.module(), namesIn(gdiplusPairs));
    ComPtr<IAudioVisualization4Type1> view = createView();
    // The gradients, and GDI+ itself.
    EXPECT_EQ(3, probe.calls("GdipCreateBitmapFromResource"));
    EXPECT_EQ(1, liveObjects(probe).front());
    avhost::Container container;
    if (hosted) {
      ASSERT_EQ(S_OK, container.open({.clientSizePx = {200, 150}}));
      ASSERT_EQ(S_OK, container.host(view.Get()));
      for (const LONG type : {1, 2, 3, 6, 7}) ASSERT_EQ(S_OK, view->put_VisualizationType(type));
      EXPECT_LT(0, probe.calls("GdipCreatePen1"));
      EXPECT_EQ(0u, container.close());
    }
    view.Reset();
    EXPECT_EQ(std::vector<long>(gdiplusPairs.size(), 0), liveObjects(probe)) << hosted;
  }
}

}  // namespace
}  // namespace av::test
