#include "dsp/fft_stage.h"

#include "dsp/fft_factors.h"

#include <algorithm>
#include <array>

namespace av::dsp {
namespace {

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
  const std::uint32_t block = 2 * half;
  FftFactors factors(half, inverse);
  Batch batch;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled as far as it is read
  for (std::uint32_t first = 0; first < half; first += batchSize) {
    const std::uint32_t count = std::min(batchSize, half - first);
    for (std::uint32_t j = 0; j < count; ++j) factors.next(batch.real[j], batch.imaginary[j]);
    for (std::uint32_t start = first; start < length; start += block)
      butterflies(real + start, imaginary + start, half, count, batch);
  }
}

}  // namespace av::dsp
