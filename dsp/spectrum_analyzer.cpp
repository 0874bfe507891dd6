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
  SpectrumPlan plan(static_cast<std::uint32_t>(count / 2), *m_kernel);
  AlignedDoubles coefficients(count);
  m_plan = std::move(plan);
  m_coefficients.swap(coefficients);
  m_length = std::max(length, 0);
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
  if (m_plan.isUsable()) {
    m_plan.compute(samples.data(), m_coefficients.data(), m_windowPower, power.data());
  } else {
    computePlainly(samples, power);
  }
}

/// Lengths that kernels do not take: the short ones, and those that end the process.
void CSpectrumAnalyzer::computePlainly(std::span<double> samples, std::span<double> power) const noexcept {
  using Values = std::array<double, shortestKernelTransform>;
  Values even{};
  Values odd{};
  Values real{};
  Values imaginary{};
  const std::size_t points = m_coefficients.size() / 2;
  for (std::size_t i = 0; i < m_coefficients.size(); ++i) samples[i] *= m_coefficients[i];
  for (std::size_t k = 0; k < std::min(points, even.size()); ++k) {
    even[k] = samples[2 * k];
    odd[k] = samples[2 * k + 1];
  }
  FFT(static_cast<std::uint32_t>(points), false, even.data(), odd.data(), real.data(), imaginary.data());
  realPowerSpectrum(real, imaginary, power.first(points));
  for (double& bin : power.first(points)) bin /= m_windowPower;
}

void CSpectrumAnalyzer::fillCoefficients() noexcept {
  fillAnalysisWindow(m_windowType, m_parameters[kaiserWindow].value, m_coefficients);
}

}  // namespace av::dsp
