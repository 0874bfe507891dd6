#pragma once

#include <cstdint>
#include <span>

namespace av::dsp {

inline constexpr std::uint32_t mostTabledBits = 16;

/// The lowest `bits` bits (0 to 32) of `index` in reverse order.
constexpr std::uint32_t reverseBits(std::uint32_t index, std::uint32_t bits) noexcept {
  std::uint32_t reversed = 0;
  for (std::uint32_t bit = 0; bit < bits; ++bit, index >>= 1) reversed = reversed << 1 | (index & 1u);
  return reversed;
}

/// The bit reversal of all numbers of `bits` bits, or nothing where there is no table: above 16 bits, for 0 bits, and
/// while another thread builds the tables.
///
/// The first call in the process builds all tables, 512 KB that stay for its life. Any thread may call.
std::span<const std::uint32_t> bitReversalTable(std::uint32_t bits) noexcept;

}  // namespace av::dsp
