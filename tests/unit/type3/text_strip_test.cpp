#include "type3/text_strip.h"

#include "support/made_up_font.h"

#include <gtest/gtest.h>

namespace av::type3 {
namespace {

class TextStripTest : public testing::Test {
 protected:
  // Texts of one digit are 8 wide and 10 high.
  const test::MadeUpFont font{10};
  std::vector<TextRun> texts{{"before", {}, opaqueBlack}};
  TextStrip strip{texts, {100, 50, 200, 70}, 3, font};
};

TEST_F(TextStripTest, TakesATextThatFits) {
  EXPECT_TRUE(strip.add("1", {100, 50, 108, 70}));
  EXPECT_EQ(strip.count(), 1u);
  ASSERT_EQ(texts.size(), 2u);
  EXPECT_EQ(texts[1], (TextRun{"1", {100, 50, 108, 70}, opaqueBlack}));
  EXPECT_EQ(strip.widthOf("1"), 8);
}

TEST_F(TextStripTest, RefusesWhatLeavesIt) {
  EXPECT_FALSE(strip.add("1", {99, 50, 107, 70}));
  EXPECT_FALSE(strip.add("1", {193, 50, 201, 70}));
  EXPECT_FALSE(strip.add("1", {120, 40, 130, 58}));
  EXPECT_FALSE(strip.add("1", {120, 62, 130, 80}));
  EXPECT_TRUE(strip.add("1", {80, 50, 140, 70}));  // the letters stay inside, though not their rectangle
  EXPECT_EQ(texts.size(), 2u);
}

TEST_F(TextStripTest, RefusesTextsThatCannotBeMeasured) {
  struct NoFont final : TextMeasure {
    Size measure(std::string_view) const override { return {}; }
  };
  const NoFont noFont;
  TextStrip unmeasured(texts, {100, 50, 200, 70}, 3, noFont);
  EXPECT_FALSE(unmeasured.add("1", {120, 50, 128, 70}));
  EXPECT_EQ(texts.size(), 1u);
}

TEST_F(TextStripTest, RefusesWhatComesTooCloseToAnother) {
  EXPECT_TRUE(strip.add("1", {120, 50, 128, 70}));
  EXPECT_FALSE(strip.add("2", {130, 50, 138, 70}));
  EXPECT_FALSE(strip.add("2", {110, 50, 118, 70}));
  EXPECT_TRUE(strip.add("2", {131, 50, 139, 70}));
  EXPECT_TRUE(strip.add("2", {109, 50, 117, 70}));
}

}  // namespace
}  // namespace av::type3
