#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace av::bench {

/// The contender that all others are compared with.
inline constexpr const char* ours = "ours";

/// Lets `contender` take part in the contest `name` at `size` by calling `run` again and again. tools/bench knows which
/// ratios are aimed at.
void add(const std::string& name, const std::string& contender, std::size_t size, std::function<void()> run);

/// The same noise every time, within the range of 16-bit samples.
std::vector<double> noise(std::size_t count);

/// Ends the program where a contender computes something else: it would win unfairly.
void require(bool agrees, const std::string& what);

/// Whether the figures are the same but for rounding: within `tolerance` of the largest expected one.
bool isNear(std::span<const double> actual, std::span<const double> expected, double tolerance);

/// Whether they are the same to the bit.
bool sameBits(std::span<const double> actual, std::span<const double> expected);

void addPowerSpectra();
void addHartley();
void addDecoding();
void addBlocks();
void addFrames();
void addGrowth();

}  // namespace av::bench
