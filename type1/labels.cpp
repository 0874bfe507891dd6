#include "type1/labels.h"

#include "gfx/saturate.h"
#include "type1/label_series.h"
#include "type1/pointer_units.h"
#include "type1/xy_grid.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace av::type1 {
namespace {

std::string decimal(std::int64_t value) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  return std::string(digits.data(), end);
}

bool touch(const Rect& a, const Rect& b, int gapPx) {
  return a.left < b.right + gapPx && b.left < a.right + gapPx && a.top < b.bottom + gapPx && b.top < a.bottom + gapPx;
}

/// Places the texts of one frame, each where it keeps clear of those placed before it.
class Placement {
 public:
  Placement(std::vector<TextRun>& texts, const ViewSettings& settings, std::uint32_t sampleRateHz,
            const ViewLayout& layout, const TextMeasure& measure)
      : m_texts(texts),
        m_settings(settings),
        m_sampleRateHz(sampleRateHz),
        m_layout(layout),
        m_measure(measure),
        m_colour(settings.textAndLineColors[0]),
        m_gapPx(std::max(2, layout.textHeightPx / 6)),
        m_edgePx(std::max(1, layout.textHeightPx / 5)),
        // One more for the row that a label may gain when it is centred.
        m_rowPitchPx(std::max(layout.textHeightPx, measure.measure("0").heightPx) + 1 + m_gapPx),
        m_blankPx(measure.measure("dB ").widthPx - measure.measure("dB").widthPx) {}

  void addHorizontalLabels() {
    if (m_settings.visualizationType == 6 || !xStripShown()) return;
    const Rect& client = m_layout.client;
    for (std::int64_t i = 1; i <= m_layout.xLabelCount; ++i) {
      const int x = static_cast<int>(m_layout.plotWidth * i / m_layout.xLabelCount);
      std::string text = decimal(xValueAt(m_settings, m_sampleRateHz, m_layout, x));
      const double left = (static_cast<double>(i) - 0.5) * m_layout.plotWidth / m_layout.xLabelCount + client.left;
      const double width = static_cast<double>(m_layout.textHeightPx) * static_cast<double>(text.size());
      if (left + width > client.right) continue;
      const int leftPx = truncToInt(left);
      const int top = client.bottom - m_layout.xScaleHeightPx;
      m_texts.push_back({std::move(text),
                         {leftPx, top, leftPx + static_cast<int>(width), client.bottom},
                         m_colour,
                         static_cast<float>(left - leftPx)});
    }
  }

  void addHorizontalUnit() {
    // The strip of the X-Y views holds no frequencies: no labels, or those of sample indices.
    if (isXyView(m_settings.visualizationType) || !xStripShown()) return;
    const std::string_view unit = m_settings.visualizationType < 2 ? "smpl" : "Hz  ";
    const Size size = m_measure.measure(unit);
    const Rect& client = m_layout.client;
    Rect rect{0, client.bottom - m_layout.xScaleHeightPx, 0, client.bottom};
    if (rect.height() < size.heightPx) return;
    // Behind the last label like a unit behind its number, and as far from the edge as "dB " with its blank; else closer
    // to the edge; else before the first label.
    const int atEdge = client.right - m_edgePx - size.widthPx;
    const int inset = unit.back() == ' ' ? 0 : m_blankPx;
    for (const int left : {atEdge - inset, atEdge, client.left + m_edgePx}) {
      rect.left = left;
      rect.right = left + size.widthPx;
      const Rect box = textBox(unit, rect);
      if (box.left < client.left + 1 || box.right > client.right - 1 || touchesAnother(box)) continue;
      m_texts.push_back({std::string(unit), rect, m_colour});
      return;
    }
  }

