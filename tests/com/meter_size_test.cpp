// The level meter with AutoSize: it takes the size that whole lines and segments fill and tells its container, however
// that answers.

#include "host/meter_test.h"
#include "host/recording_container.h"
#include "host/talk_test.h"

#include <functional>

namespace av::test {
namespace {

constexpr char posRectChange[] = "IOleInPlaceSite::OnPosRectChange";

/// 10 lines of some width with 2 pixels between them, segments of 4 with 1 between: of a width, what is left over of
/// (width - 2 - 18) / 10 lines goes; of a height, what is left over of (height - 2 + 1) / 5 segments.
void makeLinesOfTen(IAudioVisualization4Type2* meter) {
  ASSERT_EQ(S_OK, meter->put_LineCount(10));
  ASSERT_EQ(S_OK, meter->put_LineInterval(2));
  ASSERT_EQ(S_OK, meter->put_SpotHeight(4));
  ASSERT_EQ(S_OK, meter->put_SpotInterval(1));
}

class MeterAutoSize : public MeterTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(MeterTest::SetUp());
    ASSERT_NO_FATAL_FAILURE(makeLinesOfTen(m_meter.Get()));
  }

  SIZE size() const {
    RECT client{};
    GetClientRect(window(), &client);
    return {client.right, client.bottom};
  }
  void expectSize(LONG width, LONG height) {
    EXPECT_EQ(width, size().cx);
    EXPECT_EQ(height, size().cy);
    // The container knows it, and so does everybody who asks for the extent.
    EXPECT_EQ(width, m_container.site()->controlRect().right);
    EXPECT_EQ(height, m_container.site()->controlRect().bottom);
    ComPtr<IOleObject> object;
    ASSERT_EQ(S_OK, m_meter.As(&object));
    SIZEL extent{};
    ASSERT_EQ(S_OK, object->GetExtent(DVASPECT_CONTENT, &extent));
    const SIZE dpi = avhost::screenDpi();
    EXPECT_EQ(avhost::himetricFromPixels(width, dpi.cx), extent.cx);
    EXPECT_EQ(avhost::himetricFromPixels(height, dpi.cy), extent.cy);
  }
};

TEST_F(MeterAutoSize, OffTakesAnySize) {
  ASSERT_NO_FATAL_FAILURE(activate({207, 103}));
  expectSize(207, 103);
}

TEST_F(MeterAutoSize, OnBeforeTheActivationSnapsTheFirstSize) {
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  ASSERT_NO_FATAL_FAILURE(activate({207, 103}));
  expectSize(200, 101);  // 18 pixels a line; 20 segments
}

TEST_F(MeterAutoSize, PutWhileActiveSnapsAtOnce) {
  ASSERT_NO_FATAL_FAILURE(activate({207, 103}));
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  expectSize(200, 101);
}

TEST_F(MeterAutoSize, EveryResizeOfTheWindowSnaps) {
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  ASSERT_NO_FATAL_FAILURE(activate({207, 103}));
  ASSERT_EQ(S_OK, m_container.resize({255, 140}));
  expectSize(250, 136);
  ASSERT_EQ(S_OK, m_container.resize({250, 136}));
  expectSize(250, 136);
  ASSERT_TRUE(SetWindowPos(window(), nullptr, 0, 0, 219, 90, SWP_NOMOVE | SWP_NOZORDER));
  expectSize(210, 86);
}

TEST_F(MeterAutoSize, APutThatComputesTheLayoutSnapsToTheNewLines) {
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  ASSERT_NO_FATAL_FAILURE(activate({207, 103}));
  ASSERT_EQ(S_OK, m_meter->put_SpotHeight(9));
  expectSize(200, 101);  // 10 segments
  ASSERT_EQ(S_OK, m_meter->put_LineCount(20));
  expectSize(200, 101);  // 8 pixels a line
  ASSERT_EQ(S_OK, m_meter->put_LineInterval(3));
  expectSize(199, 101);  // 7
  ASSERT_EQ(S_OK, m_meter->put_BorderWidth(1));
  expectSize(181, 93);  // 6; 9 segments
}

TEST_F(MeterAutoSize, MirroredBarsHaveAnOddNumberOfSegments) {
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  ASSERT_EQ(S_OK, m_meter->put_AlignmentX(1));
  ASSERT_NO_FATAL_FAILURE(activate({207, 103}));
  expectSize(200, 96);  // 19 segments
}

TEST_F(MeterAutoSize, ASizeWithoutRoomForFiveSegmentsGrows) {
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  ASSERT_NO_FATAL_FAILURE(activate({20, 9}));
  expectSize(30, 26);
}

