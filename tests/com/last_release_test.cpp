// The last reference goes at an awkward moment: in a tick, in a block, in a put; and the container's window, its site or
// the container itself goes while the control is active.

#include "host/control_classes.h"
#include "host/talk_test.h"
#include "host/view_sound.h"

namespace av::test {
namespace {

constexpr char viewChange[] = "IAdviseSink::OnViewChange";

class LastRelease : public TalkTest {
 protected:
  void SetUp() override {
    TalkTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, CLSID_CAudioVisualization4Type1));
    ASSERT_EQ(S_OK, view()->put_VisualizationType(2));  // a spectrum, which ticks let fall slowly
  }

  /// Not counted: nobody but the container holds the control.
  IAudioVisualization4Type1* view() const {
    IAudioVisualization4Type1* view = nullptr;
    m_container.control()->QueryInterface(IID_PPV_ARGS(&view));
    view->Release();
    return view;
  }

  void releaseAtTheNextViewChange() {
    m_container.log.inside(viewChange, [this] { m_container.releaseControl(); });
  }

  /// A control that was released in its own tick cannot wait for the thread that ticks; it ends a moment later.
  void expectNothingIsLeft() {
    EXPECT_FALSE(m_container.log.isWaitingFor(viewChange)) << "never called: nothing was tested";
    EXPECT_FALSE(m_container.control());
    EXPECT_TRUE(isLeftAlone(m_container));
    EXPECT_TRUE(avhost::pumpUntil(5000, [this] { return m_library.canUnloadNow() == S_OK; }));
    EXPECT_TRUE(m_library.unload());
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(dllName));
    RecordingContainer next;
    ASSERT_NO_FATAL_FAILURE(giveAndSite(next, CLSID_CAudioVisualization4Type1));
    EXPECT_EQ(S_OK, next.doVerb(OLEIVERB_UIACTIVATE));
    EXPECT_EQ(0u, next.releaseControl());
  }

  RecordingContainer m_container;
};

TEST_F(LastRelease, InsideATickOfTheRunningTimer) {
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));  // starts the timer
  ASSERT_EQ(S_OK, m_container.inPlaceDeactivate());    // ticks ask the container to redraw from here on
  ASSERT_EQ(S_OK, sendSquareWave(view()));
  const int before = m_container.log.count(viewChange);
  ASSERT_TRUE(avhost::pumpUntil(5000, [&] { return m_container.log.count(viewChange) >= before + 2; })) << "no ticks";
  releaseAtTheNextViewChange();
  ASSERT_EQ(S_OK, sendSquareWave(view(), 1024, 30000));
  avhost::pumpUntil(5000, [this] { return !m_container.control(); });
  expectNothingIsLeft();
}

TEST_F(LastRelease, InsideATickThatTheHostMakes) {
  ASSERT_EQ(S_OK, sendSquareWave(view()));
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, view()->_OnTimer());
  expectNothingIsLeft();
}

TEST_F(LastRelease, InsideTheRedrawThatABlockAsksFor) {
  ASSERT_EQ(S_OK, view()->put_VisualizationSmooth(VARIANT_FALSE));
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, sendSquareWave(view()));
  expectNothingIsLeft();
}

TEST_F(LastRelease, InsideTheRedrawThatAPutAsksFor) {
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, view()->put_GridVisible(VARIANT_FALSE));
  expectNothingIsLeft();
}

