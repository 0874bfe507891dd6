#pragma once

#include "picture/golden_stage.h"

#include <span>

namespace av::test {

/// A picture of the spectrum analyser that a human has looked at and accepted: tests/picture/golden/NAME.png.
struct GoldenAnalyser {
  const char* name;  ///< lower case, digits and hyphens
  SIZE sizePx;
  void (*prepare)(GoldenAnalyserStage& analyser);  ///< puts and blocks, with the analyser open
  int dpi = 96;                                    ///< of the display
};

/// Every accepted picture, in the order in which the gallery shows them.
std::span<const GoldenAnalyser> goldenAnalysers();

}  // namespace av::test
