#include "common/relaxed.h"

#include <gtest/gtest.h>

using av::Relaxed;

TEST(Relaxed, StandsForTheBareValue) {
  Relaxed<int> value = 7;
  EXPECT_EQ(value, 7);
  value = 9;
  const Relaxed<int> copy = value;
  value = 1;
  EXPECT_EQ(copy + 1, 10);
  value = copy;
  EXPECT_EQ(value.exchange(3), 9);
  EXPECT_EQ(value.load(), 3);
  EXPECT_EQ(Relaxed<double>(), 0.0);
}
