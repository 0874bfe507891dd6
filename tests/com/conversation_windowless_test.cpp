// What a control without a window of its own says to a container that offers to do without, from the documentation of
// IOleInPlaceSiteWindowless, IOleInPlaceSiteEx and IOleInPlaceObjectWindowless. The container gives the windowless
// control what a window would have: its rectangle, the focus, repaints.

#include "host/control_classes.h"
#include "host/talk_test.h"

namespace av::test {
namespace {

const Conversation silence;

/// Both questions before the notice, which has to be OnInPlaceActivateEx and carry ACTIVATE_WINDOWLESS. The rectangle
/// comes with the window context; there is no window to make, hence none to ask a parent for.
const Conversation entering{
    inAnyOrder({"IOleInPlaceSite::CanInPlaceActivate()", "IOleInPlaceSiteWindowless::CanWindowlessActivate()"}),
    "IOleInPlaceSiteEx::OnInPlaceActivateEx(1)", "IOleInPlaceSite::GetWindowContext()"};

const Conversation showing{"IOleClientSite::ShowObject()"};

/// Where a windowed control calls SetFocus, this one asks its site to; the container then sends it WM_SETFOCUS.
const Conversation enteringUserInterface{
    "IOleInPlaceSiteEx::RequestUIActivate()", "IOleInPlaceSite::OnUIActivate()",
    interleaved({{"frame IOleInPlaceFrame::SetActiveObject(object)", "frame IOleInPlaceFrame::SetBorderSpace(null)"},
                 {"document IOleInPlaceUIWindow::SetActiveObject(object)",
                  "document IOleInPlaceUIWindow::SetBorderSpace(null)"},
                 {"IOleInPlaceSiteWindowless::SetFocus(1)", "IOleControlSite::OnFocus(1)"}})};

const Conversation leavingUserInterface{
    inAnyOrder({"frame IOleInPlaceFrame::SetActiveObject(null)", "document IOleInPlaceUIWindow::SetActiveObject(null)",
                "IOleInPlaceSite::OnUIDeactivate(0)", "IOleControlSite::OnFocus(0)"})};

const Conversation leaving{"IOleInPlaceSiteEx::OnInPlaceDeactivateEx()"};
const Conversation closing{"IAdviseSink::OnClose()"};

class WindowlessTalk : public TalkTest, public testing::WithParamInterface<ControlClassName> {
 protected:
  bool isView() const { return GetParam().classId == CLSID_CAudioVisualization4Type1; }

  RecordingContainer m_container{{.site = RecordingContainer::Site::windowless}};
};

TEST_P(WindowlessTalk, AWholeLife) {
  RecordingContainer& container = m_container;
  CallLog& log = container.log;
  ASSERT_NO_FATAL_FAILURE(give(container, GetParam().classId));
  ASSERT_NO_FATAL_FAILURE(load(container));
  ASSERT_EQ(S_OK, container.site());
  ASSERT_EQ(S_OK, container.advise());
  EXPECT_TRUE(agree(silence, log.take()));
  {
    SCOPED_TRACE("show");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
    EXPECT_TRUE(agree(entering + showing, log.take()));
    EXPECT_EQ(nullptr, container.controlWindow());
  }
  {
    SCOPED_TRACE("in-place activate, being active");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_TRUE(agree(showing, log.take()));
  }
  {
    SCOPED_TRACE("UI activate");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
    EXPECT_TRUE(agree(enteringUserInterface + showing, log.take()));
  }
  {
    // The container knows the rectangle that it gives, and repaints. The view alone has a smallest size, 80 x 50.
    SCOPED_TRACE("resize to 60 x 40");
    ASSERT_EQ(S_OK, container.resize({60, 40}));
    EXPECT_TRUE(agree(isView() ? Conversation{"IOleInPlaceSite::OnPosRectChange(10,20,90,70)"} : silence, log.take()));
    EXPECT_EQ(isView() ? 90 : 70, container.controlRect().right);
    EXPECT_EQ(isView() ? 70 : 60, container.controlRect().bottom);
  }
  {
    SCOPED_TRACE("hide");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_HIDE));
    EXPECT_TRUE(agree(leavingUserInterface, log.take()));
  }
  {
    SCOPED_TRACE("close");
    ASSERT_EQ(S_OK, container.close(OLECLOSE_NOSAVE));
    EXPECT_TRUE(agree(leaving + closing, log.take()));
  }
  {
    SCOPED_TRACE("unsite and release");
    ASSERT_EQ(S_OK, container.unadvise());
    ASSERT_EQ(S_OK, container.unsite());
    EXPECT_EQ(0, container.references());
    EXPECT_EQ(0u, container.releaseControl());
    EXPECT_TRUE(agree(silence, log.take()));
  }
  EXPECT_TRUE(isLeftAlone(container));
}

TEST_P(WindowlessTalk, CloseFromTheUiActiveStateLeavesEachStateInTurn) {
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, GetParam().classId));
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_TRUE(agree(entering + enteringUserInterface + showing, m_container.log.take()));
  ASSERT_EQ(S_OK, m_container.close());
  EXPECT_TRUE(agree(leavingUserInterface + leaving + closing, m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

/// A site that has the interface but says no gets a window, with the calls of a site that has IOleInPlaceSiteEx.
TEST_P(WindowlessTalk, ASiteThatSaysNoGetsAWindow) {
  m_container.log.answer("IOleInPlaceSiteWindowless::CanWindowlessActivate", S_FALSE);
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, GetParam().classId));
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));
  EXPECT_TRUE(agree(Conversation{inAnyOrder({"IOleInPlaceSite::CanInPlaceActivate()",
                                             "IOleInPlaceSiteWindowless::CanWindowlessActivate()"}),
                                 "IOleInPlaceSiteEx::OnInPlaceActivateEx(0)",
                                 inAnyOrder({"IOleInPlaceSite::GetWindow()", "IOleInPlaceSite::GetWindowContext()"})} +
                        showing,
                    m_container.log.take()));
  EXPECT_TRUE(m_container.controlWindow());
  ASSERT_EQ(S_OK, m_container.close());
  EXPECT_TRUE(agree(leaving + closing, m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

// The level meter is not among them: it always has a window.
INSTANTIATE_TEST_SUITE_P(Windowless, WindowlessTalk, testing::Values(allControlClasses[0], allControlClasses[2]),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

class LevelMeterTalk : public TalkTest {};

TEST_F(LevelMeterTalk, TakesAWindowAlsoWhereItCouldDoWithoutAndNeverAsks) {
  RecordingContainer container({.site = RecordingContainer::Site::windowless});
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, CLSID_CAudioVisualization4Type2));
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
  EXPECT_TRUE(agree(Conversation{"IOleInPlaceSite::CanInPlaceActivate()", "IOleInPlaceSiteEx::OnInPlaceActivateEx(0)",
                                 inAnyOrder({"IOleInPlaceSite::GetWindow()", "IOleInPlaceSite::GetWindowContext()"})} +
                        showing,
                    container.log.take()));
  EXPECT_TRUE(container.controlWindow());
  ASSERT_EQ(S_OK, container.close());
  EXPECT_TRUE(agree(leaving + closing, container.log.take()));
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_TRUE(isLeftAlone(container));
}

}  // namespace
}  // namespace av::test
