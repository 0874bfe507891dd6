#pragma once

#include "support/counting_lock.h"
#include "support/pcm.h"
#include "type1/analysis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <span>
#include <vector>

namespace av::type1 {

using test::makePcm;
using test::Pcm;
using test::silence;

/// An analysis that draws nothing and counts what it allocates and locks.
class ViewAnalysisTest : public testing::Test {
  static double* allocate(std::size_t count) noexcept {
    return failingAllocations.contains(++allocations) ? nullptr : ChannelSlots::allocateOrNull(count);
  }

 protected:
  using Outcome = ViewAnalysis::Outcome;

  ViewAnalysisTest() {
    failingAllocations.clear();
    allocations = 0;
  }
  ~ViewAnalysisTest() override { EXPECT_EQ(m_lock.depth, 0); }

  Outcome accept(const Pcm& pcm) { return m_analysis.accept(pcm.block(), m_settings); }
  std::span<const double> analysisOf(int channel) const {
    return m_analysis.signal().analysis[static_cast<std::size_t>(channel)];
  }
  std::span<const double> displayOf(int channel) const {
    return m_analysis.signal().display[static_cast<std::size_t>(channel)];
  }
  std::vector<double> copyOf(std::span<const double> array) const { return {array.begin(), array.end()}; }
  void useWindowSize(int size) {
    m_settings.fftWindowSize = size;
    m_analysis.resizeWindow(m_settings);
  }

  /// Numbers of the allocations of channel arrays, from 1, that fail.
  static inline std::set<int> failingAllocations;
  static inline int allocations = 0;

  test::CountingLock m_lock;
  ViewSettings m_settings;
  ViewAnalysis m_analysis{m_lock, allocate};
};

inline bool allAre(std::span<const double> array, double value) {
  return std::ranges::all_of(array, [&](double element) { return element == value; });
}

/// A ramp that is different in every frame and channel and fits into 8 bits.
inline int ramp(int frame, int channel) { return (frame * 7 + channel * 31) % 251 - 125; }

}  // namespace av::type1
