// What the controls say to a container in the course of an embedding, written down from the documentation of OLE's
// interfaces: IOleObject::DoVerb and Close, IOleInPlaceSite, IOleInPlaceSiteEx, IOleInPlaceUIWindow, IOleClientSite and
// IAdviseSink. Anything else is a failure, and so is silence. Where the documentation leaves an order open, so does the
// list.

#include "host/control_classes.h"
#include "host/talk_test.h"

#include <olectl.h>

#include <tuple>

namespace av::test {
namespace {

using Site = RecordingContainer::Site;

const Conversation silence;

// --- the lists ---------------------------------------------------------------------------------------------------------

/// Entering the in-place active state: permission first, then the notice, and only then what the window needs.
Conversation entering(Site site) {
  const char* notice =
      site == Site::extended ? "IOleInPlaceSiteEx::OnInPlaceActivateEx(0)" : "IOleInPlaceSite::OnInPlaceActivate()";
  return {"IOleInPlaceSite::CanInPlaceActivate()", notice,
          inAnyOrder({"IOleInPlaceSite::GetWindow()", "IOleInPlaceSite::GetWindowContext()"})};
}

/// The end of each verb that shows the control: the container is asked to bring it into view.
const Conversation showing{"IOleClientSite::ShowObject()"};

/// Entering the UI active state: announced just before the user interface comes. Frame and document each get the
/// active object, and each is told that the control needs no room for tools.
Conversation enteringUserInterface(Site site, bool document, bool controlSite) {
  Conversation said;
  if (site == Site::extended) said.push_back("IOleInPlaceSiteEx::RequestUIActivate()");
  said.push_back("IOleInPlaceSite::OnUIActivate()");
  std::vector<Calls> open{
      {"frame IOleInPlaceFrame::SetActiveObject(object)", "frame IOleInPlaceFrame::SetBorderSpace(null)"}};
  if (document)
    open.push_back({"document IOleInPlaceUIWindow::SetActiveObject(object)",
                    "document IOleInPlaceUIWindow::SetBorderSpace(null)"});
  if (controlSite) open.push_back({"IOleControlSite::OnFocus(1)"});
  said.push_back(interleaved(std::move(open)));
  return said;
}

/// Leaving the UI active state: frame and document lose the active object, the site is told, and the focus goes.
Conversation leavingUserInterface(bool document, bool controlSite) {
  std::vector<Calls> open{{"frame IOleInPlaceFrame::SetActiveObject(null)"}, {"IOleInPlaceSite::OnUIDeactivate(0)"}};
  if (document) open.push_back({"document IOleInPlaceUIWindow::SetActiveObject(null)"});
  if (controlSite) open.push_back({"IOleControlSite::OnFocus(0)"});
  return {interleaved(std::move(open))};
}

Conversation leaving(Site site) {
  return {site == Site::extended ? "IOleInPlaceSiteEx::OnInPlaceDeactivateEx()"
                                 : "IOleInPlaceSite::OnInPlaceDeactivate()"};
}

/// A control that is closed says so to its advise sinks last.
const Conversation closing{"IAdviseSink::OnClose()"};

// --- the tests ---------------------------------------------------------------------------------------------------------

using Parameter = std::tuple<ControlClassName, Site>;

class TalkOf : public TalkTest, public testing::WithParamInterface<Parameter> {
 protected:
  Site site() const { return std::get<Site>(GetParam()); }
  const CLSID& classId() const { return std::get<ControlClassName>(GetParam()).classId; }
  bool isView() const { return classId() == CLSID_CAudioVisualization4Type1; }

