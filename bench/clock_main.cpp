// The contests without Google Benchmark, for Windows: prints lines of name/contender/size and a median in nanoseconds.

#include "bench/contest.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

// Short rounds, as the clock goes on while other programs run: most of them are left alone.
constexpr int rounds = 501;
constexpr double roundNs = 1e5;

struct Entry {
  std::string title;
  std::function<void()> run;
  int repeats = 1;
  std::vector<double> times;
};

std::vector<Entry>& entries() {
  static std::vector<Entry> all;
  return all;
}

double timeOf(const Entry& entry) {
  const auto start = Clock::now();
  for (int i = 0; i < entry.repeats; ++i) entry.run();
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / entry.repeats;
}

}  // namespace

namespace av::bench {

void add(const std::string& name, const std::string& contender, std::size_t size, std::function<void()> run) {
  entries().push_back({name + "/" + contender + "/" + std::to_string(size), std::move(run), 1, {}});
}

}  // namespace av::bench

int main(int argc, char** argv) {
  const std::string_view only = argc > 1 ? argv[1] : "";
  av::bench::addDecoding();
  av::bench::addBlocks();
  av::bench::addFrames();
  std::erase_if(entries(), [&](const Entry& entry) { return entry.title.rfind(only, 0) != 0; });
  for (Entry& entry : entries()) {
    // Until a round takes long enough for the clock; the first calls warm up.
    double ns = timeOf(entry);
    while (ns * entry.repeats < roundNs) {
      entry.repeats *= 2;
      ns = timeOf(entry);
    }
  }
  for (int round = 0; round < rounds; ++round)
    for (Entry& entry : entries()) entry.times.push_back(timeOf(entry));
  for (Entry& entry : entries()) {
    std::ranges::sort(entry.times);
    std::printf("%s %.1f\n", entry.title.c_str(), entry.times[entry.times.size() / 2]);
  }
  return 0;
}
