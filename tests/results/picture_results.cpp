// From given signals, levels and powers to pictures: whole numbers at the end.

#include "results/result_kinds.h"
#include "support/made_up_font.h"
#include "type1/frame.h"
#include "type1/pointer_units.h"
#include "type2/band_fold.h"
#include "type2/frame.h"
#include "type3/bands.h"
#include "type3/column_heights.h"
#include "type3/frame.h"

#include <array>

namespace av::test {
namespace {

constexpr std::array<Size, 4> sizes{{{60, 40}, {301, 201}, {640, 333}, {1200, 800}}};
constexpr int textHeightPx = 13;

void appendLayout(std::vector<double>& to, const type1::ViewLayout& layout) {
  for (const int number : {layout.yScaleWidthPx, layout.xScaleHeightPx, layout.plotLeft, layout.plotTop,
                           layout.plotWidth, layout.plotHeight, layout.xLabelCount, layout.yDivisionCount})
    to.push_back(number);
}

/// Layouts, furniture with its texts, and how the view draws given samples and levels. `viewType` 1: the linear axis.
std::vector<double> views(std::int32_t viewType) {
  const MadeUpFont font(textHeightPx);
  std::vector<double> values;
  for (std::int32_t type = 1; type <= 7; ++type) {
    type1::ViewSettings settings;
    settings.visualizationType = type;
    settings.visualizationSmooth = std::int16_t{0};
    settings.fftViewType = viewType;
    const bool ofSamples = type == 1 || type >= 6;
    const std::vector<double> left = numbers(1024, ofSamples ? 32767 : 100, 20);
    const std::vector<double> right = numbers(1024, ofSamples ? 32767 : 100, 21);
    type1::ViewSignal signal;
    signal.dataReceived = true;
    signal.analysis[0] = left;
    signal.analysis[1] = right;
    for (const Size size : sizes) {
      for (const std::int32_t lowest : {0, 20, -30}) {
        settings.scaleYMin = lowest;
        const auto layout =
            computeLayout(settings, signal.sampleRateHz, {0, 0, size.widthPx, size.heightPx}, textHeightPx);
        type1::ViewFrame frame;
        buildFrame(frame, settings, signal, layout, font);
        appendLayout(values, layout);
        appendAll(values, frame.strips);
        appendAll(values, frame.labels);
        appendAll(values, frame.grid);
        appendAll(values, frame.correlation);
        appendAll(values, frame.bars);
        append(values, frame.curves);
        appendAll(values, frame.balance);
      }
    }
  }
  return values;
}

std::vector<double> linearViews() { return views(1); }
std::vector<double> octaveViews() { return views(0); }

std::vector<double> octaveReadings() {
  std::vector<double> values;
  type1::ViewSettings settings;
  settings.visualizationType = 2;
  settings.fftViewType = 0;
  for (const std::int32_t window : {64, 1024, 16384}) {
    settings.fftWindowSize = window;
    const auto layout = computeLayout(settings, 44100, {0, 0, 1200, 800}, textHeightPx);
    for (const std::uint32_t rate : {8000u, 44100u, 48000u, 192000u})
      for (int x = -5; x < 1300; ++x) values.push_back(xValueAt(settings, rate, layout, x));
  }
  return values;
}

std::vector<LineInfo> givenLines(int count) {
  std::vector<LineInfo> lines(static_cast<std::size_t>(count));
  const std::vector<double> levels = numbers(2 * lines.size(), 60, 22);
  std::uint32_t nowMs = 100;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    lines[i].holdMs = 50;
    writeLine(lines[i], levels[2 * i] - 40, nowMs);
    writeLine(lines[i], levels[2 * i + 1] - 40, nowMs);
    for (; nowMs % 100 != 0; nowMs += 10) lowerPeak(lines[i], [&] { return nowMs; });
    nowMs += 10;
  }
  return lines;
}

std::vector<double> meters() {
  std::vector<double> values;
  for (std::int32_t type = 0; type <= 5; ++type) {
    for (const Size size : sizes) {
      for (const int count : {3, 20, 100}) {
        type2::MeterSettings settings;
        settings.lineType = type;
        settings.alignmentX = count == 20 ? 1 : 0;
        settings.borderType = 1;
        const auto geometry = computeGeometry(settings, count, {0, 0, size.widthPx, size.heightPx});
        type2::MeterFrame frame;
        buildFrame(frame, settings, geometry, givenLines(count), true);
        append(values, geometry.inner);
        appendAll(values, frame.segments);
        append(values, frame.border);
        append(values, frame.graphs);
        const Size snapped = snappedSize(settings, count, size);
        values.push_back(snapped.widthPx);
        values.push_back(snapped.heightPx);
      }
    }
  }
  return values;
}

std::vector<double> meterBands(std::initializer_list<type2::BandLayout> layouts) {
  std::vector<double> values;
  for (const type2::BandLayout layout : layouts) {
    for (const std::size_t length : {64u, 128u, 500u, 2048u, 24000u}) {
      for (const int count : {3, 20, 60, 100, 255}) {
        const std::vector<double> levels = numbers(length, 45, 23);
        std::vector<LineInfo> lines(static_cast<std::size_t>(count));
        type2::BandRatio ratio;
        foldBands(layout, levels, lines, 100, ratio);
        for (const LineInfo& line : lines) values.push_back(line.value);
      }
    }
  }
  return values;
}

std::vector<double> linearMeterBands() {
  return meterBands({type2::BandLayout::linear, type2::BandLayout::linearMirrored});
}
std::vector<double> logarithmicMeterBands() {
  return meterBands({type2::BandLayout::logarithmic, type2::BandLayout::logarithmicMirrored});
}

/// Which bins each column shows, the columns' amplitudes and heights, and the whole picture with its texts.
std::vector<double> analysers(std::int32_t scaleType) {
  const MadeUpFont font(textHeightPx);
  std::vector<double> values;
  for (int variant = 0; variant < 32; ++variant) {
    type3::AnalyserSettings settings;
    settings.xScaleType = scaleType;
    settings.viewType = variant & 3;
    settings.alignmentX = variant >> 2 & 1;
    settings.alignmentY = variant >> 3 & 1;
    settings.lineCount = variant & 16 ? 31 : 60;
    settings.borderType = variant % 4;
    const std::int32_t fftLength = variant & 1 ? 512 : 4096;
    const type3::BandAxis axis = bandAxis(settings, fftLength, variant & 2 ? 44100 : 48000);
    std::vector<double> power = numbers(static_cast<std::size_t>(axis.binCount()), 3e4, 24);
    for (double& bin : power) bin *= bin;
    std::vector<type3::BinRange> plan;
    planBands(plan, axis);
    std::vector<double> bands(static_cast<std::size_t>(settings.lineCount));
    type3::foldBands(bands, axis, plan, power, 32768);
    append(values, bands);
    const Size size = sizes[static_cast<std::size_t>(variant) % sizes.size()];
    const auto layout = computeLayout(settings, size, textHeightPx, font);
    std::vector<LineInfo> columns(bands.size());
    writeColumnHeights(columns, bands, settings, fftLength, layout.areaHeightPx, 100);
    for (const LineInfo& column : columns) values.push_back(column.value);
    type3::ColumnImages images;
    rebuildColumnImages(images, settings, layout.areaHeightPx);
    for (const auto* image : {&images.lit, &images.unlit})
      for (const Argb colour : *image) values.push_back(static_cast<double>(colour));
    type3::AnalyserFrame frame;
    buildFurniture(frame, settings, layout, images, axis, font);
    buildColumns(frame, settings, layout, images, columns);
    appendAll(values, frame.strips);
    appendAll(values, frame.gaps);
    appendAll(values, frame.texts);
    append(values, frame.border);
    appendAll(values, frame.columns);
    appendAll(values, frame.ticks);
  }
  return values;
}

std::vector<double> linearAnalysers() { return analysers(0); }
std::vector<double> logarithmicAnalysers() { return analysers(1); }

}  // namespace

std::vector<ResultKind> pictureResults() {
  return {{"views of given signals, linear axis", MadeWith::arithmetic, "px", linearViews},
          {"meters of given lines", MadeWith::arithmetic, "px", meters},
          {"the meter's bands, linear", MadeWith::arithmetic, "dB", linearMeterBands},
          {"analysers of given spectra, linear axis", MadeWith::arithmetic, "px", linearAnalysers},
          {"views of given signals, octave axis", MadeWith::mathsLibrary, "px", octaveViews},
          {"what the pointer reads on the octave axis", MadeWith::mathsLibrary, "Hz", octaveReadings},
          {"the meter's bands of given levels, logarithmic", MadeWith::mathsLibrary, "dB", logarithmicMeterBands},
          {"analysers of given spectra, logarithmic axis", MadeWith::mathsLibrary, "px", logarithmicAnalysers}};
}

}  // namespace av::test
