#pragma once

#include "dsp/hartley_blocks.h"
#include "dsp/hartley_stages.h"

namespace av::dsp {

/// A kernel's functions; see HartleyKernel.
template <int lanes>
struct HartleyKernelBody {
  static void blocks(const HartleySteps& steps, const double* values, const double* window, double* to) noexcept {
    if (steps.blockSpan == 64) {
      hartleyBlocks<lanes, 64>(steps, values, window, to);
    } else {
      hartleyBlocks<lanes, 32>(steps, values, window, to);
    }
  }

  static void stages(const HartleySteps& steps, double* work, double* values) noexcept {
    hartleyStages<lanes>(steps, work, values);
  }

  static constexpr HartleyKernel kernel(const char* name) noexcept { return {name, lanes, blocks, stages}; }
};

}  // namespace av::dsp
