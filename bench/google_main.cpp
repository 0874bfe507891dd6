#include "bench/contest.h"

#include <benchmark/benchmark.h>

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

}  // namespace av::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  av::bench::addPowerSpectra();
  av::bench::addHartley();
  av::bench::addDecoding();
  av::bench::addBlocks();
  av::bench::addFrames();
  av::bench::addGrowth();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
