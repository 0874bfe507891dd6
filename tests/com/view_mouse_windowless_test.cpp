// A view without a window gets its messages from the container, which counts positions in its own window.

#include "host/talk_test.h"
#include "host/view_mouse.h"

namespace av::test {
namespace {

class WindowlessMouse : public TalkTest {
 protected:
  void SetUp() override {
    TalkTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, CLSID_CAudioVisualization4Type1));
    ASSERT_EQ(S_OK, m_container.control()->QueryInterface(IID_PPV_ARGS(&m_object)));
    ASSERT_EQ(S_OK, m_object.As(&m_view));
    ASSERT_NE(0u, connect(m_view.Get(), m_sink));
  }

  void TearDown() override {
    m_object.Reset();
    m_view.Reset();
    EXPECT_EQ(0u, m_container.releaseControl());
    EXPECT_TRUE(isLeftAlone(m_container));
    EXPECT_EQ(1u, m_sink.references);
    TalkTest::TearDown();
  }

  void showAt(const RECT& place) {
    ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));
    ASSERT_EQ(S_OK, m_object->SetObjectRects(&place, &place));
  }

  /// A message at (x, y) of the container's window.
  HRESULT pass(UINT message, int x, int y) {
    m_result = 77;
    return m_object->OnWindowMessage(message, 0, MAKELPARAM(x, y), &m_result);
  }

  std::vector<EventSink::Event> take() { return std::exchange(m_sink.events, {}); }

  ViewSink m_sink;
  RecordingContainer m_container{{.site = RecordingContainer::Site::windowless}};
  ComPtr<IOleInPlaceObjectWindowless> m_object;
  ComPtr<IAudioVisualization4Type1> m_view;
  LRESULT m_result = 0;
};

TEST_F(WindowlessMouse, PositionsCountFromTheViewsCorner) {
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));
  ASSERT_EQ(S_OK, m_container.resize({300, 200}));
  const POINT corner{m_container.controlRect().left, m_container.controlRect().top};
  const PointerOracle view = oracleOf(m_view.Get(), m_container.window(), m_container.controlRect());
  ASSERT_EQ(300, view.clientWidthPx);
  ASSERT_LT(0, view.yScaleWidthPx);
  for (const POINT at : {POINT{0, 0}, {17, 23}, {view.plotWidthPx(), 50}, {50, view.plotHeightPx()}, {-4, -5}}) {
    take();
    EXPECT_EQ(S_OK, pass(WM_LBUTTONDOWN, corner.x + at.x, corner.y + at.y));
    EXPECT_EQ(0, m_result);
    EXPECT_EQ(S_OK, pass(WM_LBUTTONUP, corner.x + at.x, corner.y + at.y));
    EXPECT_EQ(0, m_result);
    EXPECT_EQ(S_OK, pass(WM_LBUTTONDBLCLK, corner.x + at.x, corner.y + at.y));
    EXPECT_EQ(0, m_result);
    ASSERT_EQ((std::vector<DISPID>{mouseDown, mouseUp, mouseClick, mouseDblClick}), idsOf(m_sink.events));
    EXPECT_TRUE(reads(view, mouseDown, at.x, at.y, m_sink.events[0]));
    EXPECT_TRUE(reads(view, mouseUp, at.x, at.y, m_sink.events[1]));
    EXPECT_EQ((EventSink::Event{mouseClick, {at.x, at.y}}), m_sink.events[2]);
    EXPECT_EQ((EventSink::Event{mouseDblClick, {}}), m_sink.events[3]);
    take();
    EXPECT_EQ(S_OK, pass(WM_MOUSEMOVE, corner.x + at.x, corner.y + at.y)) << "over the scales too it is handled";
    EXPECT_EQ(0, m_result);
    const bool moves = at.x < view.plotWidthPx() && at.y < view.plotHeightPx();
    ASSERT_EQ(moves ? 1u : 0u, m_sink.events.size());
    if (moves) {
      EXPECT_TRUE(reads(view, mouseMove, at.x, at.y, m_sink.events[0]));
    }
  }
}

TEST_F(WindowlessMouse, TheyFollowTheViewWhenItIsMoved) {
  ASSERT_NO_FATAL_FAILURE(showAt({10, 20, 310, 220}));
  EXPECT_EQ(S_OK, pass(WM_LBUTTONUP, 50, 60));
  EXPECT_EQ((EventSink::Event{mouseClick, {40, 40}}), take()[1]);
  ASSERT_NO_FATAL_FAILURE(showAt({-100, -200, 200, 0}));
  EXPECT_EQ(S_OK, pass(WM_LBUTTONUP, 50, -60));
  EXPECT_EQ((EventSink::Event{mouseClick, {150, 140}}), take()[1]);
}

