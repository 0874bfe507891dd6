#pragma once

#include "gfx/geometry.h"
#include "support/hartley_oracle.h"
#include "support/line_oracle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

namespace av::test {

/// A picture in memory; colours are 0xRRGGBB. What lies outside is cut off.
class Canvas {
 public:
  Canvas(int width, int height, std::uint32_t colour)
      : m_width(width), m_height(height), m_pixels(static_cast<std::size_t>(width * height), colour) {}

  void set(int x, int y, std::uint32_t colour) {
    if (x < 0 || y < 0 || x >= m_width || y >= m_height) return;
    m_pixels[static_cast<std::size_t>(y * m_width + x)] = colour;
  }
  void fill(int left, int top, int width, int height, std::uint32_t colour) {
    for (int y = top; y < top + height; ++y)
      for (int x = left; x < left + width; ++x) set(x, y, colour);
  }
  void lines(const std::vector<Point>& points, std::uint32_t colour) {
    forEachLinePixel(points, [&](Point point) { set(point.x, point.y, colour); });
  }
  int width() const { return m_width; }
  int height() const { return m_height; }
  const std::vector<std::uint32_t>& pixels() const { return m_pixels; }

 private:
  int m_width;
  int m_height;
  std::vector<std::uint32_t> m_pixels;
};

/// The waveform and spectrum view in the plainest words there are, slow and on its own: what it shows in a window after
/// the same puts, blocks and ticks. Scale texts are left out; a host whose text colour is the scale's does not see them.
struct ViewModel {
  // The window and its font.
  int width = 0;
  int height = 0;
  int textHeightPx = 0;

  // Properties. Index 0 of the lines is the text colour.
  int type = 1;
  bool smooth = true;
  std::uint32_t back = 0x000000;
  std::uint32_t grid = 0xA9A9A9;
  std::uint32_t scale = 0x000000;
  std::uint32_t border = 0x000000;
  std::array<std::uint32_t, 19> lineColours = {0,        0xF08080, 0xFFFF00, 0x008000, 0x0000FF, 0x8A2BE2, 0x00FFFF,
                                               0xFF8C00, 0xFF00FF, 0x40E0D0, 0,        0,        0,        0,
                                               0,        0,        0,        0,        0};
  bool scaleX = true;
  bool scaleY = true;
  int scaleYMin = 0;
  int scaleYMax = 100;
  bool gridVisible = true;
  double dynamicRange = 20 * std::log10(32767.0);
  int borderType = 0;
  int windowSize = 1024;
  int windowType = 0;
  int viewType = 1;

  // What the blocks have left.
  int channels = 2;
  std::uint32_t sampleRate = 44100;
  double fullScale = 32767;
  bool received = false;
  bool animating = false;
  std::vector<std::vector<double>> analysis;
  std::vector<std::vector<double>> display;

  // What the last layout found.
  int yScaleWidth = 0;
  int xScaleHeight = 0;
  int plotWidth = 0;
  int plotHeight = 0;
  int xLabels = 0;
  int yDivisions = 0;

  void layout() {
    plotWidth = width;
    plotHeight = height;
    yScaleWidth = xScaleHeight = xLabels = yDivisions = 0;
    const int top = static_cast<int>(scaleYMax * dynamicRange / 100);
    const int bottom = static_cast<int>(scaleYMin * dynamicRange / 100);
    if (scaleX) xScaleHeight = textHeightPx + 10;
    if (scaleY) yScaleWidth = (characters(top) + 2) * textHeightPx;
    plotHeight = height - xScaleHeight;
    if (plotHeight < xScaleHeight) {
      plotHeight = height;
      xScaleHeight = 0;
    }
    plotWidth = width - yScaleWidth;
    if (plotWidth < yScaleWidth) {
      plotWidth = width;
      yScaleWidth = 0;
    }
    const int largest = type >= 2 ? static_cast<int>(sampleRate / 2) : windowSize;
    const int labelWidth = (characters(largest) + 1) * textHeightPx * 2 / 3;
    const int count = plotWidth / labelWidth;
    xLabels = count >= 20 ? 20 : count >= 10 ? 10 : count >= 5 ? 5 : count >= 2 ? 2 : count;

    const int range = top - bottom;
    int divisions = plotHeight / (textHeightPx + 8);
    if (divisions > range) divisions = range;
    if (divisions > 0) {
      int step = range / divisions;
      if (step >= 10) step = 10 * (step / 10);
      else if (step >= 5) step = 5;
      else if (step < 4) step = 2 * (step / 2);
      if (step < 1) step = 1;
      yDivisions = std::min(range / step, 100);
    }
  }