TEST_F(MeterAutoSize, GraphsTakeAnySize) {
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  ASSERT_EQ(S_OK, m_meter->put_LineType(4));
  ASSERT_NO_FATAL_FAILURE(activate({207, 103}));
  expectSize(207, 103);
  ASSERT_EQ(S_OK, m_meter->put_LineType(0));
  expectSize(200, 101);
}

TEST_F(MeterAutoSize, SizesThatNoWindowHasAreNotAskedFor) {
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  ASSERT_NO_FATAL_FAILURE(activate({200, 101}));
  for (const DISPID id : {8, 33, 34, 46}) {
    const LONG before = getLong(id);
    for (const LONG value : {2147483647L, 1000000L, -2147483647L - 1, -40000L}) {
      EXPECT_EQ(S_OK, invokePut(id, Value(VT_I4, value)));
      EXPECT_LE(size().cx, 32767);
      EXPECT_LE(size().cy, 32767);
    }
    EXPECT_EQ(S_OK, invokePut(id, Value(VT_I4, before)));
    ASSERT_EQ(S_OK, m_container.resize({207, 103}));
    ASSERT_EQ(S_OK, m_container.resize({200, 101}));
  }
}

TEST_F(MeterAutoSize, DrawsByTheSizeThatItHas) {
  const auto plain = createMeter();
  ASSERT_NO_FATAL_FAILURE(makeLinesOfTen(plain.Get()));
  avhost::Container container;
  ASSERT_EQ(S_OK, container.open({.title = L"plain", .clientSizePx = {200, 101}, .positionPx = {0, 0}}));
  ASSERT_EQ(S_OK, container.host(plain.Get()));
  ASSERT_NO_FATAL_FAILURE(activate({207, 103}));
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  for (IAudioVisualization4Type2* const meter : {m_meter.Get(), plain.Get()}) {
    ASSERT_EQ(S_OK, meter->put_TickVisible(VARIANT_FALSE));
    ASSERT_EQ(S_OK, sendNoise(meter));
    ASSERT_EQ(S_OK, meter->Repaint());
  }
  // At a whole number of lines and segments the row of bars fills the control either way.
  EXPECT_EQ(pictureOf(container.controlWindow()), picture());
  EXPECT_EQ(0u, container.close());
}

/// What a container answers when the meter asks for another size.
class MeterAutoSizeIn : public TalkTest {
 protected:
  void SetUp() override {
    TalkTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type2));
    ASSERT_NO_FATAL_FAILURE(makeLinesOfTen(meter()));
    ASSERT_EQ(S_OK, meter()->put_AutoSize(VARIANT_TRUE));
  }
  void TearDown() override {
    m_host.releaseControl();
    EXPECT_TRUE(isLeftAlone(m_host));
    TalkTest::TearDown();
  }

  /// Not counted: nobody but the container holds the control.
  IAudioVisualization4Type2* meter() const {
    IAudioVisualization4Type2* meter = nullptr;
    m_host.control()->QueryInterface(IID_PPV_ARGS(&meter));
    meter->Release();
    return meter;
  }
  SIZE size() const {
    RECT client{};
    GetClientRect(m_host.controlWindow(), &client);
    return {client.right, client.bottom};
  }
  static SIZEL extentOf(IAudioVisualization4Type2* meter) {
    ComPtr<IOleObject> object;
    SIZEL extent{};
    EXPECT_EQ(S_OK, meter->QueryInterface(IID_PPV_ARGS(&object)));
    EXPECT_EQ(S_OK, object->GetExtent(DVASPECT_CONTENT, &extent));
    return extent;
  }

  RecordingContainer m_host{{.controlSize = {207, 103}}};
};

TEST_F(MeterAutoSizeIn, AnOrdinaryContainerItAsksOnce) {
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(1, m_host.log.count(posRectChange));
  EXPECT_EQ(210, m_host.controlRect().right);
  EXPECT_EQ(121, m_host.controlRect().bottom);
  EXPECT_EQ(200, size().cx);
}

TEST_F(MeterAutoSizeIn, ASizeThatFitsBecomesTheExtentThoughNobodyIsAsked) {
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  ASSERT_EQ(S_OK, m_host.moveControl({10, 20, 10 + 250, 20 + 136}));  // the rectangle only, not the extent
  EXPECT_EQ(250, size().cx);
  EXPECT_EQ(136, size().cy);
  EXPECT_EQ(1, m_host.log.count(posRectChange)) << "for the first size, which did not fit";
  const SIZE dpi = avhost::screenDpi();
  const SIZEL extent = extentOf(meter());
  EXPECT_EQ(avhost::himetricFromPixels(250, dpi.cx), extent.cx);
  EXPECT_EQ(avhost::himetricFromPixels(136, dpi.cy), extent.cy);
}

