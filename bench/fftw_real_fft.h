#pragma once

#include <fftw3.h>

#include <cstddef>
#include <span>

namespace av::bench {

/// FFTW's transform of real input, which comes out as the bins 0 to N/2.
class FftwRealFft {
 public:
  /// `effort` is FFTW_ESTIMATE or FFTW_MEASURE.
  FftwRealFft(std::size_t length, unsigned effort)
      : m_length(length),
        m_input(fftw_alloc_real(length)),
        m_output(fftw_alloc_complex(length / 2 + 1)),
        m_plan(fftw_plan_dft_r2c_1d(static_cast<int>(length), m_input, m_output, effort | FFTW_DESTROY_INPUT)) {}
  FftwRealFft(const FftwRealFft&) = delete;
  FftwRealFft& operator=(const FftwRealFft&) = delete;
  ~FftwRealFft() {
    fftw_destroy_plan(m_plan);
    fftw_free(m_output);
    fftw_free(m_input);
  }

  std::span<double> input() noexcept { return {m_input, m_length}; }
  std::span<const fftw_complex> output() const noexcept { return {m_output, m_length / 2 + 1}; }
  void transform() noexcept { fftw_execute(m_plan); }

 private:
  std::size_t m_length;
  double* m_input;
  fftw_complex* m_output;
  fftw_plan m_plan;
};

}  // namespace av::bench
