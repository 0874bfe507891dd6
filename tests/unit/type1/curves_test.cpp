#include "type1/curves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace av::type1 {
namespace {

constexpr int noRow = std::numeric_limits<int>::min();

/// A plot of its own size and place; the curves read nothing else of a layout.
ViewLayout plot(int width, int height, int left = 0, int top = 0) {
  ViewLayout layout;
  layout.client = {left, top, left + width, top + height};
  layout.plotLeft = left;
  layout.plotTop = top;
  layout.plotWidth = width;
  layout.plotHeight = height;
  return layout;
}

class CurvesTest : public testing::Test {
 protected:
  void fill(int channels, int windowSize, double amplitude, std::mt19937::result_type seed = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> spread(-amplitude, amplitude);
    arrays.assign(static_cast<std::size_t>(channels), {});
    signal.channelCount = channels;
    signal.windowSize = windowSize;
    signal.dataReceived = true;
    for (std::size_t c = 0; c < arrays.size(); ++c) {
      for (int i = 0; i < windowSize; ++i) arrays[c].push_back(spread(random));
      signal.analysis[c] = signal.display[c] = arrays[c];
    }
  }

  std::span<const Point> line(std::size_t index) { return curves.pointsOf(curves.lines[index]); }

  ViewSettings settings;
  ViewSignal signal;
  Polylines curves;
  std::vector<std::vector<double>> arrays;
};

/// `exact` cut toward zero and clamped; no row where rounding in double may fall on either side.
int expectedRow(long double exact, int top, int bottom) {
  if (std::fabs(exact - std::round(exact)) < 1e-9L * (1 + std::fabs(exact))) return noRow;
  return static_cast<int>(
      std::fmin(static_cast<long double>(bottom), std::fmax(static_cast<long double>(top), std::trunc(exact))));
}

using Waveforms = CurvesTest;

TEST_F(Waveforms, StandAtKnownRows) {
  arrays = {std::vector<double>(64, 0.0)};
  arrays[0][1] = 32767;
  arrays[0][2] = -32767;
  arrays[0][3] = 16383.5;
  arrays[0][4] = 1e9;
  arrays[0][5] = -1e9;
  signal = {.dataReceived = true, .channelCount = 1, .windowSize = 64};
  signal.analysis[0] = arrays[0];
  addWaveforms(curves, settings, signal, plot(630, 200, 10, 20));
  ASSERT_EQ(1u, curves.lines.size());
  EXPECT_EQ(settings.textAndLineColors[1], curves.lines[0].colour);
  ASSERT_EQ(65u, line(0).size());
  EXPECT_EQ((Point{10, 120}), line(0)[0]);  // the point before the first sample
  EXPECT_EQ((Point{10, 120}), line(0)[1]);  // silence: the centre, 20 + 100
  EXPECT_EQ((Point{20, 20}), line(0)[2]);   // full scale: the top edge
  EXPECT_EQ((Point{30, 220}), line(0)[3]);  // the bottom edge
  EXPECT_EQ((Point{40, 70}), line(0)[4]);   // half scale
  EXPECT_EQ((Point{50, 20}), line(0)[5]);   // beyond: clamped
  EXPECT_EQ((Point{60, 220}), line(0)[6]);
  EXPECT_EQ((Point{640, 120}), line(0)[64]);
}

TEST_F(Waveforms, LoseTheLastSampleToTheFlatEnd) {
  fill(1, 64, 30000);
  arrays[0][62] = 0;
  arrays[0][63] = 32767;
  addWaveforms(curves, settings, signal, plot(630, 200));
  EXPECT_EQ((Point{620, 100}), line(0)[63]);  // the last but one
  EXPECT_EQ((Point{630, 100}), line(0)[64]);  // not the top edge
  EXPECT_EQ(line(0)[1].y, line(0)[0].y);
}

TEST_F(Waveforms, FollowTheScaleLimits) {
  arrays = {std::vector<double>(64, 0.0)};
  arrays[0][1] = 32767 * 0.25;
  signal = {.dataReceived = true, .channelCount = 1, .windowSize = 64};
  signal.analysis[0] = arrays[0];
  settings.scaleYMin = 25;
  settings.scaleYMax = 75;
  addWaveforms(curves, settings, signal, plot(630, 200));
  EXPECT_EQ(100, line(0)[1].y);  // (50 − 25)·200 ÷ 100 = 50, times 100 ÷ 50
  EXPECT_EQ(50, line(0)[2].y);   // 50 − 25 = 25, times 2
}

TEST_F(Waveforms, FollowTheFormulaForEverySizeOfWindowAndPlot) {
  std::mt19937 random(4);
  long compared = 0;
  for (int windowSize = 64; windowSize <= 16384; windowSize *= 2) {
    for (int run = 0; run < 8; ++run) {
      fill(2, windowSize, 40000, random());
      settings.scaleYMin = static_cast<int>(random() % 90);
      settings.scaleYMax = settings.scaleYMin + 1 + static_cast<int>(random() % 150);
      const ViewLayout layout = plot(1 + static_cast<int>(random() % 3840), 1 + static_cast<int>(random() % 2160),
                                     static_cast<int>(random() % 50), static_cast<int>(random() % 50));
      curves.clear();
      addWaveforms(curves, settings, signal, layout);
      ASSERT_EQ(2u, curves.lines.size());
      for (std::size_t c = 0; c < 2; ++c) {
        ASSERT_EQ(settings.textAndLineColors[c + 1], curves.lines[c].colour);
        ASSERT_EQ(static_cast<std::size_t>(windowSize) + 1, line(c).size());
        for (int i = 0; i < windowSize - 1; ++i) {
          const long double s = arrays[c][static_cast<std::size_t>(i)];
          const long double height = layout.plotHeight;
          const long double y = ((50 - settings.scaleYMin) * height / 100 - s * (height * 0.5L) / 32767) * 100 /
                                    (settings.scaleYMax - settings.scaleYMin) +
                                layout.plotTop + 0.5L;
          const Point point = line(c)[static_cast<std::size_t>(i) + 1];
          ASSERT_EQ(layout.plotLeft + static_cast<int>(1LL * layout.plotWidth * i / (windowSize - 1)), point.x);
          const int row = expectedRow(y, layout.plotTop, layout.plotTop + layout.plotHeight);
          if (row == noRow) continue;
          ASSERT_EQ(row, point.y);
          ++compared;
        }
        ASSERT_EQ((Point{layout.plotLeft, line(c)[1].y}), line(c)[0]);
        ASSERT_EQ((Point{layout.plotLeft + layout.plotWidth, line(c)[static_cast<std::size_t>(windowSize) - 1].y}),
                  line(c).back());
      }
    }
  }
  EXPECT_GT(compared, 450000);
}

TEST_F(Waveforms, SkipSlotsWithoutAnArray) {
  fill(3, 64, 30000);
  signal.analysis[1] = {};
  addWaveforms(curves, settings, signal, plot(100, 100));
  ASSERT_EQ(2u, curves.lines.size());
  EXPECT_EQ(settings.textAndLineColors[1], curves.lines[0].colour);
  EXPECT_EQ(settings.textAndLineColors[3], curves.lines[1].colour);
}

TEST_F(Waveforms, DrawAtMostEighteenChannels) {
  fill(18, 64, 30000);
  signal.channelCount = 40;
  addWaveforms(curves, settings, signal, plot(100, 100));
  EXPECT_EQ(18u, curves.lines.size());
  EXPECT_EQ(settings.textAndLineColors[18], curves.lines[17].colour);
}

TEST_F(Waveforms, AreNotDrawnOnAScaleThatSpansNothing) {
  fill(1, 64, 30000);
  for (const auto& [lowest, highest] : {std::pair{0, 0}, std::pair{70, 70}, std::pair{100, 0}}) {
    settings.scaleYMin = lowest;
    settings.scaleYMax = highest;
    addWaveforms(curves, settings, signal, plot(100, 100));
    EXPECT_TRUE(curves.lines.empty());
    EXPECT_TRUE(curves.points.empty());
  }
}

TEST_F(Waveforms, DoNotDependOnTheDynamicRange) {
  fill(1, 64, 30000);
  addWaveforms(curves, settings, signal, plot(100, 100));
  const Polylines before = curves;
  curves.clear();
  settings.dynamicRangeDb = 0;
  addWaveforms(curves, settings, signal, plot(100, 100));
  EXPECT_EQ(before, curves);
}

using LinearSpectra = CurvesTest;

TEST_F(LinearSpectra, PutZeroDbAtTheTopAndTheDynamicRangeAtTheBottom) {
  settings.dynamicRangeDb = 90;
  arrays = {std::vector<double>(64, -200.0)};
  arrays[0][1] = 0;
  arrays[0][2] = -90;
  arrays[0][3] = -45;
  arrays[0][4] = -45.4;
  arrays[0][5] = 45;  // magnitudes: levels above 0 dB fold down
  signal = {.dataReceived = true, .channelCount = 1, .windowSize = 64};
  signal.display[0] = arrays[0];
  addLinearSpectra(curves, settings, signal, plot(310, 180, 7, 11));
  ASSERT_EQ(32u, line(0).size());  // bins 1 to 30 and two edges
  EXPECT_EQ((Point{7, 11}), line(0)[0]);
  EXPECT_EQ((Point{17, 11}), line(0)[1]);
  EXPECT_EQ((Point{27, 191}), line(0)[2]);
  EXPECT_EQ((Point{37, 101}), line(0)[3]);
  EXPECT_EQ((Point{47, 101}), line(0)[4]);  // 90.8 + 11 cut, not rounded
  EXPECT_EQ((Point{57, 101}), line(0)[5]);
  EXPECT_EQ((Point{307, 191}), line(0)[30]);  // −200 dB: clamped to the bottom
  EXPECT_EQ((Point{317, 191}), line(0)[31]);
}

TEST_F(LinearSpectra, ShowTheSmoothedLevelsWhileSmoothingIsOn) {
  settings.dynamicRangeDb = 90;
  const std::vector<double> raw(64, -30.0);
  const std::vector<double> smooth(64, -60.0);
  signal = {.dataReceived = true, .channelCount = 1, .windowSize = 64};
  signal.analysis[0] = raw;
  signal.display[0] = smooth;
  for (const std::int16_t on : {std::int16_t{-1}, std::int16_t{1}}) {
    settings.visualizationSmooth = on;
    curves.clear();
    addLinearSpectra(curves, settings, signal, plot(310, 90));
    EXPECT_EQ(60, line(0)[5].y);
  }
  settings.visualizationSmooth = 0;
  curves.clear();
  addLinearSpectra(curves, settings, signal, plot(310, 90));
  EXPECT_EQ(30, line(0)[5].y);
  signal.analysis[0] = {};
  curves.clear();
  addLinearSpectra(curves, settings, signal, plot(310, 90));
  EXPECT_TRUE(curves.lines.empty());
}

template <typename Formula>
long compareSpectrum(std::span<const Point> points, const std::vector<double>& levels, const ViewLayout& layout,
                     std::size_t firstBin, std::size_t endBin, const Formula& rowOf) {
  long compared = 0;
  for (std::size_t k = firstBin; k < endBin; ++k) {
    const int row =
        expectedRow(rowOf(static_cast<long double>(levels[k])), layout.plotTop, layout.plotTop + layout.plotHeight);
    if (row == noRow) continue;
    if (row != points[k].y) return -1;
    ++compared;
  }
  return compared;
}

TEST_F(LinearSpectra, FollowTheFormulaForEverySizeOfWindowAndPlot) {
  std::mt19937 random(5);
  long compared = 0;
  for (int windowSize = 64; windowSize <= 16384; windowSize *= 2) {
    for (int run = 0; run < 8; ++run) {
      fill(2, windowSize, 150, random());
      settings.scaleYMin = static_cast<int>(random() % 180) - 90;
      settings.scaleYMax = settings.scaleYMin + 1 + static_cast<int>(random() % 150);
      settings.dynamicRangeDb = 1 + static_cast<double>(random() % 186000) / 1000;
      const ViewLayout layout = plot(1 + static_cast<int>(random() % 3840), 1 + static_cast<int>(random() % 2160),
                                     static_cast<int>(random() % 50), static_cast<int>(random() % 50));
      const long long offset = 1LL * layout.plotHeight * settings.scaleYMin / 100;
      curves.clear();
      addLinearSpectra(curves, settings, signal, layout);
      ASSERT_EQ(2u, curves.lines.size());
      const int last = windowSize / 2 - 1;
      for (std::size_t c = 0; c < 2; ++c) {
        ASSERT_EQ(static_cast<std::size_t>(last) + 1, line(c).size());
        for (int k = 1; k < last; ++k) {
          ASSERT_EQ(layout.plotLeft + static_cast<int>(1LL * layout.plotWidth * k / last),
                    line(c)[static_cast<std::size_t>(k)].x);
        }
        const long equal =
            compareSpectrum(line(c), arrays[c], layout, 1, static_cast<std::size_t>(last), [&](long double level) {
              return (std::fabs(level) * layout.plotHeight / static_cast<long double>(settings.dynamicRangeDb) -
                      static_cast<long double>(offset)) *
                         100 / (settings.scaleYMax - settings.scaleYMin) +
                     layout.plotTop;
            });
        ASSERT_GE(equal, 0);
        compared += equal;
        ASSERT_EQ((Point{layout.plotLeft, line(c)[1].y}), line(c)[0]);
        ASSERT_EQ((Point{layout.plotLeft + layout.plotWidth, line(c)[static_cast<std::size_t>(last) - 1].y}),
                  line(c).back());
      }
    }
  }
  EXPECT_GT(compared, 200000);
}

TEST_F(LinearSpectra, AreNotDrawnWithoutARangeToDivideBy) {
  fill(2, 64, 90);
  for (const double range : {0.0, -60.0, std::numeric_limits<double>::quiet_NaN()}) {
    settings.dynamicRangeDb = range;
    addLinearSpectra(curves, settings, signal, plot(100, 100));
    addOctaveSpectra(curves, settings, signal, plot(100, 100));
    EXPECT_TRUE(curves.lines.empty()) << range;
  }
  settings.dynamicRangeDb = 90;
  settings.scaleYMax = settings.scaleYMin;
  addLinearSpectra(curves, settings, signal, plot(100, 100));
  addOctaveSpectra(curves, settings, signal, plot(100, 100));
  EXPECT_TRUE(curves.lines.empty());
}

using OctaveSpectra = CurvesTest;

TEST_F(OctaveSpectra, GiveEachOctaveTheSameWidthAfterAnEmptyFirstOne) {
  settings.dynamicRangeDb = 90;
  fill(1, 64, 90);
  addOctaveSpectra(curves, settings, signal, plot(598, 180));  // five octaves, w = 600 ÷ 6 = 100
  ASSERT_EQ(33u, line(0).size());
  EXPECT_EQ(0, line(0)[0].x);
  EXPECT_EQ(line(0)[1].y, line(0)[0].y);
  for (int octave = 0; octave < 5; ++octave) {
    EXPECT_EQ((octave + 1) * 100, line(0)[std::size_t{1} << octave].x) << octave;
  }
  EXPECT_EQ(350, line(0)[6].x);  // the middle of the third octave, bins 4 to 7
  EXPECT_EQ(598, line(0)[32].x);
  EXPECT_EQ(line(0)[31].y, line(0)[32].y);
}

TEST_F(OctaveSpectra, RoundWhereTheLinearAxisCuts) {
  settings.dynamicRangeDb = 90;
  arrays = {std::vector<double>(64, -45.4)};
  signal = {.dataReceived = true, .channelCount = 1, .windowSize = 64};
  signal.display[0] = arrays[0];
  addLinearSpectra(curves, settings, signal, plot(310, 180));
  addOctaveSpectra(curves, settings, signal, plot(310, 180));
  EXPECT_EQ(90, line(0)[3].y);  // 90.8
  EXPECT_EQ(91, line(1)[3].y);
}

TEST_F(OctaveSpectra, FollowTheFormulaForEverySizeOfWindowAndPlot) {
  std::mt19937 random(6);
  long compared = 0;
  for (int windowSize = 64; windowSize <= 16384; windowSize *= 2) {
    for (int run = 0; run < 8; ++run) {
      fill(1, windowSize, 150, random());
      settings.scaleYMin = static_cast<int>(random() % 180) - 90;
      settings.scaleYMax = settings.scaleYMin + 1 + static_cast<int>(random() % 150);
      settings.dynamicRangeDb = 1 + static_cast<double>(random() % 186000) / 1000;
      const ViewLayout layout = plot(1 + static_cast<int>(random() % 3840), 1 + static_cast<int>(random() % 2160));
      const long long offset = 1LL * layout.plotHeight * settings.scaleYMin / 100;
      curves.clear();
      addOctaveSpectra(curves, settings, signal, layout);
      const int octaves = static_cast<int>(std::lround(std::log2(windowSize / 2)));
      ASSERT_EQ(static_cast<std::size_t>(windowSize) / 2 + 1, line(0).size());
      const long double width = (layout.plotWidth + 2.0L) / (octaves + 1);
      for (int o = 0; o < octaves; ++o) {
        for (int k = 1 << o; k < 2 << o; ++k) {
          const int x = expectedRow(o * width + k * width / (1 << o) + 0.5L, 0, 1 << 20);
          if (x == noRow) continue;
          ASSERT_EQ(x, line(0)[static_cast<std::size_t>(k)].x);
        }
      }
      const long equal = compareSpectrum(
          line(0), arrays[0], layout, 1, static_cast<std::size_t>(windowSize) / 2, [&](long double level) {
            return (std::fabs(level) / static_cast<long double>(settings.dynamicRangeDb) * layout.plotHeight -
                    static_cast<long double>(offset)) *
                       100 / (settings.scaleYMax - settings.scaleYMin) +
                   layout.plotTop + 0.5L;
          });
      ASSERT_GE(equal, 0);
      compared += equal;
    }
  }
  EXPECT_GT(compared, 100000);
}

}  // namespace
}  // namespace av::type1
