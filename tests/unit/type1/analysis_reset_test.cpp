#include "unit/type1/analysis_fixture.h"
#include "unit/type1/expect_spectrum.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace av::type1 {
namespace {

TEST_F(ViewAnalysisTest, ResetWritesTheTypeTimesMinus200UpToTypeFive) {
  accept(makePcm(16, 2, 1024, ramp));
  const struct {
    int type;
    double value;
  } cases[] = {{1, -200.0},
               {2, -400.0},
               {3, -600.0},
               {4, -800.0},
               {5, -1000.0},
               {6, 0.0},
               {7, 0.0},
               {9, 0.0},
               {0, 0.0},
               {-1, 200.0},
               {std::numeric_limits<int>::min(), 429496729600.0}};
  for (const auto& c : cases) {
    m_settings.visualizationType = c.type;
    m_analysis.reset(m_settings);
    for (int channel = 0; channel < 2; ++channel) {
      EXPECT_TRUE(allAre(analysisOf(channel), c.value)) << c.type;
      EXPECT_TRUE(allAre(displayOf(channel), c.value)) << c.type;
    }
  }
  EXPECT_TRUE(m_analysis.dataReceived());
}

TEST_F(ViewAnalysisTest, ResetAllocatesWhatIsMissingBeforeAnyBlock) {
  m_settings.visualizationType = 2;
  m_analysis.reset(m_settings);
  EXPECT_TRUE(allAre(analysisOf(1), -400.0));
  EXPECT_EQ(displayOf(1).size(), 1024u);
  EXPECT_TRUE(analysisOf(2).empty());
}

TEST_F(ViewAnalysisTest, ResetFromAnIndexLeavesWhatIsBelowIt) {
  accept(makePcm(16, 1, 1024, ramp));
  const auto before = copyOf(analysisOf(0));
  m_analysis.reset(m_settings, 600);
  EXPECT_EQ(analysisOf(0)[599], before[599]);
  EXPECT_EQ(analysisOf(0)[600], -200.0);
  EXPECT_EQ(analysisOf(0)[1023], -200.0);
}

TEST_F(ViewAnalysisTest, AnotherWindowSizeFreesAllSlotsAndAllocatesThoseInUse) {
  accept(makePcm(16, 4, 1024, ramp));
  accept(makePcm(16, 2, 1024, ramp));
  m_settings.visualizationType = 3;
  useWindowSize(256);
  EXPECT_EQ(m_analysis.signal().windowSize, 256);
  for (int channel = 0; channel < 2; ++channel) {
    EXPECT_EQ(analysisOf(channel).size(), 256u);
    EXPECT_TRUE(allAre(analysisOf(channel), -600.0));
    EXPECT_TRUE(allAre(displayOf(channel), -600.0));
  }
  EXPECT_TRUE(analysisOf(2).empty());
  EXPECT_TRUE(displayOf(3).empty());
  EXPECT_TRUE(m_analysis.dataReceived());

  EXPECT_EQ(accept(makePcm(16, 2, 255, ramp)), Outcome::stored);
  EXPECT_EQ(accept(makePcm(16, 2, 256, ramp)), Outcome::analysed);
}

TEST_F(ViewAnalysisTest, TheSameWindowSizeAllocatesAnewToo) {
  accept(makePcm(16, 2, 1024, ramp));
  const int before = allocations;
  useWindowSize(1024);
  EXPECT_EQ(allocations, before + 4);
  EXPECT_TRUE(allAre(analysisOf(0), -200.0));
}

TEST_F(ViewAnalysisTest, EveryWindowSizeAnalyses) {
  m_settings.visualizationType = 2;
  for (int size = 64; size <= 16384; size *= 2) {
    useWindowSize(size);
    accept(makePcm(16, 1, size, ramp));
    std::vector<double> before;
    for (int frame = 0; frame < size; ++frame) before.push_back(ramp(frame, 0));
    expectSpectrum(analysisOf(0), before, 0, 32767.0);
  }
}

TEST_F(ViewAnalysisTest, RecoversAfterAHostileDepthMadeItsLevelsEndless) {
  m_settings.visualizationType = 2;
  accept(makePcm(16, 1, 1024, ramp));
  for (int block = 0; block < 3; ++block) {
    accept(silence(1032, 1, 1024));  // its full scale is beyond all doubles, so every level is minus infinity
    for (int step = 0; step < 10; ++step) m_analysis.smoothingStep(m_settings);
  }
  accept(makePcm(16, 1, 1024, ramp));
  for (int step = 0; step < 100; ++step) m_analysis.smoothingStep(m_settings);
  for (std::size_t k = 1; k < 512; ++k) ASSERT_NEAR(displayOf(0)[k], analysisOf(0)[k], 1.0);
}

}  // namespace
}  // namespace av::type1