TEST_F(LastRelease, InsideTheFirstViewChangeOfASink) {
  struct Sink final : IAdviseSink {
    explicit Sink(RecordingContainer& host) : container(host) {}
    STDMETHODIMP QueryInterface(REFIID, void** object) override {
      *object = static_cast<IAdviseSink*>(this);
      AddRef();
      return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override {}
    STDMETHODIMP_(void) OnViewChange(DWORD, LONG) override { container.releaseControl(); }
    STDMETHODIMP_(void) OnRename(IMoniker*) override {}
    STDMETHODIMP_(void) OnSave() override {}
    STDMETHODIMP_(void) OnClose() override {}
    RecordingContainer& container;
    ULONG references = 0;
  } sink(m_container);
  IViewObject* object = nullptr;
  ASSERT_EQ(S_OK, m_container.control()->QueryInterface(IID_PPV_ARGS(&object)));
  object->Release();
  EXPECT_EQ(S_OK, object->SetAdvise(DVASPECT_CONTENT, ADVF_PRIMEFIRST, &sink));
  EXPECT_EQ(0u, sink.references);
  expectNothingIsLeft();
}

class TakenAway : public TalkTest, public testing::WithParamInterface<ControlClassName> {};

TEST_P(TakenAway, TheContainersWindowWhileTheControlIsUiActive) {
  RecordingContainer container;
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, GetParam().classId));
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
  const HWND window = container.controlWindow();
  container.destroyWindow();
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(nullptr, container.controlWindow());
  avhost::pumpMessages(100);  // ticks, where there is a timer
  container.doVerb(OLEIVERB_SHOW);
  container.resize({30, 20});
  container.doVerb(OLEIVERB_HIDE);
  EXPECT_EQ(S_OK, container.close());
  EXPECT_EQ(1, container.log.count("IOleInPlaceSite::OnUIDeactivate"));
  EXPECT_EQ(1, container.log.count("IOleInPlaceSite::OnInPlaceDeactivate"));
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_TRUE(isLeftAlone(container));
}

TEST_P(TakenAway, TheSiteWhileTheControlIsUiActive) {
  RecordingContainer container;
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, GetParam().classId));
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
  const HWND window = container.controlWindow();
  container.log.take();
  EXPECT_EQ(S_OK, container.unsite());
  EXPECT_FALSE(IsWindow(window));
  EXPECT_TRUE(agree({interleaved({{"frame IOleInPlaceFrame::SetActiveObject(null)"},
                                  {"document IOleInPlaceUIWindow::SetActiveObject(null)"},
                                  {"IOleInPlaceSite::OnUIDeactivate(0)"},
                                  {"IOleControlSite::OnFocus(0)"}}),
                     "IOleInPlaceSite::OnInPlaceDeactivate()"},
                    container.log.take()));
  EXPECT_EQ(S_OK, container.unadvise());
  EXPECT_EQ(0, container.references());
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_TRUE(isLeftAlone(container));
}

/// Some hosts move the control's window itself into another of their windows.
TEST_P(TakenAway, TheControlsWindowToAnotherParent) {
  RecordingContainer container, other;
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, GetParam().classId));
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
  const HWND window = container.controlWindow();
  SetParent(window, other.window());
  avhost::pumpMessages(50);
  EXPECT_EQ(S_OK, container.resize({120, 90}));
  RECT client{};
  GetClientRect(window, &client);
  EXPECT_EQ(120, client.right);
  EXPECT_EQ(90, client.bottom);
  other.destroyWindow();
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(S_OK, container.close());
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_TRUE(isLeftAlone(container));
}

TEST_P(TakenAway, TheControlByAnotherContainer) {
  RecordingContainer first, second;
  ASSERT_NO_FATAL_FAILURE(giveAndSite(first, GetParam().classId));
  ASSERT_EQ(S_OK, first.doVerb(OLEIVERB_UIACTIVATE));
  const HWND window = first.controlWindow();
  ASSERT_EQ(S_OK, first.unadvise());
  first.log.take();

  second.take(ComPtr<IOleObject>(first.control()));
  EXPECT_EQ(S_OK, second.site());
  // Whoever takes a control's site away finds it inactive, and the old container has heard so.
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(1, first.log.count("IOleInPlaceSite::OnUIDeactivate"));
  EXPECT_EQ(1, first.log.count("IOleInPlaceSite::OnInPlaceDeactivate"));
  EXPECT_TRUE(isLeftAlone(first));
  first.releaseControl();
  first.log.take();

  EXPECT_EQ(S_OK, second.advise());
  EXPECT_EQ(S_OK, second.doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_EQ(second.window(), GetParent(second.controlWindow()));
  EXPECT_EQ(S_OK, second.close());
  EXPECT_EQ(0u, second.releaseControl());
  EXPECT_TRUE(isLeftAlone(second));
  EXPECT_TRUE(agree({}, first.log.take()));
}

INSTANTIATE_TEST_SUITE_P(, TakenAway, testing::ValuesIn(allControlClasses),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace av::test
