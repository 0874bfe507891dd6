#include "type1/correlation_marks.h"

#include "type1/xy_grid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

namespace av::type1 {
namespace {

class CorrelationMarks : public testing::Test {
 protected:
  CorrelationMarks() {
    settings.visualizationType = 6;
    usePlot(410, 215);  // the frame from 5 to 405 in divisions of 40, its top at 200; the zero line at 205
  }

  void usePlot(int width, int height) {
    layout = ViewLayout();
    layout.client = {0, 0, width, height};
    layout.plotWidth = width;
    layout.plotHeight = height;
  }

  /// One channel for each amplitude of a cosine and of a sine: the correlation of (1, 0) and (a, b) is a ÷ √(a² + b²).
  void use(const std::vector<std::pair<double, double>>& channels) {
    arrays.assign(channels.size(), std::vector<double>(64));
    signal = {.dataReceived = true, .channelCount = static_cast<int>(channels.size()), .windowSize = 64};
    for (std::size_t c = 0; c < channels.size(); ++c) {
      for (int i = 0; i < 64; ++i) {
        const double angle = 2 * std::numbers::pi * 4 * i / 64;
        arrays[c][static_cast<std::size_t>(i)] =
            1000 * (channels[c].first * std::cos(angle) + channels[c].second * std::sin(angle));
      }
      signal.analysis[c] = arrays[c];
    }
  }

  std::vector<FilledRect> build() {
    std::vector<FilledRect> marks;
    addCorrelationMarks(marks, settings, signal, layout);
    return marks;
  }

  FilledRect zeroLine() const { return {{205, 202, 206, 206}, settings.gridColor}; }

  ViewSettings settings;
  ViewSignal signal;
  ViewLayout layout;
  std::vector<std::vector<double>> arrays;
};

TEST_F(CorrelationMarks, OfOnePairAreABarFromTheZeroLineToItsValue) {
  use({{1, 0}, {0.6, 0.8}});  // +0.6: eight divisions from the left
  EXPECT_EQ((std::vector<FilledRect>{zeroLine(), {{205, 202, 326, 206}, settings.textAndLineColors[2]}}), build());
  use({{1, 0}, {-0.6, 0.8}});
  EXPECT_EQ((std::vector<FilledRect>{zeroLine(), {{85, 202, 206, 206}, settings.textAndLineColors[2]}}), build());
}

TEST_F(CorrelationMarks, ReachTheEndsOfTheFrameButNotItsLines) {
  use({{1, 0}, {1, 0}});
  EXPECT_EQ((Rect{205, 202, 404, 206}), build().at(1).rect);  // 404 is clear, 405 the frame's line
  use({{1, 0}, {-1, 0}});
  EXPECT_EQ((Rect{7, 202, 206, 206}), build().at(1).rect);
}

TEST_F(CorrelationMarks, OfSilenceLieOnTheZeroLine) {
  use({{0, 0}, {0, 0}});
  EXPECT_EQ((std::vector<FilledRect>{zeroLine(), {{205, 202, 206, 206}, settings.textAndLineColors[2]}}), build());
}

TEST_F(CorrelationMarks, OfASingleChannelReadOne) {
  use({{1, 0}});
  EXPECT_EQ((Rect{205, 202, 404, 206}), build().at(1).rect);
}

TEST_F(CorrelationMarks, OfSeveralPairsAreAMarkEach) {
  use({{1, 0}, {0.6, 0.8}, {0.6, 0.8}, {-0.6, -0.8}, {-0.8, 0.6}});
  const auto mark = [&](int column, std::size_t colour) {
    return FilledRect{{column - 2, 202, column + 3, 206}, settings.textAndLineColors[colour]};
  };
  EXPECT_EQ((std::vector<FilledRect>{zeroLine(), mark(325, 2), mark(401, 3), mark(9, 4), mark(205, 5)}), build());
}

TEST_F(CorrelationMarks, TakeTheBalanceColourOfTheirValueOnTheViewInBalanceColours) {
  settings.visualizationType = 7;
  use({{1, 0}, {1, 0}});
  EXPECT_EQ(argbFromRgb(0, 200, 26), build().at(1).colour);
  use({{1, 0}, {-1, 0}});
  EXPECT_EQ(argbFromRgb(200, 131, 0), build().at(1).colour);
  use({{1, 0}, {0, 0}});
  EXPECT_EQ(argbFromRgb(131, 200, 0), build().at(1).colour);
}

TEST_F(CorrelationMarks, LeaveOutPairsWithoutAnArray) {
  use({{1, 0}, {1, 0}, {0.6, 0.8}});
  signal.analysis[0] = {};
  const std::vector<FilledRect> marks = build();
  ASSERT_EQ(2u, marks.size());
  EXPECT_EQ(settings.textAndLineColors[3], marks[1].colour);
  signal.analysis = {};
  EXPECT_TRUE(build().empty());
}

TEST_F(CorrelationMarks, StayAPixelClearOfTheFrameAndItsTicksAtEverySize) {
  std::mt19937 random(3);
  int built = 0;
  for (int width = 1; width < 500; ++width) {
    for (const int height : {2, 15, 27, 200}) {
      usePlot(width, height);
      const double angle = static_cast<double>(random() % 1000) / 159;
      const std::pair<double, double> turned{std::cos(angle), std::sin(angle)};
      use(random() % 2 ? std::vector<std::pair<double, double>>{{1, 0}, turned}
                       : std::vector<std::pair<double, double>>{{1, 0}, turned, {1, 0}, {-1, 0}});
      std::vector<LineSegment> grid;
      addXyGrid(grid, settings.gridColor, layout);
      for (const FilledRect& mark : build()) {
        ++built;
        ASSERT_FALSE(mark.rect.isEmpty());
        for (std::size_t i = 4; i < grid.size(); ++i) {  // the frame and its ticks, behind the cross
          const auto [left, right] = std::minmax(grid[i].from.x, grid[i].to.x);
          const auto [top, bottom] = std::minmax(grid[i].from.y, grid[i].to.y);
          ASSERT_TRUE(mark.rect.left > right + 1 || mark.rect.right < left || mark.rect.top > bottom + 1 ||
                      mark.rect.bottom < top)
              << width;
        }
      }
    }
  }
  EXPECT_GT(built, 4000);
}

}  // namespace
}  // namespace av::type1
