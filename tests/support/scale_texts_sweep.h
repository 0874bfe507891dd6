#pragma once

#include "support/scale_texts_oracle.h"
#include "type1/labels.h"

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace av::test {

/// A font under test.
struct ScaleFontOfTest {
  const TextMeasure* measure = nullptr;
  int textHeightPx = 0;
};

/// What a sweep over many views has seen.
struct ScaleTextsSums {
  long views = 0;
  long texts = 0;
  long horizontalLabels = 0;
  long verticalLabels = 0;
  long verticalScales = 0;          ///< strips with divisions to label
  long labelledVerticalScales = 0;  ///< of these, those with labels
};

/// Lays out one view after the other and checks its texts.
class ScaleTextsSweep {
 public:
  type1::ViewSettings settings;
  std::uint32_t sampleRateHz = 44100;

  /// Empty, or the first rule that does not hold.
  std::string check(int width, int height, const ScaleFontOfTest& font) {
    const type1::ViewLayout layout =
        type1::computeLayout(settings, sampleRateHz, {0, 0, width, height}, font.textHeightPx);
    return check(layout, font);
  }

  std::string check(const type1::ViewLayout& layout, const ScaleFontOfTest& font, bool horizontalMayTouch = false) {
    m_texts.clear();
    type1::addScaleTexts(m_texts, settings, sampleRateHz, layout, *font.measure);
    const ScaleTextsOracle oracle(settings, sampleRateHz, layout, m_texts, *font.measure);
    ++sums.views;
    sums.texts += static_cast<long>(m_texts.size());
    sums.horizontalLabels += static_cast<long>(oracle.horizontalLabels());
    sums.verticalLabels += static_cast<long>(oracle.verticalLabels());
    const bool scale = settings.scaleYVisible && layout.yScaleWidthPx > 0 && layout.yDivisionCount > 0;
    sums.verticalScales += scale;
    sums.labelledVerticalScales += scale && oracle.verticalLabels() > 0;
    return oracle.problem(horizontalMayTouch);
  }

  /// Any settings that hosts may sensibly put, and any size from 80 × 50 to 3,840 × 2,160; small ones as often as large.
  std::string checkAnyView(std::mt19937& random, const ScaleFontOfTest& font) {
    const auto pick = [&](const auto& list) { return list[random() % std::size(list)]; };
    static constexpr std::array<int, 9> types = {1, 2, 3, 4, 5, 6, 7, 0, 9};
    static constexpr std::array<double, 8> ranges = {42.075874419, 90.308733622834, 138.473693, 186.638, 48, 90, 138,
                                                     186};
    static constexpr std::array<std::array<int, 2>, 8> limits = {
        {{0, 100}, {0, 50}, {20, 80}, {50, 100}, {-50, 150}, {33, 38}, {0, 300}, {-100, 0}}};
    static constexpr std::array<std::uint32_t, 8> rates = {8000, 11025, 16000, 22050, 44100, 48000, 96000, 192000};
    settings.visualizationType = pick(types);
    settings.fftViewType = 1 + static_cast<int>(random() % 2);
    settings.dynamicRangeDb = pick(ranges);
    const auto scale = random() % 2 ? limits[0] : pick(limits);
    settings.scaleYMin = scale[0];
    settings.scaleYMax = scale[1];
    settings.fftWindowSize = 64 << (random() % 9);
    settings.scaleXVisible = random() % 8 ? -1 : 0;
    settings.scaleYVisible = random() % 8 ? -1 : 0;
    sampleRateHz = pick(rates);
    const auto length = [&](int least, int most) {
      const double ratio = static_cast<double>(most) / least;
      return static_cast<int>(least * std::pow(ratio, static_cast<double>(random() % 10001) / 10000));
    };
    const int width = length(80, 3840);
    return check(width, length(50, 2160), font);
  }

  ScaleTextsSums sums;

 private:
  std::vector<TextRun> m_texts;
};

}  // namespace av::test
