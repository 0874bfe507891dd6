#include "type2/win/meter_picture.h"

#include <array>
#include <cstddef>
#include <span>

namespace av::type2 {

static_assert(unlitColumn == 0 && litColumn == 1, "the order in which paint() hands the columns over");

void MeterPicture::Layout::compute(const MeterSettings& settings, std::int32_t lineCount, const Rect& client) {
  geometry = {};  // no window's, should the memory for the columns fail
  const MeterGeometry computed = computeGeometry(settings, lineCount, client);
  fillSegmentColumns(columns, settings, computed);
  geometry = computed;
}

void MeterPicture::layout(const MeterSettings& settings, std::int32_t lineCount, SIZE client) {
  m_window.compute(settings, lineCount, {0, 0, client.cx, client.cy});
}

void MeterPicture::paint(HDC target, const RECT& bounds, bool inWindow, const MeterSettings& settings, LineList& lines,
                         bool hasData) {
  const Rect picture{0, 0, bounds.right - bounds.left, bounds.bottom - bounds.top};
  if (!m_surface.resize({picture.width(), picture.height()})) return;
  m_lines.reserve(static_cast<std::size_t>(lines.count()));  // not while the fall thread and the analysis wait
  lines.withLines([this](std::span<const LineInfo> current) { m_lines.assign(current.begin(), current.end()); });

  const bool windowLayout = inWindow && m_window.geometry.client == picture;
  if (!windowLayout) m_elsewhere.compute(settings, static_cast<std::int32_t>(m_lines.size()), picture);
  const Layout& layout = windowLayout ? m_window : m_elsewhere;
  buildFrame(m_frame, settings, layout.geometry, m_lines, hasData);

  const std::array<PreparedColumn, 2> columns{layout.columns.unlit, layout.columns.lit};
  if (m_painter.clear(m_frame.background) && m_painter.draw(m_frame.border) &&
      m_painter.fill(m_frame.segments, columns) && m_painter.draw(m_frame.graphs)) {
    m_surface.copyTo(target, {bounds.left, bounds.top});
  }
}

void MeterPicture::discard() noexcept {
  m_painter.release();
  m_surface.release();
}

}  // namespace av::type2
