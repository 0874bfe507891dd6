#pragma once

#include <cstdint>

namespace av::dsp {

/// One stage of a radix-2 transform by decimation in time, in place: joins the transforms of `half` points that stand in
/// each block of 2·`half` points. `length` is a multiple of 2·`half`, which is a power of two.
void fftStage(double* real, double* imaginary, std::uint32_t length, std::uint32_t half, bool inverse) noexcept;

}  // namespace av::dsp
