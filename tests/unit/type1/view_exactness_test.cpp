// Every view from its bytes to its frame, against the model that knows nothing of the product's code.

#include "support/counting_lock.h"
#include "support/made_up_font.h"
#include "support/pcm.h"
#include "support/view_shapes.h"
#include "type1/analysis.h"
#include "type1/frame.h"
#include "type1/layout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace av::type1 {
namespace {

using test::makePcm;
using test::Pcm;

constexpr int textHeightPx = 13;

/// Tones and noise that differ from channel to channel, as stored integers of `bits`.
Pcm music(int bits, int channels, int frames, std::uint32_t seed) {
  std::mt19937 random(seed);
  const double fullScale = std::pow(2.0, bits - 1) - 1;
  return makePcm(bits, channels, frames, [&](int frame, int channel) {
    const double phase = 2 * std::numbers::pi * frame / frames;
    const double noise = static_cast<double>(random() % 20001) / 10000 - 1;
    const double value = 0.5 * std::sin(phase * (3.2 + 2.9 * channel)) + 0.2 * std::sin(phase * 17.3) + 0.25 * noise;
    return std::llround(fullScale * value);
  });
}

class ViewExactness : public testing::Test {
 protected:
  ViewExactness() {
    m_model.textHeightPx = textHeightPx;
    m_settings.gridColor = 0xFF303234;
    m_model.grid = 0x303234;
    for (std::uint32_t c = 0; c < 19; ++c) {
      m_model.lineColours[c] = 0x110000 * (c % 7) + 0x0D00 * c + 0x40;
      m_settings.textAndLineColors[c] = 0xFF000000 | m_model.lineColours[c];
    }
  }

  void putType(int type) {
    m_settings.visualizationType = type;
    m_analysis.reset(m_settings);
    m_model.putType(type);
  }
  void putAxis(int axis) { m_settings.fftViewType = m_model.viewType = axis; }
  void putSmooth(bool on) {
    m_settings.visualizationSmooth = static_cast<std::int16_t>(on ? -1 : 0);
    m_model.smooth = on;
  }
  void putWindowSize(int size) {
    m_settings.fftWindowSize = size;
    m_analysis.resizeWindow(m_settings);
    m_model.putWindowSize(size);
  }
  void putScaleY(int lowest, int highest) {
    m_settings.scaleYMin = m_model.scaleYMin = lowest;
    m_settings.scaleYMax = m_model.scaleYMax = highest;
  }
  void send(const Pcm& pcm) {
    m_analysis.accept(pcm.block(), m_settings);
    m_model.block(pcm.format.wBitsPerSample, pcm.format.nChannels, pcm.format.nSamplesPerSec, pcm.bytes);
  }
  void tick() {
    m_analysis.smoothingStep(m_settings);
    m_model.tick();
  }

  /// Builds the frame for a client area and compares every part of it with the model.
  void compare(int width, int height, const std::string& what) {
    SCOPED_TRACE(what + ", " + std::to_string(width) + " x " + std::to_string(height));
    const ViewSignal signal = m_analysis.signal();
    buildFrame(m_frame, m_settings, signal,
               computeLayout(m_settings, signal.sampleRateHz, {0, 0, width, height}, textHeightPx),
               test::MadeUpFont(textHeightPx));
    m_model.width = width;
    m_model.height = height;
    m_model.layout();
    const int type = m_model.type;
    compareGrid();
    comparePolylines();
    compareBars();
    compareBalance();
    if (type == 6 || type == 7) {
      compareMarks(m_settings.gridVisible && m_model.received ? correlationMarks(m_model)
                                                              : std::vector<test::ColouredRect>());
    } else {
      EXPECT_TRUE(m_frame.correlation.empty());
    }
  }

  static Argb opaque(std::uint32_t colour) { return 0xFF000000 | colour; }

  long m_points = 0;

 private:
  void compareGrid() {
    std::vector<LineSegment> expected;
    if (m_settings.gridVisible) {
      for (const std::vector<Point>& line : gridLines(m_model)) {
        for (std::size_t i = 1; i < line.size(); ++i) expected.push_back({line[i - 1], line[i], opaque(m_model.grid)});
      }
    }
    EXPECT_TRUE(expected == m_frame.grid);
  }

  void comparePolylines() {
    std::vector<std::vector<Point>> expected;
    std::vector<std::uint32_t> colours;
    const int type = m_model.type;
    for (int channel = 0; m_model.received && channel < m_model.channels && (type == 1 || type == 2); ++channel) {
      expected.push_back(type == 1               ? waveformPoints(m_model, channel)
                         : m_model.viewType == 1 ? linearSpectrumPoints(m_model, channel)
                                                 : octaveSpectrumPoints(m_model, channel));
      colours.push_back(m_model.lineColours[static_cast<std::size_t>(channel + 1)]);
    }
    for (int pair = 0; m_model.received && pair < test::pairCount(m_model) && type == 6; ++pair) {
      expected.push_back(xyPoints(m_model, pair));
      colours.push_back(m_model.lineColours[static_cast<std::size_t>(pair + 2)]);
    }
    ASSERT_EQ(expected.size(), m_frame.curves.lines.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const Polyline& line = m_frame.curves.lines[i];
      const std::span<const Point> points = m_frame.curves.pointsOf(line);
      EXPECT_EQ(opaque(colours[i]), line.colour);
      EXPECT_TRUE(std::vector<Point>(points.begin(), points.end()) == expected[i]) << "line " << i;
      m_points += static_cast<long>(points.size());
    }
  }

