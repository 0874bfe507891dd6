#pragma once

#include <span>

namespace av::dsp {

/// How alike two signals are: Σ a·b ÷ √(Σ a² · Σ b²), from −1 (opposite) over 0 (unrelated) to 1 (equal but for their
/// loudness). 0 where either is silent, and where the sums leave the range of double. Signals are taken as they are: a
/// constant part counts as signal. As many samples as the shorter one has.
double correlation(std::span<const double> a, std::span<const double> b) noexcept;

}  // namespace av::dsp
