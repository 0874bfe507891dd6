// What a paint of the meter costs besides its pixels: one copy to the window, no memory, and nothing that stays behind.

#include "host/meter_test.h"
#include "support/win/waste_probes.h"

#include <ostream>
#include <string>
#include <vector>

namespace av::test {
namespace {

struct Look {
  const char* name;
  LONG lineType;
  LONG alignmentX;
};

constexpr Look looks[] = {{"Bars", 0, 0},          {"GradientBars", 1, 0},
                          {"Dots", 2, 0},          {"Graph", 4, 0},
                          {"SmoothGraph", 5, 0},   {"NoMode", 7, 0},
                          {"MirroredBars", 1, 1},  {"MirroredDots", 3, 1},
                          {"MirroredGraph", 4, 1}, {"MirroredSmoothGraph", 5, 1}};

void PrintTo(const Look& look, std::ostream* out) { *out << look.name; }

/// The meter in a window, fed with noise that changes from block to block. No message is dispatched but paints while
/// something is counted, so that the timer's ticks do not come in between.
class MeterWaste : public MeterTest, public testing::WithParamInterface<Look> {
 protected:
  void SetUp() override {
    MeterTest::SetUp();
    ASSERT_EQ(S_OK, m_meter->put_LineType(GetParam().lineType));
    ASSERT_EQ(S_OK, m_meter->put_AlignmentX(GetParam().alignmentX));
    ASSERT_EQ(S_OK, m_meter->put_BorderType(2));
  }

  void play() { ASSERT_EQ(S_OK, sendNoise(m_meter.Get(), 1024, 1000 + 997 * (m_block++ % 30))); }
  void paint() {
    InvalidateRect(window(), nullptr, FALSE);
    UpdateWindow(window());
  }
  /// Two paints for every block: one by the meter itself, one that the system asks for.
  void paintTimes(int count) {
    for (int i = 0; i < count; i += 2) {
      play();
      ASSERT_EQ(S_OK, m_meter->_OnTimer());
      paint();
    }
  }
  void resizeTimes(int count) {
    for (int i = 0; i < count; ++i) {
      ASSERT_EQ(S_OK, m_container.resize({150 + i % 50, 100 + i % 37}));
      UpdateWindow(window());
      if (i % 4 == 0) play();
    }
  }

  int m_block = 0;
};

TEST_P(MeterWaste, APaintIsOneCopyToTheWindow) {
  activate({320, 200});
  paintTimes(4);
  const ImportProbe probe(m_library.module(), {"BitBlt", "StretchBlt", "SetDIBitsToDevice", "StretchDIBits", "FillRect",
                                               "PatBlt", "AlphaBlend", "TransparentBlt", "GdipCreateFromHDC"});
  play();
  EXPECT_EQ(0, probe.calls()) << "a block is drawn by the timer";
  ASSERT_EQ(S_OK, m_meter->_OnTimer());
  EXPECT_EQ(1, probe.calls());
  paint();
  EXPECT_EQ(2, probe.calls());
  EXPECT_EQ(2, probe.calls("BitBlt"));
}

TEST_P(MeterWaste, PaintingAllocatesNothing) {
  activate({320, 200});
  paintTimes(6);
  const ImportProbe probe(m_library.module(), allocators);
  paintTimes(60);
  EXPECT_EQ(0, probe.calls());
  // The same probe sees what a larger number of lines has to have.
  ASSERT_EQ(S_OK, m_meter->put_LineCount(150));
  EXPECT_LT(0, probe.calls());
}

TEST_P(MeterWaste, AThousandPaintsAndTwoHundredResizesLeaveNothingBehind) {
  activate({180, 130});
  play();
  awaitTheTimersFirstCall();
  resizeTimes(40);  // what the system keeps for itself is there by now
  paintTimes(20);
  ASSERT_EQ(S_OK, m_container.resize({180, 130}));
  paintTimes(4);
  std::vector<std::string> makers = namesIn(gdiplusPairs);
  makers.insert(makers.end(), {"CreateDIBSection", "CreateCompatibleDC", "CreateCompatibleBitmap", "CreateBitmap",
                               "CreatePen", "CreateSolidBrush", "CreateFontIndirectW", "CreateRectRgn"});
  const ImportProbe probe(m_library.module(), makers);
  const Holdings before = Holdings::now();
  paintTimes(1000);
  EXPECT_EQ(before, Holdings::now());
  EXPECT_EQ(0, probe.calls());
  resizeTimes(200);
  ASSERT_EQ(S_OK, m_container.resize({180, 130}));
  paintTimes(4);
  EXPECT_EQ(before, Holdings::now());
  EXPECT_LE(200, probe.calls("GdipCreateBitmapFromScan0"));
  EXPECT_EQ(std::vector<long>(gdiplusPairs.size(), 0), liveObjects(probe));
}

INSTANTIATE_TEST_SUITE_P(, MeterWaste, testing::ValuesIn(looks),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

class MeterObjects : public MeterTest {};

TEST_F(MeterObjects, AMeterEndsWhatItMakesOfGdiplus) {
  for (const bool hosted : {false, true}) {
    const ImportProbe probe(m_library.module(), namesIn(gdiplusPairs));
    ComPtr<IAudioVisualization4Type2> meter = createMeter();
    EXPECT_EQ(1, liveObjects(probe).front());  // GDI+ itself
    avhost::Container container;
    if (hosted) {
      ASSERT_EQ(S_OK, container.open({.clientSizePx = {200, 150}}));
      ASSERT_EQ(S_OK, container.host(meter.Get()));
      ASSERT_EQ(S_OK, sendNoise(meter.Get()));
      ASSERT_EQ(S_OK, meter->put_BorderType(1));
      for (const LONG type : {0, 4, 5}) ASSERT_EQ(S_OK, meter->put_LineType(type));
      EXPECT_LT(0, probe.calls("GdipCreatePen1"));
      EXPECT_EQ(0u, container.close());
    }
    meter.Reset();
    EXPECT_EQ(std::vector<long>(gdiplusPairs.size(), 0), liveObjects(probe)) << hosted;
  }
}

}  // namespace
}  // namespace av::test
