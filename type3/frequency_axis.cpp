#include "type3/frequency_axis.h"

#include <algorithm>

namespace av::type3 {

FrequencyAxis::FrequencyAxis(const BandAxis& axis, const ColumnGeometry& geometry)
    : m_axis(axis), m_geometry(geometry), m_rateHz(axis.sampleRateHz != 0 ? axis.sampleRateHz : 44100) {
  std::vector<BinRange> bands;
  planBands(bands, axis);
  int column = axis.mirrored ? axis.lineCount / 2 : 0;
  for (const auto [first, count] : bands) {
    if (count > 0) {
      // A bin stands for the frequencies half a bin around it.
      Span span{column, first - 0.5, first + count - 0.5};
      if (!m_spans.empty() && m_spans.back().to > span.from)
        m_spans.back().to = span.from = (m_spans.back().to + span.from) / 2;
      m_spans.push_back(span);
    }
    ++column;
  }
}

std::optional<double> FrequencyAxis::place(double hz) const noexcept {
  const double bin = hz / binHz();
  if (!(bin < m_axis.binCount() - 0.5)) return std::nullopt;
  const auto span = std::ranges::find_if(m_spans, [bin](const Span& each) { return bin < each.to; });
  if (span == m_spans.end()) return std::nullopt;
  const double left = m_geometry.columnLeft(span->column);
  if (bin < span->from) return left - (m_geometry.stepPx - columnWidthPx()) / 2;
  return left + (bin - span->from) / (span->to - span->from) * columnWidthPx();
}

}  // namespace av::type3
