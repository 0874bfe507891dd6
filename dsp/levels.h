#pragma once

#include "dsp/level_kernel.h"

#include <span>

namespace av::dsp {

/// Level of a bin that holds nothing at all.
inline constexpr double emptyBinDb = -200.0;

/// Writes the level in dB of each bin k from 1 to N/2 − 1 over H[k], the Hartley transform of N points: with
/// re = (H[k] + H[N − k])/N and im = (H[k] − H[N − k])/N it is 20·log10(√(re² + im²) ÷ fullScale), and exactly −200 where
/// re² + im² is exactly 0. A sinusoid of amplitude A that falls on the bin gives 20·log10(A ÷ fullScale).
///
/// Element 0 and the elements from N/2 upward keep the transform's values: blocks that cannot be decoded are analysed again
/// from just this state. Levels have the same bits in every build and with each of levelKernels(); they are off by a few
/// units in the last place.
void hartleyBinsToLevels(std::span<double> hartley, double fullScale,
                         const LevelKernel& kernel = *levelKernels().front()) noexcept;

/// The same with a floor: levels below `floorDb` (−200 or more), and those that are no number, become it.
void hartleyBinsToLevels(std::span<double> hartley, double fullScale, double floorDb,
                         const LevelKernel& kernel = *levelKernels().front()) noexcept;

}  // namespace av::dsp
