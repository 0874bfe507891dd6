#pragma once

#include "picture/golden_stage.h"

#include <span>

namespace av::test {

/// A picture that a human has looked at and accepted: tests/picture/golden/NAME.png.
struct GoldenView {
  const char* name;  ///< lower case, digits and hyphens
  SIZE sizePx;
  void (*prepare)(GoldenStage& view);  ///< puts, blocks and ticks, with the view open
  int dpi = 96;                        ///< of the display
};

/// Every accepted picture, in the order in which the gallery shows them.
std::span<const GoldenView> goldenViews();

}  // namespace av::test
