#pragma once

#include "support/canvas.h"
#include "support/view_shapes.h"
#include "support/view_state.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

namespace av::test {

/// The waveform and spectrum view, slow and on its own: what it shows in a window after the same puts, blocks and ticks.
/// Scale texts are left out; a host whose text colour is the scale's does not see them.
struct ViewModel : ViewState {
  /// Draws bars of type 3, 4 or 5 onto the canvas, each from its top to above row `bottom`: the type's gradient image as the
  /// platform stretches it, over what is there. Bars need it, nothing else does.
  std::function<void(Canvas& canvas, int type, const std::vector<BarColumn>& columns, int bottom)> drawBars;

  /// `curveShift`: rows that every curve and bar is off, for the proof that this would be noticed.
  Canvas picture(int curveShift = 0) const {
    Canvas canvas(width, height, back);
    if (scaleX) canvas.fill(0, height - xScaleHeight + 1, width, xScaleHeight, scale);
    if (scaleY) canvas.fill(width - yScaleWidth + 1, 0, yScaleWidth, height, scale);
    drawBorder(canvas);
    if (gridVisible)
      for (const std::vector<Point>& line : gridLines(*this)) canvas.lines(line, grid);
    if (received && plotWidth >= 1) drawSound(canvas, curveShift);
    return canvas;
  }

 private:
  void drawBorder(Canvas& canvas) const {
    const int x1 = width - 1;
    const int y1 = height - 1;
    if (borderType == 1) canvas.lines({{x1, 0}, {x1, y1}, {0, y1}, {0, 0}, {x1, 0}}, border);
    if (borderType != 2 && borderType != 3) return;
    canvas.lines({{x1, 0}, {x1, y1}, {0, y1}}, borderType == 2 ? 0x140000 : 0x100000);
    canvas.lines({{0, y1}, {0, 0}, {x1, 0}}, borderType == 2 ? 0x100000 : 0x140000);
  }

  void drawSound(Canvas& canvas, int shift) const {
    if (gridVisible && (type == 6 || type == 7)) {
      for (const auto& [rect, colour] : correlationMarks(*this))
        canvas.fill(rect.left, rect.top, rect.width(), rect.height(), colour);
    }
    if (type == 1 || type == 2) {
      for (int channel = 0; channel < channels; ++channel) {
        std::vector<Point> points = type == 1       ? waveformPoints(*this, channel)
                                    : viewType == 1 ? linearSpectrumPoints(*this, channel)
                                                    : octaveSpectrumPoints(*this, channel);
        for (Point& point : points) point.y += shift;
        canvas.lines(points, lineColours[static_cast<std::size_t>(channel + 1)]);
      }
    }
    if (type >= 3 && type <= 5) {
      std::vector<BarColumn> columns = barColumns(*this);
      for (BarColumn& column : columns) column.top = std::max(column.top + shift, 0);
      drawBars(canvas, type, columns, plotHeight);
    }
    if (type == 6) {
      for (int pair = 0; pair < pairCount(*this); ++pair) {
        std::vector<Point> points = xyPoints(*this, pair);
        for (Point& point : points) point.y += shift;
        canvas.lines(points, lineColours[static_cast<std::size_t>(pair + 2)]);
      }
    }
    if (type == 7) {
      for (int pair = 0; pair < pairCount(*this); ++pair) {
        for (const auto& [from, to, colour] : balanceLines(*this, pair))
          canvas.lines({{from.x, from.y + shift}, {to.x, to.y + shift}}, colour);
      }
    }
  }
};

}  // namespace av::test
