// The view's mouse events by real input: the system decides who hears of the pointer and what is a double click.
// With a window of the view's own, and in a container that passes its own window's messages on.

#include "host/pointer.h"
#include "host/talk_test.h"
#include "host/view_mouse.h"

#include <string>
#include <utility>
#include <vector>

namespace av::test {
namespace {

using Site = RecordingContainer::Site;

class ViewUnderThePointer : public TalkTest, public testing::WithParamInterface<Site> {
 protected:
  void SetUp() override {
    TalkTest::SetUp();
    Pointer::park();
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, CLSID_CAudioVisualization4Type1));
    ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));
    ASSERT_EQ(S_OK, m_container.resize({300, 200}));
    ASSERT_NE(0u, connect(m_container.control(), m_sink));
    UpdateWindow(m_container.window());
    m_reads = readings();
    avhost::pumpMessages(50);
    ASSERT_TRUE(m_sink.events.empty()) << "the pointer is not over the view yet";
  }

  void TearDown() override {
    Pointer::park();
    EXPECT_EQ(0u, m_container.releaseControl());
    EXPECT_TRUE(isLeftAlone(m_container));
    EXPECT_EQ(1u, m_sink.references);
    TalkTest::TearDown();
  }

  PointerOracle readings() const {
    ComPtr<IAudioVisualization4Type1> view;
    EXPECT_EQ(S_OK, m_container.control()->QueryInterface(IID_PPV_ARGS(&view)));
    return oracleOf(view.Get(), m_container.window(), m_container.controlRect());
  }

  /// Positions of the view, as it counts them.
  void moveTo(int x, int y) {
    Pointer::moveTo(m_container.window(), m_container.controlRect().left + x, m_container.controlRect().top + y);
  }

  std::vector<EventSink::Event> take() { return std::exchange(m_sink.events, {}); }

  ViewSink m_sink;
  RecordingContainer m_container{{.site = GetParam()}};
  PointerOracle m_reads;
};

TEST_P(ViewUnderThePointer, HearsOfMovesAPressAndARelease) {
  moveTo(50, 60);
  moveTo(51, 61);
  ASSERT_EQ((std::vector<DISPID>{mouseMove, mouseMove}), idsOf(m_sink.events));
  EXPECT_TRUE(reads(m_reads, mouseMove, 50, 60, m_sink.events[0]));
  EXPECT_TRUE(reads(m_reads, mouseMove, 51, 61, take()[1]));
  Pointer::press();
  ASSERT_EQ((std::vector<DISPID>{mouseDown}), idsOf(m_sink.events));
  EXPECT_TRUE(reads(m_reads, mouseDown, 51, 61, take()[0]));
  Pointer::release();
  ASSERT_EQ((std::vector<DISPID>{mouseUp, mouseClick}), idsOf(m_sink.events));
  EXPECT_TRUE(reads(m_reads, mouseUp, 51, 61, m_sink.events[0]));
  EXPECT_EQ((EventSink::Event{mouseClick, {51, 61}}), take()[1]);
}

TEST_P(ViewUnderThePointer, HearsOfADoubleClickInItsOrder) {
  moveTo(80, 90);
  take();
  Pointer::click();
  Pointer::click();
  EXPECT_EQ((std::vector<DISPID>{mouseDown, mouseUp, mouseClick, mouseDblClick, mouseUp, mouseClick}),
            idsOf(m_sink.events));
}

TEST_P(ViewUnderThePointer, TwoSlowClicksAreNoDoubleClick) {
  moveTo(80, 20);
  take();
  Pointer::click();
  avhost::pumpMessages(GetDoubleClickTime() + 100);
  Pointer::click();
  EXPECT_EQ((std::vector<DISPID>{mouseDown, mouseUp, mouseClick, mouseDown, mouseUp, mouseClick}),
            idsOf(m_sink.events));
}

TEST_P(ViewUnderThePointer, OverTheScalesItHearsOfButtonsOnly) {
  const int right = m_reads.plotWidthPx(), bottom = m_reads.plotHeightPx();
  moveTo(right - 1, bottom - 1);
  EXPECT_EQ((std::vector<DISPID>{mouseMove}), idsOf(take()));
  for (const POINT at : {POINT{right, 40}, {40, bottom}, {299, 199}}) {
    moveTo(at.x, at.y);
    EXPECT_TRUE(take().empty()) << at.x << ", " << at.y;
    Pointer::press();
    ASSERT_EQ((std::vector<DISPID>{mouseDown}), idsOf(m_sink.events));
    EXPECT_TRUE(reads(m_reads, mouseDown, at.x, at.y, take()[0]));
    Pointer::release();
    EXPECT_EQ((std::vector<DISPID>{mouseUp, mouseClick}), idsOf(take()));
  }
}

TEST_P(ViewUnderThePointer, APressOutsideAndAReleaseInsideIsAClick) {
  moveTo(-5, 60);
  Pointer::press();
  EXPECT_TRUE(take().empty());
  moveTo(30, 60);
  EXPECT_EQ((std::vector<DISPID>{mouseMove}), idsOf(take()));
  Pointer::release();
  EXPECT_EQ((std::vector<DISPID>{mouseUp, mouseClick}), idsOf(take()));
}

TEST_P(ViewUnderThePointer, APressInsideAndAReleaseOutsideIsNoneForTheMouseIsNotCaptured) {
  moveTo(30, 60);
  Pointer::press();
  take();
  EXPECT_EQ(nullptr, GetCapture());
  moveTo(-5, 60);
  Pointer::release();
  EXPECT_TRUE(take().empty());
}

std::string siteName(const testing::TestParamInfo<Site>& info) {
  return info.param == Site::plain ? "InItsWindow" : "Windowless";
}

INSTANTIATE_TEST_SUITE_P(, ViewUnderThePointer, testing::Values(Site::plain, Site::windowless), siteName);

class ViewWithAWindowUnderThePointer : public ViewUnderThePointer {};

TEST_P(ViewWithAWindowUnderThePointer, FollowsItToTheLeftAndUpWhereItsHostCapturesTheMouse) {
  moveTo(30, 60);
  take();
  SetCapture(m_container.controlWindow());
  moveTo(-5, -3);
  ASSERT_EQ((std::vector<DISPID>{mouseMove}), idsOf(m_sink.events));
  EXPECT_TRUE(reads(m_reads, mouseMove, -5, -3, take()[0]));
  moveTo(305, 60);
  EXPECT_TRUE(take().empty());
  ReleaseCapture();
}

TEST_P(ViewWithAWindowUnderThePointer, TakesTheFocusWithAPress) {
  SetFocus(m_container.window());
  moveTo(30, 60);
  Pointer::press();
  EXPECT_EQ(m_container.controlWindow(), GetFocus());
  EXPECT_EQ(1, m_container.log.count("IOleInPlaceSite::OnUIActivate"));
  Pointer::release();
}

INSTANTIATE_TEST_SUITE_P(, ViewWithAWindowUnderThePointer, testing::Values(Site::plain), siteName);

}  // namespace
}  // namespace av::test
