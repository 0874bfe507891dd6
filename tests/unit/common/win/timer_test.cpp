#include "common/win/timer.h"

#include "unit/common/win/timer_fixture.h"

#include <gmock/gmock.h>

namespace av::timer_test {
namespace {

using testing::Each;

/// The timer in both of its ways to a worker.
class RepaintTimer : public RepaintTimerTest, public testing::WithParamInterface<Way> {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(RepaintTimerTest::SetUp());
    if (GetParam() == Way::table) {
      ASSERT_TRUE(m_control->timer.allowStartOnAnyThread());
    }
  }

  /// On this thread, or by the table on another one, which is at its end when this returns.
  void startTimer(DWORD periodMs) {
    onThreadOfThisWay([=, this] { m_control->timer.Start(periodMs); });
  }
  /// A flag-only stop and a start in one go, too fast for a worker to see the flag in between.
  void restartTimer(DWORD periodMs) {
    onThreadOfThisWay([=, this] {
      m_control->timer.clearRunning();
      m_control->timer.Start(periodMs);
    });
  }
  static void onThreadOfThisWay(const std::function<void()>& work) {
    if (GetParam() == Way::stream) {
      work();
    } else {
      onAnotherThread(Host::noApartment, work);
    }
  }

  /// The worker has its pointer, which it may need this thread for, and its first tick is on its way.
  void startAndLeaveTheFirstTickWaiting() {
    startTimer(100);
    ASSERT_TRUE(dispatchUntil([&] { return m_platform.wholePeriods > 0; }));
    Sleep(400);
  }
};

/// A timer whose interface is described nowhere.
constexpr IID undescribedId = {0x5b2f3a61, 0x8d0c, 0x4e57, {0x9a, 0x13, 0x6f, 0x20, 0xc4, 0x7e, 0x51, 0xd8}};
using UnmarshallableTimer = CTimer<FakeControl, IAudioVisualizationTemplate, &undescribedId>;

TEST_P(RepaintTimer, TicksOnTheControlsThread) {
  startTimer(30);
  ASSERT_TRUE(waitForTicks(5));
  EXPECT_THAT(m_control->tickThreads, Each(GetCurrentThreadId()));
}

TEST_P(RepaintTimer, TicksFirstAfterTwoPeriods) {
  const DWORD start = GetTickCount();
  startTimer(50);
  ASSERT_TRUE(waitForTicks(1));
  // Never early, save for the steps of the tick count; a loaded machine may be late by any amount.
  EXPECT_GE(m_control->tickTimes[0] - start, 100u - 16u);
}

TEST_P(RepaintTimer, LeavesAtLeastAPeriodBetweenTicks) {
  startTimer(50);
  ASSERT_TRUE(waitForTicks(4));
  for (std::size_t i = 1; i < ticks(); ++i)
    // The control sees a tick late when this thread is, so single gaps may be shorter than the waits; the sum is not.
    EXPECT_GE(m_control->tickTimes[i], m_control->tickTimes[i - 1]);
  EXPECT_GE(m_platform.wholePeriods, 4);
}

TEST_P(RepaintTimer, UsesTheSecondPeriodWhenStartedAgainBeforeTheFirstTick) {
  const DWORD start = GetTickCount();
  startTimer(10);
  startTimer(120);
  ASSERT_TRUE(waitForTicks(1));
  EXPECT_EQ(1, m_platform.threadsCreated);
  EXPECT_EQ(1u, m_control->timer.liveWorkers());
  EXPECT_EQ(120u, m_platform.lastSleepMs);
  EXPECT_GE(m_control->tickTimes[0] - start, 240u - 16u);
}

TEST_P(RepaintTimer, DoesNotTickAfterStop) {
  startTimer(10);
  ASSERT_TRUE(waitForTicks(2));
  m_control->timer.Stop();
  const std::size_t before = ticks();
  EXPECT_EQ(0u, m_control->timer.liveWorkers());
  dispatchFor(100);
  EXPECT_EQ(before, ticks());
}

TEST_P(RepaintTimer, StartsAgainAfterStop) {
  startTimer(10);
  ASSERT_TRUE(waitForTicks(1));
  m_control->timer.Stop();
  const std::size_t before = ticks();
  startTimer(10);
  EXPECT_TRUE(waitForTicks(before + 2));
  EXPECT_EQ(2, m_platform.threadsCreated);
}

TEST_P(RepaintTimer, StopsWithoutAWorker) {
  m_control->timer.Stop();
  m_control->timer.Stop();
  startTimer(10);
  EXPECT_TRUE(waitForTicks(1));
}

TEST_P(RepaintTimer, StopLetsATickThroughThatWaitsForThisThread) {
  startAndLeaveTheFirstTickWaiting();
  ASSERT_EQ(0u, ticks());
  m_control->timer.Stop();
  EXPECT_EQ(1u, ticks());
  EXPECT_EQ(0u, m_control->timer.liveWorkers());
}

TEST_P(RepaintTimer, DestructionHoldsBackATickThatWaitsForThisThread) {
  std::size_t ticksSeen = 0;
  m_control->onTick = [&] { ++ticksSeen; };
  startAndLeaveTheFirstTickWaiting();
  releaseControl();
  EXPECT_TRUE(m_destroyed);
  EXPECT_EQ(0u, ticksSeen);
  EXPECT_EQ(0, m_lock.count);
}

TEST_P(RepaintTimer, RunsTwoWorkersWhenStartedBeforeTheOldOneHasWoken) {
  startTimer(200);
  ASSERT_TRUE(waitForTicks(1));
  // The worker is on its way into its next wait of 200 ms, or in it.
  restartTimer(200);
  EXPECT_EQ(2, m_platform.threadsCreated);
  EXPECT_EQ(2u, m_control->timer.liveWorkers());
  const std::size_t before = ticks();
  ASSERT_TRUE(waitForTicks(before + 6));
  EXPECT_EQ(2u, m_control->timer.liveWorkers()) << "both go on";
}

TEST_P(RepaintTimer, DestructionWaitsForBothWorkers) {
  startTimer(100);
  ASSERT_TRUE(waitForTicks(1));
  restartTimer(100);
  ASSERT_TRUE(waitForTicks(3));
  ASSERT_EQ(2u, m_control->timer.liveWorkers());
  m_control->timer.shutDown();
  EXPECT_EQ(0u, m_control->timer.liveWorkers());
  // What ticks has gone; only this test's call into it remained.
  EXPECT_EQ(0, m_lock.count);
}

TEST_P(RepaintTimer, LetsTheWorkerEndAfterAFlagOnlyStop) {
  startTimer(20);
  ASSERT_TRUE(waitForTicks(1));
  m_control->timer.clearRunning();
  EXPECT_TRUE(dispatchUntil([&] { return m_control->timer.liveWorkers() == 0; }));
  const std::size_t before = ticks();
  dispatchFor(80);
  EXPECT_EQ(before, ticks());
}

TEST_P(RepaintTimer, NeverStartsAgainOnceAThreadWasRefused) {
  m_platform.refuseThreads = true;
  EXPECT_EQ(0u, m_control->timer.Start(10));
  EXPECT_EQ(0u, m_control->timer.liveWorkers());
  m_platform.refuseThreads = false;
  startTimer(20);
  m_control->timer.Stop();  // only clears the flag
  startTimer(20);
  dispatchFor(100);
  EXPECT_EQ(0, m_platform.threadsCreated);
  EXPECT_EQ(0u, ticks());
  EXPECT_EQ(1, m_lock.count) << "what nobody takes holds the tick object";
  releaseControl();
  EXPECT_TRUE(m_destroyed);
  EXPECT_EQ(0, m_lock.count);
}

TEST_P(RepaintTimer, LoopsWithoutTickingWhenMarshallingFails) {
  UnmarshallableTimer timer(*m_control, m_lock, m_platform);
  timer.Start(10);
  EXPECT_TRUE(dispatchUntil([&] { return m_platform.wholePeriods >= 4; }));
  EXPECT_EQ(0u, ticks());
  EXPECT_EQ(1u, timer.liveWorkers());
  timer.Stop();
  EXPECT_EQ(0u, timer.liveWorkers());
}

TEST_P(RepaintTimer, NeedsTheContextOnlyWhileItStarts) {
  startTimer(10);
  m_platform.moduleContext = INVALID_HANDLE_VALUE;
  EXPECT_TRUE(waitForTicks(3));
}

TEST_P(RepaintTimer, NoTickReachesTheControlOnceItIsCutLoose) {
  startTimer(10);
  ASSERT_TRUE(waitForTicks(1));
  m_control->timer.cutLoose();
  const std::size_t before = ticks();
  EXPECT_TRUE(dispatchUntil([&] { return m_control->timer.liveWorkers() == 0; }));
  EXPECT_EQ(before, ticks());
  startTimer(10);
  dispatchFor(60);
  EXPECT_EQ(before, ticks());
  EXPECT_EQ(1, m_platform.threadsCreated);
}

TEST_P(RepaintTimer, HoldsTheModuleUntilItIsShutDown) {
  EXPECT_EQ(GetParam() == Way::table ? 1 : 0, m_lock.count);
  startTimer(10);
  ASSERT_TRUE(waitForTicks(1));
  EXPECT_EQ(1, m_lock.count);
  m_control->timer.Stop();
  startTimer(10);
  EXPECT_EQ(1, m_lock.count);
  m_control->timer.shutDown();
  EXPECT_EQ(0, m_lock.count);
}

TEST_P(RepaintTimer, SurvivesTheControlsReleaseInsideItsOwnTick) {
  bool aliveAfterRelease = false;
  m_control->onTick = [&] {
    releaseControl();
    aliveAfterRelease = !m_destroyed;  // the tick holds the control until it has returned
  };
  startTimer(10);
  EXPECT_TRUE(dispatchUntil([&] { return m_destroyed; }));
  EXPECT_TRUE(aliveAfterRelease);
  // The worker could not be waited for inside its own tick: it holds the module until it has ended by itself.
  EXPECT_TRUE(dispatchUntil([&] { return m_lock.count == 0; }));
}

TEST_P(RepaintTimer, StopInsideATickDoesNotWaitForThatTick) {
  m_control->onTick = [&] { m_control->timer.Stop(); };
  startTimer(10);
  ASSERT_TRUE(waitForTicks(1));
  EXPECT_TRUE(dispatchUntil([&] { return m_control->timer.liveWorkers() == 0; }));
  EXPECT_EQ(1u, ticks());
}

TEST_P(RepaintTimer, DropsAStartThatArrivesWhileStopWaits) {
  m_control->onTick = [&] { startTimer(10); };
  startAndLeaveTheFirstTickWaiting();  // dispatched by Stop
  m_control->timer.Stop();
  EXPECT_EQ(1u, ticks());
  EXPECT_EQ(0u, m_control->timer.liveWorkers());
}

TEST_P(RepaintTimer, EndsWhenTheApartmentWentFirst) {
  startTimer(10);
  ASSERT_TRUE(waitForTicks(2));
  CoUninitialize();
  const std::size_t before = ticks();
  Sleep(50);
  const DWORD start = GetTickCount();
  releaseControl();
  EXPECT_TRUE(m_destroyed);
  EXPECT_LT(GetTickCount() - start, 10000u);
  EXPECT_EQ(0, m_lock.count);
  EXPECT_EQ(2u, before);
  ASSERT_HRESULT_SUCCEEDED(CoInitialize(nullptr));
}

INSTANTIATE_TEST_SUITE_P(, RepaintTimer, testing::Values(Way::stream, Way::table), wayName);

class RepaintTimerAlone : public testing::TestWithParam<Way> {};

TEST_P(RepaintTimerAlone, IsDestroyedThoughTheApartmentWentWithATickOnItsWay) {
  // Some systems never answer such a call: then the worker is left behind, and so is what it uses.
  static CountingModuleLock lock;
  static TestPlatform platform;
  ASSERT_HRESULT_SUCCEEDED(CoInitialize(nullptr));
  const ManifestContext manifest;
  platform.moduleContext = manifest.get();
  bool destroyed = false;
  auto* const control = new FakeControl(lock, platform, &destroyed);
  if (GetParam() == Way::table) {
    ASSERT_TRUE(control->timer.allowStartOnAnyThread());
    onAnotherThread(Host::noApartment, [&] { control->timer.Start(10); });
  } else {
    control->timer.Start(10);
  }
  // The pointer that the table gives out comes as a message, too; Wine 8 crashes if the apartment goes while it does.
  ASSERT_TRUE(dispatchUntil([&] { return !control->tickTimes.empty(); }));
  Sleep(100);
  CoUninitialize();
  const DWORD start = GetTickCount();
  control->Release();
  EXPECT_TRUE(destroyed);
  EXPECT_LT(GetTickCount() - start, 10000u);
}

INSTANTIATE_TEST_SUITE_P(, RepaintTimerAlone, testing::Values(Way::stream, Way::table), wayName);

TEST(KernelHandleCount, SeesAPlantedLeak) {
  const int before = openKernelHandles();
  std::vector<UniqueHandle> planted;
  for (int i = 0; i < 20; ++i) planted.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  EXPECT_EQ(before + 20, openKernelHandles());
}

DWORD WINAPI enterAndLeaveCom(void*) {
  CoInitialize(nullptr);
  CoUninitialize();
  return 0;
}

TEST_P(RepaintTimer, KeepsNoThreadHandlesOverManyStartsAndStops) {
  // Wine keeps handles for refused marshalling and for threads that initialised COM: measured without the timer, and
  // taken off.
  constexpr int cycles = 200;
  UnmarshallableTimer timer(*m_control, m_lock, m_platform);
  const auto timerCycle = [&] {
    timer.Start(1);
    timer.Stop();
    EXPECT_EQ(0u, timer.liveWorkers());
  };
  const auto plainCycle = [&] {
    const auto object = TickObject::create(m_control, undescribedId, m_lock);
    IStream* stream = nullptr;
    EXPECT_TRUE(FAILED(CoMarshalInterThreadInterfaceInStream(undescribedId, object.Get(), &stream)));
    CoDisconnectObject(object.Get(), 0);
    const UniqueHandle thread(CreateThread(nullptr, 0, enterAndLeaveCom, nullptr, 0, nullptr));
    WaitForSingleObject(thread.get(), INFINITE);
  };
  for (int i = 0; i < 20; ++i) plainCycle();
  for (int i = 0; i < 20; ++i) timerCycle();
  const int first = openKernelHandles();
  for (int i = 0; i < cycles; ++i) plainCycle();
  const int second = openKernelHandles();
  for (int i = 0; i < cycles; ++i) timerCycle();
  const int third = openKernelHandles();
  RecordProperty("plain", second - first);
  RecordProperty("timer", third - second);
  EXPECT_LE(third - second, second - first + 20) << "one handle a cycle more would be " << cycles;
}

/// What a worker does for its pointer, without the timer around it.
DWORD WINAPI takeAndRelease(void* argument) {
  CoInitialize(nullptr);
  {
    Microsoft::WRL::ComPtr<IAudioVisualizationTemplate> proxy;
    CoGetInterfaceAndReleaseStream(static_cast<IStream*>(argument), IID_IAudioVisualization4Type1,
                                   reinterpret_cast<void**>(proxy.GetAddressOf()));
    if (proxy) proxy->_OnTimer();
  }
  CoUninitialize();
  return 0;
}

TEST_P(RepaintTimer, CostsNoMoreHandlesThanMarshallingItself) {
  // Wine's COM keeps about 20 handles for each apartment that ever called another: measured, and taken off.
  constexpr int cycles = 40;
  const auto plainCycle = [&] {
    const auto object = TickObject::create(m_control, IID_IAudioVisualization4Type1, m_lock);
    struct Context {
      TickObject* object;
      UniqueHandle thread;
    } context{object.Get(), {}};
    m_platform.inModuleContext(
        [](void* argument) {
          auto& made = *static_cast<Context*>(argument);
          IStream* stream = nullptr;
          CoMarshalInterThreadInterfaceInStream(IID_IAudioVisualization4Type1, made.object, &stream);
          made.thread.reset(CreateThread(nullptr, 0, takeAndRelease, stream, 0, nullptr));
        },
        &context);
    EXPECT_TRUE(dispatchUntil([&] { return WaitForSingleObject(context.thread.get(), 0) == WAIT_OBJECT_0; }));
  };
  const auto timerCycle = [&] {
    const std::size_t before = ticks();
    m_control->timer.Start(1);
    EXPECT_TRUE(waitForTicks(before + 1));
    m_control->timer.Stop();
    EXPECT_EQ(0u, m_control->timer.liveWorkers());
  };
  for (int i = 0; i < 5; ++i) plainCycle();
  const int first = openKernelHandles();
  for (int i = 0; i < cycles; ++i) plainCycle();
  const int second = openKernelHandles();
  for (int i = 0; i < cycles; ++i) timerCycle();
  const int third = openKernelHandles();
  EXPECT_LE(third - second, second - first + cycles / 2) << "one handle a cycle would be " << cycles;
}

}  // namespace
}  // namespace av::timer_test
