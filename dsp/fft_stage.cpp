#include "dsp/fft_stage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace av::dsp {
namespace {

/// The twiddle factors of one stage in their order, each from the two before it. With the recurrence started once a stage
/// rather than once a block the factors, and so the results, keep their bits.
class Twiddles {
 public:
  explicit Twiddles(double delta) noexcept
      : m_imaginaryBefore(std::sin(-2.0 * delta)),
        m_imaginary(std::sin(-delta)),
        m_realBefore(std::cos(-2.0 * delta)),
        m_real(std::cos(-delta)),
        m_step(2.0 * m_real) {}

  void next(double& real, double& imaginary) noexcept {
    real = m_step * m_real - m_realBefore;
    m_realBefore = m_real;
    m_real = real;
    imaginary = m_step * m_imaginary - m_imaginaryBefore;
    m_imaginaryBefore = m_imaginary;
    m_imaginary = imaginary;
  }

 private:
  double m_imaginaryBefore;
  double m_imaginary;
  double m_realBefore;
  double m_real;
  double m_step;
};

/// So many factors are kept at a time: they stay in the first-level cache and need no memory of their own.
constexpr std::uint32_t batchSize = 256;

struct Batch {
  std::array<double, batchSize> real;
  std::array<double, batchSize> imaginary;
};

/// `count` butterflies between neighbouring places, j of `real` with k = j + `half`.
void butterflies(double* real, double* imaginary, std::uint32_t half, std::uint32_t count,
                 const Batch& twiddles) noexcept {
  for (std::uint32_t j = 0; j < count; ++j) {
    const std::uint32_t k = j + half;
    const double tr = twiddles.real[j] * real[k] - twiddles.imaginary[j] * imaginary[k];
    const double ti = twiddles.real[j] * imaginary[k] + twiddles.imaginary[j] * real[k];
    real[k] = real[j] - tr;
    imaginary[k] = imaginary[j] - ti;
    real[j] += tr;
    imaginary[j] += ti;
  }
}

}  // namespace

void fftStage(double* real, double* imaginary, std::uint32_t length, std::uint32_t half, bool inverse) noexcept {
  const double turn = inverse ? -2.0 * std::numbers::pi : 2.0 * std::numbers::pi;
  const std::uint32_t block = 2 * half;
  Twiddles twiddles(turn / block);
  Batch batch;
  for (std::uint32_t first = 0; first < half; first += batchSize) {
    const std::uint32_t count = std::min(batchSize, half - first);
    for (std::uint32_t j = 0; j < count; ++j) twiddles.next(batch.real[j], batch.imaginary[j]);
    for (std::uint32_t start = first; start < length; start += block)
      butterflies(real + start, imaginary + start, half, count, batch);
  }
}

}  // namespace av::dsp
