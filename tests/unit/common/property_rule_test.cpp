#include "common/property_rule.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using av::Effects;

struct Lamp {
  std::int32_t brightness = 5;
  float width = 1.0f;
  av::Argb colour = av::opaqueBlack;
  av::Relaxed<std::int32_t> shared = 0;
};

constexpr av::PropertyRule<Lamp, std::int32_t> asGiven{
    {"Brightness", 1, Effects::redraw}, &Lamp::brightness, av::plainCodec<std::int32_t>};
constexpr av::PropertyRule<Lamp, std::int32_t> clamped{{"Brightness", 1, Effects::relayout | Effects::redraw},
                                                       &Lamp::brightness,
                                                       av::plainCodec<std::int32_t>,
                                                       av::clampTo(-2, 10)};
constexpr av::PropertyRule<Lamp, std::int32_t> refusing{
    {"Brightness", 1}, &Lamp::brightness, av::plainCodec<std::int32_t>, av::refuseOutside(-2, 10)};
constexpr av::PropertyRule<Lamp, float> refusingFloat{
    {"Width", 2}, &Lamp::width, av::plainCodec<float>, av::refuseOutside(0.5f, 2.0f)};
constexpr av::PropertyRule<Lamp, std::uint32_t> coloured{{"Colour", 3}, &Lamp::colour, av::swappedColourCodec};
constexpr av::PropertyRule<Lamp, std::int32_t, av::Relaxed<std::int32_t>> shared{
    {"Shared", 4}, &Lamp::shared, av::plainCodec<std::int32_t>};

}  // namespace

TEST(PropertyRule, StoresAnyValueAsGiven) {
  Lamp lamp;
  for (const std::int32_t value : {std::numeric_limits<std::int32_t>::min(), -1, 0, 99}) {
    EXPECT_EQ(applyPut(asGiven, lamp, value), Effects::redraw);
    EXPECT_EQ(lamp.brightness, value);
    EXPECT_EQ(applyGet(asGiven, lamp), value);
  }
}

TEST(PropertyRule, ClampsToInclusiveBounds) {
  Lamp lamp;
  const struct { std::int32_t put, stored; } cases[] = {{-3, -2}, {-2, -2}, {10, 10}, {11, 10}, {4, 4}};
  for (const auto& c : cases) {
    EXPECT_EQ(applyPut(clamped, lamp, c.put), Effects::relayout | Effects::redraw);
    EXPECT_EQ(lamp.brightness, c.stored);
  }
}

TEST(PropertyRule, RefusesOutsideInclusiveBoundsAndChangesNothing) {
  Lamp lamp;
  EXPECT_EQ(applyPut(refusing, lamp, -3), std::nullopt);
  EXPECT_EQ(applyPut(refusing, lamp, 11), std::nullopt);
  EXPECT_EQ(lamp.brightness, 5);
  EXPECT_EQ(applyPut(refusing, lamp, -2), Effects::none);
  EXPECT_EQ(lamp.brightness, -2);
  EXPECT_EQ(applyPut(refusing, lamp, 10), Effects::none);
  EXPECT_EQ(lamp.brightness, 10);
  EXPECT_EQ(applyPut(refusingFloat, lamp, std::numeric_limits<float>::quiet_NaN()), std::nullopt);
  EXPECT_EQ(lamp.width, 1.0f);
}

TEST(PropertyRule, ShufflesColoursAndLosesTheHighByte) {
  Lamp lamp;
  EXPECT_EQ(applyPut(coloured, lamp, 0x80112233u), Effects::none);
  EXPECT_EQ(lamp.colour, 0xFF332211u);
  EXPECT_EQ(applyGet(coloured, lamp), 0x00112233u);
}

TEST(PropertyRule, ReachesFieldsThatThreadsShare) {
  Lamp lamp;
  applyPut(shared, lamp, 12);
  EXPECT_EQ(lamp.shared, 12);
  EXPECT_EQ(applyGet(shared, lamp), 12);
}

TEST(Effects, HasAsksForEveryFlag) {
  EXPECT_TRUE(has(Effects::reset | Effects::redraw, Effects::redraw));
  EXPECT_FALSE(has(Effects::redraw, Effects::reset | Effects::redraw));
  EXPECT_FALSE(has(Effects::none, Effects::redraw));
}