TEST_F(WindowlessMouse, PositionsBeyondSixteenBitsEndAtTheirLimits) {
  ASSERT_NO_FATAL_FAILURE(showAt({40000, -50000, 40300, -49800}));
  EXPECT_EQ(S_OK, pass(WM_LBUTTONUP, 100, 100));
  EXPECT_EQ((EventSink::Event{mouseClick, {-32768, 32767}}), take()[1]);
}

TEST_F(WindowlessMouse, OtherMessagesAreLeftToTheContainer) {
  ASSERT_NO_FATAL_FAILURE(showAt({10, 20, 310, 220}));
  for (const UINT message :
       {WM_RBUTTONDOWN, WM_RBUTTONUP, WM_RBUTTONDBLCLK, WM_MBUTTONDOWN, WM_MBUTTONUP, WM_XBUTTONUP, WM_MOUSEWHEEL,
        WM_MOUSEHWHEEL, WM_MOUSELEAVE, WM_SETCURSOR, WM_KEYDOWN, WM_CHAR, WM_HELP, WM_CONTEXTMENU, WM_CAPTURECHANGED}) {
    EXPECT_EQ(S_FALSE, pass(message, 50, 60)) << message;
    EXPECT_EQ(0, m_result) << message;
  }
  EXPECT_TRUE(m_sink.events.empty());
}

TEST_F(WindowlessMouse, AnInactiveViewHandlesNothing) {
  for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK})
    EXPECT_EQ(S_FALSE, pass(message, 50, 60));
  ASSERT_NO_FATAL_FAILURE(showAt({10, 20, 310, 220}));
  ASSERT_EQ(S_OK, m_container.inPlaceDeactivate());
  for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK})
    EXPECT_EQ(S_FALSE, pass(message, 50, 60));
  EXPECT_TRUE(m_sink.events.empty());
  EXPECT_EQ(0, m_container.log.count("IOleInPlaceSite::OnUIActivate"));
}

/// With a window, the press would not arrive either: the window is gone before it.
TEST_F(WindowlessMouse, APressWhoseActivationClosesTheViewIsNoPress) {
  ASSERT_NO_FATAL_FAILURE(showAt({10, 20, 310, 220}));
  m_container.log.inside("IOleInPlaceSite::OnUIActivate", [this] { m_container.close(); });
  EXPECT_EQ(S_FALSE, pass(WM_LBUTTONDOWN, 50, 60));
  EXPECT_TRUE(m_sink.events.empty());
}

TEST_F(WindowlessMouse, ATinyViewReadsItsOwnSizeWithTheStripsOfTheLastLayout) {
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));
  ASSERT_EQ(S_OK, m_container.resize({300, 200}));
  PointerOracle view = oracleOf(m_view.Get(), m_container.window(), m_container.controlRect());
  m_container.log.answer("IOleInPlaceSite::OnPosRectChange", E_FAIL);  // it may not grow
  ASSERT_NO_FATAL_FAILURE(showAt({10, 20, 11, 21}));
  view.clientWidthPx = view.clientHeightPx = 1;
  take();
  EXPECT_EQ(S_OK, pass(WM_LBUTTONDOWN, 15, 23));
  EXPECT_EQ(S_OK, pass(WM_MOUSEMOVE, 15, 23));
  ASSERT_EQ((std::vector<DISPID>{mouseDown, mouseMove}), idsOf(m_sink.events));
  EXPECT_TRUE(reads(view, mouseDown, 5, 3, m_sink.events[0]));
  EXPECT_TRUE(reads(view, mouseMove, 5, 3, m_sink.events[1]));
}

TEST_F(WindowlessMouse, BeforeAnyLayoutMovesAreNotReportedAndPressesAre) {
  ViewSink sink;
  RecordingContainer container({.site = RecordingContainer::Site::windowless, .controlSize = {1, 1}});
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, CLSID_CAudioVisualization4Type1));
  container.log.answer("IOleInPlaceSite::OnPosRectChange", E_FAIL);
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
  ASSERT_NE(0u, connect(container.control(), sink));
  m_object.Reset();
  ASSERT_EQ(S_OK, container.control()->QueryInterface(IID_PPV_ARGS(&m_object)));
  const POINT corner{container.controlRect().left, container.controlRect().top};
  EXPECT_EQ(S_OK, pass(WM_MOUSEMOVE, corner.x, corner.y));
  EXPECT_EQ(S_OK, pass(WM_LBUTTONDOWN, corner.x + 5, corner.y + 3));
  m_object.Reset();
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_EQ(1u, sink.references);
  EXPECT_TRUE(isLeftAlone(container));
  ASSERT_EQ((std::vector<DISPID>{mouseDown}), idsOf(sink.events));
  EXPECT_TRUE(reads({.clientWidthPx = 1, .clientHeightPx = 1}, mouseDown, 5, 3, sink.events[0]));
}

}  // namespace
}  // namespace av::test
