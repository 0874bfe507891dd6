#include "dsp/fft.h"

#include "dsp/bit_reversal.h"
#include "dsp/end_process.h"
#include "dsp/fft_stage.h"

#include <bit>
#include <string>

namespace av::dsp {
namespace {

/// As a signed number, which lengths are elsewhere.
std::string decimal(std::uint32_t length) { return std::to_string(static_cast<std::int32_t>(length)); }

/// Copies the inputs to the places where the butterflies begin.
template <class Reverse>
void scatter(std::uint32_t length, const double* realIn, const double* imaginaryIn, double* realOut,
             double* imaginaryOut, Reverse reverse) noexcept {
  for (std::uint32_t i = 0; i < length; ++i) {
    const std::uint32_t j = reverse(i);
    realOut[j] = realIn[i];
    imaginaryOut[j] = imaginaryIn != nullptr ? imaginaryIn[i] : 0.0;
  }
}

}  // namespace

std::uint32_t indexBits(std::uint32_t length) noexcept {
  if (length < 2) endProcess("Error: FFT called with size " + decimal(length) + "\n");
  return static_cast<std::uint32_t>(std::countr_zero(length));
}

void FFT(std::uint32_t length, bool inverse, const double* realIn, const double* imaginaryIn, double* realOut,
         double* imaginaryOut) noexcept {
  if (length < 2 || !std::has_single_bit(length)) endProcess(decimal(length) + " is not a power of two\n");

  const std::uint32_t bits = indexBits(length);
  const auto table = bitReversalTable(bits);
  if (!table.empty()) {
    scatter(length, realIn, imaginaryIn, realOut, imaginaryOut, [table](std::uint32_t i) { return table[i]; });
  } else {
    scatter(length, realIn, imaginaryIn, realOut, imaginaryOut,
            [bits](std::uint32_t i) { return reverseBits(i, bits); });
  }
  for (std::uint32_t bit = 1; bit <= bits; ++bit)
    fftStage(realOut, imaginaryOut, length, std::uint32_t{1} << (bit - 1), inverse);

  if (!inverse) return;
  for (std::uint32_t i = 0; i < length; ++i) {
    realOut[i] /= length;
    imaginaryOut[i] /= length;
  }
}

}  // namespace av::dsp
