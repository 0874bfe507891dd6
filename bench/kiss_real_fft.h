#pragma once

#include <kissfft/kiss_fftr.h>

#include <span>
#include <vector>

namespace av::bench {

/// KissFFT's transform of real input, in single precision, which is how Debian builds it.
class KissRealFft {
 public:
  explicit KissRealFft(std::size_t length)
      : m_plan(kiss_fftr_alloc(static_cast<int>(length), 0, nullptr, nullptr)),
        m_input(length),
        m_output(length / 2 + 1) {}
  KissRealFft(const KissRealFft&) = delete;
  KissRealFft& operator=(const KissRealFft&) = delete;
  ~KissRealFft() { kiss_fftr_free(m_plan); }

  std::span<float> input() noexcept { return m_input; }
  std::span<const kiss_fft_cpx> output() const noexcept { return m_output; }
  void transform() noexcept { kiss_fftr(m_plan, m_input.data(), m_output.data()); }

 private:
  kiss_fftr_cfg m_plan;
  std::vector<float> m_input;
  std::vector<kiss_fft_cpx> m_output;
};

}  // namespace av::bench
