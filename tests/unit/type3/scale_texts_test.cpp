#include "type3/scale_texts.h"

#include "support/analyser_model.h"
#include "support/liberation_sans.h"
#include "support/made_up_font.h"
#include "type3/column_heights.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace av::type3 {
namespace {

/// The texts of one control, and whether they keep what the scales promise, found out by way of columns: which one a tone
/// lights, and how high a level reaches.
class Scales {
 public:
  Scales(const AnalyserSettings& settings, int fftLength, std::uint32_t rateHz, Size size, int textHeightPx,
         const TextMeasure& measure)
      : m_settings(settings),
        m_fftLength(fftLength),
        m_rateHz(rateHz),
        m_layout(computeLayout(settings, size, textHeightPx, measure)),
        m_columns(columnGeometry(settings, m_layout.areaWidthPx)) {
    addScaleTexts(m_texts, settings, bandAxis(settings, fftLength, rateHz), m_layout, measure);
    for (const TextRun& run : m_texts) {
      const Size text = measure.measure(run.text);
      const int left = run.rect.left + (run.rect.width() - text.widthPx) / 2;
      const int top = run.rect.top + (run.rect.height() - text.heightPx) / 2;
      m_inks.push_back({left, top, left + text.widthPx, top + text.heightPx});
      if (run.text == "Hz  ") m_unitX = &run;
      if (run.text == "dB ") m_unitY = &run;
      if (&run == m_unitX || &run == m_unitY) continue;
      (isFrequency(run) ? m_frequencies : m_levels).push_back(&run);
    }
  }

  const AnalyserLayout& layout() const { return m_layout; }
  const std::vector<const TextRun*>& frequencies() const { return m_frequencies; }
  const std::vector<const TextRun*>& levels() const { return m_levels; }
  const TextRun* unitX() const { return m_unitX; }
  const TextRun* unitY() const { return m_unitY; }

  std::vector<std::string> frequencyTexts() const { return textsOf(m_frequencies); }
  std::vector<std::string> levelTexts() const { return textsOf(m_levels); }

  /// The first promise that is not kept, in words; empty when all are.
  std::string problem() const {
    for (const std::string& found : {strips(), touching(), frequencyPlaces(), levelPlaces(), evenLevels()})
      if (!found.empty()) return found + describe();
    return {};
  }

 private:
  bool isFrequency(const TextRun& run) const {
    return m_layout.xStripHeightPx > 0 && run.rect.top >= m_layout.areaHeightPx;
  }

  static std::vector<std::string> textsOf(const std::vector<const TextRun*>& runs) {
    std::vector<std::string> texts;
    for (const TextRun* run : runs) texts.push_back(run->text);
    return texts;
  }

  std::string strips() const {
    const auto [width, height] = m_layout.size;
    for (std::size_t i = 0; i < m_texts.size(); ++i) {
      const Rect& ink = m_inks[i];
      const bool inX =
          ink.left >= 0 && ink.right <= width && ink.top >= height - m_layout.xStripHeightPx && ink.bottom <= height;
      const bool inY = ink.left >= width - m_layout.yStripWidthPx && ink.right <= width && ink.top >= 0 &&
                       ink.bottom <= m_layout.areaHeightPx;
      if (!(isFrequency(m_texts[i]) ? inX : inY)) return m_texts[i].text + " leaves its strip";
    }
    return {};
  }

  std::string touching() const {
    for (std::size_t i = 0; i < m_texts.size(); ++i) {
      for (std::size_t other = 0; other < i; ++other) {
        const Rect& a = m_inks[i];
        const Rect& b = m_inks[other];
        if (a.left <= b.right && b.left <= a.right && a.top < b.bottom && b.top < a.bottom)
          return m_texts[i].text + " touches " + m_texts[other].text;
      }
    }
    return {};
  }

