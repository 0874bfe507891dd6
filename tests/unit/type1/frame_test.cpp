#include "type1/frame.h"

#include "support/allocation_count.h"
#include "support/made_up_font.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
#include <vector>

namespace av::type1 {
namespace {

using test::MadeUpFont;

class ViewFrameTest : public testing::Test {
 protected:
  ViewFrameTest() : samples(1024, 1000.0) {
    signal.dataReceived = true;
    for (std::size_t c = 0; c < 2; ++c) signal.analysis[c] = signal.display[c] = samples;
  }

  void build(int width = 640, int height = 400, int left = 0, int top = 0) {
    layout = computeLayout(settings, signal.sampleRateHz, {left, top, left + width, top + height}, 13);
    buildFrame(frame, settings, signal, layout, MadeUpFont(13));
  }

  std::vector<Point> borderLine(std::size_t index) {
    const auto points = frame.border.pointsOf(frame.border.lines.at(index));
    return {points.begin(), points.end()};
  }

  std::vector<double> samples;
  ViewSettings settings;
  ViewSignal signal;
  ViewLayout layout;
  ViewFrame frame;
};

TEST_F(ViewFrameTest, FillsTheStripsOnePixelBeyondThePlot) {
  settings.scaleColor = 0xFF0A0B0C;
  settings.backColor = 0xFF010203;
  build();
  EXPECT_EQ(0xFF010203, frame.background);
  ASSERT_EQ(2u, frame.strips.size());
  EXPECT_EQ((FilledRect{{0, 400 - 23 + 1, 640, 400 + 1}, 0xFF0A0B0C}), frame.strips[0]);
  EXPECT_EQ((FilledRect{{640 - 52 + 1, 0, 640 + 1, 400}, 0xFF0A0B0C}), frame.strips[1]);
  settings.scaleXVisible = 0;
  build();
  ASSERT_EQ(1u, frame.strips.size());
  EXPECT_EQ(589, frame.strips[0].rect.left);
  settings.scaleYVisible = 0;
  build();
  EXPECT_TRUE(frame.strips.empty());
}

TEST_F(ViewFrameTest, FillsNoStripThatHasNoRoom) {
  build(60, 30);
  EXPECT_TRUE(frame.strips.empty());
}

TEST_F(ViewFrameTest, ClosesTheSimpleBorderInItsColour) {
  settings.borderType = 1;
  settings.borderColor = 0xFF445566;
  build(100, 60, 5, 7);
  ASSERT_EQ(1u, frame.border.lines.size());
  EXPECT_EQ(0xFF445566, frame.border.lines[0].colour);
  EXPECT_EQ((std::vector<Point>{{104, 7}, {104, 66}, {5, 66}, {5, 7}, {104, 7}}), borderLine(0));
}

TEST_F(ViewFrameTest, BevelsTheBorderInTwoFixedShades) {
  settings.borderColor = 0xFF445566;
  const std::vector<Point> rightAndBottom{{99, 0}, {99, 59}, {0, 59}};
  const std::vector<Point> leftAndTop{{0, 59}, {0, 0}, {99, 0}};
  for (const auto& [type, first, second] : {std::tuple{2, 0xFF140000, 0xFF100000}, {3, 0xFF100000, 0xFF140000}}) {
    settings.borderType = type;
    build(100, 60);
    ASSERT_EQ(2u, frame.border.lines.size());
    EXPECT_EQ(first, frame.border.lines[0].colour);
    EXPECT_EQ(second, frame.border.lines[1].colour);
    EXPECT_EQ(rightAndBottom, borderLine(0));
    EXPECT_EQ(leftAndTop, borderLine(1));
  }
}

TEST_F(ViewFrameTest, DrawsNoBorderForAnyOtherType) {
  for (const int type : {0, -1, 4, 99, std::numeric_limits<int>::min()}) {
    settings.borderType = type;
    build();
    EXPECT_TRUE(frame.border.lines.empty()) << type;
  }
}

TEST_F(ViewFrameTest, DividesThePlotByGridLines) {
  build(640, 400, 10, 20);
  ASSERT_EQ(10, layout.xLabelCount);
  ASSERT_EQ(18, layout.yDivisionCount);
  ASSERT_EQ(9u + 17u, frame.grid.size());
  EXPECT_EQ((LineSegment{{10 + 58, 20}, {10 + 58, 20 + 377}, settings.gridColor}), frame.grid[0]);  // 588 ÷ 10
  EXPECT_EQ((LineSegment{{10 + 529, 20}, {10 + 529, 20 + 377}, settings.gridColor}), frame.grid[8]);
  EXPECT_EQ((LineSegment{{10, 20 + 20}, {10 + 588, 20 + 20}, settings.gridColor}), frame.grid[9]);  // 377 ÷ 18
  EXPECT_EQ((LineSegment{{10, 20 + 356}, {10 + 588, 20 + 356}, settings.gridColor}), frame.grid[25]);
}

TEST_F(ViewFrameTest, HasTheGridOfItsTypeWhileItIsVisible) {
  build();
  const std::vector<LineSegment> ruler = frame.grid;
  settings.visualizationType = 6;
  build();
  const std::vector<LineSegment> cross = frame.grid;
  EXPECT_EQ(2u + 2u + 4u + 9u, cross.size());
  for (int type = -2; type < 12; ++type) {
    settings.visualizationType = type;
    settings.gridVisible = -1;
    build();
    if (type >= 2 && type < 6) {
      EXPECT_FALSE(frame.grid.empty()) << type;  // divided by another scale than the waveform's
    } else {
      EXPECT_EQ(type < 6 ? ruler : type < 8 ? cross : std::vector<LineSegment>(), frame.grid) << type;
    }
    settings.gridVisible = 0;
    build();
    EXPECT_TRUE(frame.grid.empty()) << type;
  }
}

TEST_F(ViewFrameTest, ShowsCorrelationsOnlyUnderAnXYGridAndAfterABlock) {
  for (int type = -2; type < 12; ++type) {
    for (const bool grid : {true, false}) {
      for (const bool received : {true, false}) {
        settings.visualizationType = type;
        settings.gridVisible = static_cast<std::int16_t>(grid ? -1 : 0);
        signal.dataReceived = received;
        build();
        EXPECT_EQ((type == 6 || type == 7) && grid && received, !frame.correlation.empty()) << type;
      }
    }
  }
}

TEST_F(ViewFrameTest, DrawsNoCurveBeforeTheFirstBlock) {
  signal.dataReceived = false;
  build();
  EXPECT_TRUE(frame.curves.lines.empty());
  EXPECT_FALSE(frame.grid.empty());
  EXPECT_FALSE(frame.labels.empty());
  signal.dataReceived = true;
  build();
  EXPECT_EQ(2u, frame.curves.lines.size());
}

TEST_F(ViewFrameTest, DrawsNoCurveInAPlotWithoutWidth) {
  layout = ViewLayout{};
  buildFrame(frame, settings, signal, layout, MadeUpFont(13));
  EXPECT_TRUE(frame.curves.lines.empty());
  EXPECT_TRUE(frame.border.lines.empty());
}

TEST_F(ViewFrameTest, DrawsWhatBelongsToTheTypeAndNothingElse) {
  const int types[] = {std::numeric_limits<int>::min(), -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9,
                       std::numeric_limits<int>::max()};
  samples.assign(1024, -40.0);
  for (const int type : types) {
    settings.visualizationType = type;
    for (const bool received : {true, false}) {
      signal.dataReceived = received;
      build();
      EXPECT_EQ(received && (type == 1 || type == 2 || type == 6), !frame.curves.lines.empty()) << type;
      EXPECT_EQ(received && type >= 3 && type <= 5, !frame.bars.empty()) << type;
      EXPECT_EQ(received && type == 7, !frame.balance.empty()) << type;
    }
  }
}

TEST_F(ViewFrameTest, DrawsTheSpectrumOnTheOctaveAxisForAnyAxisButTheFirst) {
  settings.visualizationType = 2;
  build();
  EXPECT_EQ(512u, frame.curves.lines.at(0).pointCount);
  for (const int octaveAxis : {2, 0, 7}) {
    settings.fftViewType = octaveAxis;
    build();
    EXPECT_EQ(513u, frame.curves.lines.at(0).pointCount);
  }
}

TEST_F(ViewFrameTest, AllocatesNothingOnceItHasSeenItsSize) {
  settings.borderType = 2;
  const MadeUpFont font(13);
  for (const int channels : {2, 18}) {
    signal.channelCount = channels;
    for (auto& slot : signal.analysis) slot = samples;
    signal.display = signal.analysis;
    for (int type = 1; type <= 7; ++type) {
      for (const int axis : {1, 2}) {
        settings.visualizationType = type;
        settings.fftViewType = axis;
        build();
        const std::uint64_t before = test::allocationCount();
        for (int i = 0; i < 3; ++i) buildFrame(frame, settings, signal, layout, font);
        EXPECT_EQ(before, test::allocationCount()) << type;
      }
    }
  }
  const std::uint64_t before = test::allocationCount();
  ViewFrame another;
  buildFrame(another, settings, signal, layout, font);
  EXPECT_LT(before, test::allocationCount());
}

// Nothing to compare with here: the sanitizers watch that no setting leads to undefined arithmetic. Curves over the
// plot's ruler and bars stay in the plot, correlations in their frame; X-Y curves go where their formula sends them.
TEST_F(ViewFrameTest, SurvivesAbsurdSettingsAndKeepsCurvesBarsAndMarksInTheirPlaces) {
  std::mt19937 random(99);
  const int limits[] = {0,
                        1,
                        -1,
                        100,
                        99,
                        101,
                        -200,
                        5000,
                        std::numeric_limits<int>::max(),
                        std::numeric_limits<int>::min(),
                        std::numeric_limits<int>::max() - 1};
  const double values[] = {0.0,
                           -0.0,
                           1.0,
                           -90.0,
                           1e-300,
                           1e300,
                           -1e300,
                           std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN(),
                           90.3,
                           4.9e-324};
  for (int run = 0; run < 6000; ++run) {
    settings.visualizationType = static_cast<int>(random() % 10) - 1;
    settings.fftViewType = static_cast<int>(random() % 4);
    settings.scaleYMin = limits[random() % 11];
    settings.scaleYMax = limits[random() % 11];
    settings.dynamicRangeDb = values[random() % 12];
    settings.borderType = static_cast<int>(random() % 6);
    settings.visualizationSmooth = static_cast<std::int16_t>(random() % 2);
    settings.scaleXVisible = static_cast<std::int16_t>(random() % 3 ? -1 : 0);
    settings.scaleYVisible = static_cast<std::int16_t>(random() % 3 ? -1 : 0);
    settings.fftWindowSize = signal.windowSize = 64 << random() % 4;
    signal.fullScale = random() % 3 ? 32767.0 : values[random() % 12];
    signal.sampleRateHz = random() % 2 ? 44100u : static_cast<std::uint32_t>(random());
    signal.channelCount = static_cast<int>(random() % 40) - 2;
    for (double& value : samples)
      value = random() % 4 ? static_cast<double>(random() % 65536) - 32768 : values[random() % 12];
    for (auto& slot : signal.analysis)
      slot = random() % 4 ? std::span<const double>(samples) : std::span<const double>();
    const int textHeight = static_cast<int>(random() % 70);
    layout = computeLayout(settings, signal.sampleRateHz,
                           {0, 0, static_cast<int>(random() % 900), static_cast<int>(random() % 500)}, textHeight);
    buildFrame(frame, settings, signal, layout, MadeUpFont(textHeight));
    const int axisSlack = settings.fftViewType == 1 || settings.visualizationType == 1 ? 0 : 2;  // octaves: + 2 in w
    for (const FilledRect& mark : frame.correlation) {
      ASSERT_GE(mark.rect.left, layout.plotLeft + 7);
      ASSERT_LE(mark.rect.right, layout.plotLeft + layout.plotWidth - 6);
      ASSERT_FALSE(mark.rect.isEmpty());
    }
    for (const ImageBlit& bar : frame.bars) {
      ASSERT_FALSE(bar.to.isEmpty());
      ASSERT_GE(bar.to.left, layout.plotLeft);
      ASSERT_LE(bar.to.left, layout.plotLeft + layout.plotWidth);
      ASSERT_GE(bar.to.top, layout.plotTop);
      ASSERT_EQ(bar.to.bottom, layout.plotTop + layout.plotHeight);
    }
    if (settings.visualizationType == 6) continue;
    for (const Point& point : frame.curves.points) {
      ASSERT_GE(point.x, layout.plotLeft);
      ASSERT_LE(point.x, layout.plotLeft + layout.plotWidth + axisSlack);
      ASSERT_GE(point.y, layout.plotTop);
      ASSERT_LE(point.y, layout.plotTop + layout.plotHeight);
    }
  }
}

}  // namespace
}  // namespace av::type1
