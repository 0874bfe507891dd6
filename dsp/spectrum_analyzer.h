#pragma once

#include "dsp/aligned_doubles.h"
#include "dsp/analysis_windows.h"
#include "dsp/fft_kernel.h"
#include "dsp/spectrum_plan.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace av::dsp {

/// Turns blocks of N real samples into power spectra of N/2 bins, through one of eleven windows.
///
/// Not for use by two threads at once.
class CSpectrumAnalyzer {
 public:
  /// N = 512 and the Hann window. The spectra have the same bits with each of fftKernels(). Throws std::bad_alloc.
  explicit CSpectrumAnalyzer(const FftKernel& kernel = *fftKernels().front());

  std::int32_t length() const noexcept { return m_length; }

  /// Makes everything anew for blocks of `length` samples. Not checked: lengths that are no power of two, or below 4, are
  /// taken here and **end the process in ComputePowerSpectrum**. Negative lengths count as 0.
  /// Throws std::bad_alloc, or std::length_error where no vector can be so long, with nothing changed.
  void SetLength(std::int32_t length);

  std::uint32_t windowType() const noexcept { return m_windowType; }

  /// The current window's row of WindowTable.
  const AnalysisWindow& window() const noexcept { return WindowTable[m_windowType]; }

  /// Computes the coefficients of another window; a type above 10 is ignored. The mean square that spectra are divided by
  /// stays that of the window of the last SetLength, on purpose: the displayed levels depend on it.
  void SetWindowType(std::uint32_t type) noexcept;

  /// Stores the current window's parameter. False, with nothing changed, where the window has none or the value lies
  /// outside its bounds; a value that is no number is taken. It takes effect at the next SetWindowType or SetLength.
  bool SetWindowParam(double value) noexcept;

  /// The current window's parameter; 0 where it has none.
  double GetWindowParam() const noexcept { return m_parameters[m_windowType].value; }

  std::span<const double> coefficients() const noexcept { return m_coefficients; }

  /// What spectra are divided by; see SetWindowType.
  double WindowPower() const noexcept { return m_windowPower; }

  /// Multiplies N `samples` by the window, in place, and writes the power of their N/2 bins: the squared magnitude of the
  /// transform divided by the window's mean square, not by N. The first bin holds 0 Hz and half the sample rate together.
  /// **Ends the process where N/2 is no power of two from 2 on**; see FFT. Allocates nothing.
  void ComputePowerSpectrum(std::span<double> samples, std::span<double> power) noexcept;

 private:
  void fillCoefficients() noexcept;
  void computePlainly(std::span<double> samples, std::span<double> power) const noexcept;

  const FftKernel* m_kernel;
  std::int32_t m_length = 0;
  std::uint32_t m_windowType = 2;
  SpectrumPlan m_plan;
  AlignedDoubles m_coefficients;
  double m_windowPower = 0.0;
  std::array<WindowParameter, WindowTable.size()> m_parameters{};
};

}  // namespace av::dsp