  /// Every value of both arrays of every channel in use.
  void reset() {
    const double value = type <= 5 ? type * -200.0 : 0.0;
    analysis.assign(static_cast<std::size_t>(channels),
                    std::vector<double>(static_cast<std::size_t>(windowSize), value));
    display = analysis;
  }

  void putType(int value) {
    type = value;
    reset();
    layout();
  }

  void putWindowSize(int value) {
    windowSize = value;
    reset();
  }

  /// One block: `bytes` are interleaved samples of `bits` each.
  void block(int bits, int blockChannels, std::uint32_t rate, const std::vector<std::uint8_t>& bytes) {
    const bool grew = blockChannels > channels || analysis.empty();
    channels = blockChannels;
    sampleRate = rate;
    fullScale = std::pow(2.0, bits - 1) - 1;
    dynamicRange = 20 * std::log10(fullScale);
    const int frames = static_cast<int>(bytes.size()) / channels / (bits / 8);
    if (frames < windowSize) return;
    if (grew) reset();
    analysis.resize(static_cast<std::size_t>(channels));
    display.resize(static_cast<std::size_t>(channels));
    received = true;
    for (int channel = 0; channel < channels; ++channel) {
      std::vector<double>& values = analysis[static_cast<std::size_t>(channel)];
      for (int i = 0; i < windowSize; ++i) {
        const auto at = static_cast<std::size_t>((i * channels + channel) * (bits / 8));
        values[static_cast<std::size_t>(i)] = sampleAt(bytes, at, bits);
      }
      if (type >= 2 && type <= 5) toLevels(values);
    }
    animating = true;
  }

  /// One step of the smoothing; nothing when it is at rest.
  void tick() {
    if (!animating || !smooth) return;
    bool converged = true;
    for (std::size_t channel = 0; channel < analysis.size(); ++channel) {
      for (std::size_t i = 0; i < static_cast<std::size_t>(windowSize / 2); ++i) {
        const double a = analysis[channel][i];
        double& d = display[channel][i];
        if (d < a) d += (a - d) * 0.5;
        if (d > a) d -= (d - a) * 0.25;
        if (std::trunc(d) != std::trunc(a)) converged = false;
      }
    }
    animating = !converged;
  }

  /// `curveShift`: rows that every curve is off, for the proof that this would be noticed.
  Canvas picture(int curveShift = 0) const {
    Canvas canvas(width, height, back);
    if (scaleX) canvas.fill(0, height - xScaleHeight + 1, width, xScaleHeight, scale);
    if (scaleY) canvas.fill(width - yScaleWidth + 1, 0, yScaleWidth, height, scale);
    drawBorder(canvas);
    if (gridVisible && type < 6) drawGrid(canvas);
    if (!received || plotWidth < 1) return canvas;
    for (int channel = 0; channel < channels; ++channel) {
      std::vector<Point> points;
      if (type == 1) points = waveform(channel);
      if (type == 2 && viewType == 1) points = linearSpectrum(channel);
      for (Point& point : points) point.y += curveShift;
      canvas.lines(points, lineColours[static_cast<std::size_t>(channel + 1)]);
    }
    return canvas;
  }

 private:
  static int characters(int value) { return static_cast<int>(std::to_string(value).size()); }

