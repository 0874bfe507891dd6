#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

// Signals that show where a faster version of some operations does others: noise, and values at the ends of what a double
// can hold.

namespace av::test {

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double largest = std::numeric_limits<double>::max();
inline constexpr double leastDenormal = std::numeric_limits<double>::denorm_min();

struct Signal {
  const char* name;
  std::function<double(std::mt19937&, std::size_t)> value;
};

inline double uniform(std::mt19937& random, double range) {
  return std::uniform_real_distribution<double>(-range, range)(random);
}

inline std::vector<double> make(const Signal& signal, std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = signal.value(random, i);
  return values;
}

inline const Signal whiteNoise{"noise", [](std::mt19937& random, std::size_t) { return uniform(random, 32768); }};

/// A signal with `extra` at about one place in 50, and everywhere else 0 or noise.
inline Signal sprinkled(const char* name, double extra, bool withNoise) {
  return {name, [=](std::mt19937& random, std::size_t) {
            if (random() % 50 == 0) return random() % 2 ? extra : -extra;
            return withNoise ? uniform(random, 1) : 0.0;
          }};
}

inline const std::vector<Signal> specialSignals{
    {"silence", [](std::mt19937&, std::size_t) { return 0.0; }},
    {"negative zeros", [](std::mt19937&, std::size_t) { return -0.0; }},
    {"zeros of both signs", [](std::mt19937& random, std::size_t) { return random() % 2 ? 0.0 : -0.0; }},
    {"a constant", [](std::mt19937&, std::size_t) { return 3.0; }},
    {"half the sample rate", [](std::mt19937&, std::size_t i) { return i % 2 ? -5.0 : 5.0; }},
    {"an impulse", [](std::mt19937&, std::size_t i) { return i == 0 ? 1.0 : 0.0; }},
    {"a late impulse and negative zeros", [](std::mt19937&, std::size_t i) { return i == 7 ? -1.0 : -0.0; }},
    {"16-bit samples", [](std::mt19937& random, std::size_t) { return std::round(uniform(random, 32768)); }},
    {"denormals", [](std::mt19937& random, std::size_t) { return uniform(random, 1000) * leastDenormal; }},
    {"values whose products are denormal", [](std::mt19937& random, std::size_t) { return uniform(random, 1e-307); }},
    {"values whose squares are denormal", [](std::mt19937& random, std::size_t) { return uniform(random, 1e-161); }},
    {"values whose squares just are not denormal",
     [](std::mt19937& random, std::size_t) { return uniform(random, 1e-153); }},
    {"values whose squares overflow", [](std::mt19937& random, std::size_t) { return uniform(random, 1e154); }},
    {"values whose sums overflow", [](std::mt19937& random, std::size_t) { return uniform(random, largest / 4); }},
    {"values of all sizes",
     [](std::mt19937& random, std::size_t) { return std::ldexp(uniform(random, 1), int(random() % 2000) - 1050); }},
    sprinkled("infinities", infinity, true),
    sprinkled("infinities in silence", infinity, false),
    sprinkled("NaNs", nan, true),
    sprinkled("NaNs in silence", nan, false),
    sprinkled("the largest numbers", largest, true),
    sprinkled("the least numbers", leastDenormal, false),
    {"one infinity", [](std::mt19937&, std::size_t i) { return i == 11 ? infinity : 1.0; }},
    {"one NaN at the end", [](std::mt19937&, std::size_t i) { return i == 31 ? nan : 0.0; }},
};

/// Where the first difference is, or nothing. Which NaN an operation on two of them gives is up to the compiler, in the
/// plain operations too: a NaN equals any other. All else has to have the same bits.
inline std::string difference(const std::vector<double>& actual, const std::vector<double>& expected) {
  if (actual.size() != expected.size()) return "sizes differ";
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (std::isnan(actual[i]) && std::isnan(expected[i])) continue;
    if (std::bit_cast<std::uint64_t>(actual[i]) != std::bit_cast<std::uint64_t>(expected[i]))
      return testing::PrintToString(actual[i]) + " for " + testing::PrintToString(expected[i]) + " at " +
             std::to_string(i);
  }
  return {};
}

/// The name of a kernel in the name of a test.
template <class Kernel>
std::string kernelName(const testing::TestParamInfo<const Kernel*>& kernel) {
  std::string name;
  for (const char* c = kernel.param->name; *c; ++c)
    if (*c != '-') name += *c;
  return name;
}

}  // namespace av::test
