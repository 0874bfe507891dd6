#pragma once

#include <cstddef>
#include <span>

namespace av::dsp {

/// Level of a bin that holds nothing at all.
inline constexpr double emptyBinDb = -200.0;

/// Power of bin k of a Hartley transform H of N points, k from 1 to N/2 − 1: re² + im² with
/// re = (H[k] + H[N − k])/N and im = (H[k] − H[N − k])/N. A sinusoid of amplitude A that falls on the bin gives A².
inline double hartleyBinPower(std::span<const double> hartley, std::size_t k) noexcept {
  const std::size_t length = hartley.size();
  const double n = static_cast<double>(length);
  const double re = (hartley[k] + hartley[length - k]) / n;
  const double im = (hartley[k] - hartley[length - k]) / n;
  return re * re + im * im;
}

/// 20·log10(√power ÷ fullScale) in dB; exactly −200 where the power is exactly 0.
double powerToLevelDb(double power, double fullScale) noexcept;

/// Writes the level in dB of each bin from 1 to N/2 − 1 over H[k]. Element 0 and the elements from N/2 upward keep the
/// transform's values: blocks that cannot be decoded are analysed again from just this state.
void hartleyBinsToLevels(std::span<double> hartley, double fullScale) noexcept;

/// The same with a floor: levels below `floorDb` (−200 or more), and those that are no number, become it.
void hartleyBinsToLevels(std::span<double> hartley, double fullScale, double floorDb) noexcept;

}  // namespace av::dsp
