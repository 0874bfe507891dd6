#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace av::bench {

/// The power spectrum by its plain operations, one after the other: what faster versions are measured against.
///
/// Bit reversal comes from a table and nothing is allocated for a block; the twiddle factors come from the recurrence,
/// begun anew in each block of each stage.
class LiteralPowerSpectrum {
 public:
  LiteralPowerSpectrum(std::span<const double> window, double windowPower);

  void compute(std::span<double> samples, std::span<double> power) noexcept;

 private:
  void transform() noexcept;

  std::vector<double> m_window;
  double m_windowPower;
  std::vector<double> m_even;
  std::vector<double> m_odd;
  std::vector<double> m_real;
  std::vector<double> m_imaginary;
  std::vector<std::uint32_t> m_reversed;
};

}  // namespace av::bench
