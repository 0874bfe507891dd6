// The scale texts of the X-Y views: what they say is what the pointer reads there, and nothing else.

#include "type1/labels.h"

#include "support/made_up_font.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

namespace av::type1 {
namespace {

constexpr int textHeightPx = 13;

struct XyLabels : testing::Test {
  std::vector<TextRun> place(int type, int width = 652, int height = 423) {
    settings.visualizationType = type;
    layout = computeLayout(settings, 44100, {0, 0, width, height}, textHeightPx);
    std::vector<TextRun> texts;
    addScaleTexts(texts, settings, 44100, layout, test::MadeUpFont(textHeightPx));
    return texts;
  }

  static std::ptrdiff_t countOf(const std::vector<TextRun>& texts, const std::string& text) {
    return std::count_if(texts.begin(), texts.end(), [&](const TextRun& run) { return run.text == text; });
  }

  bool inXStrip(const TextRun& run) const { return run.rect.top >= layout.plotHeight; }

  ViewSettings settings;
  ViewLayout layout;
};

TEST_F(XyLabels, CallNothingHertzOrSamples) {
  for (const int type : {6, 7}) {
    const std::vector<TextRun> texts = place(type);
    EXPECT_EQ(0, countOf(texts, "Hz  ")) << type;
    EXPECT_EQ(0, countOf(texts, "smpl")) << type;
    EXPECT_EQ(1, countOf(texts, "dB ")) << type;
  }
  for (const int type : {2, 5, 8, 100}) EXPECT_EQ(1, countOf(place(type), "Hz  ")) << type;
  EXPECT_EQ(1, countOf(place(0), "smpl"));
}

// Type 6 reads levels as spectra do: 0 at the top edge, −90.3 at the bottom edge.
TEST_F(XyLabels, OfTheFirstViewAreLevelsFromTopToBottomAlone) {
  int labels = 0;
  for (const TextRun& run : place(6)) {
    ASSERT_FALSE(inXStrip(run)) << run.text;
    if (run.text == "dB ") continue;
    const double centre = (run.rect.top + run.rect.bottom - 1) / 2.0;
    EXPECT_NEAR(-90.3087 * centre / layout.plotHeight, std::atoi(run.text.c_str()), 1.0) << run.text;
    ++labels;
  }
  EXPECT_EQ(4, labels);  // every fifth of 22 divisions: steps of 20 dB
}

// Type 7 reads sample indices and, from both edges to the centre line, levels as the waveform does.
TEST_F(XyLabels, OfTheSecondViewAreSampleIndicesAndMirroredLevels) {
  int horizontal = 0;
  int vertical = 0;
  for (const TextRun& run : place(7)) {
    if (run.text == "dB ") continue;
    if (inXStrip(run)) {
      ++horizontal;
      EXPECT_EQ(std::to_string(static_cast<int>(1024.0 * horizontal / layout.xLabelCount + 0.5)), run.text);
    } else {
      ++vertical;
      const double centre = (run.rect.top + run.rect.bottom - 1) / 2.0;
      const double half = layout.plotHeight / 2.0;
      EXPECT_NEAR(-90.3087 * (1 - std::fabs(half - centre) / half), std::atoi(run.text.c_str()), 1.0) << run.text;
    }
  }
  EXPECT_EQ(10, horizontal);
  EXPECT_EQ(10, vertical);  // five in each half
}

}  // namespace
}  // namespace av::type1
