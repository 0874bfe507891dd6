#include "dsp/spectrum_analyzer.h"

#include "dsp/fft.h"
#include "dsp/real_spectrum.h"

#include <algorithm>
#include <array>
#include <utility>

namespace av::dsp {

CSpectrumAnalyzer::CSpectrumAnalyzer(const FftKernel& kernel) : m_kernel(&kernel) {
  m_parameters[kaiserWindow] = kaiserDefaults;
  SetLength(512);
}

void CSpectrumAnalyzer::SetLength(std::int32_t length) {
  const auto count = static_cast<std::size_t>(std::max(length, 0));
  const std::size_t points = count / 2;
  FftPlan plan(static_cast<std::uint32_t>(points), false, *m_kernel);
  AlignedDoubles real(points);
  AlignedDoubles imaginary(points);
  AlignedDoubles mirrorReal(points / 2);
  AlignedDoubles mirrorImaginary(points / 2);
  AlignedDoubles coefficients(count);
  m_plan = std::move(plan);
  m_real.swap(real);
  m_imaginary.swap(imaginary);
  m_mirrorReal.swap(mirrorReal);
  m_mirrorImaginary.swap(mirrorImaginary);
  m_coefficients.swap(coefficients);
  m_length = std::max(length, 0);
  fillMirrorFactors(m_mirrorReal, m_mirrorImaginary);
  fillCoefficients();
  m_windowPower = windowPower(m_coefficients);
}

void CSpectrumAnalyzer::SetWindowType(std::uint32_t type) noexcept {
  if (type >= WindowTable.size()) return;
  m_windowType = type;
  fillCoefficients();
}

bool CSpectrumAnalyzer::SetWindowParam(double value) noexcept {
  WindowParameter& parameter = m_parameters[m_windowType];
  if (!window().hasParameter || value > parameter.maximum || value < parameter.minimum) return false;
  parameter.value = value;
  return true;
}

void CSpectrumAnalyzer::ComputePowerSpectrum(std::span<double> samples, std::span<double> power) noexcept {
  const FftKernel* const kernel = m_plan.kernel();
  if (kernel == nullptr) {
    computeShort(samples, power);
    return;
  }
  const FftSteps& steps = m_plan.steps();
  kernel->transformWindowed(steps, samples.data(), m_coefficients.data(), m_real.data(), m_imaginary.data());
  kernel->power(
      {steps.points, m_real.data(), m_imaginary.data(), m_mirrorReal.data(), m_mirrorImaginary.data(), m_windowPower},
      power.data());
}

/// Where kernels take no transforms; and the end of the process where nobody does.
void CSpectrumAnalyzer::computeShort(std::span<double> samples, std::span<double> power) noexcept {
  std::array<double, shortestKernelTransform> even{};
  std::array<double, shortestKernelTransform> odd{};
  const std::size_t points = m_real.size();
  for (std::size_t i = 0; i < m_coefficients.size(); ++i) samples[i] *= m_coefficients[i];
  for (std::size_t k = 0; k < std::min(points, even.size()); ++k) {
    even[k] = samples[2 * k];
    odd[k] = samples[2 * k + 1];
  }
  FFT(static_cast<std::uint32_t>(points), false, even.data(), odd.data(), m_real.data(), m_imaginary.data());
  realPowerSpectrum(m_real, m_imaginary, power.first(points));
  for (double& bin : power.first(points)) bin /= m_windowPower;
}

void CSpectrumAnalyzer::fillCoefficients() noexcept {
  fillAnalysisWindow(m_windowType, m_parameters[kaiserWindow].value, m_coefficients);
}

}  // namespace av::dsp
