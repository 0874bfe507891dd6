// The view's layout, scales and frame: any settings, size, font and signal.

#include "fuzz/check.h"
#include "fuzz/frame_input.h"
#include "fuzz/property_tables.h"
#include "fuzz/targets.h"
#include "support/made_up_font.h"
#include "support/scale_texts_oracle.h"
#include "type1/frame.h"
#include "type1/labels.h"
#include "type1/pointer_units.h"

#include <cmath>
#include <optional>
#include <vector>

namespace av::fuzz {
namespace {

using type1::ViewFrame;
using type1::ViewLayout;
using type1::ViewSettings;
using type1::ViewSignal;

/// A signal and its memory.
struct AnySignal {
  explicit AnySignal(Input& input) {
    static constexpr double scales[] = {32767, 127, 8388607, 2147483647, INFINITY, 2047};
    signal.dataReceived = input.ConsumeIntegralInRange<int>(0, 9) != 0;
    signal.channelCount = input.ConsumeIntegralInRange<int>(0, 18);
    signal.windowSize = 64 << input.ConsumeIntegralInRange<int>(0, 2);
    signal.sampleRateHz = anySampleRate(input);
    signal.fullScale = input.PickValueInArray(scales);
    const auto size = static_cast<std::size_t>(signal.windowSize);
    const int kind = input.ConsumeIntegralInRange<int>(0, 3);
    std::uint32_t state = input.ConsumeIntegral<std::uint32_t>();
    const auto missing = input.ConsumeBool() ? 0 : input.ConsumeIntegral<std::uint32_t>();
    values.resize(size * (signal.channelsInUse() + 1));
    for (double& value : values) {
      state = state * 1664525u + 1013904223u;
      value = valueOf(kind, state >> 8);
    }
    for (std::size_t channel = 0; channel < signal.channelsInUse(); ++channel) {
      if (missing >> channel & 1) continue;  // there was no memory for its arrays
      signal.analysis[channel] = std::span(values).subspan(channel * size, size);
      signal.display[channel] = std::span(values).subspan((channel + 1) * size, size);
    }
  }

  ViewSignal signal;
  std::vector<double> values;

