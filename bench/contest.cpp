#include "bench/contest.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

namespace av::bench {

std::vector<double> noise(std::size_t count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> value(-32768, 32768);
  std::vector<double> samples(count);
  for (double& sample : samples) sample = value(random);
  return samples;
}

void require(bool agrees, const std::string& what) {
  if (agrees) return;
  std::fprintf(stderr, "%s differs\n", what.c_str());
  std::exit(1);
}

bool isNear(std::span<const double> actual, std::span<const double> expected, double tolerance) {
  double largest = 0;
  double difference = 0;
  for (std::size_t k = 0; k < expected.size(); ++k) {
    largest = std::max(largest, std::abs(expected[k]));
    difference = std::max(difference, std::abs(actual[k] - expected[k]));
  }
  return difference <= tolerance * largest;
}

bool sameBits(std::span<const double> actual, std::span<const double> expected) {
  return std::memcmp(actual.data(), expected.data(), expected.size_bytes()) == 0;
}

}  // namespace av::bench
