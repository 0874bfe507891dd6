#include "type3/level_labels.h"

#include "gfx/saturate.h"
#include "type3/round_numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

namespace av::type3 {
namespace {

/// What a label takes beside the height of its text.
constexpr int rowMarginPx = 5;

class LevelScale {
 public:
  LevelScale(TextStrip& strip, const AnalyserSettings& settings, const AnalyserLayout& layout)
      : m_strip(strip),
        m_layout(layout),
        m_rowPx(layout.textHeightPx + rowMarginPx),
        m_least(settings.scaleYMin),
        m_most(settings.scaleYMax),
        m_mostLabels(settings.dynamicRangeDb),
        m_mirrored(settings.alignmentY != 0) {
    if (addRow("dB ", 0)) m_freeTop = m_rowPx;
  }

  /// Labels at the multiples of the smallest round step that keeps them well apart; as close as they may stand, where that
  /// leaves only a few.
  void addLabels() {
    if (m_most <= m_least) return;
    const double roomyPx = std::max(1.75 * m_layout.textHeightPx, m_layout.areaHeightPx / 20.0);
    std::int64_t step = stepFor(std::max<double>(roomyPx, m_rowPx));
    const std::int64_t few = m_mirrored ? 6 : 3;
    if (step == 0 || labelCount(step) <= few) step = stepFor(m_rowPx);
    if (step != 0) addMultiples(step);
  }

 private:
  /// Pixels from −`m_most` up, or from the middle outwards.
  double scalePx() const noexcept { return m_mirrored ? m_layout.areaHeightPx / 2.0 : m_layout.areaHeightPx; }

  /// The smallest round step whose labels are `leastPx` apart and not too many; 0: there is none.
  std::int64_t stepFor(double leastPx) const {
    const std::int64_t range = m_most - m_least;
    for (RoundNumbers step; step.value() <= range; step.next()) {
      const double distancePx = static_cast<double>(step.value()) / static_cast<double>(range) * scalePx();
      if (distancePx >= leastPx && labelCount(step.value()) <= m_mostLabels) return step.value();
    }
    return 0;
  }

  /// How many of the multiples of a step have room.
  std::int64_t labelCount(std::int64_t step) const {
    std::int64_t count = 0;
    forEachMultiple(step, [&](std::int64_t, double fromTop) {
      if (hasRoom(fromTop)) count += m_mirrored && fromTop < middle() ? 2 : 1;
    });
    return count;
  }

  void addMultiples(std::int64_t step) {
    forEachMultiple(step, [&](std::int64_t level, double fromTop) {
      if (!hasRoom(fromTop)) return;
      const std::string text = std::to_string(-level);
      addRow(text, rowTop(fromTop));
      if (m_mirrored && fromTop < middle()) addRow(text, rowTop(2 * middle() - fromTop));
    });
  }

  /// `use(level, distance from the top in pixels)`, from the loudest down; of mirrored scales the upper half.
  template <class Use>
  void forEachMultiple(std::int64_t step, Use use) const {
    const double pixelsPerDb = scalePx() / static_cast<double>(m_most - m_least);
    const std::int64_t first = (m_least + step - 1) / step * step;
    for (std::int64_t level = first; level <= m_most; level += step) {
      const double fromLeastPx = static_cast<double>(level - m_least) * pixelsPerDb;
      use(level, m_mirrored ? middle() - (scalePx() - fromLeastPx) : fromLeastPx);
    }
  }

  /// Where columns that grow from the middle begin.
  double middle() const noexcept { return m_layout.areaHeightPx / 2; }  // whole rows

  /// Below the unit and above the lower end. The unit takes its mirror image's room away too, so that both halves of a
  /// mirrored scale are labelled alike.
  bool hasRoom(double fromTop) const noexcept {
    const int top = rowTop(fromTop);
    if (top < m_freeTop || top + m_rowPx > m_layout.areaHeightPx) return false;
    return !m_mirrored || rowTop(2 * middle() - fromTop) + m_rowPx <= m_layout.areaHeightPx;
  }

  int rowTop(double centre) const noexcept { return truncToInt(std::floor(centre - m_rowPx / 2.0 + 0.5)); }

  bool addRow(const std::string& text, int top) {
    const int right = m_layout.size.widthPx;
    return m_strip.add(text, {right - m_layout.yStripWidthPx, top, right, top + m_rowPx});
  }

  TextStrip& m_strip;
  const AnalyserLayout& m_layout;
  int m_rowPx;
  std::int64_t m_least;
  std::int64_t m_most;
  std::int64_t m_mostLabels;
  bool m_mirrored;
  int m_freeTop = 0;
};

}  // namespace

void addLevelLabels(TextStrip& strip, const AnalyserSettings& settings, const AnalyserLayout& layout) {
  LevelScale(strip, settings, layout).addLabels();
}

}  // namespace av::type3
