// The repaint timer under threads other than the control's: starts from anywhere, ticks on the control's thread, and an
// end that finds them all.

#include "common/win/timer.h"

#include "support/win/holdings.h"
#include "unit/common/win/timer_fixture.h"

#include <gmock/gmock.h>

#include <functional>
#include <vector>

namespace av::timer_test {
namespace {

using testing::Each;

class TimerOnAnyThread : public RepaintTimerTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(RepaintTimerTest::SetUp());
    ASSERT_TRUE(m_control->timer.allowStartOnAnyThread());
  }

  void startElsewhere(Host host, DWORD periodMs = 10) {
    onAnotherThread(host, [&] { m_control->timer.Start(periodMs); });
  }
};

class StartedBy : public TimerOnAnyThread, public testing::WithParamInterface<Host> {};

TEST_P(StartedBy, AnotherThreadItTicksOnTheControlsThread) {
  startElsewhere(GetParam());
  ASSERT_TRUE(waitForTicks(5));
  EXPECT_THAT(m_control->tickThreads, Each(GetCurrentThreadId()));
  EXPECT_EQ(1u, m_control->timer.liveWorkers());
}

TEST_P(StartedBy, AnotherThreadAgainItOnlyTakesTheNewPeriod) {
  startElsewhere(GetParam(), 10);
  startElsewhere(GetParam(), 120);
  ASSERT_TRUE(waitForTicks(1));
  EXPECT_EQ(1, m_platform.threadsCreated);
  EXPECT_EQ(120u, m_platform.lastSleepMs);
}

TEST_P(StartedBy, AnotherThreadAfterAFlagOnlyStopItHasTwoWorkers) {
  m_control->timer.Start(200);
  ASSERT_TRUE(waitForTicks(1));
  onAnotherThread(GetParam(), [&] {
    m_control->timer.clearRunning();
    m_control->timer.Start(200);
  });
  EXPECT_EQ(2u, m_control->timer.liveWorkers());
  const std::size_t before = ticks();
  ASSERT_TRUE(waitForTicks(before + 6));
  EXPECT_EQ(2u, m_control->timer.liveWorkers()) << "both go on";
  EXPECT_THAT(m_control->tickThreads, Each(GetCurrentThreadId()));
}

TEST_P(StartedBy, AnotherThreadItEndsWithTheControl) {
  startElsewhere(GetParam());
  ASSERT_TRUE(waitForTicks(1));
  releaseControl();
  EXPECT_TRUE(m_destroyed);
  EXPECT_EQ(0, m_lock.count);
}

INSTANTIATE_TEST_SUITE_P(, StartedBy, testing::Values(Host::noApartment, Host::singleThreaded, Host::multiThreaded),
                         [](const auto& host) -> std::string {
                           switch (host.param) {
                             case Host::noApartment: return "APlainThread";
                             case Host::singleThreaded: return "ASingleThreadedApartment";
                             default: return "TheMultiThreadedApartment";
                           }
                         });

TEST_F(TimerOnAnyThread, HoldsTheModuleAndNothingElseBeforeItIsStarted) {
  EXPECT_EQ(1, m_lock.count);
  EXPECT_TRUE(m_control->timer.allowStartOnAnyThread()) << "asked again, it still is so";
  EXPECT_EQ(1, m_lock.count);
  EXPECT_EQ(0, m_platform.threadsCreated);
  releaseControl();
  EXPECT_EQ(0, m_lock.count);
}

TEST_F(TimerOnAnyThread, EndsWhileTheWorkerStillWaitsForItsPointer) {
  std::size_t ticksSeen = 0;
  m_control->onTick = [&] { ++ticksSeen; };
  startElsewhere(Host::noApartment);
  Sleep(200);  // the worker's way to this thread needs this thread, which takes no messages
  const DWORD start = GetTickCount();
  releaseControl();
  EXPECT_LT(GetTickCount() - start, 10000u);
  EXPECT_TRUE(m_destroyed);
  EXPECT_EQ(0u, ticksSeen);
  EXPECT_EQ(0, m_lock.count);
}

TEST_F(TimerOnAnyThread, EndsRightAfterItsStartHoweverOftenThatHappens) {
  for (int i = 0; i < 200; ++i) {
    auto* const control = new FakeControl(m_lock, m_platform);
    ASSERT_TRUE(control->timer.allowStartOnAnyThread());
    const auto start = [control] { control->timer.Start(50); };
    if (i % 4 < 2) {
      start();
    } else {
      onAnotherThread(Host::noApartment, start);
    }
    if (i % 2 == 1) Sleep(static_cast<DWORD>(i % 5));  // the worker gets more or less far
    if (i % 3 == 1) {
      control->timer.clearRunning();
      start();
    }
    control->Release();
    ASSERT_EQ(1, m_lock.count) << "besides the test's own control";
  }
}

TEST_F(TimerOnAnyThread, TheControlIsReleasedInATickWhileAnotherWorkerStillWaitsForItsPointer) {
  m_control->onTick = [&] {
    startElsewhere(Host::noApartment);  // runs already
    m_control->timer.clearRunning();
    startElsewhere(Host::noApartment);
    Sleep(100);  // the second worker's way to this thread needs this thread
    releaseControl();
  };
  m_control->timer.Start(10);
  EXPECT_TRUE(dispatchUntil([&] { return m_destroyed; }));
  EXPECT_EQ(2, m_platform.threadsCreated);
  EXPECT_TRUE(dispatchUntil([&] { return m_lock.count == 0; }));
}

