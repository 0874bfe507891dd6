#pragma once

#include <fftw3.h>

#include <span>
#include <vector>

namespace av::bench {

/// The same power spectrum, but for its bits, by FFTW: window product, transform of real input, squared magnitudes and
/// normalisation. FFTW's own part runs as its planner decides; the loops around it use AVX2 where there is one and
/// multiply by a reciprocal, as nobody asks them for particular bits.
class FftwPowerSpectrum {
 public:
  /// `effort` is FFTW_ESTIMATE or FFTW_MEASURE.
  FftwPowerSpectrum(std::span<const double> window, double windowPower, unsigned effort);
  FftwPowerSpectrum(const FftwPowerSpectrum&) = delete;
  FftwPowerSpectrum& operator=(const FftwPowerSpectrum&) = delete;
  ~FftwPowerSpectrum();

  void compute(std::span<const double> samples, std::span<double> power) noexcept;

 private:
  std::vector<double> m_window;
  double m_scale;
  double* m_input;
  fftw_complex* m_output;
  fftw_plan m_plan;
};

}  // namespace av::bench