  /// Above the column of numbers, else in the strip's top corner, else in its bottom corner, where no label is in the
  /// way. A unit costs labels only where most of them stay, and otherwise gives way itself.
  void addVerticalUnit() {
    if (!yStripShown()) return;
    const Rect strip = yStrip();
    const Size size = m_measure.measure(verticalUnit);
    const auto atTop = [&](int right) {
      return Rect{right - size.widthPx, strip.top + 1, right, strip.top + 1 + size.heightPx};
    };
    const Rect corner = atTop(strip.right - m_edgePx);
    if (corner.left < strip.left + 1 || corner.bottom > strip.bottom) return;
    // Its blank hangs over, so that its letters end where the numbers do.
    Rect rect = m_unitAboveNumbers ? atTop(std::min(m_numbersRight + m_blankPx, corner.right)) : corner;
    if (rect.left < strip.left + 1 || touchesAnother(rect)) rect = corner;
    if (touchesAnother(rect)) {
      Rect atBottom = rect;
      atBottom.bottom = strip.bottom - 1;
      atBottom.top = atBottom.bottom - size.heightPx;
      const auto inTheWay = [&](const TextRun& label) { return touch(rect, textBox(label.text, label.rect), m_gapPx); };
      const auto firstLabel = m_texts.begin() + m_firstVerticalLabel;
      if (!touchesAnother(atBottom)) {
        rect = atBottom;
      } else if (m_texts.end() - firstLabel >= 4 * std::count_if(firstLabel, m_texts.end(), inTheWay)) {
        m_texts.erase(std::remove_if(firstLabel, m_texts.end(), inTheWay), m_texts.end());
      } else {
        return;
      }
    }
    m_texts.push_back({std::string(verticalUnit), rect, m_colour});
  }

  void addVerticalLabels() {
    m_firstVerticalLabel = static_cast<std::ptrdiff_t>(m_texts.size());
    if (!yStripShown() || m_layout.yDivisionCount < 1) return;
    const int count = std::min(m_layout.yDivisionCount, maxScaleDivisions);
    std::array<Row, maxScaleDivisions> rows;
    int rowCount = 0;
    int columnWidthPx = 0;
    int highestTop = std::numeric_limits<int>::max();
    for (const int k : labelledDivisions(divisionsOf(count), distances())) {
      std::optional<Row> row = rowAt(k, count);
      if (!row) continue;
      columnWidthPx = std::max(columnWidthPx, row->size.widthPx);
      highestTop = std::min(highestTop, row->top);
      rows[static_cast<std::size_t>(rowCount++)] = std::move(*row);
    }

    // The numbers stand near the plot, and where the unit text has no room above them as close to it as it needs to fit
    // beside them.
    const Rect strip = yStrip();
    const Size unit = m_measure.measure(verticalUnit);
    m_unitAboveNumbers = highestTop >= strip.top + 1 + unit.heightPx + m_gapPx;
    const int besideUnitPx = strip.width() - columnWidthPx - unit.widthPx - m_edgePx - m_gapPx;
    const int nearPlotPx = std::max(1, m_layout.textHeightPx / 3);
    const int padPx = m_unitAboveNumbers ? nearPlotPx : std::clamp(besideUnitPx, 1, nearPlotPx);
    m_numbersRight = strip.left + padPx + columnWidthPx;
    for (int i = 0; i < rowCount; ++i) {
      Row& row = rows[static_cast<std::size_t>(i)];
      const Rect rect{m_numbersRight - row.size.widthPx, row.top, m_numbersRight, row.bottom};
      if (rect.left < strip.left + 1 || rect.right > strip.right - 1 || rect.top < strip.top ||
          rect.bottom > strip.bottom || touchesAnother(rect)) {
        continue;
      }
      m_texts.push_back({std::move(row.text), rect, m_colour});
    }
  }

 private:
  struct Row {
    std::string text;
    Size size;
    int top = 0;
    int bottom = 0;
  };

  bool xStripShown() const { return m_settings.scaleXVisible && m_layout.xScaleHeightPx >= 1; }
  bool yStripShown() const { return m_settings.scaleYVisible && m_layout.yScaleWidthPx >= 1; }

  /// The vertical strip beside the plot, without the corner that it shares with the horizontal strip.
  Rect yStrip() const {
    const Rect& client = m_layout.client;
    return {client.right - m_layout.yScaleWidthPx + 1, client.top, client.right,
            m_layout.plotTop + m_layout.plotHeight};
  }

  /// Where a text centred in `rect` comes out.
  Rect textBox(std::string_view text, const Rect& rect) const {
    const Size size = m_measure.measure(text);
    const int left = rect.left + (rect.width() - size.widthPx) / 2;
    const int top = rect.top + (rect.height() - size.heightPx) / 2;
    return {left, top, left + size.widthPx, top + size.heightPx};
  }

