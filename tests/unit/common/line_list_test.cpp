#include "common/line_list.h"

#include "support/counting_lock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace av {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

class LineListTest : public testing::Test {
 protected:
  ~LineListTest() override { EXPECT_EQ(m_lock.depth, 0); }

  std::vector<LineInfo> lines() {
    std::vector<LineInfo> copy;
    m_list.withLines([&](std::span<LineInfo> all) { copy.assign(all.begin(), all.end()); });
    return copy;
  }
  void write(std::size_t line, double value) {
    m_list.withLines([&](std::span<LineInfo> all) { writeLine(all[line], value, m_nowMs); });
  }
  /// A period of the fall thread: the clock goes on, then the peaks are lowered.
  void period(std::uint32_t periodMs = 10) {
    m_nowMs += periodMs;
    m_list.FallStep([this] { return m_nowMs; });
  }

  test::CountingLock m_lock;
  LineList m_list{m_lock};
  std::uint32_t m_nowMs = 5000;
};

TEST_F(LineListTest, HasNoLinesAtFirst) {
  EXPECT_EQ(m_list.count(), 0);
  EXPECT_TRUE(lines().empty());
  period();
  m_list.SetHoldTime(200);
  m_list.ResetLines(1);
}

TEST_F(LineListTest, FreshLinesAreEmptyAndHoldForASecondWhateverTheHoldTimeWas) {
  const LineInfo fresh{1000, -91.0, -91.0, 0};
  m_list.SetHoldTime(200);
  m_list.SetLineCount(100);
  EXPECT_EQ(m_list.count(), 100);
  EXPECT_EQ(lines(), std::vector<LineInfo>(100, fresh));
  m_list.SetHoldTime(300);
  EXPECT_EQ(lines()[99].holdMs, 300);
  write(0, -5.0);
  m_list.SetLineCount(3);
  EXPECT_EQ(lines(), std::vector<LineInfo>(3, fresh));
}

TEST_F(LineListTest, TakesNegativeCountsForNone) {
  m_list.SetLineCount(5);
  m_list.SetLineCount(-1);
  EXPECT_EQ(m_list.count(), 0);
  EXPECT_TRUE(lines().empty());
}

TEST_F(LineListTest, ValuesJumpAndRaiseThePeaksThatTheyExceed) {
  m_list.SetLineCount(1);
  m_nowMs = 77;
  write(0, -20.0);
  EXPECT_EQ(lines()[0], (LineInfo{1000, -20.0, -20.0, 77}));
  m_nowMs = 88;
  write(0, -20.0);  // not above the peak: held since 77
  EXPECT_EQ(lines()[0], (LineInfo{1000, -20.0, -20.0, 77}));
  m_nowMs = 99;
  write(0, -40.0);
  EXPECT_EQ(lines()[0], (LineInfo{1000, -40.0, -20.0, 77}));
  write(0, -19.5);
  EXPECT_EQ(lines()[0], (LineInfo{1000, -19.5, -19.5, 99}));
}

TEST_F(LineListTest, AValueThatIsNoNumberIsKeptAndRaisesNothing) {
  m_list.SetLineCount(1);
  write(0, -30.0);
  m_nowMs += 1;
  write(0, nan);
  EXPECT_NE(lines()[0].value, lines()[0].value);
  EXPECT_EQ(lines()[0].peak, -30.0);
  EXPECT_EQ(lines()[0].peakTime, 5000u);
  for (int i = 0; i < 300; ++i) period();
  EXPECT_EQ(lines()[0].peak, -30.0 - (300 - 99));  // nothing catches it
}

TEST_F(LineListTest, APeakIsHeldThenFallsByOneAPeriodToTheValueWhereItIsHeldAnew) {
  m_list.SetLineCount(1);
  write(0, -10.0);
  write(0, -40.0);
  for (int i = 1; i <= 99; ++i) {
    period();
    ASSERT_EQ(lines()[0].peak, -10.0) << i;
  }
  for (int i = 1; i <= 30; ++i) {
    period();
    ASSERT_EQ(lines()[0].peak, -10.0 - i);
    ASSERT_EQ(lines()[0].peakTime, 5000u);
  }
  period();  // it would pass the value, which catches it
  EXPECT_EQ(lines()[0], (LineInfo{1000, -40.0, -40.0, m_nowMs}));
  const std::uint32_t caughtMs = m_nowMs;
  for (int i = 1; i <= 99; ++i) period();
  EXPECT_EQ(lines()[0], (LineInfo{1000, -40.0, -40.0, caughtMs}));
  period();
  EXPECT_EQ(lines()[0], (LineInfo{1000, -40.0, -40.0, m_nowMs}));
}

TEST_F(LineListTest, APeakFallsWhenItsHoldTimeHasPassedToTheMillisecond) {
  for (const std::int32_t holdMs : {1, 200, 1000}) {
    m_list.SetLineCount(1);
    m_list.SetHoldTime(holdMs);
    write(0, -10.0);
    write(0, -90.0);
    period(static_cast<std::uint32_t>(holdMs) - 1);
    EXPECT_EQ(lines()[0].peak, -10.0) << holdMs;
    period(1);
    EXPECT_EQ(lines()[0].peak, -11.0) << holdMs;
  }
}