  /// A tone at a label's frequency lights the column over it.
  std::string frequencyPlaces() const {
    std::vector<double> power(static_cast<std::size_t>(m_fftLength / 2));
    for (const TextRun* run : m_frequencies) {
      const double bin = std::atof(run->text.c_str()) * m_fftLength / m_rateHz;
      const double centre = (run->rect.left + run->rect.right) / 2.0;
      if (run->text == "0") {
        const double all =
            m_columns.columnLeft(m_columns.count - 1) + std::max(m_columns.widthPx, 0) - m_columns.leftPx;
        if (std::fabs(centre - (m_columns.leftPx + all / 2)) > 1) return "0 is off the centre";
        continue;
      }
      // At the border of two bins either of them is right.
      bool shown = false;
      bool lit = false;
      for (const double near : {bin - 1e-6, bin + 1e-6}) {
        const auto k = static_cast<std::size_t>(std::floor(near + 0.5));
        if (k >= power.size()) continue;
        power[k] = 1;
        const auto bands = test::bandBuffer(m_settings, m_fftLength, m_rateHz, power, 1);
        power[k] = 0;
        for (std::size_t i = 0; i < bands.size(); ++i) {
          if (!(bands[i] > 0)) continue;
          shown = true;
          const int left = m_columns.columnLeft(static_cast<int>(i));
          lit = lit || (centre >= left - 1 && centre <= left + std::max(m_columns.widthPx, 0) + 1);
        }
      }
      if (shown && !lit) return run->text + " Hz lights no column at its label";
      if (m_columns.widthPx > 0 && std::stoll(run->text) * 2 > m_rateHz) return run->text + " lies beyond the spectrum";
    }
    return {};
  }

  /// A column of a label's level ends at the label's centre.
  std::string levelPlaces() const {
    AnalyserSettings unsegmented = m_settings;
    unsegmented.spotIntervalPx = 0;
    const int area = m_layout.areaHeightPx;
    const double range = static_cast<double>(m_settings.scaleYMax) - m_settings.scaleYMin;
    for (const TextRun* run : m_levels) {
      const double level = std::atof(run->text.c_str());
      // A hundredth of a decibel more, so that the whole decibel is reached.
      const double band = std::pow(10.0, (level + 0.01) / 20) * m_fftLength / 2;
      const int height = columnHeightPx(band, unsegmented, m_fftLength, area);
      const double centre = (run->rect.top + run->rect.bottom) / 2.0;
      double error = std::fabs(centre - (area - height));
      double slack = 1.5;
      if (m_settings.alignmentY != 0) {
        error = std::min(std::fabs(centre - (area / 2 - height)), std::fabs(centre - (area / 2 + height)));
        slack += area / range / 2;  // halved decibels are cut off
      }
      if (error > slack) return run->text + " dB is off by " + std::to_string(error) + " pixels";
    }
    return {};
  }

  /// Labels are multiples of one round step, without one left out.
  std::string evenLevels() const {
    if (static_cast<int>(m_levels.size()) > m_settings.dynamicRangeDb) return "too many levels";
    std::vector<long> values;
    for (const TextRun* run : m_levels) values.push_back(-std::atol(run->text.c_str()));
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    for (std::size_t i = 2; i < values.size(); ++i)
      if (values[i] - values[i - 1] != values[1] - values[0]) return "levels are not even";
    if (values.size() < 2) return {};
    long step = values[1] - values[0];
    while (step % 10 == 0) step /= 10;
    return step == 1 || step == 2 || step == 5 ? "" : "levels in steps of " + std::to_string(step);
  }

  std::string describe() const {
    std::ostringstream text;
    text << " at " << m_layout.size.widthPx << " x " << m_layout.size.heightPx << ", text height "
         << m_layout.textHeightPx << ", " << m_settings.lineCount << " columns + " << m_settings.lineIntervalPx
         << ", scale " << m_settings.xScaleType << ", alignment " << m_settings.alignmentX << m_settings.alignmentY
         << ", " << m_settings.scaleYMin << " to " << m_settings.scaleYMax << " dB, " << m_fftLength << " samples at "
         << m_rateHz << " Hz;";
    for (const TextRun& run : m_texts) text << " " << run.text << "@" << run.rect.left << "," << run.rect.top;
    return text.str();
  }

  const AnalyserSettings& m_settings;
  int m_fftLength;
  std::uint32_t m_rateHz;
  AnalyserLayout m_layout;
  ColumnGeometry m_columns;
  std::vector<TextRun> m_texts;
  std::vector<Rect> m_inks;
  std::vector<const TextRun*> m_frequencies;
  std::vector<const TextRun*> m_levels;
  const TextRun* m_unitX = nullptr;
  const TextRun* m_unitY = nullptr;
};

/// Liberation Sans of 12 pixels an em: 9 points on a display of 96 DPI.
const test::LiberationSans usualFont(7);

class AnalyserScales : public testing::Test {
 protected:
  Scales of(int width, int height, int fftLength = 512, std::uint32_t rateHz = 44100) const {
    return {settings, fftLength, rateHz, {width, height}, usualFont.textHeightPx(), usualFont};
  }

