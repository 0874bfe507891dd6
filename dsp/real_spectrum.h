#pragma once

#include <span>

namespace av::dsp {

/// The factors of realPowerSpectrum for M = 2·`real.size()`: place k has those of bin k, from 1 on; place 0 is left alone.
/// Both hold M/2 values.
void fillMirrorFactors(std::span<double> real, std::span<double> imaginary) noexcept;

/// The power spectrum of 2·M real samples from the M-point transform (`real`, `imaginary`) whose real input were the even
/// samples and whose imaginary input were the odd ones: power[k] = |X[k]|², k from 0 to M − 1, not scaled.
///
/// power[0] is the power at 0 Hz and the one at half the sample rate added together, on purpose: the displayed level of
/// the first band depends on it. M is a power of two from 2 on; all three hold M values.
void realPowerSpectrum(std::span<const double> real, std::span<const double> imaginary,
                       std::span<double> power) noexcept;

}  // namespace av::dsp
