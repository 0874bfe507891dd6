#include "type2/settings.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>

namespace av::type2 {
namespace {

constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

template <class Rule>
void expectStores(const Rule& rule, int put, int stored) {
  MeterSettings settings;
  using Wire = decltype(applyGet(rule, settings));
  EXPECT_EQ(applyPut(rule, settings, static_cast<Wire>(put)), rule.effects) << rule.name;
  EXPECT_EQ(applyGet(rule, settings), static_cast<Wire>(stored)) << rule.name << " put " << put;
}

template <class Rule>
void expectStoresAsGiven(const Rule& rule) {
  for (const int value : {lowest, -32768, -1, 0, 1, 2, 101, 32767, highest}) expectStores(rule, value, value);
}

TEST(MeterProperties, StandInTheOrderOfTheInterfaceWithTheirEffects) {
  const Effects none = Effects::none;
  const Effects redraw = Effects::redraw;
  const Effects layout = Effects::relayout | redraw;
  const Effects images = Effects::rebuild | redraw;
  const struct {
    std::string_view name;
    int dispId;
    Effects effects;
  } expected[] = {
      {"LineType", 7, Effects::rebuild | layout},
      {"LineInterval", 8, layout},
      {"LineCount", 9, layout},
      {"BackColor", 11, images},
      {"BorderColor", 13, redraw},
      {"LineLowColor", 14, images},
      {"LineMidColor", 15, images},
      {"LineHighColor", 16, images},
      {"BackLineLowColor", 17, images},
      {"BackLineMidColor", 18, images},
      {"BackLineHighColor", 19, images},
      {"TickDelayTime", 30, none},
      {"TickReleaseTime", 31, none},
      {"TickVisible", 32, redraw},
      {"SpotHeight", 33, layout},
      {"SpotInterval", 34, layout},
      {"MidPoint", 35, images},
      {"HighPoint", 36, images},
      {"AlignmentY", 40, images},
      {"AlignmentX", 41, images},
      {"BorderType", 45, redraw},
      {"BorderWidth", 46, layout},
      {"AutoRepaint", 50, none},
      {"AutoSize", 51, Effects::relayout},
      {"FFTWindowSize", 60, none},
      {"FFTWindowType", 61, none},
      {"FFTViewType", 62, none},
  };
  ASSERT_EQ(rule::table.size(), std::size(expected));
  for (std::size_t i = 0; i < rule::table.size(); ++i) {
    EXPECT_EQ(rule::table[i]->name, expected[i].name);
    EXPECT_EQ(rule::table[i]->dispId, expected[i].dispId) << expected[i].name;
    EXPECT_EQ(rule::table[i]->effects, expected[i].effects) << expected[i].name;
  }
}

TEST(MeterProperties, HaveTheirDefaults) {
  const MeterSettings settings;
  EXPECT_EQ(applyGet(rule::lineType, settings), 0);
  EXPECT_EQ(applyGet(rule::lineInterval, settings), 1);
  EXPECT_EQ(applyGet(rule::backColor, settings), 0x000000u);
  EXPECT_EQ(applyGet(rule::borderColor, settings), 0x000000u);
  EXPECT_EQ(applyGet(rule::lineLowColor, settings), 0x00FF00u);  // 0xBBGGRR
  EXPECT_EQ(applyGet(rule::lineMidColor, settings), 0x00FFFFu);
  EXPECT_EQ(applyGet(rule::lineHighColor, settings), 0x0000FFu);
  EXPECT_EQ(applyGet(rule::backLineLowColor, settings), 0x005500u);
  EXPECT_EQ(applyGet(rule::backLineMidColor, settings), 0x005555u);
  EXPECT_EQ(applyGet(rule::backLineHighColor, settings), 0x000055u);
  EXPECT_EQ(applyGet(rule::tickDelayTime, settings), 200);
  EXPECT_EQ(applyGet(rule::tickReleaseTime, settings), 10);
  EXPECT_EQ(applyGet(rule::tickVisible, settings), 1);
  EXPECT_EQ(applyGet(rule::spotHeight, settings), 2);
  EXPECT_EQ(applyGet(rule::spotInterval, settings), 1);
  EXPECT_EQ(applyGet(rule::midPoint, settings), 60);
  EXPECT_EQ(applyGet(rule::highPoint, settings), 80);
  EXPECT_EQ(applyGet(rule::alignmentY, settings), 0);
  EXPECT_EQ(applyGet(rule::alignmentX, settings), 0);
  EXPECT_EQ(applyGet(rule::borderType, settings), 0);
  EXPECT_EQ(applyGet(rule::borderWidth, settings), 0);
  EXPECT_EQ(autoRepaint, -1);
  EXPECT_EQ(applyGet(rule::autoSize, settings), 0);
  EXPECT_EQ(applyGet(rule::fftWindowSize, settings), 256);
  EXPECT_EQ(applyGet(rule::fftWindowType, settings), 3);
  EXPECT_EQ(applyGet(rule::fftViewType, settings), 0);
}

TEST(MeterProperties, WithoutAClampStoreWhateverTheyAreGiven) {
  expectStoresAsGiven(rule::lineType);
  expectStoresAsGiven(rule::tickDelayTime);
  expectStoresAsGiven(rule::tickReleaseTime);
  expectStoresAsGiven(rule::tickVisible);
  expectStoresAsGiven(rule::alignmentY);
  expectStoresAsGiven(rule::alignmentX);
  expectStoresAsGiven(rule::borderType);
  expectStoresAsGiven(rule::borderWidth);
  expectStoresAsGiven(rule::autoSize);
  expectStoresAsGiven(rule::fftWindowSize);
  expectStoresAsGiven(rule::fftWindowType);
  expectStoresAsGiven(rule::fftViewType);
}

TEST(MeterProperties, ThatMayNotBeNegativeStopAtZero) {
  for (const auto* rule : {&rule::lineInterval, &rule::spotHeight, &rule::spotInterval}) {
    expectStores(*rule, -1, 0);
    expectStores(*rule, lowest, 0);
    expectStores(*rule, 0, 0);
    expectStores(*rule, 7, 7);
    expectStores(*rule, highest, highest);
  }
}

TEST(MeterProperties, OfTheZonesStayWithinAHundredPercent) {
  for (const auto* rule : {&rule::midPoint, &rule::highPoint}) {
    expectStores(*rule, -5, 0);
    expectStores(*rule, 0, 0);
    expectStores(*rule, 33, 33);
    expectStores(*rule, 100, 100);
    expectStores(*rule, 101, 100);
    expectStores(*rule, 150, 100);
  }
}

TEST(MeterProperties, EachRuleReachesAFieldOfItsOwn) {
  MeterSettings s;
  applyPut(rule::lineType, s, 21);
  applyPut(rule::lineInterval, s, 22);
  applyPut(rule::backColor, s, 0x010203);
  applyPut(rule::borderColor, s, 0x040506);
  applyPut(rule::lineLowColor, s, 0x070809);
  applyPut(rule::lineMidColor, s, 0x0A0B0C);
  applyPut(rule::lineHighColor, s, 0x0D0E0F);
  applyPut(rule::backLineLowColor, s, 0x101112);
  applyPut(rule::backLineMidColor, s, 0x131415);
  applyPut(rule::backLineHighColor, s, 0x161718);
  applyPut(rule::tickDelayTime, s, 23);
  applyPut(rule::tickReleaseTime, s, 24);
  applyPut(rule::tickVisible, s, 25);
  applyPut(rule::spotHeight, s, 26);
  applyPut(rule::spotInterval, s, 27);
  applyPut(rule::midPoint, s, 28);
  applyPut(rule::highPoint, s, 29);
  applyPut(rule::alignmentY, s, 30);
  applyPut(rule::alignmentX, s, 31);
  applyPut(rule::borderType, s, 32);
  applyPut(rule::borderWidth, s, 33);
  applyPut(rule::autoSize, s, 34);
  applyPut(rule::fftWindowSize, s, 35);
  applyPut(rule::fftWindowType, s, 36);
  applyPut(rule::fftViewType, s, 37);
  EXPECT_EQ(s.lineType, 21);
  EXPECT_EQ(s.lineInterval, 22);
  EXPECT_EQ(s.backColor, 0xFF030201u);
  EXPECT_EQ(s.borderColor, 0xFF060504u);
  EXPECT_EQ(s.lineLowColor, 0xFF090807u);
  EXPECT_EQ(s.lineMidColor, 0xFF0C0B0Au);
  EXPECT_EQ(s.lineHighColor, 0xFF0F0E0Du);
  EXPECT_EQ(s.backLineLowColor, 0xFF121110u);
  EXPECT_EQ(s.backLineMidColor, 0xFF151413u);
  EXPECT_EQ(s.backLineHighColor, 0xFF181716u);
  EXPECT_EQ(s.tickDelayTimeMs, 23);
  EXPECT_EQ(s.tickReleaseTimeMs, 24);
  EXPECT_EQ(s.tickVisible, 25);
  EXPECT_EQ(s.spotHeightPx, 26);
  EXPECT_EQ(s.spotIntervalPx, 27);
  EXPECT_EQ(s.midPointPercent, 28);
  EXPECT_EQ(s.highPointPercent, 29);
  EXPECT_EQ(s.alignmentY, 30);
  EXPECT_EQ(s.alignmentX, 31);
  EXPECT_EQ(s.borderType, 32);
  EXPECT_EQ(s.borderWidthPx, 33);
  EXPECT_EQ(s.autoSize, 34);
  EXPECT_EQ(s.fftWindowSize, 35);
  EXPECT_EQ(s.fftWindowType, 36);
  EXPECT_EQ(s.fftViewType, 37);
}

TEST(MeterColours, AreOpaqueWhateverTheHighByteSays) {
  MeterSettings settings;
  applyPut(rule::backColor, settings, 0x80000005u);
  EXPECT_EQ(settings.backColor, 0xFF050000u);
  EXPECT_EQ(applyGet(rule::backColor, settings), 0x00000005u);
}

TEST(MeterLineCount, IsAtLeastThree) {
  for (const int width : {-1, 0, 200}) {
    for (const int value : {lowest, -1, 0, 1, 2, 3}) EXPECT_EQ(clampLineCount({}, value, width), 3);
  }
}

TEST(MeterLineCount, IsAtMostHalfTheInnerWidthOverTheInterval) {
  MeterSettings settings;
  EXPECT_EQ(clampLineCount(settings, 500, 200), 99);  // 198 ÷ 1 ÷ 2
  EXPECT_EQ(clampLineCount(settings, 99, 200), 99);
  EXPECT_EQ(clampLineCount(settings, 98, 200), 98);
  settings.lineInterval = 4;
  settings.borderWidthPx = 3;
  EXPECT_EQ(clampLineCount(settings, 500, 200), 24);  // 192 ÷ 4 ÷ 2
  settings.lineInterval = 5;
  EXPECT_EQ(clampLineCount(settings, 500, 200), 19);  // 192 ÷ 5 is 38
  settings.borderWidthPx = -4;
  EXPECT_EQ(clampLineCount(settings, 500, 200), 20);  // 206 ÷ 5 is 41
}

TEST(MeterLineCount, IsAtMostOneAPixelWhereTheIntervalIsZero) {
  MeterSettings settings;
  settings.lineInterval = 0;
  EXPECT_EQ(clampLineCount(settings, 500, 200), 198);
  settings.borderWidthPx = 10;
  EXPECT_EQ(clampLineCount(settings, 500, 200), 178);
}

TEST(MeterLineCount, LimitsBelowThreeAreThree) {
  MeterSettings settings;
  for (const int border : {0, 50, 150, highest, -1}) {
    settings.borderWidthPx = border;
    for (const int width : {1, 2, 5}) EXPECT_EQ(clampLineCount(settings, 500, width), 3) << border << ", " << width;
  }
  settings.borderWidthPx = 0;
  settings.lineInterval = highest;
  EXPECT_EQ(clampLineCount(settings, 500, 200), 3);
}

TEST(MeterLineCount, IsFreeWhileThereIsNoWidthUpToTheFramesOfTheLongestBlock) {
  for (const int width : {0, -7, lowest}) {
    EXPECT_EQ(clampLineCount({}, 500, width), 500);
    EXPECT_EQ(clampLineCount({}, 48000, width), 48000);
    EXPECT_EQ(clampLineCount({}, highest, width), 48000);
  }
  MeterSettings settings;
  settings.borderWidthPx = lowest;  // an inner width beyond 32 bits
  EXPECT_EQ(clampLineCount(settings, highest, 200), 48000);
}

}  // namespace
}  // namespace av::type2
