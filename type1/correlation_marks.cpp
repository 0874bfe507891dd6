#include "type1/correlation_marks.h"

#include "dsp/correlation.h"
#include "type1/balance_colour.h"
#include "type1/channel_pairs.h"
#include "type1/xy_grid.h"

#include <algorithm>
#include <cstddef>

namespace av::type1 {

void addCorrelationMarks(std::vector<FilledRect>& marks, const ViewSettings& settings, const ViewSignal& signal,
                         const ViewLayout& layout) {
  constexpr int clearPx = 2;  // from a line of the frame to the first pixel inside that is not beside it
  constexpr int heightPx = 4;
  constexpr int markWidthPx = 5;
  const XyFrame frame(layout);
  const int leftmost = frame.left + clearPx;
  const int rightmost = frame.right - clearPx;
  const int zero = frame.columnOf(0);
  if (zero < leftmost) return;  // too narrow for ten divisions
  const auto add = [&](int left, int right, Argb colour) {
    marks.push_back({{left, frame.top + clearPx, right + 1, frame.top + clearPx + heightPx}, colour});
  };

  const std::size_t pairs = pairCount(signal);
  bool first = true;
  for (std::size_t index = 0; index < pairs; ++index) {
    const PairSamples samples(signal, index);
    if (samples.isEmpty()) continue;
    if (first) add(zero, zero, settings.gridColor);
    first = false;
    const double value = dsp::correlation(samples.left, samples.right);
    const int column = std::clamp(frame.columnOf(value), leftmost, rightmost);
    const Argb colour = settings.visualizationType == 7 ? balanceColour(value) : pairColour(settings, index);
    if (pairs == 1) {
      add(std::min(zero, column), std::max(zero, column), colour);
    } else {
      const int left = std::clamp(column - markWidthPx / 2, leftmost, rightmost + 1 - markWidthPx);
      add(left, left + markWidthPx - 1, colour);
    }
  }
}

}  // namespace av::type1