  AnalyserSettings settings;
};

using Texts = std::vector<std::string>;

TEST_F(AnalyserScales, OfTheUsualSizeReadAtAGlance) {
  EXPECT_EQ(of(480, 240).frequencyTexts(), (Texts{"5000", "10000", "15000", "20000"}));
  EXPECT_EQ(of(480, 240).levelTexts(), (Texts{"-20", "-40", "-60", "-80"}));
  settings.xScaleType = 1;
  EXPECT_EQ(of(480, 240).frequencyTexts(), (Texts{"1000", "2000", "5000", "10000", "20000"}));
  settings.xScaleType = 0;
  settings.alignmentX = 1;
  EXPECT_EQ(of(480, 240).frequencyTexts(), (Texts{"0", "10000", "10000", "20000"}));
  settings.alignmentY = 1;
  EXPECT_EQ(of(480, 240).levelTexts(), (Texts{"-40", "-40", "-60", "-60", "-80", "-80", "-100"}));
}

TEST_F(AnalyserScales, HaveTheirUnitsAtTheLeftAndAtTheTop) {
  const Scales scales = of(480, 240);
  const int th = usualFont.textHeightPx();
  const int left = columnGeometry(settings, scales.layout().areaWidthPx).leftPx + 2;
  ASSERT_NE(scales.unitX(), nullptr);
  EXPECT_EQ(scales.unitX()->rect, (Rect{left, scales.layout().areaHeightPx, left + 2 * th, 240}));
  ASSERT_NE(scales.unitY(), nullptr);
  EXPECT_EQ(scales.unitY()->rect, (Rect{480 - scales.layout().yStripWidthPx, 0, 480, th + 5}));
}

TEST_F(AnalyserScales, LabelFrequenciesWithinTheRightEdge) {
  // A text height a character, as far as that is estimated.
  for (int width = 60; width < 900; ++width) {
    const Scales scales = of(width, 200);
    for (const TextRun* run : scales.frequencies()) {
      EXPECT_EQ(run->rect.width(), usualFont.textHeightPx() * static_cast<int>(run->text.size()));
      ASSERT_LE(run->rect.right, width) << run->text;
    }
  }
}

TEST_F(AnalyserScales, LabelADecadeWhoseFirstNumbersLieUnderTheUnit) {
  settings.xScaleType = 1;
  settings.lineCount = 40;
  EXPECT_EQ(of(500, 160, 64).frequencyTexts(), (Texts{"5000", "10000", "20000"}));
}

TEST_F(AnalyserScales, FollowTheSampleRate) {
  EXPECT_EQ(of(480, 240, 512, 96000).frequencyTexts(), (Texts{"10000", "20000", "30000", "40000"}));
  EXPECT_EQ(of(480, 240, 512, 8000).frequencyTexts(), (Texts{"500", "1000", "1500", "2000", "2500", "3000", "3500"}));
  EXPECT_EQ(of(480, 240, 512, 0).frequencyTexts(), of(480, 240).frequencyTexts());
}

TEST_F(AnalyserScales, SpanTheLevelsOfTheColumns) {
  settings.scaleYMin = 20;
  settings.scaleYMax = 50;
  EXPECT_EQ(of(480, 240).levelTexts(), (Texts{"-25", "-30", "-35", "-40", "-45"}));
  settings.scaleYMax = 20;
  EXPECT_TRUE(of(480, 240).levels().empty());
  settings.scaleYMax = 10;
  EXPECT_TRUE(of(480, 240).levels().empty());
  EXPECT_NE(of(480, 240).unitY(), nullptr);
}

TEST_F(AnalyserScales, HaveNoMoreLevelsThanTheDynamicRange) {
  const struct {
    int range;
    Texts levels;
  } rows[] = {{0, {}},
              {1, {"-50"}},
              {3, {"-50"}},
              {4, {"-20", "-40", "-60", "-80"}},
              {8, {"-20", "-40", "-60", "-80"}},
              {9, {"-10", "-20", "-30", "-40", "-50", "-60", "-70", "-80", "-90"}},
              {200, {"-10", "-20", "-30", "-40", "-50", "-60", "-70", "-80", "-90"}}};
  for (const auto& row : rows) {
    settings.dynamicRangeDb = row.range;
    EXPECT_EQ(of(480, 400).levelTexts(), row.levels) << row.range;
  }
}

TEST_F(AnalyserScales, OfASmallControlKeepWhatFits) {
  const Scales scales = of(200, 100);
  EXPECT_EQ(scales.problem(), "");
  EXPECT_EQ(scales.frequencyTexts(), (Texts{"10000", "20000"}));
  EXPECT_EQ(scales.levelTexts(), (Texts{"-50"}));
}

TEST_F(AnalyserScales, WithoutStripsOrFontHaveNoTexts) {
  settings.scaleXVisible = 0;
  EXPECT_TRUE(of(480, 240).frequencies().empty());
  EXPECT_EQ(of(480, 240).unitX(), nullptr);
  EXPECT_FALSE(of(480, 240).levels().empty());
  settings.scaleYVisible = 0;
  EXPECT_TRUE(of(480, 240).levels().empty());
  const Scales withoutFont({}, 512, 44100, {480, 240}, 0, usualFont);
  EXPECT_TRUE(withoutFont.frequencies().empty());
  EXPECT_TRUE(withoutFont.levels().empty());
}

TEST_F(AnalyserScales, OfLengthsThatCannotBeTransformedHaveNoFrequencies) {
  for (const int length : {0, 1}) {
    for (const int scale : {0, 1}) {
      settings.xScaleType = scale;
      EXPECT_TRUE(of(480, 240, length).frequencies().empty()) << length;
    }
  }
}

TEST_F(AnalyserScales, KeepTheirPromisesForAnySettingsSizesAndFonts) {
  std::mt19937 random(31);
  const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  const auto length = [&](int least, int most) {
    return static_cast<int>(least * std::pow(static_cast<double>(most) / least, below(10001) / 10000.0));
  };
  long large = 0;
  long withFrequencies = 0;
  long withLevels = 0;
  for (int run = 0; run < 6000; ++run) {
    settings.lineCount = random() % 2 ? 60 : 4 + below(197);
    settings.lineIntervalPx = random() % 2 ? 2 : below(6);
    settings.xScaleType = below(2);
    settings.alignmentX = below(2);
    settings.alignmentY = below(2);
    settings.scaleYMin = random() % 2 ? 0 : below(100);
    settings.scaleYMax = random() % 2 ? 100 : below(200);
    settings.dynamicRangeDb = random() % 2 ? 96 : below(201);
    settings.scaleXVisible = random() % 8 ? -1 : 0;
    settings.scaleYVisible = random() % 8 ? -1 : 0;
    const std::uint32_t rates[] = {8000, 11025, 16000, 22050, 44100, 48000, 96000, 192000};
    const int fftLength = random() % 2 ? 512 : 4 << below(13);
    const Size size{length(40, 3840), length(30, 2160)};
    const test::LiberationSans sans(5 + below(20));
    const int madeUpPx = 5 + below(40);
    const test::MadeUpFont madeUp(madeUpPx, 60 + below(80));
    const bool useSans = random() % 2;
    const Scales scales(settings, fftLength, rates[below(8)], size, useSans ? sans.textHeightPx() : madeUpPx,
                        useSans ? static_cast<const TextMeasure&>(sans) : madeUp);
    ASSERT_EQ(scales.problem(), "");
    // Large for its font, and with more than a handful of bins.
    const int th = scales.layout().textHeightPx;
    if (!useSans || size.widthPx < 24 * th || size.heightPx < 12 * th || fftLength < 128) continue;
    ++large;
    withFrequencies += settings.scaleXVisible == 0 || scales.frequencies().size() >= 2;
    // Below four decibels there may be no whole one between the edges.
    withLevels += settings.scaleYVisible == 0 || settings.dynamicRangeDb < 5 ||
                  settings.scaleYMax - settings.scaleYMin < 4 || scales.levels().size() >= 2;
  }
  EXPECT_GT(large, 400);
  EXPECT_EQ(withFrequencies, large);
  EXPECT_EQ(withLevels, large);
}

}  // namespace
}  // namespace av::type3