  RecordingContainer m_container{{.site = site()}};
};

TEST_P(TalkOf, AWholeLife) {
  RecordingContainer& container = m_container;
  CallLog& log = container.log;
  {
    SCOPED_TRACE("create");
    ASSERT_NO_FATAL_FAILURE(give(container, classId()));
    EXPECT_TRUE(agree(silence, log.take()));
  }
  {
    SCOPED_TRACE("load");
    ASSERT_NO_FATAL_FAILURE(load(container));
    EXPECT_TRUE(agree(silence, log.take()));
  }
  {
    SCOPED_TRACE("site");
    ASSERT_EQ(S_OK, container.site());
    ASSERT_EQ(S_OK, container.advise());
    EXPECT_TRUE(agree(silence, log.take()));
  }
  {
    SCOPED_TRACE("show");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
    EXPECT_TRUE(agree(entering(site()) + showing, log.take()));
  }
  {
    SCOPED_TRACE("in-place activate, being active");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_TRUE(agree(showing, log.take()));
  }
  {
    SCOPED_TRACE("UI activate");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
    EXPECT_TRUE(agree(enteringUserInterface(site(), true, true) + showing, log.take()));
  }
  {
    SCOPED_TRACE("UI activate again");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
    EXPECT_TRUE(agree(showing, log.take()));
  }
  {
    // The container knows the rectangle that it gives. The view alone has a smallest size, 80 x 50, and asks for it.
    SCOPED_TRACE("resize to 60 x 40");
    ASSERT_EQ(S_OK, container.resize({60, 40}));
    EXPECT_TRUE(agree(isView() ? Conversation{"IOleInPlaceSite::OnPosRectChange(10,20,90,70)"} : silence, log.take()));
    RECT client{};
    GetClientRect(container.controlWindow(), &client);
    EXPECT_EQ(isView() ? 80 : 60, client.right);
    EXPECT_EQ(isView() ? 50 : 40, client.bottom);
  }
  {
    SCOPED_TRACE("hide");
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_HIDE));
    EXPECT_TRUE(agree(leavingUserInterface(true, true), log.take()));
  }
  {
    SCOPED_TRACE("close");
    ASSERT_EQ(S_OK, container.close(OLECLOSE_NOSAVE));
    EXPECT_TRUE(agree(leaving(site()) + closing, log.take()));
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

TEST_P(TalkOf, UiActivationFromTheStart) {
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, classId()));
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_TRUE(agree(entering(site()) + enteringUserInterface(site(), true, true) + showing, m_container.log.take()));
  ASSERT_EQ(S_OK, m_container.inPlaceDeactivate());
  EXPECT_TRUE(agree(leavingUserInterface(true, true) + leaving(site()), m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

TEST_P(TalkOf, InPlaceActivationFromTheStart) {
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, classId()));
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_INPLACEACTIVATE));
  EXPECT_TRUE(agree(entering(site()) + showing, m_container.log.take()));
  EXPECT_EQ(S_OK, m_container.uiDeactivate());  // nothing to do
  EXPECT_TRUE(agree(silence, m_container.log.take()));
  EXPECT_EQ(S_OK, m_container.inPlaceDeactivate());
  EXPECT_TRUE(agree(leaving(site()), m_container.log.take()));
  EXPECT_EQ(S_OK, m_container.inPlaceDeactivate());  // nothing to do either
  EXPECT_TRUE(agree(silence, m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

TEST_P(TalkOf, CloseFromTheUiActiveStateLeavesEachStateInTurn) {
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, classId()));
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_UIACTIVATE));
  m_container.log.take();
  ASSERT_EQ(S_OK, m_container.close());
  EXPECT_TRUE(agree(leavingUserInterface(true, true) + leaving(site()) + closing, m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

TEST_P(TalkOf, ADirtyControlAsksToBeSavedWhenItIsClosed) {
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, classId()));
  ASSERT_NO_FATAL_FAILURE(initNew(m_container));
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));
  m_container.log.take();
  ASSERT_EQ(S_OK, m_container.close(OLECLOSE_SAVEIFDIRTY));
  // Whether a control asks to be saved before or after it leaves its site is its own affair.
  const char* left = site() == Site::extended ? "IOleInPlaceSiteEx::OnInPlaceDeactivateEx()"
                                              : "IOleInPlaceSite::OnInPlaceDeactivate()";
  EXPECT_TRUE(
      agree(Conversation{interleaved({{left}, {"IOleClientSite::SaveObject()", "IAdviseSink::OnSave()"}})} + closing,
            m_container.log.take()));
  EXPECT_EQ(S_OK, m_container.close(OLECLOSE_SAVEIFDIRTY));  // saved: nothing to ask for any more
  EXPECT_TRUE(agree(closing, m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

TEST_P(TalkOf, ADirtyControlIsNotSavedAgainstTheContainersWill) {
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, classId()));
  ASSERT_NO_FATAL_FAILURE(initNew(m_container));
  m_container.log.take();
  ASSERT_EQ(S_OK, m_container.close(OLECLOSE_NOSAVE));
  EXPECT_TRUE(agree(closing, m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

/// The pictures come from the control's own properties; what the container would like is not even asked.
TEST_P(TalkOf, AmbientPropertiesMayChangeAndFail) {
  m_container.log.answer("IDispatch::Invoke", E_FAIL);
  m_container.log.answer("IDispatch::GetIDsOfNames", E_FAIL);
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, classId()));
  const auto change = [&] {
    ComPtr<IOleControl> control;
    ASSERT_EQ(S_OK, m_container.control()->QueryInterface(IID_PPV_ARGS(&control)));
    for (const DISPID ambient :
         {DISPID_UNKNOWN, DISPID_AMBIENT_BACKCOLOR, DISPID_AMBIENT_FORECOLOR, DISPID_AMBIENT_FONT,
          DISPID_AMBIENT_LOCALEID, DISPID_AMBIENT_USERMODE, DISPID_AMBIENT_UIDEAD, DISPID_AMBIENT_RIGHTTOLEFT, 4711})
      EXPECT_EQ(S_OK, control->OnAmbientPropertyChange(ambient));
  };
  ASSERT_NO_FATAL_FAILURE(change());
  EXPECT_TRUE(agree(silence, m_container.log.take()));
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_TRUE(agree(entering(site()) + enteringUserInterface(site(), true, true) + showing, m_container.log.take()));
  ASSERT_NO_FATAL_FAILURE(change());
  EXPECT_TRUE(agree(silence, m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

TEST_P(TalkOf, AnInactiveControlTellsItsViewSinkOfANewExtent) {
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, classId()));
  SIZEL extent{1000, 2000};
  ASSERT_EQ(S_OK, m_container.control()->SetExtent(DVASPECT_CONTENT, &extent));
  EXPECT_TRUE(agree({"IAdviseSink::OnViewChange(1,-1)"}, m_container.log.take()));
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_container));
}