TEST_F(LineListTest, HoldTimesOfZeroAndLessHoldNothing) {
  for (const std::int32_t holdMs : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    m_list.SetLineCount(1);
    m_list.SetHoldTime(holdMs);
    write(0, -10.0);
    write(0, -90.0);
    period(0);
    EXPECT_EQ(lines()[0].peak, -11.0) << holdMs;
  }
}

TEST_F(LineListTest, FallsAcrossTheWrapOfTheTickCount) {
  for (std::uint32_t beforeWrapMs = 0; beforeWrapMs <= 1010; beforeWrapMs += 5) {
    m_nowMs = 0u - beforeWrapMs;
    m_list.SetLineCount(1);
    write(0, -10.0);
    write(0, -91.0);
    for (int i = 1; i <= 99; ++i) {
      period();
      ASSERT_EQ(lines()[0].peak, -10.0) << beforeWrapMs;
    }
    period();
    ASSERT_EQ(lines()[0].peak, -11.0) << beforeWrapMs;
  }
}

TEST_F(LineListTest, APeakOlderThanHalfTheRangeOfTheTickCountWaits) {
  m_list.SetLineCount(1);
  m_list.SetHoldTime(0);
  write(0, -10.0);
  write(0, -90.0);
  period(0x7FFFFFFF);
  EXPECT_EQ(lines()[0].peak, -11.0);
  period(1);  // 2^31 ms after the raise the difference turns negative
  EXPECT_EQ(lines()[0].peak, -11.0);
  period(0x80000000);
  EXPECT_EQ(lines()[0].peak, -12.0);
}

TEST_F(LineListTest, ReadsTheClockForEachLineAndAgainForAPeakThatIsCaught) {
  m_list.SetLineCount(3);
  m_list.withLines([](std::span<LineInfo> all) { all[1].value = -50.0; });
  std::uint32_t readings = 100;
  m_list.FallStep([&] { return readings++; });
  EXPECT_EQ(readings, 104u);
  EXPECT_EQ(lines()[0].peakTime, 0u);
  EXPECT_EQ(lines()[1], (LineInfo{1000, -50.0, -50.0, 102}));
}

TEST_F(LineListTest, ResettingEmptiesTheLinesAndLeavesThePeaksToFall) {
  m_list.SetLineCount(2);
  write(0, -10.0);
  write(1, nan);
  m_list.withLines([](std::span<LineInfo> all) { all[1].peak = -95.0; });  // below the floor it is brought up to it
  m_list.ResetLines(6000);
  EXPECT_EQ(lines()[0], (LineInfo{1000, -91.0, -10.0, 5000}));
  EXPECT_EQ(lines()[1], (LineInfo{1000, -91.0, -91.0, 6000}));
  m_nowMs = 6000;
  period(1000);
  EXPECT_EQ(lines()[0].peak, -11.0);
}

TEST_F(LineListTest, TakesTheLockOnceForEachOperation) {
  m_list.SetLineCount(10);
  m_list.SetHoldTime(5);
  m_list.ResetLines(0);
  m_list.FallStep([this] {
    EXPECT_EQ(m_lock.depth, 1);
    return m_nowMs;
  });
  m_list.withLines([this](std::span<LineInfo>) { EXPECT_EQ(m_lock.depth, 1); });
  EXPECT_EQ(m_lock.taken, 5);
}

// The rules once more, in whole milliseconds since an imagined start that never wraps.
TEST_F(LineListTest, FollowsARandomSongLikeItsRulesInUnboundedTime) {
  std::mt19937 random(7);
  m_nowMs = 0u - 400000;  // the wrap lies in the middle
  m_list.SetLineCount(1);
  m_list.SetHoldTime(250);
  write(0, -91.5);  // raises nothing
  double value = -91.5;
  double peak = -91.0;
  std::int64_t now = 0;
  std::int64_t raised = -1'000'000'000;  // long ago, as peakTime 0 is
  m_list.withLines([&](std::span<LineInfo> all) { all[0].peakTime = m_nowMs - 1'000'000'000; });
  for (int i = 0; i < 100000; ++i) {
    if (random() % 8 == 0) {
      value = -static_cast<double>(random() % 910) / 10.0;
      write(0, value);
      if (value > peak) {
        peak = value;
        raised = now;
      }
    }
    const auto periodMs = static_cast<std::uint32_t>(random() % 20);
    now += periodMs;
    period(periodMs);
    if (now >= raised + 250) peak -= 1;
    if (peak < value) {
      peak = value;
      raised = now;
    }
    ASSERT_EQ(lines()[0].peak, peak) << i;
    ASSERT_EQ(lines()[0].value, value) << i;
  }
}

}  // namespace
}  // namespace av
