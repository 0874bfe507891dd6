#include "type1/settings.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>

namespace {

using namespace av::type1;
using av::Effects;

constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

template <class Rule>
void expectStoresAsGiven(const Rule& rule) {
  ViewSettings settings;
  for (const int value : {-1, 0, 1, 9, -32768, 32767}) {
    using Wire = decltype(applyGet(rule, settings));
    const auto put = static_cast<Wire>(value);
    EXPECT_EQ(applyPut(rule, settings, put), rule.effects) << rule.name;
    EXPECT_EQ(applyGet(rule, settings), put) << rule.name;
  }
}

}  // namespace

TEST(ViewProperties, StandInTheOrderOfTheInterfaceWithTheirEffects) {
  const Effects redraw = Effects::redraw;
  const Effects layout = Effects::relayout | redraw;
  const struct {
    std::string_view name;
    int dispId;
    Effects effects;
  } expected[] = {
      {"VisualizationType", 5, Effects::reset | layout},
      {"VisualizationSmooth", 6, layout},
      {"BackColor", 10, redraw},
      {"GridColor", 11, redraw},
      {"ScaleColor", 12, redraw},
      {"TextColor", 13, redraw},
      {"BorderColor", 14, redraw},
      {"LineColor", 15, redraw},
      {"ScaleXVisible", 20, layout},
      {"ScaleYVisible", 21, layout},
      {"ScaleFont", 22, Effects::rebuild | layout},
      {"ScaleYMin", 23, layout},
      {"ScaleYMax", 24, layout},
      {"GridVisible", 25, layout},
      {"DynamicRange", 30, layout},
      {"BorderType", 31, redraw},
      {"FFTWindowSize", 40, Effects::reallocate | Effects::reset | redraw},
      {"FFTWindowType", 41, Effects::none},
      {"FFTViewType", 42, layout},
  };
  ASSERT_EQ(rule::table.size(), std::size(expected));
  for (std::size_t i = 0; i < rule::table.size(); ++i) {
    EXPECT_EQ(rule::table[i]->name, expected[i].name);
    EXPECT_EQ(rule::table[i]->dispId, expected[i].dispId) << expected[i].name;
    EXPECT_EQ(rule::table[i]->effects, expected[i].effects) << expected[i].name;
  }
}

TEST(ViewProperties, HaveTheirDefaults) {
  const ViewSettings settings;
  EXPECT_EQ(applyGet(rule::visualizationType, settings), 1);
  EXPECT_EQ(applyGet(rule::visualizationSmooth, settings), -1);
  EXPECT_EQ(applyGet(rule::backColor, settings), 0u);
  EXPECT_EQ(applyGet(rule::gridColor, settings), 0x00A9A9A9u);
  EXPECT_EQ(applyGet(rule::borderColor, settings), 0u);
  EXPECT_EQ(applyGet(rule::scaleXVisible, settings), -1);
  EXPECT_EQ(applyGet(rule::scaleYVisible, settings), -1);
  EXPECT_EQ(applyGet(rule::scaleYMin, settings), 0);
  EXPECT_EQ(applyGet(rule::scaleYMax, settings), 100);
  EXPECT_EQ(applyGet(rule::gridVisible, settings), -1);
  EXPECT_EQ(applyGet(rule::dynamicRange, settings), 90);
  EXPECT_NEAR(settings.dynamicRangeDb, 90.308733622834, 5e-13);  // as many decimals as the figure has
  EXPECT_EQ(applyGet(rule::borderType, settings), 0);
  EXPECT_EQ(applyGet(rule::fftWindowSize, settings), 1024);
  EXPECT_EQ(applyGet(rule::fftWindowType, settings), 0);
  EXPECT_EQ(applyGet(rule::fftViewType, settings), 1);
}

TEST(ViewProperties, StoreWhateverTheyAreGiven) {
  expectStoresAsGiven(rule::visualizationType);
  expectStoresAsGiven(rule::visualizationSmooth);
  expectStoresAsGiven(rule::scaleXVisible);
  expectStoresAsGiven(rule::scaleYVisible);
  expectStoresAsGiven(rule::scaleYMin);
  expectStoresAsGiven(rule::scaleYMax);
  expectStoresAsGiven(rule::gridVisible);
  expectStoresAsGiven(rule::dynamicRange);
  expectStoresAsGiven(rule::borderType);
  expectStoresAsGiven(rule::fftWindowType);
  expectStoresAsGiven(rule::fftViewType);
}

