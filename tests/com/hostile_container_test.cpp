// Containers that fail, and containers that do what they must not do in the middle of a call: close, release, unsite,
// deactivate, resize or reactivate the control, or take the window away under it. The control survives with everything
// let go on both sides, and serves the next container.

#include "host/control_classes.h"
#include "host/talk_test.h"

#include <functional>
#include <tuple>
#include <vector>

namespace av::test {
namespace {

using Site = RecordingContainer::Site;

/// The methods that a control calls in the course of live(), below.
std::vector<std::string> methodsOf(Site site, bool isView) {
  std::vector<std::string> methods{"IAdviseSink::OnViewChange",
                                   "IOleInPlaceSite::CanInPlaceActivate",
                                   "IOleInPlaceSite::GetWindow",
                                   "IOleInPlaceSite::GetWindowContext",
                                   "IOleClientSite::ShowObject",
                                   "IOleInPlaceSite::OnUIActivate",
                                   "IOleControlSite::OnFocus",
                                   "frame IOleInPlaceFrame::SetActiveObject",
                                   "frame IOleInPlaceFrame::SetBorderSpace",
                                   "document IOleInPlaceUIWindow::SetActiveObject",
                                   "document IOleInPlaceUIWindow::SetBorderSpace",
                                   "IOleInPlaceSite::OnUIDeactivate",
                                   "IOleClientSite::SaveObject",
                                   "IAdviseSink::OnSave",
                                   "IAdviseSink::OnClose"};
  if (site == Site::plain) {
    methods.insert(methods.end(), {"IOleInPlaceSite::OnInPlaceActivate", "IOleInPlaceSite::OnInPlaceDeactivate"});
  } else {
    methods.insert(methods.end(), {"IOleInPlaceSiteEx::OnInPlaceActivateEx", "IOleInPlaceSiteEx::OnInPlaceDeactivateEx",
                                   "IOleInPlaceSiteEx::RequestUIActivate"});
  }
  if (site == Site::windowless) {
    methods.insert(methods.end(),
                   {"IOleInPlaceSiteWindowless::CanWindowlessActivate", "IOleInPlaceSiteWindowless::SetFocus"});
    std::erase(methods, "IOleInPlaceSite::GetWindow");
  }
  if (isView) methods.push_back("IOleInPlaceSite::OnPosRectChange");
  return methods;
}

int childrenOf(HWND parent) {
  int count = 0;
  for (HWND child = parent ? GetWindow(parent, GW_CHILD) : nullptr; child; child = GetWindow(child, GW_HWNDNEXT))
    ++count;
  return count;
}

using Parameter = std::tuple<ControlClassName, Site>;

class HostileTo : public TalkTest, public testing::WithParamInterface<Parameter> {
 protected:
  using Deed = std::function<void(RecordingContainer&)>;

  Site site() const { return std::get<Site>(GetParam()); }
  const CLSID& classId() const { return std::get<ControlClassName>(GetParam()).classId; }
  bool isView() const { return classId() == CLSID_CAudioVisualization4Type1; }
  std::vector<std::string> methods() const { return methodsOf(site(), isView()); }

  /// A control's whole life; each step only while there still is a control. Results are nobody's business here.
  static void live(RecordingContainer& container) {
    const std::function<void()> steps[] = {
        [&] { container.site(); },
        [&] { container.advise(); },
        [&] { initNew(container); },  // dirty, so that it asks to be saved
        [&] {
          SIZEL extent{4000 + container.log.count("IAdviseSink::OnViewChange"), 3000};
          container.control()->SetExtent(DVASPECT_CONTENT, &extent);
        },
        [&] { container.doVerb(OLEIVERB_SHOW); },
        [&] { container.doVerb(OLEIVERB_UIACTIVATE); },
        [&] {
          container.resize({60, 40});
        },
        [&] { container.uiDeactivate(); },
        [&] { container.doVerb(OLEIVERB_UIACTIVATE); },
        [&] { container.doVerb(OLEIVERB_HIDE); },
        [&] { container.doVerb(OLEIVERB_SHOW); },
        [&] { container.inPlaceDeactivate(); },
        [&] { container.doVerb(OLEIVERB_UIACTIVATE); },
        [&] { container.close(OLECLOSE_SAVEIFDIRTY); },
    };
    for (const auto& step : steps) {
      if (container.control()) step();
      ASSERT_GE(1, childrenOf(container.window())) << "the control made a second window";
    }
  }

  /// What a container owes its control at the end, whatever went before.
  static void farewell(RecordingContainer& container) {
    if (container.control()) container.unadvise();
    if (container.control()) container.close();
    if (container.control()) container.unsite();
    EXPECT_EQ(0u, container.releaseControl());
    EXPECT_TRUE(isLeftAlone(container));
  }

