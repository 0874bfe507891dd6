// The spectrum analyser's last reference goes at an awkward moment: in a verb, in a tick, in a block, in a put, while the
// fall thread is waited for; sited or not.

#include "host/analyser_test.h"
#include "host/process_threads.h"
#include "host/talk_test.h"

namespace av::test {
namespace {

constexpr char viewChange[] = "IAdviseSink::OnViewChange";

class AnalyserLastRelease : public TalkTest {
 protected:
  void SetUp() override {
    TalkTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type3));
  }

  /// Not counted: nobody but the container holds the control.
  IAudioVisualization4Type3* analyser() const {
    IAudioVisualization4Type3* analyser = nullptr;
    m_host.control()->QueryInterface(IID_PPV_ARGS(&analyser));
    analyser->Release();
    return analyser;
  }

  void releaseAtTheNextViewChange() {
    m_host.log.inside(viewChange, [this] { m_host.releaseControl(); });
  }

  void expectNothingIsLeft() {
    EXPECT_FALSE(m_host.log.isWaitingFor(viewChange)) << "never called: nothing was tested";
    EXPECT_FALSE(m_host.control());
    EXPECT_TRUE(isLeftAlone(m_host));
    EXPECT_TRUE(avhost::pumpUntil(10000, [this] { return m_library.canUnloadNow() == S_OK; }));
    EXPECT_TRUE(m_library.unload());
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(dllName));
    RecordingContainer next;
    ASSERT_NO_FATAL_FAILURE(giveAndSite(next, CLSID_CAudioVisualization4Type3));
    EXPECT_EQ(S_OK, next.doVerb(OLEIVERB_UIACTIVATE));
    EXPECT_EQ(0u, next.releaseControl());
  }

  RecordingContainer m_host;
};

TEST_F(AnalyserLastRelease, InsideTheRedrawOfABlock) {
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, sendSamples(analyser(), noiseBlock()));
  expectNothingIsLeft();
}

TEST_F(AnalyserLastRelease, InsideTheRedrawOfANullBlock) {
  ASSERT_EQ(S_OK, sendSamples(analyser(), noiseBlock()));
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, analyser()->SendAudioData(nullptr));
  expectNothingIsLeft();
}

TEST_F(AnalyserLastRelease, InsideATickThatTheHostMakes) {
  ASSERT_EQ(S_OK, sendSamples(analyser(), noiseBlock()));
  Sleep(550);  // columns begin to fall
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, analyser()->_OnTimer());
  expectNothingIsLeft();
}

TEST_F(AnalyserLastRelease, InsideTheRedrawsOfRepaintAndOfPuts) {
  releaseAtTheNextViewChange();
  EXPECT_EQ(S_OK, analyser()->Repaint());
  expectNothingIsLeft();
  const std::function<HRESULT(IAudioVisualization4Type3*)> puts[] = {
      [](auto* control) { return control->put_LineCount(7); }, [](auto* control) { return control->put_AlignmentY(1); },
      [](auto* control) { return control->put_TickVisible(VARIANT_TRUE); },
      [](auto* control) { return control->put_BackColor(7); },
      [](auto* control) {
        ComPtr<IFontDisp> font;
        control->get_ScaleFont(&font);
        return control->putref_ScaleFont(font.Get());
      }};
  for (const auto& put : puts) {
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type3));
    releaseAtTheNextViewChange();
    EXPECT_EQ(S_OK, put(analyser()));
    expectNothingIsLeft();
  }
}

void CALLBACK releaseControlOnce(HWND window, UINT, UINT_PTR host, DWORD) {
  KillTimer(window, host);
  reinterpret_cast<RecordingContainer*>(host)->releaseControl();
}

TEST_F(AnalyserLastRelease, WhileAPutWaitsForTheFallThread) {
  // A timer that is due is dispatched while the put waits, or right after it.
  for (int i = 0; i < 20; ++i) {
    SetTimer(m_host.window(), reinterpret_cast<UINT_PTR>(&m_host), USER_TIMER_MINIMUM, &releaseControlOnce);
    Sleep(20);
    EXPECT_EQ(S_OK, analyser()->put_TickVisible(VARIANT_FALSE));
    avhost::pumpUntil(5000, [this] { return !m_host.control(); });
    EXPECT_TRUE(isLeftAlone(m_host));
    EXPECT_EQ(S_OK, m_library.canUnloadNow());
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type3));
  }
  m_host.releaseControl();
}

TEST_F(AnalyserLastRelease, InTheMiddleOfAFall) {
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(S_OK, sendSamples(analyser(), noiseBlock()));
    Sleep(static_cast<DWORD>(200 + i % 13));
    m_host.releaseControl();
    EXPECT_TRUE(isLeftAlone(m_host));
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_host, CLSID_CAudioVisualization4Type3));
  }
  m_host.releaseControl();
}

TEST_F(AnalyserLastRelease, WhileATickWaitsForThisThread) {
  ASSERT_EQ(S_OK, m_host.doVerb(OLEIVERB_SHOW));
  ASSERT_EQ(S_OK, sendSamples(analyser(), noiseBlock()));
  avhost::pumpMessages(150);
  Sleep(200);  // a tick has been sent and waits to be dispatched
  EXPECT_EQ(0u, m_host.releaseControl());
  EXPECT_TRUE(isLeftAlone(m_host));
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
}

class UnsitedAnalyser : public AnalyserTest {};

TEST_F(UnsitedAnalyser, MayGoAtAnyMomentOfItsLifeAndTakesItsThreadAlong) {
  const int threads = threadsOfThisProcess();
  for (int i = 0; i < 40; ++i) {
    auto analyser = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
    EXPECT_EQ(threads + 1, threadsOfThisProcess()) << "the fall thread runs from the construction on";
    if (i % 4 != 0) {
      ASSERT_EQ(S_OK, sendSamples(analyser.Get(), noiseBlock()));
    }
    if (i % 4 == 2) avhost::pumpMessages(static_cast<DWORD>(i * 2));
    if (i % 4 == 3) Sleep(static_cast<DWORD>(i));
    EXPECT_EQ(0u, analyser.Reset());
    EXPECT_EQ(threads, threadsOfThisProcess());
  }
}

}  // namespace
}  // namespace av::test
