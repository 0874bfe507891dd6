#include "type3/round_numbers.h"

#include <gtest/gtest.h>

#include <vector>

namespace av::type3 {
namespace {

TEST(RoundNumbers, AreOneTwoAndFiveAndTheirTenfolds) {
  std::vector<std::int64_t> numbers;
  for (RoundNumbers number; number.value() <= 50000; number.next()) numbers.push_back(number.value());
  EXPECT_EQ(numbers,
            (std::vector<std::int64_t>{1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000, 50000}));
}

}  // namespace
}  // namespace av::type3
