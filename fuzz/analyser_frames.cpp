// The spectrum analyser's layout, bands, column images, scales and frame: any settings, size, font and columns.

#include "fuzz/check.h"
#include "fuzz/frame_input.h"
#include "fuzz/property_tables.h"
#include "fuzz/targets.h"
#include "type3/column_heights.h"
#include "type3/frame.h"

#include <cmath>
#include <vector>

namespace av::fuzz {
namespace {

using type3::AnalyserFrame;
using type3::AnalyserLayout;
using type3::AnalyserSettings;
using type3::BandAxis;
using type3::BinRange;

std::vector<LineInfo> anyColumns(Input& input, int count) {
  static constexpr double oddities[] = {-91, 0, -1, -1.5, 1e12, -1e12, 2147483647, -0.5, 0.99, 40000};
  std::vector<LineInfo> columns(static_cast<std::size_t>(count));
  std::uint32_t state = input.ConsumeIntegral<std::uint32_t>();
  const bool odd = input.ConsumeIntegralInRange<int>(0, 3) == 0;
  const auto most = input.ConsumeIntegralInRange<std::uint32_t>(1, 40000);
  for (LineInfo& column : columns) {
    state = state * 1664525u + 1013904223u;
    column.value = odd ? oddities[(state >> 16) % std::size(oddities)] : (state >> 8) % most;
    column.peak = odd ? oddities[(state >> 20) % std::size(oddities)] : column.value + state % 7;
  }
  return columns;
}

/// Bands lie one above the other and, on the linear axis, share the spectrum out.
void checkBands(const BandAxis& axis, Input& input) {
  std::vector<BinRange> plan;
  type3::planBands(plan, axis);
  require(plan.size() == static_cast<std::size_t>(axis.bandCount()), "there is a band a column, or a column of a half");
  std::int32_t next = 0;
  for (const BinRange& band : plan) {
    require(band.count >= 0, "no band has less than no bins");
    if (axis.logarithmic) {
      require(band.first >= 0 && band.count > 0, "logarithmic bands have a bin at least");
    } else {
      require(band.first == next && band.first + band.count <= axis.binCount(), "linear bands share no bin");
      next += band.count;
    }
  }
  if (axis.fftLength > 4096) return;
  std::vector<double> power(static_cast<std::size_t>(axis.binCount()));
  std::uint32_t state = input.ConsumeIntegral<std::uint32_t>();
  for (double& bin : power) {
    state = state * 1664525u + 1013904223u;
    bin = state >> 12;
  }
  std::vector<double> bands(static_cast<std::size_t>(axis.lineCount));
  type3::foldBands(bands, axis, plan, power, 32768);
  for (std::size_t i = 0; i < bands.size(); ++i) {
    require(std::isnan(bands[i]) || (bands[i] >= 0 && bands[i] < 1), "a band is the mean of its bins");
    if (axis.mirrored) {
      const double other = bands[bands.size() - 1 - i];
      require(bands[i] == other || (std::isnan(bands[i]) && std::isnan(other)), "both halves are alike");
    }
  }
}

void checkLayout(const AnalyserLayout& layout, Size size) {
  require(layout.size == size, "the layout is that of the control");
  require(layout.areaWidthPx >= 0 && layout.areaHeightPx >= 0 && layout.xStripHeightPx >= 0 &&
              layout.yStripWidthPx >= 0 && layout.areaWidthPx + layout.yStripWidthPx == size.widthPx &&
              layout.areaHeightPx + layout.xStripHeightPx == size.heightPx,
          "columns and strips share the control out");
}

Rect inkOf(const TextRun& run, const TextMeasure& measure) {
  const auto [width, height] = measure.measure(run.text);
  const int left = run.rect.left + (run.rect.width() - width) / 2;
  const int top = run.rect.top + (run.rect.height() - height) / 2;
  return {left, top, left + width, top + height};
}

void checkTexts(const AnalyserFrame& frame, const AnalyserSettings& settings, const AnalyserLayout& layout,
                const TextMeasure& measure) {
  const Rect xStrip{0, layout.areaHeightPx, layout.size.widthPx, layout.size.heightPx};
  const Rect yStrip{layout.areaWidthPx, 0, layout.size.widthPx, layout.areaHeightPx};
  std::vector<Rect> inks;
  int levels = 0;
  for (const TextRun& run : frame.texts) {
    const Rect ink = inkOf(run, measure);
    const bool inX = layout.xStripHeightPx > 0 && isInside(ink, xStrip);
    const bool inY = layout.yStripWidthPx > 0 && isInside(ink, yStrip);
    require(inX || inY, "a text lies in its strip");
    if (!inX && run.text != "dB ") ++levels;
    for (const Rect& other : inks) {
      require(ink.right <= other.left || other.right <= ink.left || ink.bottom <= other.top || other.bottom <= ink.top,
              "no text touches another");
    }
    inks.push_back(ink);
  }
  require(levels <= settings.dynamicRangeDb, "there are no more levels than the dynamic range says");
}

void checkFurniture(const AnalyserFrame& frame, const AnalyserLayout& layout, const type3::ColumnImages& images) {
  const Rect control{0, 0, layout.size.widthPx, layout.size.heightPx};
  const Rect area{0, 0, layout.areaWidthPx, layout.areaHeightPx};
  for (const FilledRect& strip : frame.strips) require(isInside(strip.rect, control), "strips lie in the control");
  for (const Point& point : frame.border.points) require(isOn(point, control), "the border lies on the edge");
  for (const ColumnFill& fill : frame.unlit) {
    require(isInside(fill.rect, area), "the unlit columns lie in their area");
    require(fill.firstRow == 0 && fill.rect.height() <= static_cast<int>(images.unlit.size()), "and in their picture");
  }
  for (const FilledRect& gap : frame.gaps)
    require(frame.unlit.size() == 1 && isInside(gap.rect, frame.unlit.front().rect), "gaps lie in the unlit columns");
}

void checkColumns(const AnalyserFrame& frame, const AnalyserSettings& settings, const AnalyserLayout& layout,
                  const type3::ColumnImages& images) {
  const auto geometry = type3::columnGeometry(settings, layout.areaWidthPx);
  for (const ColumnFill& fill : frame.columns) {
    const auto rows = static_cast<int>(images[fill.column].size());
    require(fill.firstRow >= 0 && fill.rect.height() > 0 && fill.firstRow + fill.rect.height() <= rows,
            "columns stay in their pictures");
    require(fill.rect.left >= 0 && fill.rect.right <= layout.areaWidthPx && fill.rect.width() == geometry.widthPx,
            "columns stay in their area");
  }
  for (const FilledRect& tick : frame.ticks) {
    require(tick.rect.height() > 0 && tick.rect.height() <= settings.spotHeightPx, "a tick is a segment high at most");
    require(tick.rect.bottom <= layout.areaHeightPx, "a tick stands above the foot");
    require(tick.rect.left >= 0 && tick.rect.right <= layout.areaWidthPx, "ticks stay over their columns");
  }
}

}  // namespace

void analyserFrames(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  AnalyserSettings settings;
  putAnyProperties(input, settings, analyserRows, 12);
  const AnyFont font(input);
  const Size size{anySide(input), anySide(input)};
  const std::int32_t fftLength = input.ConsumeIntegralInRange<int>(0, 20) == 0
                                     ? input.ConsumeIntegralInRange<int>(0, 1)
                                     : 2 << input.ConsumeIntegralInRange<int>(0, 14);
  const BandAxis axis = type3::bandAxis(settings, fftLength, anySampleRate(input));
  if (input.ConsumeBool()) checkBands(axis, input);

  const AnalyserLayout layout = type3::computeLayout(settings, size, font.lineHeightPx(), font);
  checkLayout(layout, size);
  type3::ColumnImages images;
  type3::rebuildColumnImages(images, settings, layout.areaHeightPx);
  require(images.unlit.size() == static_cast<std::size_t>(layout.areaHeightPx),
          "the columns are as high as their area");
  const auto columns = anyColumns(input, settings.lineCount + input.ConsumeIntegralInRange<int>(-1, 1));

  AnalyserFrame frame;
  type3::buildFurniture(frame, settings, layout, images, axis, font);
  type3::buildColumns(frame, settings, layout, images, columns);
  checkTexts(frame, settings, layout, font);
  checkFurniture(frame, layout, images);
  checkColumns(frame, settings, layout, images);
  const AnalyserFrame first = frame;
  type3::buildFurniture(frame, settings, layout, images, axis, font);
  type3::buildColumns(frame, settings, layout, images, columns);
  require(first.texts == frame.texts && first.unlit == frame.unlit && first.gaps == frame.gaps &&
              first.columns == frame.columns && first.ticks == frame.ticks && first.strips == frame.strips,
          "the same values make the same frame");
}

}  // namespace av::fuzz