  double sampleAt(const std::vector<std::uint8_t>& bytes, std::size_t at, int bits) const {
    if (bits == 8) {
      return type == 1 ? 128 - static_cast<int>(bytes[at]) : static_cast<int>(static_cast<std::int8_t>(bytes[at]));
    }
    std::int64_t value = 0;
    for (int byte = 0; byte < bits / 8; ++byte)
      value += std::int64_t{bytes[at + static_cast<std::size_t>(byte)]} << (8 * byte);
    if (value >= std::int64_t{1} << (bits - 1)) value -= std::int64_t{1} << bits;
    return static_cast<double>(value);
  }

  void toLevels(std::vector<double>& values) const {
    const std::size_t count = values.size();
    std::vector<long double> weighted(count);
    for (std::size_t i = 0; i < count; ++i) weighted[i] = values[i] * exactWindow(windowType, i, count);
    const std::vector<long double> bins = exactHartley<long double>(weighted);
    values[0] = static_cast<double>(bins[0]);
    for (std::size_t k = 1; k < count / 2; ++k)
      values[k] = static_cast<double>(exactLevelDb(bins, k, static_cast<long double>(fullScale)));
  }

  void drawBorder(Canvas& canvas) const {
    const int x1 = width - 1;
    const int y1 = height - 1;
    if (borderType == 1) canvas.lines({{x1, 0}, {x1, y1}, {0, y1}, {0, 0}, {x1, 0}}, border);
    if (borderType != 2 && borderType != 3) return;
    canvas.lines({{x1, 0}, {x1, y1}, {0, y1}}, borderType == 2 ? 0x140000 : 0x100000);
    canvas.lines({{0, y1}, {0, 0}, {x1, 0}}, borderType == 2 ? 0x100000 : 0x140000);
  }

  void drawGrid(Canvas& canvas) const {
    for (int i = 1; i <= xLabels - 1; ++i) {
      const int x = plotWidth * i / xLabels;
      canvas.lines({{x, 0}, {x, plotHeight}}, grid);
    }
    for (int j = 1; j <= yDivisions - 1; ++j) {
      const int y = plotHeight * j / yDivisions;
      canvas.lines({{0, y}, {plotWidth, y}}, grid);
    }
  }

  int row(double y) const {
    if (y < 0) return 0;
    if (y > plotHeight) return plotHeight;
    return static_cast<int>(y);
  }

  std::vector<Point> waveform(int channel) const {
    const int n = windowSize;
    std::vector<Point> points(static_cast<std::size_t>(n + 1));
    for (int i = 0; i < n; ++i) {
      const double s = analysis[static_cast<std::size_t>(channel)][static_cast<std::size_t>(i)];
      const double y = ((50 - scaleYMin) * static_cast<double>(plotHeight) / 100 - s * (plotHeight * 0.5) / fullScale) *
                           100 / (scaleYMax - scaleYMin) +
                       0.5;
      points[static_cast<std::size_t>(i + 1)] = {plotWidth * i / (n - 1), row(y)};
    }
    points[0] = {0, points[1].y};
    points[static_cast<std::size_t>(n)] = {plotWidth, points[static_cast<std::size_t>(n - 1)].y};
    return points;
  }

  std::vector<Point> linearSpectrum(int channel) const {
    const std::vector<double>& levels = (smooth ? display : analysis)[static_cast<std::size_t>(channel)];
    const int m = windowSize / 2 - 1;
    const int b = plotHeight * scaleYMin / 100;
    std::vector<Point> points;
    for (int k = 1; k <= m - 1; ++k) {
      const double level = std::fabs(levels[static_cast<std::size_t>(k)]);
      const double y = (level * plotHeight / dynamicRange - b) * 100 / (scaleYMax - scaleYMin);
      points.push_back({plotWidth * k / m, row(y)});
    }
    points.insert(points.begin(), Point{0, points.front().y});
    points.push_back({plotWidth, points.back().y});
    return points;
  }
};

}  // namespace av::test