TEST_F(TimerOnAnyThread, LeavesNothingWhenTheApartmentWentFirst) {
  CoUninitialize();
  releaseControl();
  EXPECT_TRUE(m_destroyed);
  EXPECT_EQ(0, m_lock.count);
  ASSERT_HRESULT_SUCCEEDED(CoInitialize(nullptr));
}

TEST_F(TimerOnAnyThread, OfAStartOnTheControlsThreadTheWorkerNeedsNoMessageToBegin) {
  m_control->timer.Start(10);
  while (m_platform.wholePeriods == 0) Sleep(1);
  EXPECT_EQ(0u, ticks());
  EXPECT_TRUE(waitForTicks(2));
}

TEST_F(TimerOnAnyThread, LeavesNothingWhenAnotherApartmentTookThePlaceOfItsOwn) {
  CoUninitialize();
  ASSERT_HRESULT_SUCCEEDED(CoInitialize(nullptr));
  startElsewhere(Host::noApartment, 1);
  EXPECT_EQ(0, m_platform.threadsCreated) << "nobody is there to be ticked";
  m_control->timer.Start(1);
  EXPECT_TRUE(waitForTicks(2)) << "started here, it marshals anew";
  releaseControl();
  EXPECT_TRUE(m_destroyed);
  EXPECT_EQ(0, m_lock.count);
}

TEST_F(TimerOnAnyThread, DropsStartsOnceItIsCutLoose) {
  m_control->timer.cutLoose();
  startElsewhere(Host::noApartment);
  EXPECT_EQ(0, m_platform.threadsCreated);
  EXPECT_FALSE(m_control->timer.allowStartOnAnyThread());
}

DWORD WINAPI startAndStopOverAndOver(void* argument) {
  auto& timer = *static_cast<FakeTimer*>(argument);
  for (int round = 0; round < 40; ++round) {
    timer.Start(5);
    Sleep(static_cast<DWORD>(round % 3));
    timer.clearRunning();
  }
  timer.Start(5);
  return 0;
}

TEST_F(TimerOnAnyThread, FindsEveryWorkerThatThreadsStartedAgainstEachOther) {
  std::vector<UniqueHandle> hosts;
  for (int i = 0; i < 4; ++i)
    hosts.emplace_back(CreateThread(nullptr, 0, &startAndStopOverAndOver, &m_control->timer, 0, nullptr));
  for (const UniqueHandle& host : hosts)
    ASSERT_TRUE(dispatchUntil([&] { return WaitForSingleObject(host.get(), 0) == WAIT_OBJECT_0; }));
  const std::size_t before = ticks();
  ASSERT_TRUE(waitForTicks(before + 2));
  EXPECT_THAT(m_control->tickThreads, Each(GetCurrentThreadId()));
  EXPECT_LE(m_control->timer.liveWorkers(), static_cast<std::size_t>(m_platform.threadsCreated));
  releaseControl();
  EXPECT_TRUE(m_destroyed);
  EXPECT_EQ(0, m_lock.count);
}

TEST_F(TimerOnAnyThread, KeepsNoHandleOfControlsThatComeAndGo) {
  // Never started: a worker's own apartment costs handles that other tests look at.
  const auto life = [this] {
    auto* const control = new FakeControl(m_lock, m_platform);
    EXPECT_TRUE(control->timer.allowStartOnAnyThread());
    control->Release();
  };
  for (int i = 0; i < 5; ++i) life();
  const auto before = test::Holdings::now();
  for (int i = 0; i < 100; ++i) life();
  EXPECT_EQ(before, test::Holdings::now());
}

class TimerWithoutTable : public RepaintTimerTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(RepaintTimerTest::SetUp());
    m_platform.skipSteps = true;
    ASSERT_FALSE(m_control->timer.allowStartOnAnyThread());
    m_platform.skipSteps = false;
  }
};

TEST_F(TimerWithoutTable, MarshalsForItselfOnTheControlsThread) {
  m_control->timer.Start(10);
  EXPECT_TRUE(waitForTicks(3));
}

DWORD WINAPI startOnce(void* timer) { return static_cast<FakeTimer*>(timer)->Start(10); }

TEST_F(TimerWithoutTable, IsNotStartedByOtherThreadsAndStillCanBeHere) {
  const UniqueHandle host(CreateThread(nullptr, 0, &startOnce, &m_control->timer, 0, nullptr));
  WaitForSingleObject(host.get(), INFINITE);
  EXPECT_EQ(0, m_platform.threadsCreated);
  m_control->timer.Start(10);
  EXPECT_TRUE(waitForTicks(2));
}

TEST_F(RepaintTimerTest, AnInterfaceThatNobodyDescribesIsRefusedAndNothingIsKept) {
  static constexpr IID undescribedId = {0x8c1e4d70, 0x2b6f, 0x4a91, {0xb3, 0x57, 0x1d, 0x84, 0xe6, 0x0a, 0x92, 0xcf}};
  {
    CTimer<FakeControl, IAudioVisualizationTemplate, &undescribedId> timer(*m_control, m_lock, m_platform);
    EXPECT_FALSE(timer.allowStartOnAnyThread());
    timer.Start(10);  // loops without ticking
    EXPECT_TRUE(dispatchUntil([&] { return m_platform.wholePeriods >= 2; }));
    EXPECT_EQ(0u, ticks());
  }
  EXPECT_EQ(0, m_lock.count);
}

}  // namespace
}  // namespace av::timer_test
