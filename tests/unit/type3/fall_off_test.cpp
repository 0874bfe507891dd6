#include "type3/fall_off.h"

#include <gtest/gtest.h>

#include <vector>

namespace av::type3 {
namespace {

using Step = FallOff::Step;

std::vector<LineInfo> columnsOf(double value, double peak) { return {{200, value, peak, 0}}; }

TEST(FallOff, WaitsForABlock) {
  FallOff fallOff;
  auto columns = columnsOf(20, 20);
  EXPECT_FALSE(fallOff.isActive());
  EXPECT_EQ(fallOff.tick(columns, true, 1000000), Step::none);
  EXPECT_EQ(columns[0].value, 20);
}

TEST(FallOff, BeginsHalfASecondAfterTheLastBlock) {
  FallOff fallOff;
  auto columns = columnsOf(20, 30);
  fallOff.blockArrived(1000);
  EXPECT_EQ(fallOff.tick(columns, true, 1499), Step::none);
  EXPECT_EQ(columns[0].value, 20);
  EXPECT_EQ(fallOff.tick(columns, true, 1500), Step::falling);
  EXPECT_EQ(columns[0].value, 15);
  EXPECT_EQ(columns[0].peak, 30);  // lowered by the line list
  fallOff.blockArrived(1550);
  EXPECT_EQ(fallOff.tick(columns, true, 2049), Step::none);
}

TEST(FallOff, CountsAcrossTheWrapOfTheTickCount) {
  FallOff fallOff;
  auto columns = columnsOf(20, 30);
  fallOff.blockArrived(0xFFFFFF00u);
  EXPECT_EQ(fallOff.tick(columns, true, 0xFFFFFF00u + 499u), Step::none);
  EXPECT_EQ(fallOff.tick(columns, true, 0xFFFFFF00u + 500u), Step::falling);
}

TEST(FallOff, IsNoneWithoutAutoRepaint) {
  FallOff fallOff;
  auto columns = columnsOf(20, 30);
  fallOff.blockArrived(0);
  EXPECT_EQ(fallOff.tick(columns, false, 5000), Step::none);
  EXPECT_EQ(columns[0].value, 20);
  EXPECT_TRUE(fallOff.isActive());
}

TEST(FallOff, StopsAtZeroAndGoesOnUntilTheLastPeakIsDown) {
  FallOff fallOff;
  std::vector<LineInfo> columns{{200, 7, 12, 0}, {200, 9, 0, 0}, {200, -91, -91, 0}};
  fallOff.blockArrived(0);
  EXPECT_EQ(fallOff.tick(columns, true, 500), Step::falling);
  EXPECT_EQ(columns[0].value, 2);
  EXPECT_EQ(columns[1].value, 9);  // no peak: left alone
  EXPECT_EQ(columns[2].value, -91);
  EXPECT_EQ(fallOff.tick(columns, true, 550), Step::falling);
  EXPECT_EQ(columns[0].value, 0);
  EXPECT_EQ(fallOff.tick(columns, true, 600), Step::falling);
  EXPECT_EQ(columns[0].value, 0);
  columns[0].peak = 0;
  EXPECT_EQ(fallOff.tick(columns, true, 650), Step::ended);
  EXPECT_FALSE(fallOff.isActive());
  EXPECT_EQ(fallOff.tick(columns, true, 700), Step::none);
}

}  // namespace
}  // namespace av::type3