TEST(ViewProperties, EachRuleReachesAFieldOfItsOwn) {
  ViewSettings s;
  applyPut(rule::visualizationType, s, 9);
  applyPut(rule::visualizationSmooth, s, 0);
  applyPut(rule::backColor, s, 0x010203);
  applyPut(rule::gridColor, s, 0x040506);
  applyPut(rule::scaleColor, s, 0x070809);
  applyPut(rule::borderColor, s, 0x0A0B0C);
  applyPut(rule::scaleXVisible, s, 1);
  applyPut(rule::scaleYVisible, s, 2);
  applyPut(rule::scaleYMin, s, -3);
  applyPut(rule::scaleYMax, s, 4);
  applyPut(rule::gridVisible, s, 5);
  applyPut(rule::dynamicRange, s, 60);
  applyPut(rule::borderType, s, 6);
  applyPut(rule::fftWindowSize, s, 300);
  applyPut(rule::fftWindowType, s, 7);
  applyPut(rule::fftViewType, s, 8);
  EXPECT_EQ(s.visualizationType, 9);
  EXPECT_EQ(s.visualizationSmooth, 0);
  EXPECT_EQ(s.backColor, 0xFF030201u);
  EXPECT_EQ(s.gridColor, 0xFF060504u);
  EXPECT_EQ(s.scaleColor, 0xFF090807u);
  EXPECT_EQ(s.borderColor, 0xFF0C0B0Au);
  EXPECT_EQ(s.scaleXVisible, 1);
  EXPECT_EQ(s.scaleYVisible, 2);
  EXPECT_EQ(s.scaleYMin, -3);
  EXPECT_EQ(s.scaleYMax, 4);
  EXPECT_EQ(s.gridVisible, 5);
  EXPECT_EQ(s.dynamicRangeDb, 60.0);
  EXPECT_EQ(s.borderType, 6);
  EXPECT_EQ(s.fftWindowSize, 256);
  EXPECT_EQ(s.fftWindowType, 7);
  EXPECT_EQ(s.fftViewType, 8);
  EXPECT_EQ(s.textAndLineColors, ViewSettings{}.textAndLineColors);
}

TEST(ViewColours, AreOpaqueWhateverTheHighByteSays) {
  ViewSettings settings;
  applyPut(rule::backColor, settings, 0x8000000Fu);  // a system colour: kept as red 15
  EXPECT_EQ(settings.backColor, 0xFF0F0000u);
  EXPECT_EQ(applyGet(rule::backColor, settings), 0x0000000Fu);
}

TEST(LineColor, HasItsDefaults) {
  const ViewSettings settings;
  const std::uint32_t expected[19] = {0x000000,                                // text
                                      0x8080F0, 0x00FFFF, 0x008000, 0xFF0000,  // 0xBBGGRR
                                      0xE22B8A, 0xFFFF00, 0x008CFF, 0xFF00FF, 0xD0E040};
  for (std::int32_t channel = 0; channel <= 18; ++channel)
    EXPECT_EQ(lineColor(settings, channel), expected[channel]) << channel;
}

TEST(LineColor, StoresByIndexUpToEighteen) {
  ViewSettings settings;
  for (std::int32_t channel = 0; channel <= 18; ++channel)
    EXPECT_EQ(putLineColor(settings, channel, 0x80102000u + static_cast<std::uint32_t>(channel)), Effects::redraw);
  for (std::int32_t channel = 0; channel <= 18; ++channel)
    EXPECT_EQ(lineColor(settings, channel), 0x00102000u + static_cast<std::uint32_t>(channel));
  EXPECT_EQ(settings.textAndLineColors[0], 0xFF002010u);  // index 0 is the text colour
}

TEST(LineColor, RefusesOtherIndicesAndChangesNothing) {
  ViewSettings settings;
  for (const std::int32_t channel : {-1, 19, lowest, highest}) {
    EXPECT_EQ(lineColor(settings, channel), std::nullopt);
    EXPECT_EQ(putLineColor(settings, channel, 0xFF), std::nullopt);
  }
  EXPECT_EQ(settings.textAndLineColors, ViewSettings{}.textAndLineColors);
}

TEST(DynamicRange, IsADoubleThatReadsTruncated) {
  ViewSettings settings;
  const struct {
    double stored;
    std::int32_t read;
  } cases[] = {{42.07607441911914, 42},
               {90.99, 90},
               {138.474, 138},
               {186.639, 186},
               {-0.5, 0},
               {-7.9, -7},
               {1e20, highest},
               {std::numeric_limits<double>::infinity(), highest},
               {-std::numeric_limits<double>::infinity(), lowest},
               {std::numeric_limits<double>::quiet_NaN(), 0}};
  for (const auto& c : cases) {
    settings.dynamicRangeDb = c.stored;
    EXPECT_EQ(applyGet(rule::dynamicRange, settings), c.read);
  }
}

TEST(FFTWindowSize, RoundsToThePowerOfTwoThatIsNearestInTheLogarithm) {
  const struct {
    std::int32_t put, stored;
  } cases[] = {{90, 64},      {91, 128},      {181, 128},     {182, 256},     {1000, 1024},    {10, 64},
               {0, 64},       {-5, 64},       {lowest, 64},   {64, 64},       {65, 64},        {100000, 16384},
               {11585, 8192}, {11586, 16384}, {16384, 16384}, {16385, 16384}, {highest, 16384}};
  for (const auto& c : cases) {
    ViewSettings settings;
    applyPut(rule::fftWindowSize, settings, c.put);
    EXPECT_EQ(applyGet(rule::fftWindowSize, settings), c.stored) << c.put;
  }
}

// v is below the midpoint 2^(k + 0.5) exactly when v² < 2^(2k + 1): whole numbers, no logarithm.
TEST(FFTWindowSize, RoundsEveryValueAsWholeNumbersSay) {
  for (std::int64_t value = 64; value <= 16384; ++value) {
    int k = 6;
    while (value * value >= std::int64_t{1} << (2 * k + 1)) ++k;
    ASSERT_EQ(roundWindowSize(static_cast<std::int32_t>(value)), 1 << k) << value;
  }
}
