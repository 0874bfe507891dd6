// Controls that come and go leave neither kernel handles nor GDI objects behind.

#include "host/control_classes.h"
#include "host/talk_test.h"
#include "host/view_mouse.h"
#include "host/view_sound.h"
#include "support/win/holdings.h"

#include <string>

namespace av::test {
namespace {

TEST(ResourceProbes, SeeAPlantedLeak) {
  // The first of its kind makes the system keep a few objects for itself.
  DeleteDC(CreateCompatibleDC(nullptr));
  const Holdings before = Holdings::now();
  EXPECT_LT(1000, before.spareGdiObjects);
  EXPECT_EQ(before, Holdings::now());

  const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  Holdings withEvent = before;
  ++withEvent.kernelHandles[L"Event"];
  EXPECT_EQ(withEvent, Holdings::now());
  CloseHandle(event);

  const HBRUSH brush = CreateSolidBrush(RGB(9, 9, 9));
  Holdings withBrush = before;
  --withBrush.spareGdiObjects;
  EXPECT_EQ(withBrush, Holdings::now());
  DeleteObject(brush);

  HDC context = CreateCompatibleDC(nullptr);
  EXPECT_GT(before.spareGdiObjects, spareGdiObjects());
  DeleteDC(context);
  EXPECT_EQ(before, Holdings::now());
}

class FullLeaks : public TalkTest, public testing::WithParamInterface<ControlClassName> {
 protected:
  /// Create, activate, hear a block, send events, be seen, hide, close.
  void live() {
    ViewSink sink;  // outlives the control, which holds it
    RecordingContainer container;
    ASSERT_NO_FATAL_FAILURE(giveAndSite(container, GetParam().classId));
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
    ComPtr<IAudioVisualizationTemplate> control;
    ASSERT_EQ(S_OK, container.control()->QueryInterface(IID_PPV_ARGS(&control)));
    ASSERT_EQ(S_OK, sendSquareWave(control.Get()));
    control.Reset();
    if (GetParam().classId == CLSID_CAudioVisualization4Type1) {
      ASSERT_NE(0u, connect(container.control(), sink));
      for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK})
        SendMessageW(container.controlWindow(), message, 0, MAKELPARAM(30, 40));
      ASSERT_LE(5u, sink.events.size());
    }
    UpdateWindow(container.controlWindow());
    avhost::pumpMessages(0);
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_HIDE));
    ASSERT_EQ(S_OK, container.close());
    ASSERT_EQ(S_OK, container.unsite());
    ASSERT_EQ(0u, container.releaseControl());
    ASSERT_TRUE(isLeftAlone(container));
    ASSERT_EQ(1u, sink.references);
  }
};

TEST_P(FullLeaks, AHundredLivesLeaveNothingBehind) {
  for (int i = 0; i < 5; ++i) ASSERT_NO_FATAL_FAILURE(live());  // what the system keeps for itself is there by now
  ASSERT_EQ(S_OK, m_library.canUnloadNow());
  const Holdings before = Holdings::now();
  for (int i = 0; i < 100; ++i) ASSERT_NO_FATAL_FAILURE(live());
  ASSERT_EQ(S_OK, m_library.canUnloadNow());
  EXPECT_EQ(before, Holdings::now());
}

TEST_P(FullLeaks, AHundredFailedActivationsLeaveNothingBehind) {
  const auto fail = [this] {
    RecordingContainer container;
    ASSERT_NO_FATAL_FAILURE(giveAndSite(container, GetParam().classId));
    container.log.answer("IOleInPlaceSite::GetWindowContext", E_FAIL);
    ASSERT_EQ(E_FAIL, container.doVerb(OLEIVERB_SHOW));
    ASSERT_EQ(0u, container.releaseControl());
    ASSERT_TRUE(isLeftAlone(container));
  };
  for (int i = 0; i < 5; ++i) ASSERT_NO_FATAL_FAILURE(fail());
  const Holdings before = Holdings::now();
  for (int i = 0; i < 100; ++i) ASSERT_NO_FATAL_FAILURE(fail());
  EXPECT_EQ(before, Holdings::now());
}

/// A host that loads the DLL for each use. See module_reload_test.cpp for what the DLL's runtime could keep besides.
TEST_P(FullLeaks, TwentyLoadingsOfTheDllLeaveNothingBehind) {
  const auto loadAndLive = [this] {
    ASSERT_NO_FATAL_FAILURE(live());
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
    ASSERT_TRUE(m_library.unload());
    ASSERT_EQ(nullptr, GetModuleHandleW(dllName));
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(dllName));
  };
  for (int i = 0; i < 3; ++i) ASSERT_NO_FATAL_FAILURE(loadAndLive());
  const Holdings before = Holdings::now();
  for (int i = 0; i < 20; ++i) ASSERT_NO_FATAL_FAILURE(loadAndLive());
  EXPECT_EQ(before, Holdings::now());
}

INSTANTIATE_TEST_SUITE_P(, FullLeaks, testing::ValuesIn(allControlClasses),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace av::test
