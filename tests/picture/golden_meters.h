#pragma once

#include "picture/golden_stage.h"

#include <span>

namespace av::test {

/// A picture of the level meter that a human has looked at and accepted: tests/picture/golden/NAME.png.
struct GoldenMeter {
  const char* name;  ///< lower case, digits and hyphens
  SIZE sizePx;
  void (*prepare)(GoldenMeterStage& meter);  ///< puts and blocks, with the meter open
  int dpi = 96;                              ///< of the display
};

/// Every accepted picture, in the order in which the gallery shows them.
std::span<const GoldenMeter> goldenMeters();

}  // namespace av::test
