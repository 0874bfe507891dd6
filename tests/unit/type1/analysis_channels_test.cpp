#include "unit/type1/analysis_fixture.h"

#include <gtest/gtest.h>

namespace av::type1 {
namespace {

// ---- channels that come and go

TEST_F(ViewAnalysisTest, StereoAfterMonoAllocatesSlotOneAndResetsBothChannels) {
  const struct {
    int type;
    double resetTo;
  } cases[] = {{1, -200.0}, {2, -400.0}, {5, -1000.0}, {6, 0.0}, {0, 0.0}, {-2, 400.0}};
  for (const auto& c : cases) {
    ViewAnalysis analysis(m_lock);
    ViewSettings settings;
    settings.visualizationType = c.type;
    EXPECT_EQ(analysis.accept(makePcm(16, 1, 1024, ramp).block(), settings), Outcome::analysed);
    EXPECT_TRUE(analysis.signal().analysis[1].empty());
    analysis.smoothingStep(settings);  // moves the display away from the reset value
    EXPECT_NE(analysis.signal().display[0][5], c.resetTo);

    EXPECT_EQ(analysis.accept(makePcm(16, 2, 1024, ramp).block(), settings), Outcome::analysed);
    EXPECT_TRUE(allAre(analysis.signal().display[0], c.resetTo)) << c.type;
    EXPECT_EQ(analysis.signal().display[1].size(), 1024u);
    EXPECT_TRUE(allAre(analysis.signal().display[1], c.resetTo)) << c.type;
  }
}

TEST_F(ViewAnalysisTest, ResetsOnGrowthBeforeItConverts) {
  accept(makePcm(16, 1, 1024, ramp));
  accept(makePcm(12, 2, 1024, ramp));  // not converted: what the reset wrote stays
  EXPECT_TRUE(allAre(analysisOf(0), -200.0));
  EXPECT_TRUE(allAre(analysisOf(1), -200.0));
}

TEST_F(ViewAnalysisTest, ABlockOfAsManyChannelsKeepsTheDisplay) {
  accept(makePcm(16, 2, 1024, ramp));
  m_analysis.smoothingStep(m_settings);
  const auto before = copyOf(displayOf(1));
  accept(makePcm(16, 2, 1024, ramp));
  EXPECT_EQ(copyOf(displayOf(1)), before);
}

TEST_F(ViewAnalysisTest, FewerChannelsFreeNothing) {
  accept(makePcm(16, 3, 1024, ramp));
  const auto* second = analysisOf(1).data();
  const auto third = copyOf(analysisOf(2));
  const int before = allocations;
  accept(makePcm(16, 1, 1024, ramp));
  EXPECT_EQ(m_analysis.signal().channelCount, 1);
  EXPECT_EQ(analysisOf(1).data(), second);
  EXPECT_EQ(copyOf(analysisOf(2)), third);
  EXPECT_EQ(allocations, before);

  accept(makePcm(12, 3, 1024, ramp));  // grows again: both slots are new, with nothing of their past
  EXPECT_EQ(allocations, before + 4);
  EXPECT_TRUE(allAre(analysisOf(1), -200.0));
  EXPECT_TRUE(allAre(analysisOf(2), -200.0));
}

TEST_F(ViewAnalysisTest, SlotsAddedByAShortBlockStartAtTheResetValue) {
  m_settings.visualizationType = 3;
  accept(makePcm(16, 2, 1024, ramp));
  m_analysis.smoothingStep(m_settings);
  const auto display = copyOf(displayOf(0));
  const auto analysis = copyOf(analysisOf(0));

  EXPECT_EQ(accept(makePcm(16, 4, 1023, ramp)), Outcome::stored);
  EXPECT_EQ(m_analysis.signal().channelCount, 4);
  for (int channel = 2; channel < 4; ++channel) {
    ASSERT_EQ(analysisOf(channel).size(), 1024u);
    EXPECT_TRUE(allAre(analysisOf(channel), -600.0));
    EXPECT_TRUE(allAre(displayOf(channel), -600.0));
  }
  EXPECT_EQ(copyOf(displayOf(0)), display);  // the short block ended before the reset
  EXPECT_EQ(copyOf(analysisOf(0)), analysis);

  EXPECT_EQ(accept(makePcm(16, 4, 1024, ramp)), Outcome::analysed);
  EXPECT_EQ(copyOf(displayOf(0)), display);  // and the next one did not grow
}

TEST_F(ViewAnalysisTest, MoreThanEighteenChannelsGrowNothingFurther) {
  accept(makePcm(8, 18, 1024, ramp));
  const int before = allocations;
  accept(makePcm(8, 20, 1024, ramp));
  accept(makePcm(8, 40, 1024, ramp));
  EXPECT_EQ(allocations, before);
  EXPECT_EQ(before, 2 * 18);
}

// ---- locks and memory

TEST_F(ViewAnalysisTest, TakesTheDrawingLockOnlyToExchangeArrays) {
  accept(silence(16, 2, 1024));
  const int forTheFirst = m_lock.taken;
  EXPECT_GT(forTheFirst, 0);
  EXPECT_EQ(allocations, 4);

  accept(makePcm(16, 2, 1024, ramp));
  accept(makePcm(24, 1, 5000, ramp));
  accept(makePcm(8, 2, 100, ramp));
  m_settings.visualizationType = 3;
  m_settings.fftWindowType = 4;
  accept(makePcm(32, 1, 1024, ramp));
  EXPECT_EQ(m_lock.taken, forTheFirst + 1);  // the growth from one channel to two
  EXPECT_EQ(allocations, 6);

  accept(makePcm(16, 4, 10, ramp));  // short, but it grows
  EXPECT_EQ(m_lock.taken, forTheFirst + 2);
  m_analysis.resizeWindow(m_settings);
  EXPECT_EQ(m_lock.taken, forTheFirst + 3);
}

TEST_F(ViewAnalysisTest, WorksWithoutAnyArray) {
  for (int i = 1; i <= 100; ++i) failingAllocations.insert(i);
  m_settings.visualizationType = 2;
  EXPECT_EQ(accept(makePcm(16, 2, 1024, ramp)), Outcome::analysed);
  EXPECT_TRUE(m_analysis.animating());
  EXPECT_TRUE(analysisOf(0).empty());
  EXPECT_TRUE(m_analysis.smoothingStep(m_settings));  // one last redraw
  EXPECT_FALSE(m_analysis.animating());
  EXPECT_FALSE(m_analysis.smoothingStep(m_settings));

  failingAllocations.clear();
  EXPECT_EQ(accept(makePcm(16, 2, 1024, ramp)), Outcome::analysed);
  EXPECT_EQ(analysisOf(1).size(), 1024u);
}

TEST_F(ViewAnalysisTest, AnalysesTheOtherChannelsWhereOneHasNoArray) {
  failingAllocations = {1};  // the first channel's analysis array
  EXPECT_EQ(accept(makePcm(16, 2, 1024, ramp)), Outcome::analysed);
  EXPECT_TRUE(analysisOf(0).empty());
  EXPECT_EQ(analysisOf(1)[10], ramp(10, 1));
}

}  // namespace
}  // namespace av::type1
