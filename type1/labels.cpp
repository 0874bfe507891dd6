#include "type1/labels.h"

#include "gfx/saturate.h"
#include "type1/pointer_units.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace av::type1 {
namespace {

constexpr int maxVerticalLabels = 100;

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
        m_rowPitchPx(std::int64_t{std::max(layout.textHeightPx, measure.measure("0").heightPx)} + 1 + m_gapPx) {}

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
      m_texts.push_back({std::move(text), {leftPx, top, leftPx + static_cast<int>(width), client.bottom}, m_colour});
    }
  }

  void addHorizontalUnit() {
    if (m_settings.visualizationType == 6 || !xStripShown()) return;
    const std::string_view unit = m_settings.visualizationType < 2 ? "smpl" : "Hz  ";
    const Size size = m_measure.measure(unit);
    const Rect& client = m_layout.client;
    Rect rect{0, client.bottom - m_layout.xScaleHeightPx, 0, client.bottom};
    if (rect.height() < size.heightPx) return;
    // Behind the last label like a unit behind its number; else before the first one.
    for (const int left : {client.right - m_edgePx - size.widthPx, client.left + m_edgePx}) {
      rect.left = left;
      rect.right = left + size.widthPx;
      const Rect box = textBox(unit, rect);
      if (box.left < client.left + 1 || box.right > client.right - 1 || touchesAnother(box)) continue;
      m_texts.push_back({std::string(unit), rect, m_colour});
      return;
    }
  }

  /// In the strip's top corner, else in its bottom corner, where no label is in the way. A unit costs labels only where
  /// most of them stay, and otherwise gives way itself.
  void addVerticalUnit() {
    if (!yStripShown()) return;
    const Rect strip = yStrip();
    const Size size = m_measure.measure(verticalUnit);
    Rect rect{strip.right - m_edgePx - size.widthPx, strip.top + 1, strip.right - m_edgePx,
              strip.top + 1 + size.heightPx};
    if (rect.left < strip.left + 1 || rect.bottom > strip.bottom) return;
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
    const int count = std::min(m_layout.yDivisionCount, maxVerticalLabels);
    const int stride = rowStride(count);

    std::array<Row, maxVerticalLabels> rows;
    int rowCount = 0;
    int columnWidthPx = 0;
    const auto add = [&](int k) {
      if (std::optional<Row> row = rowAt(k, count)) {
        columnWidthPx = std::max(columnWidthPx, row->size.widthPx);
        rows[static_cast<std::size_t>(rowCount++)] = std::move(*row);
      }
    };
    // From the edges to the centre in the mirrored view, so that both halves lose the same labels.
    if (readsAsSpectrum(m_settings.visualizationType)) {
      for (int k = stride; k <= count; k += stride) add(k);
    } else {
      for (int k = stride; 2 * k <= count + 1; k += stride) {
        const bool centreLine = 2 * k == count + 1;
        if (!centreLine && rowsTouch(count + 1 - 2 * k, count)) break;
        add(k);
        if (!centreLine) add(count + 1 - k);
      }
    }
    if (rowCount == 0) add((count + 1) / 2);  // one alone has no neighbour to touch

    const Rect strip = yStrip();
    // The numbers stand near the plot, and as close to it as the unit text needs to fit beside them.
    const int unitWidthPx = m_measure.measure(verticalUnit).widthPx + m_edgePx;
    const int besideUnitPx = strip.width() - columnWidthPx - unitWidthPx - m_gapPx;
    const int padPx = std::clamp(besideUnitPx, 1, std::max(1, m_layout.textHeightPx / 3));
    const int columnRight = strip.left + padPx + columnWidthPx;
    for (int i = 0; i < rowCount; ++i) {
      Row& row = rows[static_cast<std::size_t>(i)];
      const Rect rect{columnRight - row.size.widthPx, row.top, columnRight, row.bottom};
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

  bool rowsTouch(int stride, int count) const {
    return std::int64_t{stride} * m_layout.plotHeight < m_rowPitchPx * (count + 1);
  }

  /// Every how many divisions there is room for a label: the divisions may lie closer than texts are high.
  int rowStride(int count) const {
    int stride = 1;
    while (stride <= count && rowsTouch(stride, count)) ++stride;
    return stride;
  }

  /// The k-th label, centred where the pointer reads its value. Empty when rows are so coarse that no place is true.
  std::optional<Row> rowAt(int k, int count) const {
    const bool mirrored = !readsAsSpectrum(m_settings.visualizationType);
    const double rangeDb = m_settings.dynamicRangeDb;
    const double span = static_cast<double>(m_settings.scaleYMax) - m_settings.scaleYMin;
    const double step = span * rangeDb / 100 / (count + 1) * (mirrored ? 2 : 1);
    const int fromEdge = mirrored ? std::min(k, count + 1 - k) : k;
    const std::int64_t value = -std::int64_t{truncToInt(fromEdge * step + m_settings.scaleYMin * rangeDb / 100 + 0.5)};

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
  std::int64_t m_rowPitchPx;
  std::ptrdiff_t m_firstVerticalLabel = 0;
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
