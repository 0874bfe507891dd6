#include "type2/draw_mode.h"

#include <gtest/gtest.h>

#include <limits>

namespace av::type2 {
namespace {

using Kind = DrawMode::Kind;

std::optional<DrawMode> modeOf(std::int32_t lineType, std::int32_t alignmentX = 0) {
  MeterSettings settings;
  settings.lineType = lineType;
  settings.alignmentX = alignmentX;
  return drawMode(settings);
}

TEST(MeterDrawMode, NamesBarsDotsAndGraphs) {
  EXPECT_EQ(modeOf(0), (DrawMode{Kind::bars, false, false}));
  EXPECT_EQ(modeOf(1), (DrawMode{Kind::bars, true, false}));
  EXPECT_EQ(modeOf(2), (DrawMode{Kind::dots, false, false}));
  EXPECT_EQ(modeOf(3), (DrawMode{Kind::dots, true, false}));
  EXPECT_EQ(modeOf(4), (DrawMode{Kind::graph, false, false}));
  EXPECT_EQ(modeOf(5), (DrawMode{Kind::smoothedGraph, false, false}));
  EXPECT_EQ(modeOf(6), modeOf(5));
}

TEST(MeterDrawMode, IsMirroredByTheAlignmentOrByTheTypeItself) {
  for (int type = 0; type <= 6; ++type) {
    auto mirrored = *modeOf(type);
    mirrored.mirrored = true;
    EXPECT_EQ(modeOf(type, 1), mirrored) << type;
    EXPECT_EQ(modeOf(type + 8, 0), mirrored) << type;
    EXPECT_EQ(modeOf(type + 8, 1), mirrored) << type;
  }
}

TEST(MeterDrawMode, IsNoneForEveryOtherCombination) {
  for (const int type : {7, 15, 16, 99, -1, -8, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(modeOf(type), std::nullopt) << type;
    EXPECT_EQ(modeOf(type, 1), std::nullopt) << type;
  }
  for (const int alignment : {2, 3, -1, 1 << 29, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    EXPECT_EQ(modeOf(0, alignment), std::nullopt) << alignment;
}

}  // namespace
}  // namespace av::type2
