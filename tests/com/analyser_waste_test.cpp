// What a paint of the spectrum analyser costs besides its pixels: one copy to the window, no memory, and nothing that stays
// behind.

#include "host/analyser_test.h"
#include "support/win/waste_probes.h"

#include <ostream>
#include <string>
#include <vector>

namespace av::test {
namespace {

struct Look {
  const char* name;
  LONG viewType;
  LONG alignmentY;
  LONG xScaleType;
};

constexpr Look looks[] = {{"Columns", 0, 0, 0},         {"Gradients", 1, 0, 1},         {"Spots", 2, 0, 0},
                          {"MirroredColumns", 0, 1, 0}, {"MirroredGradients", 1, 1, 1}, {"MirroredSpots", 3, 1, 0}};

void PrintTo(const Look& look, std::ostream* out) { *out << look.name; }

/// The analyser in a window, fed with noise that changes from block to block. No message is dispatched but paints while
/// something is counted, so that the timer's ticks do not come in between.
class AnalyserWaste : public AnalyserTest, public testing::WithParamInterface<Look> {
 protected:
  void SetUp() override {
    AnalyserTest::SetUp();
    ASSERT_EQ(S_OK, m_analyser->put_ViewType(GetParam().viewType));
    ASSERT_EQ(S_OK, m_analyser->put_AlignmentY(GetParam().alignmentY));
    ASSERT_EQ(S_OK, m_analyser->put_XScaleType(GetParam().xScaleType));
    ASSERT_EQ(S_OK, m_analyser->put_BorderType(2));
  }

  void play() { ASSERT_EQ(S_OK, send(noiseBlock(512, 1000 + 997 * (m_block++ % 30)))); }
  void paint() {
    InvalidateRect(window(), nullptr, FALSE);
    UpdateWindow(window());
  }
  /// Two paints for every block: one by the block itself, one that the system asks for.
  void paintTimes(int count) {
    for (int i = 0; i < count; i += 2) {
      play();
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

TEST_P(AnalyserWaste, APaintIsOneCopyToTheWindow) {
  activate({320, 200});
  paintTimes(4);
  const ImportProbe probe(m_library.module(), {"BitBlt", "StretchBlt", "SetDIBitsToDevice", "StretchDIBits", "FillRect",
                                               "PatBlt", "Polyline", "DrawTextW", "CreatePen", "CreateSolidBrush"});
  play();
  EXPECT_EQ(1, probe.calls());
  paint();
  EXPECT_EQ(2, probe.calls());
  EXPECT_EQ(2, probe.calls("BitBlt"));
}

TEST_P(AnalyserWaste, PaintingAllocatesNothing) {
  activate({320, 200});
  paintTimes(6);
  const ImportProbe probe(m_library.module(), allocators);
  paintTimes(60);
  ASSERT_EQ(S_OK, m_analyser->_OnTimer());
  EXPECT_EQ(0, probe.calls());
  // The same probe sees what a larger number of columns has to have.
  ASSERT_EQ(S_OK, m_analyser->put_LineCount(150));
  EXPECT_LT(0, probe.calls());
}

TEST_P(AnalyserWaste, AThousandPaintsAndTwoHundredResizesLeaveNothingBehind) {
  activate({180, 130});
  play();
  awaitTheTimersFirstCall();
  resizeTimes(40);  // what the system keeps for itself is there by now
  paintTimes(20);
  ASSERT_EQ(S_OK, m_container.resize({180, 130}));
  paintTimes(4);
  const ImportProbe probe(m_library.module(),
                          {"CreateDIBSection", "CreateCompatibleDC", "DeleteDC", "CreatePen", "CreateSolidBrush",
                           "CreateFontIndirectW", "DeleteObject", "GdiplusStartup"});
  const Holdings before = Holdings::now();
  paintTimes(1000);
  EXPECT_EQ(before, Holdings::now());
  EXPECT_EQ(0, probe.calls());
  resizeTimes(200);
  ASSERT_EQ(S_OK, m_container.resize({180, 130}));
  paintTimes(4);
  EXPECT_EQ(before, Holdings::now());
  EXPECT_LE(200, probe.calls("CreateDIBSection"));
  EXPECT_EQ(probe.calls("CreateCompatibleDC"), probe.calls("DeleteDC"));
  EXPECT_EQ(probe.calls("CreateDIBSection") + probe.calls("CreatePen") + probe.calls("CreateFontIndirectW"),
            probe.calls("DeleteObject"));
  EXPECT_EQ(0, probe.calls("GdiplusStartup"));
}

INSTANTIATE_TEST_SUITE_P(, AnalyserWaste, testing::ValuesIn(looks),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

class AnalyserObjects : public AnalyserTest {};

TEST_F(AnalyserObjects, AnAnalyserEndsWhatItMakesOfGdi) {
  for (const bool hosted : {false, true}) {
    const ImportProbe probe(m_library.module(), {"CreateDIBSection", "CreateCompatibleDC", "DeleteDC", "CreatePen",
                                                 "CreateFontIndirectW", "DeleteObject"});
    auto analyser = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
    avhost::Container container;
    if (hosted) {
      ASSERT_EQ(S_OK, container.open({.clientSizePx = {200, 150}}));
      ASSERT_EQ(S_OK, container.host(analyser.Get()));
      ASSERT_EQ(S_OK, sendSamples(analyser.Get(), noiseBlock()));
      ASSERT_EQ(S_OK, analyser->put_BorderType(1));
      EXPECT_LT(0, probe.calls("CreatePen"));
      EXPECT_EQ(0u, container.close());
    }
    analyser.Reset();
    EXPECT_EQ(probe.calls("CreateCompatibleDC"), probe.calls("DeleteDC")) << hosted;
    EXPECT_EQ(probe.calls("CreateDIBSection") + probe.calls("CreatePen") + probe.calls("CreateFontIndirectW"),
              probe.calls("DeleteObject"))
        << hosted;
  }
}

}  // namespace
}  // namespace av::test
