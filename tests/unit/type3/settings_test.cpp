#include "type3/settings.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>

namespace av::type3 {
namespace {

constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

template <class Rule>
void expectAccepts(const Rule& rule, int value) {
  AnalyserSettings settings;
  using Wire = decltype(applyGet(rule, settings));
  EXPECT_EQ(applyPut(rule, settings, static_cast<Wire>(value)), rule.effects) << rule.name << " put " << value;
  EXPECT_EQ(applyGet(rule, settings), static_cast<Wire>(value)) << rule.name << " put " << value;
}

template <class Rule>
void expectRefuses(const Rule& rule, int value) {
  AnalyserSettings settings;
  const auto before = applyGet(rule, settings);
  EXPECT_EQ(applyPut(rule, settings, value), std::nullopt) << rule.name << " put " << value;
  EXPECT_EQ(applyGet(rule, settings), before) << rule.name << " put " << value;
}

TEST(AnalyserProperties, StandInTheOrderOfTheInterfaceWithTheirEffects) {
  const Effects none = Effects::none;
  const Effects redraw = Effects::redraw;
  const Effects layout = Effects::relayout | redraw;
  const Effects images = Effects::rebuild | redraw;
  const struct {
    std::string_view name;
    Effects effects;
  } expected[] = {
      {"ScaleXVisible", layout},
      {"ScaleYVisible", layout},
      {"ScaleYMax", layout},
      {"ScaleYMin", layout},
      {"FFTLength", Effects::reallocate},
      {"BackColor", redraw},
      {"BackLineHighColor", images},
      {"BackLineMidColor", images},
      {"BackLineLowColor", images},
      {"LineHighColor", images},
      {"LineMidColor", images},
      {"LineLowColor", images},
      {"MidPoint", images},
      {"HighPoint", images},
      {"LineInterval", images},
      {"SpotInterval", images},
      {"SpotHeight", images},
      {"LineCount", Effects::reallocate | images},
      {"TickVisible", redraw},
      {"DynamicRange", layout},
      {"ScaleFont", layout},
      {"ScaleColor", redraw},
      {"BorderColor", redraw},
      {"BorderType", redraw},
      {"FFTWindowType", none},
      {"FFTWindowCount", none},
      {"FFTWindowName", none},
      {"HasWindowParam", none},
      {"FFTWindowParam", none},
      {"AutoRepaint", none},
      {"XScaleType", redraw},
      {"TickColor", redraw},
      {"AlignmentX", redraw},
      {"AlignmentY", layout},
      {"ViewType", images},
      {"AutoSize", redraw},
  };
  ASSERT_EQ(rule::table.size(), std::size(expected));
  for (std::size_t i = 0; i < rule::table.size(); ++i) {
    EXPECT_EQ(rule::table[i]->name, expected[i].name);
    EXPECT_EQ(rule::table[i]->dispId, static_cast<std::int32_t>(i) + 6) << expected[i].name;
    EXPECT_EQ(rule::table[i]->effects, expected[i].effects) << expected[i].name;
  }
}

TEST(AnalyserProperties, HaveTheirDefaults) {
  const AnalyserSettings settings;
  for (const auto* rule :
       {&rule::scaleXVisible, &rule::scaleYVisible, &rule::tickVisible, &rule::autoRepaint, &rule::autoSize})
    EXPECT_EQ(applyGet(*rule, settings), -1) << rule->name;
  const struct {
    const rule::LongRule& rule;
    std::int32_t value;
  } numbers[] = {
      {rule::scaleYMin, 0},  {rule::scaleYMax, 100}, {rule::dynamicRange, 96}, {rule::xScaleType, 0},
      {rule::midPoint, 60},  {rule::highPoint, 80},  {rule::lineCount, 60},    {rule::lineInterval, 2},
      {rule::viewType, 0},   {rule::spotHeight, 2},  {rule::spotInterval, 1},  {rule::borderType, 0},
      {rule::alignmentX, 0}, {rule::alignmentY, 0},
  };
  for (const auto& row : numbers) EXPECT_EQ(applyGet(row.rule, settings), row.value) << row.rule.name;
  const struct {
    const rule::ColorRule& rule;
    std::uint32_t value;
  } colours[] = {
      {rule::backColor, 0x000000},        {rule::borderColor, 0x000000},       {rule::lineLowColor, 0x00FF00},
      {rule::lineMidColor, 0x00FFFF},     {rule::lineHighColor, 0x0000FF},     {rule::backLineLowColor, 0x005500},
      {rule::backLineMidColor, 0x005555}, {rule::backLineHighColor, 0x000055}, {rule::tickColor, 0xFFFF00},
  };
  for (const auto& row : colours) EXPECT_EQ(applyGet(row.rule, settings), row.value) << row.rule.name;
}

TEST(AnalyserProperties, RefuseWhatLiesOutsideTheirRange) {
  const struct {
    const rule::LongRule& rule;
    std::int32_t least;
    std::int32_t most;
  } ranges[] = {
      {rule::scaleYMax, 0, highest},  {rule::scaleYMin, 0, highest},    {rule::midPoint, 0, 100},
      {rule::highPoint, 0, 100},      {rule::lineInterval, 0, highest}, {rule::spotInterval, 0, highest},
      {rule::spotHeight, 0, highest}, {rule::lineCount, 4, 200},        {rule::dynamicRange, 0, 200},
      {rule::borderType, 0, 3},       {rule::xScaleType, 0, 1},         {rule::alignmentX, 0, 1},
      {rule::alignmentY, 0, 1},       {rule::viewType, 0, 3},
  };
  for (const auto& range : ranges) {
    expectAccepts(range.rule, range.least);
    expectAccepts(range.rule, range.most);
    expectAccepts(range.rule, range.least + 1);
    expectRefuses(range.rule, range.least - 1);
    expectRefuses(range.rule, lowest);
    if (range.most < highest) expectRefuses(range.rule, range.most + 1);
    if (range.most < highest) expectRefuses(range.rule, highest);
  }
}

TEST(AnalyserProperties, OfTruthComeBackAsTheyWerePut) {
  for (const auto* rule :
       {&rule::scaleXVisible, &rule::scaleYVisible, &rule::tickVisible, &rule::autoRepaint, &rule::autoSize})
    for (const int value : {-32768, -2, -1, 0, 1, 32767}) expectAccepts(*rule, value);
}

TEST(AnalyserBooleans, AreTrueForMinusOneOnly) {
  EXPECT_TRUE(isTrue(-1));
  for (const int value : {-32768, -2, 0, 1, 32767}) EXPECT_FALSE(isTrue(static_cast<std::int16_t>(value))) << value;
}

TEST(AnalyserFftLength, IsAnyPowerOfTwoOrZero) {
  EXPECT_TRUE(isFftLength(0));
  for (int bit = 0; bit < 31; ++bit) EXPECT_TRUE(isFftLength(1 << bit)) << bit;
  for (const std::int32_t value : {3, 6, 1000, 513, highest, -1, -2, -512, lowest})
    EXPECT_FALSE(isFftLength(value)) << value;
}

TEST(AnalyserColours, AreStoredAsTheSystemTranslatesThem) {
  AnalyserSettings settings;
  const auto translate = [](std::uint32_t oleColour, std::uint32_t* colour) {
    *colour = oleColour == 0x8000000F ? 0x00C8D0D4u : oleColour;
    return std::int32_t{0};
  };
  const ColourPut put = putColour(rule::scaleColor, settings, 0x8000000F, translate);
  EXPECT_EQ(put.result, 0);
  EXPECT_EQ(put.effects, Effects::redraw);
  EXPECT_EQ(applyGet(rule::scaleColor, settings), 0x00C8D0D4u);  // not the colour that was put
  EXPECT_EQ(putColour(rule::lineLowColor, settings, 0x123456, translate).effects, Effects::rebuild | Effects::redraw);
  EXPECT_EQ(applyGet(rule::lineLowColor, settings), 0x123456u);
}

TEST(AnalyserColours, StayWhereTheTranslationFails) {
  AnalyserSettings settings;
  constexpr auto invalid = static_cast<std::int32_t>(0x80070057);
  const ColourPut put = putColour(rule::tickColor, settings, 0x77000000, [](std::uint32_t, std::uint32_t* colour) {
    *colour = 0x222222;
    return invalid;
  });
  EXPECT_EQ(put.result, invalid);
  EXPECT_EQ(put.effects, Effects::none);
  EXPECT_EQ(applyGet(rule::tickColor, settings), 0xFFFF00u);
}

TEST(AnalyserProperties, EachRuleReachesAFieldOfItsOwn) {
  AnalyserSettings settings;
  std::int32_t next = 1;
  const rule::LongRule* const numbers[] = {
      &rule::scaleYMax,    &rule::scaleYMin,  &rule::midPoint,   &rule::highPoint,    &rule::lineInterval,
      &rule::spotInterval, &rule::spotHeight, &rule::lineCount,  &rule::dynamicRange, &rule::borderType,
      &rule::xScaleType,   &rule::alignmentX, &rule::alignmentY, &rule::viewType};
  for (const auto* rule : numbers) settings.*rule->field = next++;
  const rule::ColorRule* const colours[] = {&rule::backColor,        &rule::backLineHighColor, &rule::backLineMidColor,
                                            &rule::backLineLowColor, &rule::lineHighColor,     &rule::lineMidColor,
                                            &rule::lineLowColor,     &rule::scaleColor,        &rule::borderColor,
                                            &rule::tickColor};
  for (const auto* rule : colours) settings.*rule->field = static_cast<std::uint32_t>(next++);
  const rule::BoolRule* const booleans[] = {&rule::scaleXVisible, &rule::scaleYVisible, &rule::tickVisible,
                                            &rule::autoRepaint, &rule::autoSize};
  for (const auto* rule : booleans) settings.*rule->field = static_cast<std::int16_t>(next++);
  next = 1;
  for (const auto* rule : numbers) EXPECT_EQ(settings.*rule->field, next++) << rule->name;
  for (const auto* rule : colours) EXPECT_EQ(settings.*rule->field, static_cast<std::uint32_t>(next++)) << rule->name;
  for (const auto* rule : booleans) EXPECT_EQ(settings.*rule->field, next++) << rule->name;
  EXPECT_EQ(settings.scaleYMax, 1);
  EXPECT_EQ(settings.scaleYMin, 2);
  EXPECT_EQ(settings.midPointPercent, 3);
  EXPECT_EQ(settings.highPointPercent, 4);
  EXPECT_EQ(settings.lineIntervalPx, 5);
  EXPECT_EQ(settings.spotIntervalPx, 6);
  EXPECT_EQ(settings.spotHeightPx, 7);
  EXPECT_EQ(settings.lineCount, 8);
  EXPECT_EQ(settings.dynamicRangeDb, 9);
  EXPECT_EQ(settings.borderType, 10);
  EXPECT_EQ(settings.xScaleType, 11);
  EXPECT_EQ(settings.alignmentX, 12);
  EXPECT_EQ(settings.alignmentY, 13);
  EXPECT_EQ(settings.viewType, 14);
  EXPECT_EQ(settings.backColor, 15u);
  EXPECT_EQ(settings.backLineHighColor, 16u);
  EXPECT_EQ(settings.backLineMidColor, 17u);
  EXPECT_EQ(settings.backLineLowColor, 18u);
  EXPECT_EQ(settings.lineHighColor, 19u);
  EXPECT_EQ(settings.lineMidColor, 20u);
  EXPECT_EQ(settings.lineLowColor, 21u);
  EXPECT_EQ(settings.scaleColor, 22u);
  EXPECT_EQ(settings.borderColor, 23u);
  EXPECT_EQ(settings.tickColor, 24u);
  EXPECT_EQ(settings.scaleXVisible, 25);
  EXPECT_EQ(settings.scaleYVisible, 26);
  EXPECT_EQ(settings.tickVisible, 27);
  EXPECT_EQ(settings.autoRepaint, 28);
  EXPECT_EQ(settings.autoSize, 29);
}

}  // namespace
}  // namespace av::type3
