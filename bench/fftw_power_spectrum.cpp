#include "bench/fftw_power_spectrum.h"

#include <cstddef>

namespace av::bench {
namespace {

[[gnu::target_clones("default", "avx2")]] void multiply(double* product, const double* a, const double* b,
                                                        std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) product[i] = a[i] * b[i];
}

[[gnu::target_clones("default", "avx2")]] void squaredMagnitudes(double* power, const double* complex, double scale,
                                                                 std::size_t count) {
  for (std::size_t k = 0; k < count; ++k)
    power[k] = (complex[2 * k] * complex[2 * k] + complex[2 * k + 1] * complex[2 * k + 1]) * scale;
}

}  // namespace

FftwPowerSpectrum::FftwPowerSpectrum(std::span<const double> window, double windowPower, unsigned effort)
    : m_window(window.begin(), window.end()),
      m_scale(1.0 / windowPower),
      m_input(fftw_alloc_real(window.size())),
      m_output(fftw_alloc_complex(window.size() / 2 + 1)),
      m_plan(fftw_plan_dft_r2c_1d(static_cast<int>(window.size()), m_input, m_output, effort | FFTW_DESTROY_INPUT)) {}

FftwPowerSpectrum::~FftwPowerSpectrum() {
  fftw_destroy_plan(m_plan);
  fftw_free(m_output);
  fftw_free(m_input);
}

void FftwPowerSpectrum::compute(std::span<const double> samples, std::span<double> power) noexcept {
  multiply(m_input, samples.data(), m_window.data(), m_window.size());
  fftw_execute(m_plan);
  const std::size_t bins = m_window.size() / 2;
  squaredMagnitudes(power.data(), &m_output[0][0], m_scale, bins);
  power[0] += m_output[bins][0] * m_output[bins][0] * m_scale;
}

}  // namespace av::bench