std::string siteName(Site site) {
  switch (site) {
    case Site::plain: return "Windowed";
    case Site::extended: return "WithSiteEx";
    case Site::windowless: return "Windowless";
    default: return "None";
  }
}

std::string parameterName(const testing::TestParamInfo<Parameter>& parameter) {
  return std::string(std::get<ControlClassName>(parameter.param).name) + siteName(std::get<Site>(parameter.param));
}

INSTANTIATE_TEST_SUITE_P(Plain, TalkOf,
                         testing::Combine(testing::ValuesIn(allControlClasses), testing::Values(Site::plain)),
                         parameterName);
INSTANTIATE_TEST_SUITE_P(SiteEx, TalkOf,
                         testing::Combine(testing::ValuesIn(allControlClasses), testing::Values(Site::extended)),
                         parameterName);

class BareTalk : public TalkTest, public testing::WithParamInterface<ControlClassName> {};

TEST_P(BareTalk, AContainerWithoutExtrasIsNotAskedForThem) {
  RecordingContainer container(
      {.ambients = false, .controlSite = false, .documentWindow = false, .oleContainer = false});
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, GetParam().classId));
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_TRUE(
      agree(entering(Site::plain) + enteringUserInterface(Site::plain, false, false) + showing, container.log.take()));
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_HIDE));
  EXPECT_TRUE(agree(leavingUserInterface(false, false), container.log.take()));
  ASSERT_EQ(S_OK, container.close());
  EXPECT_TRUE(agree(leaving(Site::plain) + closing, container.log.take()));
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_TRUE(isLeftAlone(container));
}

TEST_P(BareTalk, WithoutAnInPlaceSiteNothingIsSaid) {
  RecordingContainer container({.site = Site::none});
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, GetParam().classId));
  EXPECT_TRUE(FAILED(container.doVerb(OLEIVERB_INPLACEACTIVATE)));
  EXPECT_TRUE(FAILED(container.doVerb(OLEIVERB_UIACTIVATE)));
  EXPECT_TRUE(agree(silence, container.log.take()));
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_TRUE(isLeftAlone(container));
}

TEST_P(BareTalk, ADeniedUserInterfaceLeavesTheControlInPlaceActive) {
  RecordingContainer container({.site = Site::extended});
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, GetParam().classId));
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_INPLACEACTIVATE));
  container.log.take();
  container.log.answer("IOleInPlaceSiteEx::RequestUIActivate", S_FALSE);
  container.doVerb(OLEIVERB_UIACTIVATE);
  // Refused controls say OnUIDeactivate, by which the container puts the focus right again.
  Calls said = container.log.take();
  if (!said.empty() && said.back() == "IOleClientSite::ShowObject()") said.pop_back();  // either is allowed
  EXPECT_TRUE(agree({"IOleInPlaceSiteEx::RequestUIActivate()", "IOleInPlaceSite::OnUIDeactivate(0)"}, said));
  EXPECT_TRUE(container.controlWindow());
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_TRUE(isLeftAlone(container));
}

INSTANTIATE_TEST_SUITE_P(, BareTalk, testing::ValuesIn(allControlClasses),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace av::test
