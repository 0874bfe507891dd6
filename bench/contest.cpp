#include "bench/contest.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <utility>

namespace av::bench {

void add(const std::string& name, const std::string& contender, std::size_t size, std::function<void()> run) {
  const std::string title = name + "/" + contender + "/" + std::to_string(size);
  benchmark::RegisterBenchmark(title.c_str(), [run = std::move(run)](benchmark::State& state) {
    for (auto _ : state) {
      run();
      benchmark::ClobberMemory();
    }
  });
}

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

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  av::bench::addPowerSpectra();
  av::bench::addHartley();
  av::bench::addDecoding();
  av::bench::addBlocks();
  av::bench::addFrames();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