  void compareBars() {
    const int type = m_model.type;
    std::vector<ImageBlit> expected;
    if (m_model.received && type >= 3 && type <= 5) {
      for (const auto& [x, top] : barColumns(m_model)) {
        if (top >= m_model.plotHeight) continue;
        expected.push_back({type - 3, {0, 0, 1, type == 5 ? 186 : 185}, {x, top, x + 1, m_model.plotHeight}, false});
      }
    }
    EXPECT_TRUE(expected == m_frame.bars);
    m_points += static_cast<long>(expected.size());
  }

  void compareBalance() {
    std::vector<LineSegment> expected;
    for (int pair = 0; m_model.received && m_model.type == 7 && pair < test::pairCount(m_model); ++pair) {
      for (const auto& [from, to, colour] : balanceLines(m_model, pair)) expected.push_back({from, to, opaque(colour)});
    }
    EXPECT_TRUE(expected == m_frame.balance);
    m_points += static_cast<long>(expected.size());
  }

  void compareMarks(const std::vector<test::ColouredRect>& expected) {
    ASSERT_EQ(expected.size(), m_frame.correlation.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ((FilledRect{expected[i].rect, opaque(expected[i].colour)}), m_frame.correlation[i]) << i;
    }
  }

  test::CountingLock m_lock;

 protected:
  ViewSettings m_settings;
  ViewAnalysis m_analysis{m_lock};
  test::ViewState m_model;
  ViewFrame m_frame;
};

struct Look {
  int type;
  int axis;
};
constexpr Look looks[] = {{1, 1}, {2, 1}, {2, 2}, {3, 1}, {3, 2}, {4, 1}, {4, 2}, {5, 1}, {5, 2}, {6, 1}, {7, 1}};

std::string nameOf(const Look& look) {
  return "type " + std::to_string(look.type) + ", axis " + std::to_string(look.axis);
}

TEST_F(ViewExactness, OfEveryTypeForEveryDepthNumberOfChannelsAndSmoothing) {
  for (const Look& look : looks) {
    putType(look.type);
    putAxis(look.axis);
    for (const bool smooth : {false, true}) {
      putSmooth(smooth);
      for (const int bits : {8, 16, 24, 32}) {
        for (const int channels : {1, 2, 3, 18}) {
          send(music(bits, channels, 1024, static_cast<std::uint32_t>(bits * 100 + channels)));
          for (int i = 0; i < 3; ++i) tick();
          compare(641, 359,
                  nameOf(look) + ", " + std::to_string(bits) + " bits, " + std::to_string(channels) +
                      (smooth ? " channels, smooth" : " channels"));
          if (HasFailure()) return;
        }
      }
    }
  }
  EXPECT_GT(m_points, 800'000);
}

TEST_F(ViewExactness, OfEveryTypeAtEverySizeOfThePlot) {
  for (const Look& look : looks) {
    putType(look.type);
    putAxis(look.axis);
    putSmooth(false);
    for (const int channels : {1, 2, 3}) {
      send(music(16, channels, 1024, 77));
      for (const int width : {80, 81, 95, 127, 300, 333, 999, 1921}) {
        for (const int height : {50, 51, 63, 77, 90, 401, 522, 523, 700, 1081}) {
          compare(width, height, nameOf(look));
          if (HasFailure()) return;
        }
      }
    }
  }
  EXPECT_GT(m_points, 1'500'000);
}

TEST_F(ViewExactness, OfEveryTypeForEveryWindowSize) {
  for (const Look& look : looks) {
    putType(look.type);
    putAxis(look.axis);
    putSmooth(false);
    for (int size = 64; size <= 16384; size *= 2) {
      putWindowSize(size);
      send(music(16, 3, size + 7, static_cast<std::uint32_t>(size)));
      for (const int width : {97, 612, 1500}) compare(width, 411, nameOf(look) + ", N " + std::to_string(size));
      if (HasFailure()) return;
    }
  }
}

TEST_F(ViewExactness, OfEveryLevelOnEveryVerticalScale) {
  const struct {
    int lowest, highest;
  } scales[] = {{0, 50}, {20, 80}, {33, 34}, {-50, 120}, {0, 300}, {-100, 0}, {-7, 13}};
  for (const Look& look : looks) {
    putType(look.type);
    putAxis(look.axis);
    putSmooth(false);
    send(music(16, 2, 1024, 3));
    for (const auto& [lowest, highest] : scales) {
      putScaleY(lowest, highest);
      for (const int height : {59, 200, 377, 801})
        compare(555, height, nameOf(look) + ", " + std::to_string(lowest) + " to " + std::to_string(highest));
      if (HasFailure()) return;
    }
    m_settings.dynamicRangeDb = m_model.dynamicRange = 47;
    compare(555, 201, nameOf(look) + ", 47 dB");
    putScaleY(0, 100);
  }
}

TEST_F(ViewExactness, OfEveryTypeBeforeTheFirstBlockAndWithoutScalesOrGrid) {
  for (const bool sent : {false, true}) {
    for (const Look& look : looks) {
      putType(look.type);
      putAxis(look.axis);
      if (sent) send(music(16, 2, 1024, 5));
      for (const int shown : {0, 1, 2, 3, 4, 5, 6, 7}) {
        m_settings.scaleXVisible = static_cast<std::int16_t>(shown & 1 ? -1 : 0);
        m_settings.scaleYVisible = static_cast<std::int16_t>(shown & 2 ? -1 : 0);
        m_settings.gridVisible = static_cast<std::int16_t>(shown & 4 ? -1 : 0);
        m_model.scaleX = shown & 1;
        m_model.scaleY = shown & 2;
        compare(400, 300, nameOf(look));
        if (HasFailure()) return;
      }
    }
  }
}

}  // namespace
}  // namespace av::type1
