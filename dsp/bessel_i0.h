#pragma once

namespace av::dsp {

/// I0(x), the modified Bessel function of the first kind of order zero, for any x; NaN for NaN.
///
/// Two Chebyshev series, below and above |x| = 8. The coefficients and their order are those of the Cephes Math Library
/// (S. L. Moshier, "Methods and Programs for Mathematical Functions", 1989). For |x| up to 30 within 8e-16 of the value
/// (relative), which the tests hold against another series in wider precision.
double besselI0(double x) noexcept;

}  // namespace av::dsp
