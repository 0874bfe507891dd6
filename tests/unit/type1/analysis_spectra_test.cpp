#include "unit/type1/analysis_fixture.h"
#include "unit/type1/expect_spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <span>
#include <vector>

namespace av::type1 {
namespace {

TEST_F(ViewAnalysisTest, TypesTwoToFiveTurnEveryChannelIntoLevels) {
  for (const int size : {64, 128, 1024, 2048}) {
    useWindowSize(size);
    for (int type = 2; type <= 5; ++type) {
      m_settings.visualizationType = type;
      for (int windowType = -1; windowType <= 5; ++windowType) {
        m_settings.fftWindowType = windowType;
        const auto samples = test::noise(static_cast<std::size_t>(3 * size), 32767, 17);
        const auto sample = [&](int frame, int channel) {
          return samples[static_cast<std::size_t>(3 * frame + channel)];
        };
        EXPECT_EQ(accept(makePcm(16, 3, size, sample)), Outcome::analysed);
        for (int channel = 0; channel < 3; ++channel) {
          std::vector<double> before;
          for (int frame = 0; frame < size; ++frame) before.push_back(sample(frame, channel));
          expectSpectrum(analysisOf(channel), before, windowType, 32767.0);
        }
      }
    }
  }
}

TEST_F(ViewAnalysisTest, AFullScaleSinusoidOnABinReadsZeroDb) {
  m_settings.visualizationType = 2;
  for (const int bits : {16, 24, 32}) {
    const double peak = std::pow(2.0, bits - 1) - 1;
    const auto sample = [&](int frame, int) {
      return std::llround(peak * std::sin(2.0 * std::numbers::pi * 100.0 * frame / 1024.0));
    };
    accept(makePcm(bits, 1, 1024, sample));
    EXPECT_NEAR(analysisOf(0)[100], 0.0, 20.0 * std::log10(1.0 + 0.5 / peak)) << bits;  // half a step of rounding
    EXPECT_LT(analysisOf(0)[99], -90.0);
    EXPECT_LT(analysisOf(0)[101], -90.0);
  }
}

TEST_F(ViewAnalysisTest, ASilentBlockIsExactlyAtTheFloor) {
  for (int windowType = 0; windowType <= 4; ++windowType) {
    m_settings.visualizationType = 5;
    m_settings.fftWindowType = windowType;
    accept(silence(16, 2, 1024));
    EXPECT_TRUE(allAre(analysisOf(1).subspan(1, 511), -200.0));
    EXPECT_EQ(analysisOf(1)[0], 0.0);
    EXPECT_TRUE(allAre(analysisOf(1).subspan(512), 0.0));
  }
}

TEST_F(ViewAnalysisTest, AnotherWindowTypeCountsFromTheNextBlockOn) {
  m_settings.visualizationType = 2;
  const auto pcm = makePcm(16, 1, 1024, ramp);
  accept(pcm);
  const auto before = copyOf(analysisOf(0));
  m_settings.fftWindowType = 3;
  EXPECT_EQ(copyOf(analysisOf(0)), before);
  accept(pcm);
  EXPECT_NE(copyOf(analysisOf(0)), before);
}

}  // namespace
}  // namespace av::type1
