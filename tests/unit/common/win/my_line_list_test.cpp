#include "common/win/my_line_list.h"

#include "common/win/unique_handle.h"
#include "support/win/resource_probes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <optional>

namespace av {
namespace {

/// The system, with a tick count that the test can set, and threads that can be refused or watched.
class FallPlatform final : public WorkerPlatform {
 public:
  HANDLE createThread(LPTHREAD_START_ROUTINE body, void* argument, DWORD& threadId) noexcept override {
    ++threadsAsked;
    if (refuseThreads) return nullptr;
    const HANDLE thread = CreateThread(nullptr, 0, body, argument, 0, &threadId);
    HANDLE copy = nullptr;
    DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
    lastThread.reset(copy);
    return thread;
  }
  DWORD tickCount() noexcept override {
    ++tickCountsRead;
    return nowMs;
  }
  void sleepMs(DWORD durationMs) noexcept override { Sleep(durationMs); }
  void inModuleContext(void (*step)(void*), void* argument) noexcept override { step(argument); }

  bool lastThreadHasEnded() const { return WaitForSingleObject(lastThread.get(), 0) == WAIT_OBJECT_0; }

  bool refuseThreads = false;
  int threadsAsked = 0;
  std::atomic<DWORD> nowMs{0};
  std::atomic<int> tickCountsRead{0};
  UniqueHandle lastThread;
};

using List = CMyLineList<IAudioVisualization4Type2>;

class MyLineListTest : public testing::Test {
 protected:
  MyLineListTest() { m_list.emplace(m_platform); }

  double peak() {
    double value = 0.0;
    m_list->lines().withLines([&](std::span<LineInfo> lines) { value = lines[0].peak; });
    return value;
  }
  /// One line that falls at once, from `peak` on towards −91.
  void setFallingPeak(double peak) {
    m_list->lines().SetLineCount(1);
    m_list->lines().SetHoldTime(0);
    m_list->lines().withLines([&](std::span<LineInfo> lines) { lines[0].peak = peak; });
  }
  static bool waitUntil(const std::function<bool()>& done) {
    for (int i = 0; i < 10000 && !done(); ++i) Sleep(1);
    return done();
  }
  static DWORD elapsedMs(const std::function<void()>& step) {
    const DWORD start = GetTickCount();
    step();
    return GetTickCount() - start;
  }

