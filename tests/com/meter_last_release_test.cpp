// The level meter's last reference goes at an awkward moment: in a verb, in a tick, in a block, in a put, while the fall
// thread is waited for; sited or not.

#include "host/control_classes.h"
#include "host/meter_test.h"
#include "host/process_threads.h"
#include "host/talk_test.h"

namespace av::test {
namespace {

constexpr char viewChange[] = "IAdviseSink::OnViewChange";

class MeterLastRelease : public TalkTest {
 protected:
  void SetUp() override {
    TalkTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type2));
  }

  /// Not counted: nobody but the container holds the control.
  IAudioVisualization4Type2* meter() const {
    IAudioVisualization4Type2* meter = nullptr;
    m_host.control()->QueryInterface(IID_PPV_ARGS(&meter));
    meter->Release();
    return meter;
  }

  void releaseAtTheNextViewChange() {
    m_host.log.inside(viewChange, [this] { m_host.releaseControl(); });
  }

  /// A control that was released in its own tick cannot wait for the thread that ticks; it ends a moment later.
  void expectNothingIsLeft() {
    EXPECT_FALSE(m_host.log.isWaitingFor(viewChange)) << "never called: nothing was tested";
    EXPECT_FALSE(m_host.control());
    EXPECT_TRUE(isLeftAlone(m_host));
    EXPECT_TRUE(avhost::pumpUntil(10000, [this] { return m_library.canUnloadNow() == S_OK; }));
    EXPECT_TRUE(m_library.unload());
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(dllName));
    RecordingContainer next;
    ASSERT_NO_FATAL_FAILURE(giveAndSite(next, CLSID_CAudioVisualization4Type2));
    EXPECT_EQ(S_OK, next.doVerb(OLEIVERB_UIACTIVATE));
    EXPECT_EQ(0u, next.releaseControl());
  }

  RecordingContainer m_host;
};

TEST_F(MeterLastRelease, InsideATickOfTheRunningTimer) {
  ASSERT_EQ(S_OK, sendNoise(meter()));
  const int before = m_host.log.count(viewChange);
  ASSERT_TRUE(avhost::pumpUntil(10000, [&] { return m_host.log.count(viewChange) >= before + 2; })) << "no ticks";
  releaseAtTheNextViewChange();
  avhost::pumpUntil(10000, [this] { return !m_host.control(); });
  expectNothingIsLeft();
}

TEST_F(MeterLastRelease, InsideATickWhileAnotherWorkerTicksToo) {
  ASSERT_EQ(S_OK, sendNoise(meter()));
  avhost::pumpMessages(200);
  ASSERT_EQ(S_OK, meter()->SendAudioData(nullptr));
  ASSERT_EQ(S_OK, sendNoise(meter()));
  avhost::pumpMessages(200);
  releaseAtTheNextViewChange();
  avhost::pumpUntil(10000, [this] { return !m_host.control(); });
  expectNothingIsLeft();
}

TEST_F(MeterLastRelease, InsideATickRightAfterASecondWorkerWasBegun) {
  ASSERT_EQ(S_OK, sendNoise(meter()));
  avhost::pumpMessages(200);
  m_host.log.inside(viewChange, [this] {
    meter()->SendAudioData(nullptr);
    sendNoise(meter());
    Sleep(100);  // the new worker is on its way to its pointer, which needs this thread
    m_host.releaseControl();
  });
  avhost::pumpUntil(10000, [this] { return !m_host.control(); });
  expectNothingIsLeft();
}

TEST_F(MeterLastRelease, InsideATickThatTheHostMakes) {
  ASSERT_EQ(S_OK, sendNoise(meter()));
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, meter()->_OnTimer());
  expectNothingIsLeft();
}

TEST_F(MeterLastRelease, InsideTheRedrawOfANullBlock) {
  ASSERT_EQ(S_OK, sendNoise(meter()));
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, meter()->SendAudioData(nullptr));
  expectNothingIsLeft();
}

TEST_F(MeterLastRelease, InsideTheRedrawOfAShortBlock) {
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, sendNoise(meter(), 16));
  expectNothingIsLeft();
}

TEST_F(MeterLastRelease, InsideTheRedrawsOfRepaintAndOfPuts) {
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, meter()->Repaint());
  expectNothingIsLeft();
  ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type2));
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, meter()->put_LineCount(7));
  expectNothingIsLeft();
}