TEST_F(MeterAutoSizeIn, AnExtentThatComesToTheSizeIsLeftAsTheContainerSaidIt) {
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  const SIZE dpi = avhost::screenDpi();
  SIZEL extent{avhost::himetricFromPixels(250, dpi.cx) + 3, avhost::himetricFromPixels(136, dpi.cy) - 3};
  ASSERT_EQ(S_OK, m_host.control()->SetExtent(DVASPECT_CONTENT, &extent));
  ASSERT_EQ(S_OK, m_host.moveControl({10, 20, 10 + 250, 20 + 136}));
  EXPECT_EQ(extent.cx, extentOf(meter()).cx);
  EXPECT_EQ(extent.cy, extentOf(meter()).cy);
}

TEST_F(MeterAutoSizeIn, AContainerThatRefusesItKeepsTheSizeThatItWasGiven) {
  m_host.log.answer(posRectChange, E_FAIL);
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(207, size().cx);
  EXPECT_EQ(103, size().cy);
  ASSERT_EQ(S_OK, sendNoise(meter()));
  EXPECT_EQ(S_OK, meter()->Repaint());
}

TEST_F(MeterAutoSizeIn, AContainerThatInsistsOnAnotherSizeIsNotAskedForEver) {
  int answers = 0;
  std::function<void()> insist = [&] {
    ++answers;
    m_host.log.inside(posRectChange, insist);
    m_host.resize({213 + answers, 99});
  };
  m_host.log.answer(posRectChange, E_FAIL);
  m_host.log.inside(posRectChange, insist);
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(1, answers);
  EXPECT_EQ(214, size().cx);
  EXPECT_EQ(S_OK, m_host.resize({233, 150}));
  EXPECT_EQ(2, answers);
  EXPECT_EQ(S_OK, meter()->put_SpotHeight(6));
  EXPECT_EQ(3, answers);
  m_host.log.inside(posRectChange, [] {});
}

TEST_F(MeterAutoSizeIn, AContainerThatGivesTheOldSizeBackIsNotAskedForEver) {
  int answers = 0;
  std::function<void()> giveBack = [&] {
    ++answers;
    m_host.log.inside(posRectChange, giveBack);
    m_host.resize({207, 103});
  };
  m_host.log.answer(posRectChange, E_FAIL);
  m_host.log.inside(posRectChange, giveBack);
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(1, answers);
  m_host.log.inside(posRectChange, [] {});
}

TEST_F(MeterAutoSizeIn, AContainerMayReleaseTheMeterWhenItIsAsked) {
  m_host.log.inside(posRectChange, [this] { m_host.releaseControl(); });
  m_host.doVerb(OLEIVERB_SHOW);
  EXPECT_FALSE(m_host.control());
}

TEST_F(MeterAutoSizeIn, AContainerMayReleaseTheMeterWhenAPutAsksIt) {
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  m_host.log.inside(posRectChange, [this] { m_host.releaseControl(); });
  EXPECT_EQ(S_OK, meter()->put_LineInterval(5));
  EXPECT_FALSE(m_host.control());
}

TEST_F(MeterAutoSizeIn, AContainerMayCloseDeactivateOrUnsiteTheMeterWhenItIsAsked) {
  const std::function<void()> deeds[] = {[this] { m_host.close(); }, [this] { m_host.inPlaceDeactivate(); },
                                         [this] { m_host.unsite(); }, [this] { m_host.destroyWindow(); }};
  for (const auto& deed : deeds) {
    ASSERT_EQ(S_OK, m_host.site());
    m_host.doVerb(OLEIVERB_SHOW);
    m_host.log.inside(posRectChange, deed);
    meter()->put_LineInterval(5);
    EXPECT_FALSE(m_host.log.isWaitingFor(posRectChange)) << "never called: nothing was tested";
    EXPECT_EQ(nullptr, m_host.controlWindow());
    EXPECT_EQ(S_OK, meter()->put_LineInterval(2));
  }
}

TEST_F(MeterAutoSizeIn, AnInactiveMeterAsksNobody) {
  EXPECT_EQ(S_OK, meter()->put_LineInterval(5));
  EXPECT_EQ(0, m_host.log.count(posRectChange));
}

}  // namespace
}  // namespace av::test