  FallPlatform m_platform;
  std::optional<List> m_list;
};

TEST_F(MyLineListTest, StandsStillUntilItIsStarted) {
  EXPECT_FALSE(m_list->isTickRunning());
  EXPECT_EQ(0, m_platform.threadsAsked);
  m_list->SetTickRunning(false);
  EXPECT_EQ(0, m_platform.threadsAsked);
}

TEST_F(MyLineListTest, LowersThePeaksPeriodAfterPeriod) {
  setFallingPeak(-10.0);
  m_list->StartFall(5);
  EXPECT_TRUE(m_list->isTickRunning());
  EXPECT_TRUE(waitUntil([&] { return peak() <= -15.0; }));
}

TEST_F(MyLineListTest, SleepsBeforeItsFirstStep) {
  setFallingPeak(-10.0);
  m_list->StartFall(100000);
  Sleep(50);
  EXPECT_EQ(-10.0, peak());
  EXPECT_EQ(0, m_platform.tickCountsRead);
}

TEST_F(MyLineListTest, TakesItsClockFromTheSystem) {
  m_list->lines().SetLineCount(1);
  m_list->lines().withLines([](std::span<LineInfo> lines) { lines[0].peak = -10.0; });
  m_platform.nowMs = 999;
  m_list->StartFall(1);
  ASSERT_TRUE(waitUntil([&] { return m_platform.tickCountsRead > 3; }));
  EXPECT_EQ(-10.0, peak());
  m_platform.nowMs = 1000;
  EXPECT_TRUE(waitUntil([&] { return peak() < -10.0; }));
}

TEST_F(MyLineListTest, HasOneThreadHoweverOftenItIsStarted) {
  m_list->StartFall(10);
  m_list->SetTickRunning(true);
  m_list->StartFall(20);
  EXPECT_EQ(1, m_platform.threadsAsked);
}

TEST_F(MyLineListTest, PeriodsOfZeroAndLessSleepAMillisecond) {
  for (const std::int32_t periodMs : {0, -1, INT32_MIN}) {
    setFallingPeak(-10.0);
    m_list->StartFall(periodMs);
    EXPECT_TRUE(waitUntil([&] { return peak() <= -15.0; })) << periodMs;
    // A thread that did not sleep would read the clock a million times a second.
    const int before = m_platform.tickCountsRead;
    const DWORD duration = elapsedMs([] { Sleep(100); });
    EXPECT_LE(m_platform.tickCountsRead - before, static_cast<int>(4 * (duration + 20))) << periodMs;
  }
}

TEST_F(MyLineListTest, AChangedPeriodCountsFromTheNextSleepOn) {
  setFallingPeak(-10.0);
  m_list->StartFall(5);
  ASSERT_TRUE(waitUntil([&] { return peak() <= -12.0; }));
  m_list->StartFall(100000);
  Sleep(300);  // the short sleep ends, the long one begins
  const double before = peak();
  Sleep(100);
  EXPECT_EQ(before, peak());
  EXPECT_EQ(1, m_platform.threadsAsked);
}

TEST_F(MyLineListTest, SwitchingOffReturnsOnlyWhenTheSleepHasEndedAndStopsTheFall) {
  setFallingPeak(-10.0);
  m_list->StartFall(300);
  ASSERT_TRUE(waitUntil([&] { return peak() < -10.0; }));  // a sleep begins
  const double before = peak();
  const DWORD duration = elapsedMs([&] { m_list->SetTickRunning(false); });
  EXPECT_GE(duration, 200u);
  EXPECT_TRUE(m_platform.lastThreadHasEnded());
  EXPECT_FALSE(m_list->isTickRunning());
  EXPECT_EQ(before, peak());
}

TEST_F(MyLineListTest, SwitchingOnAgainGoesOnWithThePeriodThatItHad) {
  setFallingPeak(-10.0);
  m_list->StartFall(1);
  m_list->SetTickRunning(false);
  const double before = peak();
  m_list->SetTickRunning(true);
  EXPECT_EQ(2, m_platform.threadsAsked);
  EXPECT_TRUE(waitUntil([&] { return peak() < before; }));
}

TEST_F(MyLineListTest, ANewPeriodStartsTheFallThatWasSwitchedOff) {
  setFallingPeak(-10.0);
  m_list->StartFall(1);
  m_list->SetTickRunning(false);
  const double before = peak();
  m_list->StartFall(1);
  EXPECT_TRUE(m_list->isTickRunning());
  EXPECT_TRUE(waitUntil([&] { return peak() < before; }));
}

TEST_F(MyLineListTest, DestructionEndsTheLongestSleepAtOnce) {
  m_list->StartFall(INT32_MAX);
  Sleep(20);
  const DWORD duration = elapsedMs([&] { m_list.reset(); });
  EXPECT_LT(duration, 5000u);
  EXPECT_TRUE(m_platform.lastThreadHasEnded());
}

TEST_F(MyLineListTest, ThreadsThatAreNotToBeHadMayBeAskedForAgain) {
  m_platform.refuseThreads = true;
  m_list->StartFall(1);
  EXPECT_FALSE(m_list->isTickRunning());
  m_list->SetTickRunning(false);
  m_platform.refuseThreads = false;
  setFallingPeak(-10.0);
  m_list->SetTickRunning(true);
  EXPECT_TRUE(waitUntil([&] { return peak() <= -12.0; }));
}

/// What a window does with its one message.
std::function<void()> onMessage;

LRESULT CALLBACK callOnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_APP) return DefWindowProcW(window, message, wParam, lParam);
  onMessage();
  return 0;
}

class MyLineListMessages : public MyLineListTest {
 protected:
  MyLineListMessages() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &callOnMessage;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"MyLineListTest";
    RegisterClassW(&windowClass);
    m_window = CreateWindowExW(0, L"MyLineListTest", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance,
                               nullptr);
  }
  ~MyLineListMessages() override {
    DestroyWindow(m_window);
    onMessage = nullptr;
  }

  HWND m_window;
};

TEST_F(MyLineListMessages, AreDispatchedWhileSwitchingOffWaits) {
  int messages = 0;
  onMessage = [&] { ++messages; };
  m_list->StartFall(200);
  PostMessageW(m_window, WM_APP, 0, 0);
  m_list->SetTickRunning(false);
  EXPECT_EQ(1, messages);
}

TEST_F(MyLineListMessages, AStartInsideTheWaitOfAStopBeginsAThreadOfItsOwnAndTheStopStillReturns) {
  setFallingPeak(1e6);
  m_list->StartFall(200);
  Sleep(20);
  const HANDLE first = m_platform.lastThread.release();
  onMessage = [&] { m_list->StartFall(1); };
  PostMessageW(m_window, WM_APP, 0, 0);
  m_list->SetTickRunning(false);
  EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(first, 0));
  CloseHandle(first);
  EXPECT_TRUE(m_list->isTickRunning());
  EXPECT_EQ(2, m_platform.threadsAsked);
  const double before = peak();
  EXPECT_TRUE(waitUntil([&] { return peak() < before; }));
}

TEST_F(MyLineListTest, LeavesNoHandleBehind) {
  const auto life = [this] {
    List list(m_platform);
    list.lines().SetLineCount(10);
    list.StartFall(1);
    list.SetTickRunning(false);
    list.SetTickRunning(true);
  };
  for (int i = 0; i < 3; ++i) life();
  m_platform.lastThread.reset();
  const auto before = test::openKernelHandles();
  for (int i = 0; i < 50; ++i) life();
  m_platform.lastThread.reset();
  EXPECT_LT(test::openKernelHandles(), before + 10);
}

}  // namespace
}  // namespace av
