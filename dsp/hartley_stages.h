#pragma once

#include "dsp/hartley_kernel.h"
#include "dsp/hartley_steps.h"

#include <cstddef>

namespace av::dsp {

/// As many neighbouring indices as a vector has lanes, from `k` on, of a block whose quarters are `quarter` elements.
template <int lanes>
AV_ALWAYS_INLINE HartleyGroup<Vector<lanes>> joinedGroup(const double* block, std::size_t quarter, std::size_t k,
                                                         const double* factors) noexcept {
  HartleyGroup<Vector<lanes>> group{};
  unrolled<4>([&]<int n>() AV_INLINED {
    group.index[n] = load<lanes>(block + n * quarter + k);
    group.mirror[n] = reversed<lanes>(load<lanes>(block + n * quarter + quarter - k - (lanes - 1)));
  });
  group.join(load<lanes>(factors), load<lanes>(factors + lanes), load<lanes>(factors + std::size_t{2} * lanes),
             load<lanes>(factors + std::size_t{3} * lanes));
  return group;
}

template <int lanes>
AV_ALWAYS_INLINE void storeGroup(const HartleyGroup<Vector<lanes>>& group, double* block, std::size_t quarter,
                                 std::size_t k) noexcept {
  unrolled<4>([&]<int n>() AV_INLINED {
    store<lanes>(block + n * quarter + k, group.index[n]);
    store<lanes>(block + n * quarter + quarter - k - (lanes - 1), reversed<lanes>(group.mirror[n]));
  });
}

/// The indices that are their own mirror images.
template <class Join>
AV_ALWAYS_INLINE void joinAlone(const double* from, double* to, std::size_t quarter, Join join) noexcept {
  double a = from[0];
  double b = from[quarter];
  double c = from[2 * quarter];
  double d = from[3 * quarter];
  join(a, b, c, d);
  to[0] = a;
  to[quarter] = b;
  to[2 * quarter] = c;
  to[3 * quarter] = d;
}

/// One stage in the blocks that start before `end`. `from` and `to` may be the same.
template <int lanes>
AV_ALWAYS_INLINE void hartleyStage(const HartleyStage& stage, std::size_t start, std::size_t end, const double* from,
                                   double* to) noexcept {
  constexpr std::size_t perVector = std::size_t{4} * lanes;
  const std::size_t quarter = stage.span / 4;
  const std::size_t eighth = stage.span / 8;
  for (; start < end; start += stage.span) {
    const double* const block = from + start;
    double* const joined = to + start;
    joinAlone(block, joined, quarter,
              [](double& a, double& b, double& c, double& d) AV_INLINED { joinFirst(a, b, c, d); });
    joinAlone(block + eighth, joined + eighth, quarter,
              [](double& a, double& b, double& c, double& d) AV_INLINED { joinMiddle(a, b, c, d); });
    // Indices 1 to eighth − 1 are one fewer than whole vectors. The last vector shares its first index with the one
    // before, and is read before anything is written.
    const double* factors = stage.factors;
    const auto last = joinedGroup<lanes>(block, quarter, eighth - lanes, factors);
    for (std::size_t k = 1; k + lanes <= eighth; k += lanes) {
      factors += perVector;
      storeGroup<lanes>(joinedGroup<lanes>(block, quarter, k, factors), joined, quarter, k);
    }
    storeGroup<lanes>(last, joined, quarter, eighth - lanes);
  }
}

/// So many neighbouring values stay in the first-level cache, beside the factors: the stages that do not reach beyond them
/// are done for the first of these parts, then for the next.
inline constexpr std::uint32_t cachedSpan = 2048;

/// All stages after the blocks. The last one writes to `values`.
template <int lanes>
AV_ALWAYS_INLINE void hartleyStages(const HartleySteps& steps, double* work, double* values) noexcept {
  const std::size_t length = steps.length;
  const auto run = [&](std::uint32_t stage, std::size_t start, std::size_t end) AV_INLINED {
    hartleyStage<lanes>(steps.stages[stage], start, end, work, stage + 1 == steps.stageCount ? values : work);
  };
  std::uint32_t outer = 0;
  while (outer < steps.stageCount && steps.stages[outer].span <= cachedSpan) ++outer;
  const std::size_t part = steps.stages[outer - 1].span;
  for (std::size_t start = 0; start < length; start += part) {
    const std::size_t end = start + part < length ? start + part : length;
    for (std::uint32_t stage = 0; stage < outer; ++stage) run(stage, start, end);
  }
  for (; outer < steps.stageCount; ++outer) run(outer, 0, length);
}

}  // namespace av::dsp
