#include "unit/type1/analysis_fixture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace av::type1 {
namespace {

TEST_F(ViewAnalysisTest, RisesByHalvesUntilTheDisplayAgrees) {
  m_settings.visualizationType = 2;
  accept(silence(16, 1, 1024));  // levels −200, element 0 at 0; the display starts at −400
  double level = -400.0;
  double elementZero = -400.0;
  for (int step = 1; step <= 9; ++step) {
    EXPECT_TRUE(m_analysis.animating()) << step;
    EXPECT_TRUE(m_analysis.smoothingStep(m_settings));
    level += (-200.0 - level) * 0.5;
    elementZero *= 0.5;
    EXPECT_EQ(displayOf(0)[1], level);
    EXPECT_EQ(displayOf(0)[511], level);
    EXPECT_EQ(displayOf(0)[0], elementZero);
    EXPECT_EQ(displayOf(0)[512], -400.0);  // only the first half moves
  }
  EXPECT_FALSE(m_analysis.animating());  // −200.39 and −0.78 are −200 and 0 to the integer
  EXPECT_FALSE(m_analysis.smoothingStep(m_settings));
  EXPECT_EQ(displayOf(0)[1], level);
}

TEST_F(ViewAnalysisTest, FallsByQuartersAndTakesMoreSteps) {
  const auto stepsToward = [&](int sample, double share) {
    accept(makePcm(16, 1, 1024, [&](int, int) { return sample; }));
    double value = displayOf(0)[7];
    int steps = 0;
    while (steps < 100 && m_analysis.smoothingStep(m_settings)) {
      value += (sample - value) * share;
      EXPECT_NEAR(displayOf(0)[7], value, 1e-12);
      ++steps;
    }
    EXPECT_TRUE(allAre(displayOf(0).first(512), displayOf(0)[0]));
    return steps;
  };
  EXPECT_EQ(stepsToward(0, 0.5), 8);
  EXPECT_EQ(displayOf(0)[0], -0.78125);
  stepsToward(200, 0.5);  // ends at 200 only: 199.99 is 199 to the integer
  EXPECT_EQ(displayOf(0)[0], 200.0);
  EXPECT_EQ(stepsToward(0, 0.25), 19);
  EXPECT_EQ(std::trunc(displayOf(0)[0]), 0.0);
}

TEST_F(ViewAnalysisTest, WaitsWhileSmoothingIsOffAndGoesOnWhenItIsOn) {
  m_settings.visualizationSmooth = std::int16_t{0};
  EXPECT_EQ(accept(makePcm(16, 1, 1024, ramp)), Outcome::analysed);
  EXPECT_TRUE(m_analysis.animating());
  EXPECT_FALSE(m_analysis.smoothingStep(m_settings));
  EXPECT_TRUE(allAre(displayOf(0), -200.0));
  EXPECT_TRUE(m_analysis.animating());
  m_settings.visualizationSmooth = std::int16_t{-1};
  EXPECT_TRUE(m_analysis.smoothingStep(m_settings));
  EXPECT_NE(displayOf(0)[3], -200.0);
}

TEST_F(ViewAnalysisTest, ANewBlockArmsTheAnimationAgain) {
  accept(silence(16, 1, 1024));
  for (int step = 0; step < 8; ++step) EXPECT_TRUE(m_analysis.smoothingStep(m_settings));
  EXPECT_FALSE(m_analysis.animating());
  accept(silence(16, 1, 1024));
  EXPECT_TRUE(m_analysis.animating());
  EXPECT_TRUE(m_analysis.smoothingStep(m_settings));  // converged at once, and drawn all the same
  EXPECT_FALSE(m_analysis.animating());
}

TEST_F(ViewAnalysisTest, SmoothsEveryChannelInUseAndNoOther) {
  accept(makePcm(16, 3, 1024, ramp));
  accept(makePcm(16, 2, 1024, ramp));
  m_analysis.smoothingStep(m_settings);
  EXPECT_EQ(displayOf(1)[0], -200.0 + (ramp(0, 1) + 200.0) * 0.5);
  EXPECT_TRUE(allAre(displayOf(2), -200.0));
}

TEST_F(ViewAnalysisTest, SmoothingStopsAtTheFirstSlotThatLacksAnArray) {
  failingAllocations = {4};
  accept(makePcm(16, 3, 1024, [](int, int channel) { return channel == 0 ? -200 : 100; }));
  // The block grew from 2 to 3 channels, so the third slot came first (allocations 1 and 2), then slot 0 (3 and 4).
  ASSERT_TRUE(displayOf(0).empty());
  ASSERT_FALSE(displayOf(1).empty());
  EXPECT_TRUE(m_analysis.smoothingStep(m_settings));
  EXPECT_TRUE(allAre(displayOf(1), -200.0));
  EXPECT_TRUE(allAre(displayOf(2), -200.0));
  EXPECT_FALSE(m_analysis.animating());  // nothing was left that had not converged
}

TEST_F(ViewAnalysisTest, SmoothsUnderTheDrawingLock) {
  accept(makePcm(16, 2, 1024, ramp));
  m_lock.taken = 0;
  m_analysis.smoothingStep(m_settings);
  EXPECT_EQ(m_lock.taken, 1);
}

}  // namespace
}  // namespace av::type1
