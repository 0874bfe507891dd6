#pragma once

#include "dsp/aligned_doubles.h"
#include "dsp/hartley_kernel.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace av::dsp {

/// The tables and the working memory of one Hartley transform: an order of the elements, an optional stage of span 2, and
/// radix-4 stages. Its bits are those of radix4HartleyStage, with any kernel.
class HartleyPlan {
 public:
  /// Which transform it is.
  struct Recipe {
    int length;              ///< 0 to the capacity
    bool startsWithSpanTwo;  ///< so that the radix-4 stages have the spans 8, 32, 128, ... and not 4, 16, 64, ...
    /// The factors of index k in a stage of span `span`.
    HartleyTwiddle (*twiddle)(int k, int length, int span);
  };

  /// Has room for lengths up to `capacity`, at most 65536. `kernels`: those that are chosen from, the fastest one first.
  /// Throws std::bad_alloc.
  explicit HartleyPlan(int capacity, std::span<const HartleyKernel* const> kernels = hartleyKernels());

  /// Makes the tables of another transform. Allocates nothing.
  void prepare(const Recipe& recipe) noexcept;

  /// Transforms the first `length` of `values` in place, multiplied by `window` if that is not empty; allocates nothing. The
  /// last block of a stage may reach beyond the
  /// length, to reach(): elements there take part as they are and come out changed.
  void transform(double* values, std::span<const double> window = {}) noexcept;

  /// The length, rounded up to whole blocks of the largest stage.
  std::size_t reach() const noexcept { return m_reach; }

 private:
  void chooseKernel() noexcept;
  void appendFactors(int span) noexcept;
  void plainStages(std::size_t start) noexcept;

  std::span<const HartleyKernel* const> m_kernels;
  Recipe m_recipe{};
  const HartleyKernel* m_kernel = nullptr;  ///< null for lengths that no kernel takes: all their spans are small
  std::size_t m_reach = 0;
  std::vector<std::uint16_t> m_order;
  std::vector<HartleyTwiddle> m_blockTwiddles;
  AlignedDoubles m_factors;
  std::vector<HartleyStage> m_stages;
  AlignedDoubles m_work;
  HartleySteps m_steps{};
};

}  // namespace av::dsp
