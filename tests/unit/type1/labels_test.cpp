#include "type1/labels.h"

#include "support/made_up_font.h"
#include "type1/pointer_units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace av::type1 {
namespace {

using test::MadeUpFont;

struct View {
  ViewSettings settings;
  std::uint32_t sampleRateHz = 44100;
  ViewLayout layout;
  std::vector<TextRun> texts;
  int textHeightPx = 13;

  void place(int width, int height) {
    layout = computeLayout(settings, sampleRateHz, {0, 0, width, height}, textHeightPx);
    texts.clear();
    addScaleTexts(texts, settings, sampleRateHz, layout, MadeUpFont(textHeightPx));
  }

  bool isUnit(const TextRun& run) const { return run.text == "dB " || run.text == "smpl" || run.text == "Hz  "; }
  bool isHorizontal(const TextRun& run) const {
    return run.rect.bottom == layout.client.bottom && run.text != "dB " && run.rect.height() == layout.xScaleHeightPx;
  }

  std::vector<TextRun> horizontal() const {
    std::vector<TextRun> found;
    for (const TextRun& run : texts)
      if (isHorizontal(run) && !isUnit(run)) found.push_back(run);
    return found;
  }
  std::vector<TextRun> vertical() const {
    std::vector<TextRun> found;
    for (const TextRun& run : texts)
      if (!isHorizontal(run) && !isUnit(run)) found.push_back(run);
    return found;
  }
  const TextRun* unit(const std::string& text) const {
    for (const TextRun& run : texts)
      if (run.text == text) return &run;
    return nullptr;
  }
};

bool touch(const Rect& a, const Rect& b) {
  return a.left <= b.right && b.left <= a.right && a.top <= b.bottom && b.top <= a.bottom;
}

TEST(HorizontalLabels, StandWhereTheirRulePutsThem) {
  View view;
  view.settings.visualizationType = 2;
  view.place(652, 400);  // plot width 600
  ASSERT_EQ(600, view.layout.plotWidth);
  ASSERT_EQ(10, view.layout.xLabelCount);
  const std::vector<TextRun> labels = view.horizontal();
  ASSERT_EQ(10u, labels.size());
  EXPECT_EQ("2205", labels[0].text);
  EXPECT_EQ((Rect{30, 377, 30 + 4 * 13, 400}), labels[0].rect);
  EXPECT_EQ("11025", labels[4].text);
  EXPECT_EQ((Rect{270, 377, 270 + 5 * 13, 400}), labels[4].rect);
  EXPECT_EQ("22050", labels[9].text);
  EXPECT_EQ((Rect{570, 377, 570 + 5 * 13, 400}), labels[9].rect);
  EXPECT_EQ(view.settings.textAndLineColors[0], labels[9].colour);
}

TEST(HorizontalLabels, KeepThePartOfAPixelThatTheirRuleGives) {
  View view;
  view.place(733, 400);
  const int count = view.layout.xLabelCount;
  ASSERT_NE(0, view.layout.plotWidth % count);
  const std::vector<TextRun> labels = view.horizontal();
  ASSERT_EQ(static_cast<std::size_t>(count), labels.size());
  for (int i = 1; i <= count; ++i) {
    const TextRun& label = labels[static_cast<std::size_t>(i) - 1];
    EXPECT_NEAR((i - 0.5) * view.layout.plotWidth / count, label.rect.left + double{label.fractionPx}, 1e-4);
    EXPECT_LT(std::abs(label.fractionPx), 1);
  }
}

TEST(HorizontalLabels, ReadAsThePointerDoesAtTheirGridLine) {
  for (const int type : {0, 1, 2, 3, 7, 9}) {
    for (const int axis : {1, 2}) {
      View view;
      view.settings.visualizationType = type;
      view.settings.fftViewType = axis;
      view.place(733, 400);
      const int count = view.layout.xLabelCount;
      std::vector<TextRun> labels = view.horizontal();
      ASSERT_EQ(static_cast<std::size_t>(count), labels.size());
      for (int i = 1; i <= count; ++i) {
        EXPECT_EQ(std::to_string(xValueAt(view.settings, 44100, view.layout, view.layout.plotWidth * i / count)),
                  labels[static_cast<std::size_t>(i) - 1].text);
      }
    }
  }
}

TEST(HorizontalLabels, LeaveOutWhatWouldEndRightOfTheClientArea) {
  View view;
  view.settings.scaleYVisible = 0;
  view.place(640, 400);
  const int count = view.layout.xLabelCount;
  const std::vector<TextRun> labels = view.horizontal();
  ASSERT_EQ(static_cast<std::size_t>(count) - 1, labels.size());  // "1024": (10 − 0.5)·64 + 52 > 640
  for (const TextRun& label : labels) EXPECT_LE(label.rect.right, 640);
}

TEST(HorizontalLabels, AreNotDrawnOnTheFirstXYView) {
  View view;
  view.settings.visualizationType = 6;
  view.place(640, 400);
  EXPECT_TRUE(view.horizontal().empty());
  EXPECT_EQ(nullptr, view.unit("Hz  "));
}

TEST(HorizontalLabels, MoveWithTheClientRectangle) {
  View view;
  view.place(640, 400);
  std::vector<TextRun> moved;
  const ViewLayout layout = computeLayout(view.settings, 44100, {100, 50, 740, 450}, 13);
  addScaleTexts(moved, view.settings, 44100, layout, MadeUpFont(13));
  ASSERT_EQ(view.texts.size(), moved.size());
  for (std::size_t i = 0; i < moved.size(); ++i) {
    const Rect& from = view.texts[i].rect;
    EXPECT_EQ(view.texts[i].text, moved[i].text);
    EXPECT_EQ((Rect{from.left + 100, from.top + 50, from.right + 100, from.bottom + 50}), moved[i].rect);
  }
}

TEST(ScaleTexts, AreNotDrawnWithoutAScaleOrAFont) {
  View view;
  view.settings.scaleXVisible = view.settings.scaleYVisible = 0;
  view.place(640, 400);
  EXPECT_TRUE(view.texts.empty());
  view.settings.scaleXVisible = view.settings.scaleYVisible = -1;
  view.textHeightPx = 0;
  view.place(640, 400);
  EXPECT_TRUE(view.texts.empty());
}

TEST(ScaleTexts, KeepTheTextsOfAHiddenScaleAway) {
  View view;
  view.settings.scaleXVisible = 0;
  view.place(640, 400);
  EXPECT_EQ(nullptr, view.unit("smpl"));
  EXPECT_NE(nullptr, view.unit("dB "));
  EXPECT_TRUE(view.horizontal().empty());
  view.settings.scaleXVisible = -1;
  view.settings.scaleYVisible = 0;
  view.place(640, 400);
  EXPECT_NE(nullptr, view.unit("smpl"));
  EXPECT_EQ(nullptr, view.unit("dB "));
  EXPECT_TRUE(view.vertical().empty());
}

TEST(UnitTexts, StandAboveTheNumbersAndAtTheRightEndOfTheirStrips) {
  View view;
  view.place(640, 400);
  const TextRun* const decibel = view.unit("dB ");
  ASSERT_NE(nullptr, decibel);
  EXPECT_EQ(1, decibel->rect.top);
  // Its letters end where the numbers do: the blank, 4 pixels in this font, hangs over.
  EXPECT_EQ(view.vertical().front().rect.right + 4, decibel->rect.right);
  // "smpl" keeps the distance from the edge that the blank gives to "dB " and "Hz  ".
  const TextRun* const samples = view.unit("smpl");
  ASSERT_NE(nullptr, samples);
  EXPECT_EQ(638 - 4, samples->rect.right);
  EXPECT_EQ(400, samples->rect.bottom);
  view.settings.visualizationType = 2;
  view.place(640, 400);
  ASSERT_NE(nullptr, view.unit("Hz  "));
  EXPECT_EQ(638, view.unit("Hz  ")->rect.right);
  EXPECT_EQ(nullptr, view.unit("smpl"));
}

TEST(UnitTexts, MoveToTheTopRightCornerWhereTheNumbersBeginAtTheTop) {
  View view;
  view.settings.visualizationType = 2;
  view.place(300, 81);  // plot height 58
  const TextRun* const decibel = view.unit("dB ");
  ASSERT_NE(nullptr, decibel);
  EXPECT_EQ(1, decibel->rect.top);
  EXPECT_EQ(298, decibel->rect.right);
  ASSERT_FALSE(view.vertical().empty());
  EXPECT_LT(view.vertical().front().rect.top, decibel->rect.bottom);
}

// By hand: height 423, plot height 400, 400 ÷ 21 = 19 divisions wanted, 90 ÷ 19 = 4, 90 ÷ 4 = 22; 23 equal steps of
// 90.3087 ÷ 23 = 3.9265 dB, 17.39 rows each. Every fifth reads as a step of 20 dB.
TEST(VerticalLabels, AreTheNegatedStepsOfTheSpectrumRoundedToWholeDecibels) {
  View view;
  view.settings.visualizationType = 2;
  view.place(640, 423);
  ASSERT_EQ(400, view.layout.plotHeight);
  ASSERT_EQ(22, view.layout.yDivisionCount);
  const std::vector<TextRun> labels = view.vertical();
  ASSERT_EQ(4u, labels.size());
  EXPECT_EQ("-59", labels[2].text);
  for (int k = 5; k <= 20; k += 5) {
    const TextRun& label = labels[static_cast<std::size_t>(k) / 5 - 1];
    EXPECT_EQ(std::to_string(-static_cast<int>(k * 90.308733622833976 / 23 + 0.5)), label.text);
    const double centre = (label.rect.top + label.rect.bottom - 1) / 2.0;
    EXPECT_NEAR(400.0 * k / 23, centre, 1.0) << k;
  }
}

TEST(VerticalLabels, MirrorTheWaveformsHalves) {
  View view;
  view.place(640, 423);
  const std::vector<TextRun> labels = view.vertical();
  std::map<std::string, int> seen;
  for (const TextRun& label : labels) ++seen[label.text];
  EXPECT_EQ(5u, seen.size());  // 22 divisions, 11 a half, 7.853 dB apart, every second of them
  for (const auto& [text, count] : seen) EXPECT_EQ(2, count) << text;
  EXPECT_TRUE(seen.contains("-16"));
  EXPECT_TRUE(seen.contains("-79"));
}

TEST(VerticalLabels, LabelTheCentreLineOfAnOddCountOnce) {
  View view;
  view.place(300, 81);  // plot height 58: two divisions wanted → 90 ÷ 2 = 45 → 40 → 2
  ASSERT_EQ(2, view.layout.yDivisionCount);
  view.settings.dynamicRangeDb = 60;
  view.place(300, 110);  // plot height 87: 4 wanted, 60 ÷ 4 = 15 → 10 → 6
  ASSERT_EQ(6, view.layout.yDivisionCount);
  view.place(300, 102);  // plot height 79: 3 wanted, 20 → 3
  ASSERT_EQ(3, view.layout.yDivisionCount);
  std::map<std::string, int> seen;
  for (const TextRun& label : view.vertical()) ++seen[label.text];
  EXPECT_EQ(1, seen["-60"]);
}

TEST(VerticalLabels, CountFromTheScalesLowerLimit) {
  View view;
  view.settings.visualizationType = 2;
  view.settings.dynamicRangeDb = 100;
  view.settings.scaleYMin = -50;
  view.settings.scaleYMax = 0;
  view.place(640, 423);
  const std::vector<TextRun> labels = view.vertical();
  ASSERT_FALSE(labels.empty());
  // Above the range's top they are positive. 25 divisions, 50 ÷ 26 dB each, every fifth of them: −50 + 9.6 + 0.5 is cut
  // to −39.
  EXPECT_EQ("39", labels.front().text);
  for (const TextRun& label : labels) EXPECT_NE('-', label.text[0]);
}

TEST(VerticalLabels, AreSkippedEvenlyWhereDivisionsLieCloserThanTextsAreHigh) {
  View view;
  view.settings.visualizationType = 2;
  view.settings.dynamicRangeDb = 186.6;
  view.place(640, 2160);
  ASSERT_GT(view.layout.yDivisionCount, 90);
  const std::vector<TextRun> labels = view.vertical();
  ASSERT_GT(labels.size(), 8u);
  for (std::size_t i = 2; i < labels.size(); ++i) {
    const int before = labels[i - 1].rect.bottom - labels[i - 2].rect.bottom;
    const int here = labels[i].rect.bottom - labels[i - 1].rect.bottom;
    EXPECT_NEAR(before, here, 3);
  }
}

TEST(VerticalLabels, AreNotDrawnOnAScaleUpsideDownOrWithoutARange) {
  View view;
  view.settings.scaleYMin = 100;
  view.settings.scaleYMax = 0;
  view.place(640, 400);
  EXPECT_TRUE(view.vertical().empty());
  view.settings = ViewSettings{};
  view.settings.dynamicRangeDb = 0;
  view.place(640, 400);
  EXPECT_TRUE(view.vertical().empty());
}

TEST(UnitTexts, GiveWayInAFontTooWideForTheStrips) {
  long dropped = 0;
  for (int spread = 100; spread <= 300; spread += 50) {
    const MadeUpFont font(13, spread);
    for (int width = 80; width < 700; width += 13) {
      for (int height = 50; height < 400; height += 9) {
        const ViewSettings settings;
        const ViewLayout layout = computeLayout(settings, 44100, {0, 0, width, height}, 13);
        std::vector<TextRun> texts;
        addScaleTexts(texts, settings, 44100, layout, font);
        const auto box = [&](const TextRun& run) {
          const Size size = font.measure(run.text);
          const int left = run.rect.left + (run.rect.width() - size.widthPx) / 2;
          const int top = run.rect.top + (run.rect.height() - size.heightPx) / 2;
          return Rect{left, top, left + size.widthPx, top + size.heightPx};
        };
        int units = 0;
        for (std::size_t i = 0; i < texts.size(); ++i) {
          const bool movable = texts[i].rect.height() != layout.xScaleHeightPx || texts[i].text == "smpl";
          units += texts[i].text == "smpl" || texts[i].text == "dB ";
          for (std::size_t other = 0; other < texts.size(); ++other) {
            // The places of the horizontal labels are fixed, even where that makes them touch each other.
            if (other == i || !movable) continue;
            ASSERT_FALSE(touch(box(texts[i]), box(texts[other])))
                << texts[i].text << " and " << texts[other].text << " in " << width << " x " << height;
          }
        }
        dropped += 2 - units;
      }
    }
  }
  EXPECT_GT(dropped, 0);
}

}  // namespace
}  // namespace av::type1
