#pragma once

#include "gfx/frame_parts.h"
#include "gfx/text_measure.h"
#include "type1/layout.h"
#include "type1/settings.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace av::test {

/// What has to hold for the texts of the view's scales, worked out anew in wider precision.
class ScaleTextsOracle {
 public:
  ScaleTextsOracle(const type1::ViewSettings& settings, std::uint32_t sampleRateHz, const type1::ViewLayout& layout,
                   const std::vector<TextRun>& texts, const TextMeasure& measure)
      : m_settings(settings), m_sampleRateHz(sampleRateHz), m_layout(layout), m_texts(texts) {
    for (const TextRun& run : texts) {
      m_inks.push_back(inkOf(run, measure));
      (isUnit(run) ? m_units : isHorizontal(run) ? m_horizontal : m_vertical).push_back(m_inks.size() - 1);
    }
  }

  /// Where a text centred in its rectangle comes out.
  static Rect inkOf(const TextRun& run, const TextMeasure& measure) {
    const Size size = measure.measure(run.text);
    const int left = run.rect.left + (run.rect.width() - size.widthPx) / 2;
    const int top = run.rect.top + (run.rect.height() - size.heightPx) / 2;
    return {left, top, left + size.widthPx, top + size.heightPx};
  }

  std::size_t verticalLabels() const { return m_vertical.size(); }
  std::size_t horizontalLabels() const { return m_horizontal.size(); }

  /// The first rule that does not hold, in words; empty when all do. `horizontalMayTouch`: the layout is of other
  /// settings than the labels, so their fixed rectangles may lie too close.
  std::string problem(bool horizontalMayTouch = false) const {
    for (const std::string& found : {strips(), touching(horizontalMayTouch), horizontalRule(), verticalValues()})
      if (!found.empty()) return found + describe();
    return {};
  }

 private:
  static bool isUnit(const TextRun& run) { return run.text == "dB " || run.text == "smpl" || run.text == "Hz  "; }

  bool isHorizontal(const TextRun& run) const {
    return m_layout.xScaleHeightPx > 0 && run.rect.top >= m_layout.client.bottom - m_layout.xScaleHeightPx;
  }

  std::string strips() const {
    const Rect& client = m_layout.client;
    for (std::size_t i = 0; i < m_texts.size(); ++i) {
      const Rect& ink = m_inks[i];
      // The strips are filled from one pixel behind the plot.
      const bool inXStrip = ink.top > client.bottom - m_layout.xScaleHeightPx && ink.bottom <= client.bottom &&
                            ink.left >= client.left && ink.right <= client.right;
      const bool inYStrip = ink.left > client.right - m_layout.yScaleWidthPx && ink.right <= client.right &&
                            ink.top >= client.top && ink.bottom <= m_layout.plotTop + m_layout.plotHeight;
      const bool shown = isHorizontal(m_texts[i]) ? m_settings.scaleXVisible != 0 : m_settings.scaleYVisible != 0;
      if (!shown) return m_texts[i].text + " of a hidden scale";
      if (!(isHorizontal(m_texts[i]) ? inXStrip : inYStrip)) return m_texts[i].text + " leaves its strip";
    }
    return {};
  }

  std::string touching(bool horizontalMayTouch) const {
    const auto touch = [](const Rect& a, const Rect& b) {
      return a.left <= b.right && b.left <= a.right && a.top <= b.bottom && b.top <= a.bottom;
    };
    for (std::size_t i = 0; i < m_texts.size(); ++i) {
      for (std::size_t other = 0; other < i; ++other) {
        if (!touch(m_inks[i], m_inks[other])) continue;
        if (horizontalMayTouch && !isUnit(m_texts[i]) && !isUnit(m_texts[other]) && isHorizontal(m_texts[i]) &&
            isHorizontal(m_texts[other])) {
          continue;
        }
        return m_texts[i].text + " touches " + m_texts[other].text;
      }
    }
    return {};
  }

  bool spectrum() const { return m_settings.visualizationType >= 2 && m_settings.visualizationType <= 6; }

  /// The pointer's XValue before it is cut to a whole number.
  long double xReading(int x) const {
    const long double width = m_layout.client.width() - m_layout.yScaleWidthPx;
    if (!spectrum()) return static_cast<long double>(int{m_settings.fftWindowSize}) * x / width + 0.5L;
    const long double nyquist = static_cast<long double>(m_sampleRateHz) / 2;
    if (m_settings.fftViewType == 1) return nyquist * x / width + 0.5L;
    const long double octaves = std::log2(static_cast<long double>(int{m_settings.fftWindowSize}));
    return nyquist / std::exp2((width - x) * octaves / width) + 0.5L;
  }

