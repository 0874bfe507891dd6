#include "type1/channel_slots.h"

#include "support/counting_lock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using av::test::CountingLock;
using av::type1::ChannelSlots;
using av::type1::maxChannels;

/// Watches allocations: none may happen under the lock; the ones whose number is in `failing` fail.
struct Watch {
  CountingLock lock;
  int allocations = 0;
  int allocationsUnderLock = 0;
  std::set<int> failing;  ///< counted from 1
};
Watch* watch = nullptr;

double* watchedAllocate(std::size_t count) noexcept {
  ++watch->allocations;
  if (watch->lock.depth != 0) ++watch->allocationsUnderLock;
  return watch->failing.contains(watch->allocations) ? nullptr : ChannelSlots::allocateOrNull(count);
}

class ChannelSlotsTest : public testing::Test {
 protected:
  ChannelSlotsTest() { watch = &m_watch; }
  ~ChannelSlotsTest() override {
    EXPECT_EQ(m_watch.lock.depth, 0);
    EXPECT_EQ(m_watch.allocationsUnderLock, 0);
    watch = nullptr;
  }

  bool holds(int channel, double value, int windowSize = 1024) const {
    for (const auto array : {m_slots.analysis(channel), m_slots.display(channel)}) {
      if (array.size() != static_cast<std::size_t>(windowSize)) return false;
      if (!std::ranges::all_of(array, [&](double element) { return element == value; })) return false;
    }
    return true;
  }
  bool isEmpty(int channel) const { return m_slots.analysis(channel).empty() && m_slots.display(channel).empty(); }

  Watch m_watch;
  ChannelSlots m_slots{m_watch.lock, watchedAllocate};
};

}  // namespace

TEST_F(ChannelSlotsTest, StartEmpty) {
  for (int channel = 0; channel < maxChannels; ++channel) EXPECT_TRUE(isEmpty(channel));
  EXPECT_EQ(m_slots.windowSize(), 1024);
}

TEST_F(ChannelSlotsTest, AllocateOnlyWhatIsMissing) {
  m_slots.allocateMissing(2, -200.0);
  EXPECT_EQ(m_watch.allocations, 4);
  EXPECT_EQ(m_watch.lock.taken, 4);
  EXPECT_TRUE(holds(0, -200.0));
  EXPECT_TRUE(holds(1, -200.0));
  EXPECT_TRUE(isEmpty(2));

  m_slots.allocateMissing(3, 0.0);
  EXPECT_EQ(m_watch.allocations, 6);
  EXPECT_TRUE(holds(1, -200.0));
  EXPECT_TRUE(holds(2, 0.0));

  m_slots.allocateMissing(3, 5.0);
  EXPECT_EQ(m_watch.allocations, 6);
  EXPECT_EQ(m_watch.lock.taken, 6);
}

TEST_F(ChannelSlotsTest, RenewReplacesTheGivenSlotsUnderTheLock) {
  m_slots.allocateMissing(3, 1.0);
  m_watch.lock.taken = 0;
  const auto* kept = m_slots.analysis(0).data();
  m_slots.renew(1, 4, 2.0);
  EXPECT_EQ(m_watch.lock.taken, 1);
  EXPECT_EQ(m_slots.analysis(0).data(), kept);
  EXPECT_TRUE(holds(0, 1.0));
  for (int channel = 1; channel < 4; ++channel) EXPECT_TRUE(holds(channel, 2.0));
  EXPECT_TRUE(isEmpty(4));
}

TEST_F(ChannelSlotsTest, ResizeFreesEverySlotAndAllocatesThoseInUse) {
  m_slots.allocateMissing(maxChannels, 1.0);
  m_watch.lock.taken = 0;
  m_slots.resize(64, 2, 3.0);
  EXPECT_EQ(m_watch.lock.taken, 1);
  EXPECT_EQ(m_slots.windowSize(), 64);
  EXPECT_TRUE(holds(0, 3.0, 64));
  EXPECT_TRUE(holds(1, 3.0, 64));
  for (int channel = 2; channel < maxChannels; ++channel) EXPECT_TRUE(isEmpty(channel));
}

TEST_F(ChannelSlotsTest, FillStartsAtItsIndexInBothArrays) {
  m_slots.allocateMissing(3, 1.0);
  m_slots.fill(2, 1000, 9.0);
  for (int channel = 0; channel < 2; ++channel) {
    for (const auto array : {m_slots.analysis(channel), m_slots.display(channel)}) {
      EXPECT_EQ(array[999], 1.0);
      EXPECT_EQ(array[1000], 9.0);
      EXPECT_EQ(array[1023], 9.0);
    }
  }
  EXPECT_TRUE(holds(2, 1.0));
  m_slots.fill(3, 1024, 4.0);  // from N: nothing
  EXPECT_TRUE(holds(2, 1.0));
}

TEST_F(ChannelSlotsTest, AFailedAllocationLeavesASlotWithoutThatArray) {
  m_watch.failing = {2, 3};
  m_slots.allocateMissing(2, 1.0);
  EXPECT_EQ(m_slots.analysis(0).size(), 1024u);
  EXPECT_TRUE(m_slots.display(0).empty());
  EXPECT_TRUE(m_slots.analysis(1).empty());
  EXPECT_EQ(m_slots.display(1).size(), 1024u);
  m_slots.fill(2, 0, 7.0);
  EXPECT_EQ(m_slots.display(1)[0], 7.0);

  m_slots.allocateMissing(2, 5.0);  // the next try fills the gaps
  EXPECT_EQ(m_slots.display(0)[0], 5.0);
  EXPECT_EQ(m_slots.analysis(0)[0], 7.0);
}

TEST_F(ChannelSlotsTest, AFailedRenewalStillFreesTheOldArray) {
  m_slots.allocateMissing(1, 1.0);
  m_watch.failing = {3};
  m_slots.renew(0, 1, 2.0);
  EXPECT_TRUE(m_slots.analysis(0).empty());
  EXPECT_EQ(m_slots.display(0)[0], 2.0);
}
