#pragma once

#include "dsp/hartley_kernel.h"
#include "dsp/hartley_steps.h"

#include <cstddef>

namespace av::dsp {

/// One stage in the blocks of a vector's lanes, element j of which are `x[j]`.
template <int span, class V>
AV_ALWAYS_INLINE void joinBlock(V* x, const HartleyTwiddle* twiddles) noexcept {
  constexpr std::size_t quarter = span / 4;
  constexpr std::size_t eighth = span / 8;
  joinFirst(x[0], x[quarter], x[2 * quarter], x[3 * quarter]);
  if constexpr (eighth > 0) {
    V* const middle = x + eighth;
    joinMiddle(middle[0], middle[quarter], middle[2 * quarter], middle[3 * quarter]);
  }
  for (std::size_t k = 1; k < eighth; ++k) {
    HartleyGroup<V> group{};
    unrolled<4>([&]<int n>() AV_INLINED {
      group.index[n] = x[n * quarter + k];
      group.mirror[n] = x[n * quarter + quarter - k];
    });
    const HartleyTwiddle& t = twiddles[k - 1];
    group.join(t.cos1, t.sin1, t.cos2, t.sin2);
    unrolled<4>([&]<int n>() AV_INLINED {
      x[n * quarter + k] = group.index[n];
      x[n * quarter + quarter - k] = group.mirror[n];
    });
  }
}

/// The first stages of a block of `span` elements in each lane: `read(j)` gives its elements j in bit-reversed order.
template <int span, class V, class Read>
AV_ALWAYS_INLINE void joinFromTheStart(V* x, const HartleyTwiddle* twiddles, Read read) noexcept {
  constexpr int part = span / 4;  // 16 or 8 elements: one or two stages in registers
  for (int start = 0; start < span; start += part) {
    V values[part];
    unrolled<part>([&]<int j>() AV_INLINED { values[j] = read(start + j); });
    if constexpr (part == 16) {
      unrolled<4>([&]<int n>() AV_INLINED { joinBlock<4>(&values[4 * n], twiddles); });
    } else {
      unrolled<4>([&]<int n>() AV_INLINED { sumAndDifference(values[2 * n], values[2 * n + 1]); });
    }
    joinBlock<part>(&values[0], twiddles);
    unrolled<part>([&]<int j>() AV_INLINED { x[start + j] = values[j]; });
  }
  joinBlock<span>(x, twiddles + twiddleCount(part));
}

/// Reorders the values, times the window if there is one, into `to` and does the stages up to `span` there. As many blocks as a vector has lanes are done side
/// by side, one a lane, so that no stage has to rearrange lanes; a last exchange makes them rows.
template <int lanes, int span>
AV_ALWAYS_INLINE void hartleyBlocks(const HartleySteps& steps, const double* values, const double* window,
                                    // NOLINTNEXTLINE(readability-non-const-parameter): written where templates hide it
                                    double* to) noexcept {
  using V = Vector<lanes>;
  const std::uint16_t* const order = steps.order;
  const std::size_t blocks = steps.length / span;
  for (std::size_t next = 0; next < blocks; next += lanes) {
    // The last vector goes back over blocks that have been done: the values do not change.
    const std::size_t first = next + lanes <= blocks ? next : blocks - lanes;
    V x[span];
    // Element j of the blocks whose numbers are the reversed bits of first, first + 1, ... stand side by side.
    if (steps.powerOfTwo && window != nullptr) {
      joinFromTheStart<span>(&x[0], steps.blockTwiddles, [&](int j) AV_INLINED {
        return load<lanes>(values + order[j] + first) * load<lanes>(window + order[j] + first);
      });
    } else if (steps.powerOfTwo) {
      joinFromTheStart<span>(&x[0], steps.blockTwiddles,
                             [&](int j) AV_INLINED { return load<lanes>(values + order[j] + first); });
    } else {
      joinFromTheStart<span>(&x[0], steps.blockTwiddles, [&](int j) AV_INLINED {
        V value{};
        unrolled<lanes>([&]<int lane>() AV_INLINED {
          value[lane] = values[order[(first + lane) * span + static_cast<std::size_t>(j)]];
        });
        return value;
      });
    }
    double* rows[lanes];
    unrolled<lanes>([&]<int lane>() AV_INLINED {
      const std::size_t block = steps.powerOfTwo ? order[(first + lane) * span] : first + lane;
      rows[lane] = to + block * span;
    });
    for (int j = 0; j < span; j += lanes) {
      V square[lanes];
      unrolled<lanes>([&]<int n>() AV_INLINED { square[n] = x[j + n]; });
      transpose<lanes>(&square[0]);
      unrolled<lanes>([&]<int lane>() AV_INLINED { store<lanes>(rows[lane] + j, square[lane]); });
    }
  }
}

}  // namespace av::dsp
