#pragma once

#include <cstdint>

namespace av::dsp {

/// How many bits an index of a transform of `length` points has: the position of the lowest set bit of `length`.
/// A length below 2 ends the process with "Error: FFT called with size %d" on the standard error stream.
std::uint32_t indexBits(std::uint32_t length) noexcept;

/// The complex discrete Fourier transform of N = `length` points: X[k] = Σ over n of x[n]·e^(+2πi·kn/N), not scaled;
/// with `inverse` e^(−2πi·kn/N), divided by N. The signs of the exponents are the other way round than usual, and the
/// power spectrum needs them so.
///
/// **A length that is no power of two, or below 2, ends the process** with "%d is not a power of two" on the standard
/// error stream and exit status 1.
///
/// `imaginaryIn` may be null: all zero. The outputs are distinct from the inputs and from each other; all hold N values.
///
/// The twiddle factors come from a recurrence, so errors grow with the length: per bin 5e-8 of the largest one at 512
/// points and 8e-6 at 65536 bound the power spectrum that is made of this transform. The bits of the result are those of
/// the operations in their textbook order.
///
/// These are the plain operations, with no tables that a caller would have to keep; FftPlan has them and is faster.
void FFT(std::uint32_t length, bool inverse, const double* realIn, const double* imaginaryIn, double* realOut,
         double* imaginaryOut) noexcept;

}  // namespace av::dsp