  /// All labels that the rule of the horizontal scale gives, and no others.
  std::string horizontalRule() const {
    std::size_t next = 0;
    const bool shown = m_settings.scaleXVisible && m_layout.xScaleHeightPx >= 1 && m_settings.visualizationType != 6;
    for (int i = 1; shown && i <= m_layout.xLabelCount; ++i) {
      const long double reading = xReading(m_layout.plotWidth * i / m_layout.xLabelCount);
      // At a reading of just a whole number either side is right.
      const auto value = static_cast<std::int64_t>(reading - reading * 1e-12L);
      const auto orValue = static_cast<std::int64_t>(reading + reading * 1e-12L);
      const TextRun* const run = next < m_horizontal.size() ? &m_texts[m_horizontal[next]] : nullptr;
      const bool fits = fitsHorizontally(i, std::to_string(value)) || fitsHorizontally(i, std::to_string(orValue));
      if (!fits) continue;
      if (!run) return "label " + std::to_string(value) + " is missing";
      if (run->text != std::to_string(value) && run->text != std::to_string(orValue))
        return run->text + " stands for " + std::to_string(value);
      const int left = static_cast<int>((i - 0.5L) * m_layout.plotWidth / m_layout.xLabelCount + m_layout.client.left);
      const int top = m_layout.client.bottom - m_layout.xScaleHeightPx;
      const int width = m_layout.textHeightPx * static_cast<int>(run->text.size());
      if (run->rect != Rect{left, top, left + width, m_layout.client.bottom}) return run->text + " lies elsewhere";
      ++next;
    }
    return next == m_horizontal.size() ? "" : m_texts[m_horizontal[next]].text + " is too much";
  }

  bool fitsHorizontally(int i, const std::string& text) const {
    return (i - 0.5L) * m_layout.plotWidth / m_layout.xLabelCount + m_layout.client.left +
               m_layout.textHeightPx * static_cast<long double>(text.size()) <=
           m_layout.client.right;
  }

  /// The pointer's YValue at a height, before it is cut to a whole number.
  long double yReading(long double y) const {
    const long double range = m_settings.dynamicRangeDb;
    const long double height = m_layout.client.height() - m_layout.xScaleHeightPx;
    const long double span = (static_cast<long double>(m_settings.scaleYMax) - m_settings.scaleYMin) / 100;
    const long double top = m_settings.scaleYMax * range / 100;
    return spectrum() ? span * range * (height - y) / height - top + 0.5L
                      : 2 * span * range * std::fabs(height / 2 - y) / height - top + 0.5L;
  }

  std::string verticalValues() const {
    for (const std::size_t i : m_vertical) {
      const Rect& rect = m_texts[i].rect;
      const long double centre = (rect.top + rect.bottom - 1) / 2.0L - m_layout.client.top;
      const long double reading = yReading(centre);
      // At a reading of just a whole number either side is right.
      const long double slack = 1e-12L * (1 + std::fabs(reading));
      const int label = std::atoi(m_texts[i].text.c_str());
      if (std::abs(static_cast<int>(reading - slack) - label) > 1 &&
          std::abs(static_cast<int>(reading + slack) - label) > 1) {
        return m_texts[i].text + " lies where the pointer reads " + std::to_string(static_cast<int>(reading));
      }
      if (!isStep(label)) return m_texts[i].text + " is the level of no division";
    }
    return {};
  }

  /// Whether a label is one of k steps, of which there is one more than divisions.
  bool isStep(int label) const {
    const long double range = m_settings.dynamicRangeDb;
    const long double span = static_cast<long double>(m_settings.scaleYMax) - m_settings.scaleYMin;
    const long double step = span * range / 100 / (m_layout.yDivisionCount + 1) * (spectrum() ? 1 : 2);
    for (int k = 1; k <= m_layout.yDivisionCount; ++k) {
      const long double level = k * step + m_settings.scaleYMin * range / 100 + 0.5L;
      const long double slack = 1e-12L * (1 + std::fabs(level));
      if (-label == static_cast<int>(level - slack) || -label == static_cast<int>(level + slack)) return true;
    }
    return false;
  }

  std::string describe() const {
    std::ostringstream text;
    text << " at " << m_layout.client.width() << " x " << m_layout.client.height() << ", text height "
         << m_layout.textHeightPx << ", type " << int{m_settings.visualizationType} << ", axis "
         << m_settings.fftViewType << ", scale " << m_settings.scaleYMin << " to " << m_settings.scaleYMax << " of "
         << double{m_settings.dynamicRangeDb} << " dB, " << m_sampleRateHz << " Hz, " << int{m_settings.fftWindowSize}
         << " samples, scales " << m_settings.scaleXVisible << m_settings.scaleYVisible;
    return text.str();
  }

  const type1::ViewSettings& m_settings;
  std::uint32_t m_sampleRateHz;
  const type1::ViewLayout& m_layout;
  const std::vector<TextRun>& m_texts;
  std::vector<Rect> m_inks;
  std::vector<std::size_t> m_horizontal;
  std::vector<std::size_t> m_vertical;
  std::vector<std::size_t> m_units;
};

}  // namespace av::test
