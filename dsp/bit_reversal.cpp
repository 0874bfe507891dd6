#include "dsp/bit_reversal.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace av::dsp {
namespace {

enum class Tables { none, beingBuilt, built };

// Static storage: nothing to free when the library is unloaded, and no guard to take when it is used.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): see above
constinit std::atomic<Tables> state{Tables::none};
constinit std::array<std::uint32_t, (std::size_t{2} << mostTabledBits) - 2> storage{};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

/// Table k has 2^k entries; those of the smaller ones come before it.
std::span<std::uint32_t> tableOf(std::uint32_t bits) noexcept {
  const std::size_t size = std::size_t{1} << bits;
  return std::span(storage).subspan(size - 2, size);
}

void build() noexcept {
  for (std::uint32_t bits = 1; bits <= mostTabledBits; ++bits) {
    std::uint32_t index = 0;
    for (std::uint32_t& entry : tableOf(bits)) entry = reverseBits(index++, bits);
  }
}

/// Whether the tables can be read. A thread that finds another one building them does without rather than wait.
bool available() noexcept {
  Tables seen = state.load(std::memory_order_acquire);
  if (seen == Tables::built) return true;
  if (seen == Tables::beingBuilt || !state.compare_exchange_strong(seen, Tables::beingBuilt)) return false;
  build();
  state.store(Tables::built, std::memory_order_release);
  return true;
}

}  // namespace

std::span<const std::uint32_t> bitReversalTable(std::uint32_t bits) noexcept {
  if (bits < 1 || bits > mostTabledBits || !available()) return {};
  return tableOf(bits);
}

}  // namespace av::dsp
