#include "type3/frequency_labels.h"

#include "gfx/saturate.h"
#include "type3/round_numbers.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace av::type3 {
namespace {

class FrequencyScale {
 public:
  FrequencyScale(TextStrip& strip, const FrequencyAxis& axis, const AnalyserLayout& layout,
                 const ColumnGeometry& geometry)
      : m_strip(strip), m_axis(axis), m_layout(layout) {
    const int left = geometry.leftPx + 2;
    const int unitRight = left + 2 * layout.textHeightPx;
    if (unitRight <= layout.size.widthPx && m_strip.add("Hz  ", row(left, unitRight)))
      m_takenUpTo = (left + unitRight + m_strip.widthOf("Hz  ")) / 2.0;
    m_labelsFrom = m_strip.count();
  }

  void addLabels() {
    if (m_axis.isMirrored()) {
      addAt(0, m_axis.centre());
      m_takenUpTo = m_axis.centre() + m_strip.widthOf("0") / 2.0;
    }
    const double roomyPx = m_layout.textHeightPx;
    if (m_axis.isLogarithmic()) {
      addDecades(roomyPx * 0.75);
    } else {
      addSteps(roomyPx);
      if (fewerThanTwo()) addSteps(roomyPx / 3);
    }
    if (fewerThanTwo()) addAnyThatFit();
  }

 private:
  Rect row(int left, int right) const noexcept {
    return {left, m_layout.size.heightPx - m_layout.xStripHeightPx, right, m_layout.size.heightPx};
  }

  /// A label of `hz` centred at `place`, unless its rectangle, which is a text height a character wide, passes the right
  /// edge.
  bool addAt(std::int64_t hz, double place) {
    std::string text = std::to_string(hz);
    const int width = m_layout.textHeightPx * static_cast<int>(text.size());
    const int left = truncToInt(std::floor(place - width / 2.0 + 0.5));
    return left + width <= m_layout.size.widthPx && m_strip.add(std::move(text), row(left, left + width));
  }

  void add(std::int64_t hz) {
    const auto place = m_axis.place(static_cast<double>(hz));
    if (!place) return;
    addAt(hz, *place);
    if (m_axis.isMirrored()) addAt(hz, m_axis.reflected(*place));
  }

  /// Of numbers, not counting the reflected ones and the 0 in the centre.
  bool fewerThanTwo() const {
    const std::size_t labels = m_strip.count() - m_labelsFrom;
    return labels < (m_axis.isMirrored() ? 3 : 2);
  }

  /// Multiples of the smallest round step whose labels have `gapPx` between them.
  void addSteps(double gapPx) {
    const double pixelsPerHz = m_axis.widthPx() / m_axis.nyquistHz();
    for (RoundNumbers step; static_cast<double>(step.value()) <= m_axis.nyquistHz(); step.next()) {
      const auto hz = static_cast<double>(step.value());
      const std::int64_t last = static_cast<std::int64_t>(m_axis.nyquistHz() / hz) * step.value();
      if (hz * pixelsPerHz < m_strip.widthOf(std::to_string(last)) + gapPx) continue;
      for (std::int64_t value = step.value(); value <= last; value += step.value()) add(value);
      return;
    }
  }

  /// One decade after the other, each with the most numbers that have `gapPx` between them.
  void addDecades(double gapPx) {
    static constexpr std::array<int, 9> every = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    static constexpr std::array<int, 5> many = {1, 2, 3, 5, 7};
    static constexpr std::array<int, 3> some = {1, 2, 5};
    static constexpr std::array<int, 1> one = {1};
    for (std::int64_t decade = 1; static_cast<double>(decade) < m_axis.nyquistHz(); decade *= 10) {
      for (const std::span<const int> numbers : {std::span<const int>(every), std::span<const int>(many),
                                                 std::span<const int>(some), std::span<const int>(one)}) {
        if (numbers.size() > 1 && !haveRoom(decade, numbers, gapPx)) continue;
        for (const int number : numbers)
          if (static_cast<double>(decade * number) >= m_axis.binHz()) add(decade * number);
        break;
      }
    }
  }

  /// Whether all numbers of a decade that the axis has, and the first of the next one, keep apart. Those that the text at
  /// the beginning of the axis covers count for nothing.
  bool haveRoom(std::int64_t decade, std::span<const int> numbers, double gapPx) const {
    double freeFrom = -std::numeric_limits<double>::infinity();
    const auto fits = [&](std::int64_t hz) {
      const auto place = m_axis.place(static_cast<double>(hz));
      if (!place || static_cast<double>(hz) < m_axis.binHz()) return true;
      const double width = m_strip.widthOf(std::to_string(hz));
      if (*place - width / 2 < m_takenUpTo + m_strip.gapPx()) return true;
      if (*place - width / 2 < freeFrom + gapPx) return false;
      freeFrom = *place + width / 2;
      return true;
    };
    for (const int number : numbers)
      if (!fits(decade * number)) return false;
    return fits(decade * 10);
  }

  /// Where the scale's rule finds no room for two labels: round numbers, the largest first.
  void addAnyThatFit() {
    std::vector<std::int64_t> numbers;
    for (RoundNumbers number; static_cast<double>(number.value()) <= m_axis.nyquistHz(); number.next())
      numbers.push_back(number.value());
    for (auto number = numbers.rbegin(); number != numbers.rend() && fewerThanTwo(); ++number)
      if (static_cast<double>(*number) >= m_axis.binHz()) add(*number);
  }

  TextStrip& m_strip;
  const FrequencyAxis& m_axis;
  const AnalyserLayout& m_layout;
  std::size_t m_labelsFrom = 0;
  double m_takenUpTo = 0;  ///< by the unit, or by the 0 in the centre of a mirrored axis
};

}  // namespace

void addFrequencyLabels(TextStrip& strip, const FrequencyAxis& axis, const AnalyserLayout& layout,
                        const ColumnGeometry& geometry) {
  if (geometry.stepPx < 1) return;
  FrequencyScale(strip, axis, layout, geometry).addLabels();
}

}  // namespace av::type3
