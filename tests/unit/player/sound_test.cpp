// What the player cuts out of a sound, its options and its rules.

#include "player/sound.h"
#include "player/options.h"
#include "player/property_rules.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <set>
#include <string>

namespace avplayer {
namespace {

Sound threeChannels() { return {8000, 3, {1, 2, 3, 11, 12, 13, 21, 22, 23, 31, 32, 33}}; }

TEST(SoundBlocks, EndAtTheFrameThatIsHeard) {
  std::vector<std::int16_t> block;
  copyBlock(threeChannels(), 3, 2, block);
  EXPECT_EQ((std::vector<std::int16_t>{11, 12, 13, 21, 22, 23}), block);
}

TEST(SoundBlocks, AreSilentBeforeTheBeginAndBehindTheEnd) {
  std::vector<std::int16_t> block;
  copyBlock(threeChannels(), 1, 3, block);
  EXPECT_EQ((std::vector<std::int16_t>{0, 0, 0, 0, 0, 0, 1, 2, 3}), block);
  copyBlock(threeChannels(), 5, 2, block);
  EXPECT_EQ((std::vector<std::int16_t>{31, 32, 33, 0, 0, 0}), block);
  copyBlock(threeChannels(), 100, 1, block);
  EXPECT_EQ((std::vector<std::int16_t>{0, 0, 0}), block);
}

TEST(PeakLevel, IsThatOfTheLoudestChannel) {
  Sound sound{8000, 2, {0, 0, 100, -16384, 0, 0}};
  EXPECT_NEAR(-6.0206, peakLevelDb(sound, 3, 3), 1e-4);  // 20·log10(1/2)
  EXPECT_EQ(-100, peakLevelDb(sound, 1, 1));
  EXPECT_EQ(-100, peakLevelDb(sound, 50, 2));
  sound.samples[0] = -32768;
  EXPECT_EQ(0, peakLevelDb(sound, 1, 100));
}

TEST(StereoCopy, PlaysOneChannelOnBothSidesAndTheFirstTwoOfMore) {
  std::vector<std::int16_t> stereo;
  EXPECT_EQ(2, copyStereo(threeChannels(), 2, 10, stereo));
  EXPECT_EQ((std::vector<std::int16_t>{21, 22, 31, 32}), stereo);
  EXPECT_EQ(2, copyStereo({8000, 1, {5, 6, 7}}, 0, 2, stereo));
  EXPECT_EQ((std::vector<std::int16_t>{5, 5, 6, 6}), stereo);
  EXPECT_EQ(0, copyStereo(threeChannels(), 4, 10, stereo));
}

TEST(DemonstrationSound, IsLoudStereoWithoutClippingAndASeam) {
  const Sound sound = demonstrationSound();
  ASSERT_EQ(2, sound.channels);
  EXPECT_EQ(8, sound.lengthS());
  int highest = 0, difference = 0;
  for (std::int64_t i = 0; i < sound.frameCount(); ++i) {
    const int left = sound.samples[static_cast<std::size_t>(2 * i)],
              right = sound.samples[static_cast<std::size_t>(2 * i + 1)];
    highest = std::max({highest, std::abs(left), std::abs(right)});
    difference = std::max(difference, std::abs(left - right));
  }
  EXPECT_EQ(30000, highest);
  EXPECT_GT(difference, 3000) << "stereo";
  for (double s = 0.5; s < 8; s += 0.5)
    EXPECT_GT(peakLevelDb(sound, static_cast<std::int64_t>(s * 44100), 22050), -20)
        << "something is heard before " << s << " s";
  EXPECT_LT(std::abs(sound.samples[0] - sound.samples[sound.samples.size() - 2]), 6000)
      << "no jump where it begins again";
}

TEST(PlayerOptions, TakeAFileAndSwitchesInAnyOrder) {
  const OptionsResult result = parseOptions({L"--silent", L"music.wav", L"--size", L"640x480", L"--at", L"1.5",
                                             L"--once", L"--select", L"meter", L"--preset", L"Dark blue"});
  EXPECT_EQ(L"", result.problem);
  EXPECT_EQ(L"music.wav", result.options.file);
  EXPECT_TRUE(result.options.silent);
  EXPECT_EQ(false, result.options.loop);
  EXPECT_EQ(640, result.options.width96);
  EXPECT_EQ(480, result.options.height96);
  EXPECT_EQ(1.5, result.options.atS);
  EXPECT_EQ(L"meter", result.options.selected);
  EXPECT_EQ(L"Dark blue", result.options.preset);
  EXPECT_EQ(L"--silent", parseOptions({L"--", L"--silent"}).options.file);
  EXPECT_TRUE(parseOptions({}).problem.empty());
}

TEST(PlayerOptions, RefuseWhatMakesNoSense) {
  const std::vector<std::vector<std::wstring>> bad = {{L"--sielnt"},       {L"a", L"b"},          {L"--at"},
                                                      {L"--at", L"soon"},  {L"--at", L"-1"},      {L"--size", L"640"},
                                                      {L"--size", L"1x1"}, {L"--select", L"two"}, {L"--preset"}};
  for (const auto& arguments : bad)
    EXPECT_NE(L"", parseOptions(arguments).problem) << testing::PrintToString(arguments.size());
}

TEST(PropertyRules, AreUniqueAndStandUnderAHeading) {
  std::set<std::pair<ControlKind, std::string_view>> names;
  for (const PropertyRule& rule : propertyRules()) {
    EXPECT_TRUE(names.emplace(rule.control, rule.name).second) << rule.name;
    EXPECT_LT(groupOf(&rule), propertyGroups().size()) << rule.name;
    EXPECT_EQ(&rule, findRule(rule.control, rule.name));
    std::set<std::int32_t> values;
    for (const Choice& choice : rule.choices) {
      EXPECT_TRUE(values.insert(choice.value).second) << rule.name << " " << choice.name;
      // Names begin with the number that a program puts.
      EXPECT_EQ(0u, choice.name.find(std::to_string(choice.value))) << choice.name;
    }
  }
  EXPECT_EQ(nullptr, findRule(ControlKind::view, "Nothing"));
  EXPECT_EQ(propertyGroups().size() - 1, groupOf(nullptr));
}

TEST(PropertyRules, OfferNoTransformThatEndsTheProcess) {
  const PropertyRule* rule = findRule(ControlKind::analyser, "FFTLength");
  ASSERT_NE(nullptr, rule);
  for (const Choice& choice : rule->choices) EXPECT_GE(choice.value, 4);
}

}  // namespace
}  // namespace avplayer
