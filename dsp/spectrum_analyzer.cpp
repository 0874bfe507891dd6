#include "dsp/spectrum_analyzer.h"

#include "dsp/fft.h"
#include "dsp/real_spectrum.h"

#include <algorithm>

namespace av::dsp {

CSpectrumAnalyzer::CSpectrumAnalyzer() {
  m_parameters[kaiserWindow] = kaiserDefaults;
  SetLength(512);
}

void CSpectrumAnalyzer::SetLength(std::int32_t length) {
  const auto count = static_cast<std::size_t>(std::max(length, 0));
  std::vector<double> even(count / 2);
  std::vector<double> odd(count / 2);
  std::vector<double> imaginary(count / 2);
  std::vector<double> real(count / 2);
  std::vector<double> coefficients(count);
  m_even.swap(even);
  m_odd.swap(odd);
  m_imaginary.swap(imaginary);
  m_real.swap(real);
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
  const std::size_t points = m_even.size();
  for (std::size_t i = 0; i < m_coefficients.size(); ++i) samples[i] *= m_coefficients[i];
  for (std::size_t k = 0; k < points; ++k) {
    m_even[k] = samples[2 * k];
    m_odd[k] = samples[2 * k + 1];
  }
  FFT(static_cast<std::uint32_t>(points), false, m_even.data(), m_odd.data(), m_real.data(), m_imaginary.data());
  realPowerSpectrum(m_real, m_imaginary, power.first(points));
  for (double& bin : power.first(points)) bin /= m_windowPower;
}

void CSpectrumAnalyzer::fillCoefficients() noexcept {
  fillAnalysisWindow(m_windowType, m_parameters[kaiserWindow].value, m_coefficients);
}

}  // namespace av::dsp
