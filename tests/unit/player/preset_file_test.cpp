// The preset file: what is written comes back, and a damaged file gives what can be read and says what cannot.

#include "player/preset_file.h"
#include "player/builtin_presets.h"
#include "player/value_text.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

namespace avplayer {
namespace {

TEST(PresetFile, ReadsNamesDpiAndValues) {
  const PresetFile file = parsePresets(
      "# mine\r\n\r\n[Evening]\r\ndpi = 144\r\n  View.BackColor =  #0D1117 \r\n"
      "View.LineColor(1)=#58A6FF\r\n[Two words]\r\nMeter.LineType = 1");
  EXPECT_TRUE(file.problems.empty());
  ASSERT_EQ(2u, file.presets.size());
  EXPECT_EQ((Preset{"Evening", 144, {{"View.BackColor", "#0D1117"}, {"View.LineColor(1)", "#58A6FF"}}}),
            file.presets[0]);
  EXPECT_EQ((Preset{"Two words", 96, {{"Meter.LineType", "1"}}}), file.presets[1]);
}

TEST(PresetFile, ReadsBackWhatItWrites) {
  const std::vector<Preset> presets = {
      {"\xC3\x84pfel & Birnen = 3", 96, {{"View.ScaleFont", "Arial, 7 pt, bold italic"}}},
      {"# no remark", 192, {}},
      {"x", 120, {{"Analyser.FFTWindowParam", "-0.5"}, {"View.A", "a = b # c"}}}};
  const PresetFile file = parsePresets(formatPresets(presets));
  EXPECT_TRUE(file.problems.empty());
  EXPECT_EQ(presets, file.presets);
}

TEST(PresetFile, TakesAByteOrderMarkAndAnEmptyFile) {
  EXPECT_TRUE(parsePresets("").presets.empty());
  EXPECT_TRUE(parsePresets("\xEF\xBB\xBF").problems.empty());
  ASSERT_EQ(1u, parsePresets("\xEF\xBB\xBF[A]\n").presets.size());
}

TEST(PresetFile, TellsTheLinesThatItCannotReadAndKeepsTheRest) {
  const PresetFile file =
      parsePresets("[A]\nView.B = 1\nnonsense\nView.C\n= 3\nView.D =\ndpi = big\nView = 2\nView.E = 5\n");
  ASSERT_EQ(1u, file.presets.size());
  EXPECT_EQ((std::vector<PresetValue>{{"View.B", "1"}, {"View.E", "5"}}), file.presets[0].values);
  EXPECT_EQ(96, file.presets[0].dpi);
  std::vector<std::size_t> lines;
  for (const PresetProblem& problem : file.problems) lines.push_back(problem.line);
  EXPECT_EQ((std::vector<std::size_t>{3, 4, 5, 6, 7, 8}), lines);
}

TEST(PresetFile, LeavesOutValuesUnderANameThatIsNone) {
  for (const char* name : {"[]", "[ A ]", "[A", "[a[b]", "[a]b]"}) {
    const PresetFile file = parsePresets("[Good]\nView.A = 1\n" + std::string(name) + "\nView.A = 2\n");
    ASSERT_EQ(1u, file.presets.size()) << name;
    EXPECT_EQ("1", file.presets[0].values[0].value) << name;
    EXPECT_EQ(1u, file.problems.size()) << name;
  }
  EXPECT_EQ(1u, parsePresets("View.A = 1\nView.B = 1\n").problems.size());
}

TEST(PresetFile, LetsTheLaterOfTwoCount) {
  const PresetFile file = parsePresets("[A]\nView.X = 1\nView.X = 2\n[B]\nView.X = 3\n[A]\nView.X = 4\n");
  ASSERT_EQ(2u, file.presets.size());
  EXPECT_EQ("B", file.presets[0].name);
  EXPECT_EQ("4", file.presets[1].values[0].value);
}

TEST(PresetFile, SurvivesAnyBytes) {
  std::mt19937 random(7);
  std::string alphabet = "[]=#;.() \n\r\tView.A1dpi";
  for (const char odd : {'\0', '\x80', '\xFF'}) alphabet += odd;
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (auto i = random() % 60; i > 0; --i) text += alphabet[random() % alphabet.size()];
    const PresetFile file = parsePresets(text);
    // Whatever was understood is a file that is understood completely.
    const PresetFile again = parsePresets(formatPresets(file.presets));
    EXPECT_TRUE(again.problems.empty()) << text;
    EXPECT_EQ(file.presets, again.presets) << text;
  }
}

TEST(PresetNames, AreShortLinesWithoutBrackets) {
  for (const char* good : {"A", "Dark blue", "3 \xC3\x97 4", "a=b"}) EXPECT_TRUE(isPresetName(good)) << good;
  for (const std::string& bad : {std::string(), std::string(" A"), std::string("A "), std::string("a\nb"),
                                 std::string("a]"), std::string(61, 'x')})
    EXPECT_FALSE(isPresetName(bad)) << bad;
}

TEST(BuiltinPresets, AreReadWithoutAProblem) {
  const PresetFile file = parsePresets(builtinPresetText());
  EXPECT_TRUE(file.problems.empty());
  EXPECT_NE(nullptr, findPreset(file.presets, firstPreset));
  const Preset* defaults = findPreset(file.presets, defaultsPreset);
  ASSERT_NE(nullptr, defaults);
  EXPECT_TRUE(defaults->values.empty());
  std::set<std::string> names;
  for (const Preset& preset : file.presets) names.insert(preset.name);
  EXPECT_EQ(file.presets.size(), names.size());
}

// Values as text.

TEST(ValueText, WritesColoursAsRedGreenBlue) {
  EXPECT_EQ("#123456", formatColour(0x563412));
  EXPECT_EQ(0x563412u, parseColour(" #123456 "));
  EXPECT_EQ(0xFFEEDDu, parseColour("ddeeff"));
  EXPECT_EQ("system 15", formatColour(0x8000000F));
  EXPECT_EQ(0x8000000Fu, parseColour("System 15"));
  for (const char* bad : {"", "#12345", "#1234567", "#12345G", "red", "system", "system 300", "#+12345", "# 12345"})
    EXPECT_EQ(std::nullopt, parseColour(bad)) << bad;
}

TEST(ValueText, ReadsWholeNumbersAsAWhole) {
  EXPECT_EQ(-2147483647 - 1, parseWhole("-2147483648"));
  EXPECT_EQ(7, parseWhole(" +7\t"));
  for (const char* bad : {"", "1.5", "1e3", "12a", "2147483648", "+-1", "0x10"})
    EXPECT_EQ(std::nullopt, parseWhole(bad)) << bad;
}

TEST(ValueText, ReadsRealNumbersWithPointOrComma) {
  EXPECT_EQ(0.1f, parseReal(formatReal(0.1f)));
  EXPECT_EQ("0.1", formatReal(0.1f));
  EXPECT_EQ(2.5f, parseReal("2,5"));
  for (const char* bad : {"", "1,2,3", "1e99", "nan", "inf", "x"}) EXPECT_EQ(std::nullopt, parseReal(bad)) << bad;
}

TEST(ValueText, ReadsBooleansAsPeopleWriteThem) {
  EXPECT_EQ(true, parseBoolean("True"));
  EXPECT_EQ(true, parseBoolean("1"));
  EXPECT_EQ(false, parseBoolean(" OFF "));
  EXPECT_EQ(std::nullopt, parseBoolean("2"));
}

TEST(ValueText, WritesFontsReadably) {
  const FontText font = {"Liberation Sans", 6.75, true, true, false, false};
  EXPECT_EQ("Liberation Sans, 6.75 pt, bold italic", formatFont(font));
  EXPECT_EQ(font, parseFont(formatFont(font)));
  EXPECT_EQ((FontText{"Arial", 8, false, false, false, false}), parseFont("Arial, 8"));
  EXPECT_EQ((FontText{"A", 8, false, false, true, true}), parseFont("A,8pt, underline  strikeout"));
  for (const char* bad : {"", "Arial", "Arial, x pt", ", 8 pt", "Arial, 0 pt", "Arial, 201 pt", "Arial, 8 pt, fat"})
    EXPECT_EQ(std::nullopt, parseFont(bad)) << bad;
}

}  // namespace
}  // namespace avplayer
