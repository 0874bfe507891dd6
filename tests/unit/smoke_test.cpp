#include <gtest/gtest.h>
TEST(Smoke, Runs) { EXPECT_EQ(4u, sizeof(int)); }
