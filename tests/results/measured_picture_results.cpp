// From blocks of samples to levels, words and pictures: the whole way.

#include "results/result_kinds.h"
#include "support/counting_lock.h"
#include "support/made_up_font.h"
#include "type1/analysis.h"
#include "type1/frame.h"
#include "type1/spoken_value.h"
#include "type2/analysis.h"
#include "type2/frame.h"
#include "type2/spoken_value.h"
#include "type3/analysis.h"
#include "type3/frame.h"
#include "type3/spoken_value.h"

#include <functional>

namespace av::test {
namespace {

constexpr Size size{400, 250};
constexpr int textHeightPx = 13;

/// What is looked at of a control: what the analysis gives, what a screen reader says, and what is drawn.
enum class Look { results, words, picture };

std::vector<double> views(Look look, std::initializer_list<std::int32_t> types) {
  std::vector<double> values;
  for (const std::int32_t type : types) {
    for (const int window : {64, 256, 1024, 4096, 16384}) {
      for (int windowType = 0; windowType <= 4; ++windowType) {
        for (const int bits : {16, 24}) {
          CountingLock lock;
          type1::ViewSettings settings;
          settings.visualizationType = type;
          settings.visualizationSmooth = std::int16_t{0};
          settings.fftWindowSize = window;
          settings.fftWindowType = windowType;
          settings.fftViewType = windowType % 2;
          type1::ViewAnalysis analysis(lock);
          analysis.resizeWindow(settings);
          analysis.accept(pcmNoise(bits, 2, window, 9).block(), settings);
          const type1::ViewSignal signal = analysis.signal();
          if (look == Look::words) append(values, std::u16string_view(spokenValue(settings, signal)));
          if (look == Look::results) append(values, signal.analysis[0].first(static_cast<std::size_t>(window / 2)));
          if (look != Look::picture) continue;
          const Rect client{0, 0, size.widthPx, size.heightPx};
          const auto layout = computeLayout(settings, signal.sampleRateHz, client, textHeightPx);
          type1::ViewFrame frame;
          buildCurves(frame, settings, signal, layout);
          appendAll(values, frame.correlation);
          appendAll(values, frame.bars);
          append(values, frame.curves);
          appendAll(values, frame.balance);
        }
      }
    }
  }
  return values;
}

std::vector<double> meters(Look look) {
  std::vector<double> values;
  for (int variant = 0; variant < 160; ++variant) {
    CountingLock lock;
    LineList list(lock);
    const int count = variant & 1 ? 60 : 100;
    list.SetLineCount(count);
    type2::MeterSettings settings;
    settings.lineType = variant % 6;
    settings.fftViewType = variant >> 1 & 1;
    settings.alignmentY = variant >> 2 & 1;
    settings.fftWindowType = variant % 5;
    type2::MeterAnalysis analysis(list);
    const int frames = 256 + 97 * (variant >> 3) + (variant & 1 ? 3840 : 0);
    for (const unsigned seed : {1u, 2u}) analysis.accept(pcmNoise(16, 2, frames, seed).block(), settings, 100 * seed);
    std::vector<LineInfo> lines;
    list.withLines([&](std::span<LineInfo> all) { lines.assign(all.begin(), all.end()); });
    std::vector<double> levels;
    for (const LineInfo& line : lines) levels.push_back(line.value);
    if (look == Look::results) append(values, levels);
    if (look == Look::words) append(values, std::u16string_view(spokenValue(levels, analysis.axis())));
    if (look != Look::picture) continue;
    type2::MeterFrame frame;
    buildFrame(frame, settings, computeGeometry(settings, count, {0, 0, size.widthPx, size.heightPx}), lines, true);
    appendAll(values, frame.segments);
    append(values, frame.graphs);
  }
  return values;
}

std::vector<double> analysers(Look look) {
  const MadeUpFont font(textHeightPx);
  std::vector<double> values;
  for (int variant = 0; variant < 176; ++variant) {
    CountingLock lock;
    LineList list(lock);
    type3::AnalyserSettings settings;
    settings.xScaleType = variant & 1;
    settings.alignmentX = variant >> 1 & 1;
    settings.viewType = variant >> 2 & 3;
    type3::AnalyserAnalysis analysis(list);
    const std::int32_t length = variant & 8 ? 512 : 4096;
    analysis.setWindowType(variant / 16);
    analysis.setFftLength(length);
    analysis.setLineCount(settings.lineCount);
    const auto layout = computeLayout(settings, size, textHeightPx, font);
    for (const unsigned seed : {1u, 2u})
      analysis.accept(pcmNoise(16, 2, length, seed).block(), settings, layout.areaHeightPx, 100 * seed);
    if (look == Look::results) append(values, analysis.bands());
    if (look == Look::words)
      append(values, std::u16string_view(spokenValue(analysis.bands(), analysis.foldedAxis(), analysis.foldedPlan())));
    if (look != Look::picture) continue;
    type3::ColumnImages images;
    rebuildColumnImages(images, settings, layout.areaHeightPx);
    type3::AnalyserFrame frame;
    list.withLines([&](std::span<LineInfo> lines) { buildColumns(frame, settings, layout, images, lines); });
    appendAll(values, frame.columns);
    appendAll(values, frame.ticks);
  }
  return values;
}

std::vector<double> viewSamples() { return views(Look::results, {1, 6}); }
std::vector<double> viewLevels() { return views(Look::results, {2}); }
std::vector<double> viewPicturesOfSamples() { return views(Look::picture, {1, 6, 7}); }
std::vector<double> viewPicturesOfSpectra() { return views(Look::picture, {2, 3, 4, 5}); }
std::vector<double> meterLevels() { return meters(Look::results); }
std::vector<double> meterPictures() { return meters(Look::picture); }
std::vector<double> analyserBands() { return analysers(Look::results); }
std::vector<double> analyserPictures() { return analysers(Look::picture); }

std::vector<double> words() {
  std::vector<double> values = views(Look::words, {1, 2, 6});
  append(values, meters(Look::words));
  append(values, analysers(Look::words));
  return values;
}

}  // namespace

std::vector<ResultKind> measuredPictureResults() {
  return {{"the view's samples", MadeWith::arithmetic, "", viewSamples},
          {"the view's pictures of samples", MadeWith::arithmetic, "px", viewPicturesOfSamples},
          {"the view's levels", MadeWith::mathsLibrary, "dB", viewLevels},
          {"the view's pictures of spectra", MadeWith::mathsLibrary, "px", viewPicturesOfSpectra},
          {"the meter's levels", MadeWith::mathsLibrary, "dB", meterLevels},
          {"the meter's pictures", MadeWith::mathsLibrary, "px", meterPictures},
          {"the analyser's bands", MadeWith::mathsLibrary, "of full scale", analyserBands},
          {"the analyser's pictures", MadeWith::mathsLibrary, "px", analyserPictures},
          {"what screen readers say", MadeWith::mathsLibrary, "characters", words}};
}

}  // namespace av::test
