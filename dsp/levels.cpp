#include "dsp/levels.h"

#include "simd/decibels.h"

#include <limits>

namespace av::dsp {
namespace {

/// Beyond any depth that is decoded: a header may claim so many bits that a square of the full scale is infinite.
constexpr double largestSquaredScale = 0x1p40;

LevelScale levelScale(std::size_t length, double fullScale, double floorDb) noexcept {
  // ((a + b)/N)² + ((a − b)/N)² is (a² + b²)·2/N².
  const double n = static_cast<double>(length);
  const double gain = 2.0 / (n * n);
  if (fullScale <= largestSquaredScale) return {gain / (fullScale * fullScale), 0.0, emptyBinDb, floorDb};
  return {gain, -2.0 * decibels(fullScale), emptyBinDb, floorDb};
}

}  // namespace

void hartleyBinsToLevels(std::span<double> hartley, double fullScale, const LevelKernel& kernel) noexcept {
  hartleyBinsToLevels(hartley, fullScale, -std::numeric_limits<double>::infinity(), kernel);
}

void hartleyBinsToLevels(std::span<double> hartley, double fullScale, double floorDb,
                         const LevelKernel& kernel) noexcept {
  if (hartley.empty()) return;
  kernel.levels(hartley.data(), hartley.size(), levelScale(hartley.size(), fullScale, floorDb));
}

}  // namespace av::dsp