 private:
  static double valueOf(int kind, std::uint32_t random) {
    static constexpr double oddities[] = {-200, 0, -INFINITY, INFINITY, NAN, 1e300, -1e300, -91};
    switch (kind) {
      case 0: return -static_cast<double>(random % 20001) / 100;   // levels
      case 1: return static_cast<double>(random % 65536) - 32768;  // samples
      case 2: return oddities[random % std::size(oddities)];
      default: return -1000;
    }
  }
};

Rect plotOf(const ViewLayout& layout) {
  return {layout.plotLeft, layout.plotTop, layout.plotLeft + layout.plotWidth, layout.plotTop + layout.plotHeight};
}

void checkLayout(const ViewSettings& settings, const ViewLayout& layout, const Rect& client, int textHeightPx) {
  require(layout.client == client, "the layout is that of the client rectangle");
  if (client.width() < 2 || client.height() < 2) return;
  require(layout.plotLeft == client.left && layout.plotTop == client.top, "the plot lies at the top left");
  require(layout.plotWidth + layout.yScaleWidthPx == client.width() &&
              layout.plotHeight + layout.xScaleHeightPx == client.height(),
          "plot and strips share the client rectangle");
  require(layout.plotWidth >= layout.yScaleWidthPx && layout.plotHeight >= layout.xScaleHeightPx &&
              layout.yScaleWidthPx >= 0 && layout.xScaleHeightPx >= 0,
          "no strip is larger than the plot");
  require(layout.xScaleHeightPx == 0 || (settings.scaleXVisible != 0 && layout.xScaleHeightPx == textHeightPx + 10),
          "the horizontal strip is as high as its text needs");
  const int labels = layout.xLabelCount;
  require(labels == 0 || labels == 1 || labels == 2 || labels == 5 || labels == 10 || labels == 20,
          "1, 2, 5, 10 or 20");
  require(layout.yDivisionCount >= 0 && layout.yDivisionCount <= 100, "a hundred divisions at most");
}

void checkFurniture(const ViewFrame& frame, const ViewSettings& settings, const ViewLayout& layout,
                    const TextMeasure& measure) {
  const Rect& client = layout.client;
  Rect around = client;
  ++around.right;
  ++around.bottom;
  for (const FilledRect& strip : frame.strips)
    require(isInside(strip.rect, around), "strips end a pixel outside at most");
  for (const Point& point : frame.border.points) require(isOn(point, client), "the border lies on the client's edge");
  for (const TextRun& text : frame.labels) {
    require(text.text.size() < 16, "labels are short");
    const Rect ink = test::ScaleTextsOracle::inkOf(text, measure);
    require(!ink.isEmpty() ? ink.top >= client.top && ink.bottom <= client.bottom + 1 : true,
            "texts lie in the client");
  }
  if (settings.visualizationType >= 6) return;
  for (const LineSegment& line : frame.grid)
    require(isOn(line.from, plotOf(layout)) && isOn(line.to, plotOf(layout)), "the grid lies in the plot");
}

void checkBars(const ViewFrame& frame, int type, const ViewLayout& layout) {
  int before = layout.plotLeft - 1;
  for (const ImageBlit& bar : frame.bars) {
    require(bar.image == type - 3, "bars have the colours of their type");
    require(bar.from == Rect{0, 0, 1, type == 5 ? 186 : 185}, "a bar shows the whole gradient");
    require(bar.to.left > before && bar.to.width() == 1 && bar.to.left <= layout.plotLeft + layout.plotWidth,
            "there is a bar a column, from left to right");
    require(bar.to.top >= layout.plotTop && bar.to.bottom == layout.plotTop + layout.plotHeight && !bar.to.isEmpty(),
            "a bar stands on the plot's bottom");
    before = bar.to.left;
  }
}

void checkCurves(const ViewFrame& frame, const ViewSettings& settings, const AnySignal& any, const ViewLayout& layout) {
  const ViewSignal& signal = any.signal;
  const int type = settings.visualizationType;
  if (!signal.dataReceived || layout.plotWidth < 1) {
    require(frame.curves.lines.empty() && frame.bars.empty() && frame.balance.empty() && frame.correlation.empty(),
            "nothing follows a sound that there is not");
    return;
  }
  require(type == 1 || type == 2 || type == 6 || frame.curves.lines.empty(), "types 1, 2 and 6 have curves");
  require((type >= 3 && type <= 5) || frame.bars.empty(), "types 3 to 5 have bars");
  require(type == 7 || frame.balance.empty(), "type 7 has segments");
  require(frame.curves.lines.size() <= signal.channelsInUse(), "there is a curve a channel at most");
  std::size_t points = 0;
  for (const Polyline& line : frame.curves.lines) {
    require(line.firstPoint == points, "curves share the points out");
    points += line.pointCount;
  }
  require(points == frame.curves.points.size(), "every point belongs to a curve");
  if (type == 1 || type == 2) {
    Rect plot = plotOf(layout);
    plot.right += 2;  // the octave axis reaches that far
    for (const Point& point : frame.curves.points) require(isOn(point, plot), "curves stay in the plot");
  }
  checkBars(frame, type, layout);
  for (const FilledRect& mark : frame.correlation)
    require(isInside(mark.rect, {layout.plotLeft + 5, layout.client.top - 15, layout.plotLeft + layout.plotWidth - 4,
                                 layout.plotTop + layout.plotHeight}),
            "correlation marks stay in their frame");
}

/// Settings, sizes and fonts that hosts use: here the texts keep all their promises.
void checkUsualTexts(Input& input) {
  static constexpr double ranges[] = {42.075874419, 90.308733622834, 138.473693, 186.638, 48, 90, 138, 186};
  static constexpr std::int32_t limits[][2] = {{0, 100}, {0, 50}, {20, 80}, {50, 100}, {-50, 150}, {0, 300}};
  static constexpr std::uint32_t rates[] = {8000, 11025, 16000, 22050, 44100, 48000, 96000, 192000};
  ViewSettings settings;
  settings.visualizationType = input.ConsumeIntegralInRange<int>(0, 8);
  settings.fftViewType = input.ConsumeIntegralInRange<int>(1, 2);
  settings.dynamicRangeDb = input.PickValueInArray(ranges);
  const auto& scale = limits[input.ConsumeIntegralInRange<std::size_t>(0, std::size(limits) - 1)];
  settings.scaleYMin = scale[0];
  settings.scaleYMax = scale[1];
  settings.fftWindowSize = 64 << input.ConsumeIntegralInRange<int>(0, 8);
  settings.scaleXVisible = anyBoolean(input);
  settings.scaleYVisible = anyBoolean(input);
  const std::uint32_t rate = input.PickValueInArray(rates);
  const int textHeightPx = input.ConsumeIntegralInRange<int>(8, 40);
  const test::MadeUpFont font(textHeightPx);
  const Rect client{0, 0, input.ConsumeIntegralInRange<int>(80, 3840), input.ConsumeIntegralInRange<int>(50, 2160)};
  const ViewLayout layout = type1::computeLayout(settings, rate, client, textHeightPx);
  std::vector<TextRun> texts;
  type1::addScaleTexts(texts, settings, rate, layout, font);
  const std::string problem = test::ScaleTextsOracle(settings, rate, layout, texts, font).problem();
  require(problem.empty(), problem.c_str());
}

void checkAnyFrame(Input& input) {
  ViewSettings settings;
  putAnyProperties(input, settings, viewRows, 12);
  static constexpr double ranges[] = {90.3, 0, -60, INFINITY, NAN, 1e300, 42};
  if (input.ConsumeBool()) settings.dynamicRangeDb = input.PickValueInArray(ranges);
  if (input.ConsumeBool()) settings.visualizationType = input.ConsumeIntegralInRange<int>(1, 7);
  const AnyFont font(input);
  // Pictures have their corner at 0; truncation toward zero has another sense beyond it.
  const int left = input.ConsumeIntegralInRange<int>(0, longestSidePx);
  const int top = input.ConsumeIntegralInRange<int>(0, longestSidePx);
  const Rect client{left, top, left + anySide(input), top + anySide(input)};
  const AnySignal any(input);
  const int textHeightPx = font.lineHeightPx();
  const ViewLayout layout = type1::computeLayout(settings, any.signal.sampleRateHz, client, textHeightPx);
  checkLayout(settings, layout, client, textHeightPx);

  ViewFrame frame;
  type1::buildFrame(frame, settings, any.signal, layout, font);
  checkFurniture(frame, settings, layout, font);
  checkCurves(frame, settings, any, layout);
  const ViewFrame first = frame;
  type1::buildFrame(frame, settings, any.signal, layout, font);
  require(static_cast<const type1::ViewFurniture&>(first) == frame && first.curves == frame.curves &&
              first.bars == frame.bars && first.balance == frame.balance && first.correlation == frame.correlation,
          "the same values make the same frame");

  const Point pointer{anyLong(input), anyLong(input)};
  const auto value = type1::pointerValueAt(settings, any.signal.sampleRateHz, layout, pointer);
  require(value == type1::pointerValueAt(settings, any.signal.sampleRateHz, layout, pointer), "a reading is a value");
}

}  // namespace

void viewFrames(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  return input.ConsumeBool() ? checkUsualTexts(input) : checkAnyFrame(input);
}

}  // namespace av::fuzz
