#include "common/repaint_schedule.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace av {
namespace {

/// Time that passes only while the worker sleeps, and a record of what the worker does.
struct Rehearsal {
  RepaintWords words;
  std::uint32_t now = 5000;
  std::uint32_t tickDurationMs = 0;
  std::vector<std::string> steps;  ///< "1x30" for thirty polling sleeps, "30", "tick"
  std::vector<std::uint32_t> tickTimes;
  std::function<void()> onTick = [] {};
  std::function<void(std::uint32_t)> onSleep = [](std::uint32_t) {};
  int pollingSleeps = 0;

  void endPolling() {
    if (pollingSleeps != 0) steps.push_back("1x" + std::to_string(pollingSleeps));
    pollingSleeps = 0;
  }

  void run(std::uint32_t periodMs) {
    words.m_nInterval = periodMs;
    words.m_bRunning = 1;
    runRepaintSchedule(
        words, [this] { return now; },
        [this](std::uint32_t ms) {
          if (ms == 1) {
            ++pollingSleeps;
          } else {
            endPolling();
            steps.push_back(std::to_string(ms));
          }
          now += ms;
          onSleep(ms);
        },
        [this] {
          endPolling();
          steps.push_back("tick");
          tickTimes.push_back(now);
          now += tickDurationMs;
          onTick();
        });
    endPolling();
  }

  void stopAfterTicks(std::size_t count) {
    onTick = [this, count] {
      if (tickTimes.size() == count) words.m_bRunning = 0;
    };
  }
};

using testing::ElementsAre;

TEST(RepaintSchedule, PollsThroughTheFirstPeriodThenSleepsWholePeriods) {
  Rehearsal worker;
  worker.stopAfterTicks(3);
  worker.run(30);
  EXPECT_THAT(worker.steps, ElementsAre("1x30", "30", "tick", "30", "tick", "30", "tick"));
}

TEST(RepaintSchedule, TicksFirstAfterTwoPeriodsAndThenEveryPeriod) {
  Rehearsal worker;
  worker.stopAfterTicks(3);
  worker.run(50);
  EXPECT_THAT(worker.tickTimes, ElementsAre(5100u, 5150u, 5200u));
}

TEST(RepaintSchedule, AddsTheTicksOwnDurationToEachPeriod) {
  Rehearsal worker;
  worker.tickDurationMs = 17;
  worker.stopAfterTicks(3);
  worker.run(30);
  EXPECT_THAT(worker.tickTimes, ElementsAre(5060u, 5107u, 5154u));
}

TEST(RepaintSchedule, CrossesTheWrapOfTheTickCount) {
  Rehearsal worker;
  worker.now = 0xFFFFFFF6u;  // ten milliseconds before the wrap
  worker.stopAfterTicks(2);
  worker.run(30);
  EXPECT_THAT(worker.steps, ElementsAre("1x30", "30", "tick", "30", "tick"));
  EXPECT_EQ(0xFFFFFFF6u, worker.words.m_nStartTick);
}

TEST(RepaintSchedule, NeverAdvancesTheStartTick) {
  Rehearsal worker;
  worker.stopAfterTicks(5);
  worker.run(30);
  EXPECT_EQ(5000u, worker.words.m_nStartTick);
}

TEST(RepaintSchedule, TakesANewPeriodFromTheNextWait) {
  Rehearsal worker;
  worker.onSleep = [&](std::uint32_t ms) {
    if (ms == 30) worker.words.m_nInterval = 50;  // set during the first whole period
  };
  worker.stopAfterTicks(2);
  worker.run(30);
  EXPECT_THAT(worker.steps, ElementsAre("1x30", "30", "tick", "50", "tick"));
}

TEST(RepaintSchedule, PollsToTheEndOfALongerPeriodThatIsSetMeanwhile) {
  Rehearsal worker;
  worker.onSleep = [&](std::uint32_t) {
    if (worker.now == 5010) worker.words.m_nInterval = 50;
  };
  worker.stopAfterTicks(1);
  worker.run(30);
  EXPECT_THAT(worker.steps, ElementsAre("1x50", "50", "tick"));
}

TEST(RepaintSchedule, PollsAgainWhenALongerPeriodIsSetAfterTheFirst) {
  Rehearsal worker;
  worker.onTick = [&] {
    worker.words.m_nInterval = 100;
    if (worker.tickTimes.size() == 2) worker.words.m_bRunning = 0;
  };
  worker.run(30);
  // 60 ms have passed since the start tick when the new period is seen: 40 are left of it.
  EXPECT_THAT(worker.steps, ElementsAre("1x30", "30", "tick", "1x40", "100", "tick"));
}

TEST(RepaintSchedule, EndsWithinAMillisecondOfAStopDuringTheFirstPeriod) {
  Rehearsal worker;
  worker.onSleep = [&](std::uint32_t) {
    if (worker.now == 5010) worker.words.m_bRunning = 0;
  };
  worker.run(30);
  EXPECT_THAT(worker.steps, ElementsAre("1x10"));
}

TEST(RepaintSchedule, EndsAfterTheWaitThatAStopFallsInto) {
  Rehearsal worker;
  worker.onSleep = [&](std::uint32_t ms) {
    if (ms == 30) worker.words.m_bRunning = 0;
  };
  worker.run(30);
  EXPECT_THAT(worker.steps, ElementsAre("1x30", "30"));
  EXPECT_EQ(0, worker.words.m_bBusy);
}

TEST(RepaintSchedule, GoesOnWhenTheFlagIsSetAgainBeforeTheWaitEnds) {
  Rehearsal worker;
  int sleeps = 0;
  worker.onSleep = [&](std::uint32_t ms) {
    if (ms != 30) return;
    worker.words.m_bRunning = 0;
    worker.words.m_bRunning = 1;
    ++sleeps;
  };
  worker.stopAfterTicks(2);
  worker.run(30);
  EXPECT_EQ(2, sleeps);
  EXPECT_EQ(2u, worker.tickTimes.size());
}

TEST(RepaintSchedule, IsBusyWhileItWaitsAndNotWhileItTicks) {
  Rehearsal worker;
  std::vector<int> whileWaiting, whileTicking;
  worker.onSleep = [&](std::uint32_t) { whileWaiting.push_back(worker.words.m_bBusy); };
  worker.onTick = [&] {
    whileTicking.push_back(worker.words.m_bBusy);
    worker.words.m_bRunning = 0;
  };
  worker.run(30);
  EXPECT_THAT(whileWaiting, testing::Each(1));
  EXPECT_THAT(whileTicking, ElementsAre(0));
}

TEST(RepaintSchedule, DoesNothingWhenItWasStoppedBeforeItBegan) {
  RepaintWords words;
  words.m_nInterval = 30;
  runRepaintSchedule(
      words, [] { return 7u; }, [](std::uint32_t) { FAIL() << "slept"; }, [] { FAIL() << "ticked"; });
  EXPECT_EQ(7u, words.m_nStartTick);
}

}  // namespace
}  // namespace av
