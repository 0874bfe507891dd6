#pragma once

#include "gfx/geometry.h"
#include "support/view_state.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

// The points, columns and marks that the view draws, in the words of their formulas: one function a formula. The plot
// lies at (0, 0), as in every window. "÷ as whole numbers" is C++'s division of ints, all other divisions are double.

namespace av::test {

struct ColouredLine {
  Point from;
  Point to;
  std::uint32_t colour = 0;
};

/// One pixel column of a bar spectrum, from row `top` to the plot's bottom.
struct BarColumn {
  int x = 0;
  int top = 0;
};

struct ColouredRect {
  Rect rect;
  std::uint32_t colour = 0;
};

inline int rowInPlot(const ViewState& view, double y) {
  if (y < 0) return 0;
  if (y > view.plotHeight) return view.plotHeight;
  return static_cast<int>(y);
}

inline std::vector<Point> waveformPoints(const ViewState& view, int channel) {
  const int n = view.windowSize;
  const double height = view.plotHeight;
  std::vector<Point> points(static_cast<std::size_t>(n + 1));
  for (int i = 0; i < n; ++i) {
    const double s = view.analysis[static_cast<std::size_t>(channel)][static_cast<std::size_t>(i)];
    const double y = ((50 - view.scaleYMin) * height / 100 - s * (height * 0.5) / view.fullScale) * 100 /
                         (view.scaleYMax - view.scaleYMin) +
                     0.5;
    points[static_cast<std::size_t>(i + 1)] = {view.plotWidth * i / (n - 1), rowInPlot(view, y)};
  }
  points[0] = {0, points[1].y};
  points[static_cast<std::size_t>(n)] = {view.plotWidth, points[static_cast<std::size_t>(n - 1)].y};
  return points;
}

inline const std::vector<double>& shownLevels(const ViewState& view, int channel) {
  return (view.smooth ? view.display : view.analysis)[static_cast<std::size_t>(channel)];
}

inline void addEdges(const ViewState& view, std::vector<Point>& points) {
  points.insert(points.begin(), Point{0, points.front().y});
  points.push_back({view.plotWidth, points.back().y});
}

inline std::vector<Point> linearSpectrumPoints(const ViewState& view, int channel) {
  const int m = view.windowSize / 2 - 1;
  const int b = view.plotHeight * view.scaleYMin / 100;
  std::vector<Point> points;
  for (int k = 1; k <= m - 1; ++k) {
    const double level = std::fabs(shownLevels(view, channel)[static_cast<std::size_t>(k)]);
    const double y = (level * view.plotHeight / view.dynamicRange - b) * 100 / (view.scaleYMax - view.scaleYMin);
    points.push_back({view.plotWidth * k / m, rowInPlot(view, y)});
  }
  addEdges(view, points);
  return points;
}

inline int octaveCount(const ViewState& view) { return static_cast<int>(std::log2(view.windowSize / 2) + 0.5); }

/// Pixel column of bin k of octave o.
inline int octaveColumn(const ViewState& view, int o, int k) {
  const double w = (view.plotWidth + 2) / static_cast<double>(octaveCount(view) + 1);
  return static_cast<int>(o * w + k * w / std::pow(2, o) + 0.5);
}

inline std::vector<Point> octaveSpectrumPoints(const ViewState& view, int channel) {
  const int b = view.plotHeight * view.scaleYMin / 100;
  std::vector<Point> points;
  for (int o = 0; o <= octaveCount(view) - 1; ++o) {
    for (int k = 1 << o; k <= (1 << (o + 1)) - 1; ++k) {
      const double level = std::fabs(shownLevels(view, channel)[static_cast<std::size_t>(k)]);
      const double y =
          (level / view.dynamicRange * view.plotHeight - b) * 100 / (view.scaleYMax - view.scaleYMin) + 0.5;
      points.push_back({octaveColumn(view, o, k), rowInPlot(view, y)});
    }
  }
  addEdges(view, points);
  return points;
}

/// The row at which the bar of a bin begins: the mean of all channels.
inline int barTop(const ViewState& view, int bin) {
  double sum = 0;
  for (int channel = 0; channel < view.channels; ++channel)
    sum += shownLevels(view, channel)[static_cast<std::size_t>(bin == 0 ? 1 : bin)];
  const double level = sum / view.channels;
  const int b = view.plotHeight * view.scaleYMin / 100;
  const double h =
      (std::fabs(level) / view.dynamicRange * view.plotHeight - b) * 100 / (view.scaleYMax - view.scaleYMin);
  const int whole = h < 0 ? 0 : h > 499 ? 499 : static_cast<int>(h);
  return std::min(whole, view.plotHeight);
}

/// For every column, the loudest bin that the octave curve draws in it; without one, the bar of the column before. The
/// flat start shows bin 1, the plot's last column also what the curve draws right of it.
inline std::vector<int> octaveBarTops(const ViewState& view) {
  constexpr int none = -1;
  std::vector<int> tops(static_cast<std::size_t>(view.plotWidth + 1), none);
  for (int o = 0; o < octaveCount(view); ++o) {
    for (int k = 1 << o; k < 2 << o; ++k) {
      int& top = tops[static_cast<std::size_t>(std::min(octaveColumn(view, o, k), view.plotWidth))];
      top = top == none ? barTop(view, k) : std::min(top, barTop(view, k));
    }
  }
  int before = barTop(view, 1);
  for (int& top : tops) before = top = top == none ? before : top;
  return tops;
}

/// All columns from 0 to the plot's width, also those without a bar (top = plot height).
inline std::vector<BarColumn> barColumns(const ViewState& view) {
  const std::vector<int> octaveTops = octaveBarTops(view);
  std::vector<BarColumn> columns;
  for (int x = 0; x <= view.plotWidth; ++x) {
    const int bin = x * (view.windowSize / 2 - 1) / view.plotWidth;
    columns.push_back({x, view.viewType == 1 ? barTop(view, bin) : octaveTops[static_cast<std::size_t>(x)]});
  }
  return columns;
}

inline int pairCount(const ViewState& view) { return view.channels < 3 ? 1 : view.channels - 1; }

struct XySample {
  double u;
  double v;
};

inline XySample xySample(const ViewState& view, int pair, int i) {
  const int right = view.channels == 1 ? 0 : pair + 1;
  const double l = view.analysis[static_cast<std::size_t>(pair)][static_cast<std::size_t>(i)];
  const double r = view.analysis[static_cast<std::size_t>(right)][static_cast<std::size_t>(i)];
  return {(r - l) / (2 * view.fullScale), -(l + r) / (2 * view.fullScale)};
}

inline Point xyCentre(const ViewState& view) { return {view.plotWidth / 2, (view.plotHeight - 15) / 2}; }

inline std::vector<Point> xyPoints(const ViewState& view, int pair) {
  const Point centre = xyCentre(view);
  const int r = std::max(centre.x, centre.y) - 10;
  std::vector<Point> points;
  for (int i = 0; i < view.windowSize; ++i) {
    const auto [u, v] = xySample(view, pair, i);
    points.push_back({centre.x + static_cast<int>(u * r + 0.5), centre.y + static_cast<int>(v * r + 0.5)});
  }
  return points;
}

/// Red, green or blue of hue ± 46 at lightness 55 and saturation 140 of 140: components from 0 to 110 of 140, then bytes.
inline std::uint32_t balanceComponent(int hue) {
  const int h = hue < 0 ? hue + 140 : hue;
  int value = 0;
  if (h < 23) value = (110 * h + 11) / 23;
  else if (h < 70) value = 110;
  else if (h < 93) value = (110 * (93 - h) + 11) / 23;
  return static_cast<std::uint32_t>((value * 255 + 70) / 140);
}

inline std::uint32_t balanceColour(double q) {
  const int hue = static_cast<int>(q * 17 + 32);
  return balanceComponent(hue + 46) << 16 | balanceComponent(hue) << 8 | balanceComponent(hue - 46);
}

inline std::uint32_t balanceColour(const ViewState& view, const XySample& sample) {
  const double a = 2 * sample.u * sample.u * view.fullScale;
  const double d = 2 * sample.v * sample.v * view.fullScale;
  return balanceColour(a + d == 0 ? 0 : (d - a) / (a + d));
}

inline std::vector<ColouredLine> balanceLines(const ViewState& view, int pair) {
  std::vector<ColouredLine> lines;
  Point from = xyCentre(view);
  const std::vector<Point> points = xyPoints(view, pair);
  for (int i = 0; i < view.windowSize; ++i) {
    const Point to = points[static_cast<std::size_t>(i)];
    lines.push_back({from, to, balanceColour(view, xySample(view, pair, i))});
    from = to;
  }
  return lines;
}

inline std::vector<std::vector<Point>> gridLines(const ViewState& view) {
  std::vector<std::vector<Point>> lines;
  const int width = view.plotWidth;
  const int height = view.plotHeight;
  if (view.type < 6) {
    for (int i = 1; i <= view.xLabels - 1; ++i)
      lines.push_back({{width * i / view.xLabels, 0}, {width * i / view.xLabels, height}});
    for (int j = 1; j <= view.yDivisions - 1; ++j)
      lines.push_back({{0, height * j / view.yDivisions}, {width, height * j / view.yDivisions}});
  }
  if (view.type == 6 || view.type == 7) {
    const auto [cx, cy] = xyCentre(view);
    const int r = std::min(cx, cy) - 10;
    lines.push_back({{cx - r, cy}, {cx + r, cy}});
    lines.push_back({{cx, cy - r}, {cx, cy + r}});
    lines.push_back({{cx - r, cy + r}, {cx + r, cy - r}});
    lines.push_back({{cx + r, cy + r}, {cx - r, cy - r}});
    const int top = height - 15;
    const int right = 5 + width - 10;
    lines.push_back({{5, top}, {right, top}, {right, top + 10}, {5, top + 10}, {5, top}});
    for (int k = 1; k <= 9; ++k) {
      const int x = 5 + k * ((width - 10) / 10);
      lines.push_back({{x, top + 7}, {x, top + 10}});
    }
  }
  return lines;
}

inline double correlationOf(const ViewState& view, int pair) {
  const std::vector<double>& left = view.analysis[static_cast<std::size_t>(pair)];
  const std::vector<double>& right = view.analysis[static_cast<std::size_t>(view.channels == 1 ? 0 : pair + 1)];
  long double lr = 0;
  long double ll = 0;
  long double rr = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(view.windowSize); ++i) {
    lr += static_cast<long double>(left[i]) * right[i];
    ll += static_cast<long double>(left[i]) * left[i];
    rr += static_cast<long double>(right[i]) * right[i];
  }
  return ll == 0 || rr == 0 ? 0 : static_cast<double>(lr / std::sqrt(ll * rr));
}