  bool touchesAnother(const Rect& box) const {
    return std::any_of(m_texts.begin(), m_texts.end(),
                       [&](const TextRun& other) { return touch(box, textBox(other.text, other.rect), m_gapPx); });
  }

  ScaleDivisions divisionsOf(int count) const {
    const double heightPx = static_cast<double>(m_layout.plotHeight) / (count + 1);
    return {count, heightPx, stepDb(count), topEdgeDb(), mirrored()};
  }

  /// High plots get a score of labels, not a hundred.
  LabelDistances distances() const {
    return {static_cast<double>(m_rowPitchPx), std::max(1.75 * m_layout.textHeightPx, m_layout.plotHeight / 20.0)};
  }

  bool mirrored() const { return !readsAsSpectrum(m_settings.visualizationType); }
  double topEdgeDb() const { return m_settings.scaleYMin * m_settings.dynamicRangeDb / 100; }
  double stepDb(int count) const {
    const double span = static_cast<double>(m_settings.scaleYMax) - m_settings.scaleYMin;
    return span * m_settings.dynamicRangeDb / 100 / (count + 1) * (mirrored() ? 2 : 1);
  }

  /// The k-th label, centred where the pointer reads its value. Empty when rows are so coarse that no place is true.
  std::optional<Row> rowAt(int k, int count) const {
    const int fromEdge = mirrored() ? std::min(k, count + 1 - k) : k;
    const std::int64_t value = -std::int64_t{truncToInt(fromEdge * stepDb(count) + topEdgeDb() + 0.5)};

    Row row;
    row.text = decimal(value);
    row.size = m_measure.measure(row.text);
    const double y = static_cast<double>(m_layout.plotHeight) * k / (count + 1);
    const std::optional<int> twiceCentre = truestCentre(y, value);
    if (!twiceCentre) return std::nullopt;
    // Rows top … bottom − 1 have their centre at half of (top + bottom − 1): the height takes the parity that fits.
    const int height = row.size.heightPx + ((row.size.heightPx + *twiceCentre) % 2 == 0 ? 1 : 0);
    row.top = m_layout.plotTop + (*twiceCentre + 1 - height) / 2;
    row.bottom = row.top + height;
    return row;
  }

  /// Twice the row nearest to `y`, whole rows before halves, where the pointer reads `value` within 1.
  std::optional<int> truestCentre(double y, std::int64_t value) const {
    const int floorRow = 2 * truncToInt(y);
    const int nearest = 2 * truncToInt(y + 0.5);
    const int other = nearest == floorRow ? floorRow + 2 : floorRow;
    for (const int twice : {nearest, other, floorRow + 1}) {
      const std::int64_t reading = yValueAt(m_settings, m_layout, twice / 2.0);
      if (std::llabs(reading - value) <= 1) return twice;
    }
    return std::nullopt;
  }

  static constexpr std::string_view verticalUnit = "dB ";

  std::vector<TextRun>& m_texts;
  const ViewSettings& m_settings;
  std::uint32_t m_sampleRateHz;
  const ViewLayout& m_layout;
  const TextMeasure& m_measure;
  Argb m_colour;
  int m_gapPx;
  int m_edgePx;  ///< keeps unit texts off the border at the side
  int m_rowPitchPx;
  int m_blankPx;  ///< width of a blank
  std::ptrdiff_t m_firstVerticalLabel = 0;
  bool m_unitAboveNumbers = false;
  int m_numbersRight = 0;  ///< where the numbers of the vertical scale end
};

}  // namespace

void addScaleTexts(std::vector<TextRun>& texts, const ViewSettings& settings, std::uint32_t sampleRateHz,
                   const ViewLayout& layout, const TextMeasure& measure) {
  if (layout.textHeightPx < 1) return;
  Placement placement(texts, settings, sampleRateHz, layout, measure);
  placement.addHorizontalLabels();
  placement.addHorizontalUnit();
  placement.addVerticalLabels();
  placement.addVerticalUnit();
}

}  // namespace av::type1