  void expectOrdinaryLife() {
    RecordingContainer container({.site = site()});
    ASSERT_NO_FATAL_FAILURE(giveAndSite(container, classId()));
    EXPECT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
    EXPECT_EQ(1, container.log.count("IOleInPlaceSite::OnUIActivate"));
    EXPECT_EQ(S_OK, container.close());
    farewell(container);
  }

  /// `deed` inside each method in turn, with a new control and a new container each time.
  void doInEachMethod(const Deed& deed) {
    for (const std::string& method : methods()) doInside(method, {200, 100}, deed);
    // A view that is born too small asks for room while its window is being made.
    if (isView()) doInside("IOleInPlaceSite::OnPosRectChange", {60, 40}, deed);
    reload();
  }

  void doInside(const std::string& method, SIZE controlSize, const Deed& deed) {
    SCOPED_TRACE(method + " at a width of " + std::to_string(controlSize.cx));
    RecordingContainer container({.site = site(), .controlSize = controlSize});
    ASSERT_NO_FATAL_FAILURE(give(container, classId()));
    container.log.inside(method, [&] { deed(container); });
    live(container);
    EXPECT_FALSE(container.log.isWaitingFor(method)) << "never called: nothing was tested";
    farewell(container);
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
  }

  /// Unloads the DLL, loads it again and lives on.
  void reload() {
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
    ASSERT_TRUE(m_library.unload());
    EXPECT_EQ(nullptr, GetModuleHandleW(dllName));
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(dllName));
    expectOrdinaryLife();
  }
};

TEST_P(HostileTo, EachMethodFailsInTurn) {
  for (const std::string& method : methods()) {
    SCOPED_TRACE(method);
    RecordingContainer container({.site = site()});
    ASSERT_NO_FATAL_FAILURE(give(container, classId()));
    container.log.answer(method, E_FAIL);
    live(container);
    EXPECT_LT(0, container.log.count(method)) << "never called: nothing was tested";
    // The same control, sited again, where nothing fails any more.
    container.log.answerAsUsual();
    ASSERT_TRUE(container.control());
    EXPECT_EQ(S_OK, container.unsite());
    EXPECT_EQ(S_OK, container.site());
    EXPECT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
    EXPECT_TRUE(container.frame().activeObject());
    farewell(container);
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
  }
  reload();
}

TEST_P(HostileTo, ClosesTheControlInEachMethod) {
  doInEachMethod([](RecordingContainer& container) { container.close(); });
}

TEST_P(HostileTo, ReleasesTheControlInEachMethod) {
  doInEachMethod([](RecordingContainer& container) { container.releaseControl(); });
}

TEST_P(HostileTo, ClosesUnsitesAndReleasesInEachMethod) {
  doInEachMethod([](RecordingContainer& container) {
    container.close();
    container.unsite();
    container.releaseControl();
  });
}

TEST_P(HostileTo, UnsitesTheControlInEachMethod) {
  doInEachMethod([](RecordingContainer& container) { container.unsite(); });
}

TEST_P(HostileTo, DeactivatesTheControlInEachMethod) {
  doInEachMethod([](RecordingContainer& container) { container.inPlaceDeactivate(); });
}

TEST_P(HostileTo, ResizesTheControlInEachMethod) {
  doInEachMethod([](RecordingContainer& container) { container.resize({33, 22}); });
}

TEST_P(HostileTo, ActivatesTheControlInEachMethod) {
  doInEachMethod([](RecordingContainer& container) { container.doVerb(OLEIVERB_UIACTIVATE); });
}

TEST_P(HostileTo, ClosesAndActivatesTheControlInEachMethod) {
  doInEachMethod([](RecordingContainer& container) {
    container.close();
    container.doVerb(OLEIVERB_UIACTIVATE);
  });
}

TEST_P(HostileTo, DestroysItsWindowInEachMethod) {
  doInEachMethod([](RecordingContainer& container) { container.destroyWindow(); });
}

std::string siteName(Site site) {
  switch (site) {
    case Site::plain: return "Windowed";
    case Site::extended: return "WithSiteEx";
    default: return "Windowless";
  }
}

std::string parameterName(const testing::TestParamInfo<Parameter>& parameter) {
  return std::string(std::get<ControlClassName>(parameter.param).name) + siteName(std::get<Site>(parameter.param));
}

INSTANTIATE_TEST_SUITE_P(Plain, HostileTo,
                         testing::Combine(testing::ValuesIn(allControlClasses), testing::Values(Site::plain)),
                         parameterName);
INSTANTIATE_TEST_SUITE_P(SiteEx, HostileTo,
                         testing::Combine(testing::ValuesIn(allControlClasses), testing::Values(Site::extended)),
                         parameterName);
INSTANTIATE_TEST_SUITE_P(Windowless, HostileTo,
                         testing::Combine(testing::Values(allControlClasses[0], allControlClasses[2]),
                                          testing::Values(Site::windowless)),
                         parameterName);

}  // namespace
}  // namespace av::test
