#include "gfx/frame_parts.h"

#include <gtest/gtest.h>

namespace av {
namespace {

TEST(Polylines, ShareOnePoolInDrawOrder) {
  Polylines lines;
  lines.add(0xFF112233, 2)[1] = {3, 4};
  lines.add(0xFF445566, 3)[0] = {5, 6};
  ASSERT_EQ(2u, lines.lines.size());
  EXPECT_EQ((Polyline{0, 2, 0xFF112233}), lines.lines[0]);
  EXPECT_EQ((Polyline{2, 3, 0xFF445566}), lines.lines[1]);
  EXPECT_EQ((Point{3, 4}), lines.pointsOf(lines.lines[0])[1]);
  EXPECT_EQ((Point{5, 6}), lines.pointsOf(lines.lines[1])[0]);
}

TEST(Polylines, AreOnePixelWideUnlessTheySayOtherwise) {
  Polylines lines;
  lines.add(0xFF112233, 2);
  lines.add(0xFF112233, 2, 5);
  EXPECT_EQ(1, lines.lines[0].widthPx);
  EXPECT_EQ(5, lines.lines[1].widthPx);
}

TEST(Polylines, KeepTheirMemoryWhenCleared) {
  Polylines lines;
  lines.add(opaqueBlack, 1000);
  const Point* const before = lines.points.data();
  lines.clear();
  EXPECT_TRUE(lines.lines.empty());
  lines.add(opaqueBlack, 1000);
  EXPECT_EQ(before, lines.points.data());
}

TEST(Rect, ExcludesItsRightAndBottom) {
  const Rect rect{2, 3, 10, 13};
  EXPECT_EQ(8, rect.width());
  EXPECT_EQ(10, rect.height());
  EXPECT_FALSE(rect.isEmpty());
  EXPECT_TRUE((Rect{2, 3, 2, 13}).isEmpty());
  EXPECT_TRUE((Rect{2, 3, 10, 2}).isEmpty());
}

}  // namespace
}  // namespace av