void CALLBACK releaseControlOnce(HWND window, UINT, UINT_PTR host, DWORD) {
  KillTimer(window, host);
  reinterpret_cast<RecordingContainer*>(host)->releaseControl();
}

TEST_F(MeterLastRelease, WhileAPutWaitsForTheFallThread) {
  ASSERT_EQ(S_OK, meter()->put_TickReleaseTime(500));
  avhost::pumpMessages(100);  // a long sleep begins
  // Dispatched while the put waits.
  SetTimer(m_host.window(), reinterpret_cast<UINT_PTR>(&m_host), 50, &releaseControlOnce);
  const DWORD start = GetTickCount();
  EXPECT_EQ(S_OK, meter()->put_TickVisible(VARIANT_FALSE));
  EXPECT_GE(GetTickCount() - start, 200u);
  EXPECT_FALSE(m_host.control());
  EXPECT_TRUE(isLeftAlone(m_host));
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
}

TEST_F(MeterLastRelease, InTheMiddleOfAFall) {
  ASSERT_EQ(S_OK, meter()->put_TickReleaseTime(1));
  ASSERT_EQ(S_OK, meter()->put_TickDelayTime(0));
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(S_OK, meter()->put_LineCount(48000));  // a step takes a while
    ASSERT_EQ(S_OK, meter()->put_TickDelayTime(0));
    Sleep(static_cast<DWORD>(i % 4));
    m_host.releaseControl();
    EXPECT_TRUE(isLeftAlone(m_host));
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type2));
    ASSERT_EQ(S_OK, meter()->put_TickReleaseTime(1));
  }
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, meter()->Repaint());
  expectNothingIsLeft();
}

TEST_F(MeterLastRelease, InsideDoVerbWithBlocksOnTheirWay) {
  for (const char* method : {"IOleInPlaceSite::OnInPlaceActivate", "IOleInPlaceSite::GetWindowContext",
                             "IOleClientSite::ShowObject", "IOleInPlaceSite::OnUIActivate"}) {
    SCOPED_TRACE(method);
    ASSERT_EQ(S_OK, sendNoise(meter()));
    m_host.log.inside(method, [this] { m_host.releaseControl(); });
    m_host.doVerb(OLEIVERB_UIACTIVATE);
    EXPECT_FALSE(m_host.control());
    EXPECT_TRUE(isLeftAlone(m_host));
    EXPECT_EQ(S_OK, m_library.canUnloadNow());
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type2));
  }
  m_host.releaseControl();
}

TEST_F(MeterLastRelease, WhileATickWaitsForThisThread) {
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  ASSERT_EQ(S_OK, sendNoise(meter()));
  avhost::pumpMessages(150);
  Sleep(200);  // a tick has been sent and waits to be dispatched
  EXPECT_EQ(0u, m_host.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_host));
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
}

class UnsitedMeter : public MeterTest {};

TEST_F(UnsitedMeter, MayGoAtAnyMomentOfItsLife) {
  const int threads = threadsOfThisProcess();
  for (int i = 0; i < 40; ++i) {
    ComPtr<IAudioVisualization4Type2> meter = createMeter();
    if (i % 4 != 0) {
      ASSERT_EQ(S_OK, sendNoise(meter.Get()));
    }
    if (i % 4 == 2) avhost::pumpMessages(static_cast<DWORD>(i * 4));
    if (i % 4 == 3) Sleep(static_cast<DWORD>(i));
    if (i % 5 == 0) {
      ASSERT_EQ(S_OK, meter->SendAudioData(nullptr));
    }
    EXPECT_EQ(0u, meter.Reset());
    EXPECT_GE(threads, threadsOfThisProcess());  // threads of the system's own come to their end as well
  }
}

TEST_F(UnsitedMeter, IsDrawnByWhoeverAsksItsViewObject) {
  ASSERT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ComPtr<IViewObject> view;
  ASSERT_EQ(S_OK, m_meter.As(&view));
  const WindowPicture drawn = pictureDrawnBy({301, 200}, [&](HDC target) {
    const RECTL bounds{0, 0, 301, 200};
    EXPECT_EQ(S_OK, view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, &bounds, nullptr, nullptr, 0));
  });
  ASSERT_NO_FATAL_FAILURE(activate({301, 200}));
  ASSERT_EQ(S_OK, m_meter->Repaint());
  EXPECT_EQ(picture(), drawn);
}

}  // namespace
}  // namespace av::test