/// The marks in the frame under the X-Y views: the zero line at the fifth tick, then one bar or several marks, rows 2 to 5
/// of the frame and one pixel inside its lines at least.
inline std::vector<ColouredRect> correlationMarks(const ViewState& view) {
  const int step = (view.plotWidth - 10) / 10;
  const int right = view.plotWidth - 5;
  const int zero = 5 + 5 * step;
  const auto part = [&](int first, int last, std::uint32_t colour) {
    return ColouredRect{{first, view.plotHeight - 13, last + 1, view.plotHeight - 9}, colour};
  };
  std::vector<ColouredRect> marks = {part(zero, zero, view.grid)};
  for (int pair = 0; pair < pairCount(view); ++pair) {
    const double value = correlationOf(view, pair);
    const double divisions = (value + 1) * 5;
    const double x = divisions <= 9 ? 5 + divisions * step : 5 + 9 * step + (divisions - 9) * (right - (5 + 9 * step));
    const int column = std::clamp(static_cast<int>(std::floor(x + 0.5)), 7, right - 2);
    const std::uint32_t colour =
        view.type == 7 ? balanceColour(value) : view.lineColours[static_cast<std::size_t>(pair + 2)];
    if (pairCount(view) == 1) {
      marks.push_back(part(std::min(zero, column), std::max(zero, column), colour));
    } else {
      const int middle = std::clamp(column, 9, right - 4);
      marks.push_back(part(middle - 2, middle + 2, colour));
    }
  }
  return marks;
}

}  // namespace av::test
