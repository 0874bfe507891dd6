#pragma once

#include <cstdint>
#include <span>

/// What the fast Hartley transforms of this library are made of: R. N. Bracewell, "The fast Hartley transform",
/// Proc. IEEE 72 (1984), with two radix-2 steps fused into one of radix 4.
namespace av::dsp {

/// Writes which element goes to each place when `order.size()` elements (0 to 65536) are brought into bit-reversed order.
/// For a length that is no power of two the same carry loop runs over the bits of length / 2, exchange by exchange; it
/// ends when no bit is left. What comes out then is an odd order, but always the same one.
void fillBitReversedOrder(std::span<std::uint16_t> order) noexcept;

/// Rotation factors of index k in a stage.
struct HartleyTwiddle {
  double cos1, sin1;  ///< of 2πk/span
  double cos2, sin2;  ///< of twice that angle
};

/// Joins four transforms of a quarter of `span` (of the samples 4n, 4n + 2, 4n + 1, 4n + 3) into one, in every block of
/// `span` elements whose start lies before `length`; the last block may reach beyond it.
/// `twiddles`: those of k = 1 to span/8 − 1; none for spans of 4 and 8.
void radix4HartleyStage(double* values, int length, int span, const HartleyTwiddle* twiddles) noexcept;

/// How many twiddles a stage reads.
constexpr int twiddleCount(int span) noexcept { return span > 8 ? span / 8 - 1 : 0; }

}  // namespace av::dsp
