#include "type2/analysis_length.h"

#include "dsp/radix4_hartley.h"

#include <algorithm>
#include <cmath>

namespace av::type2 {

int analysisLength(std::int32_t frames) noexcept {
  if (frames <= 0) return 0;
  const double counted = std::min(frames, dsp::Radix4Hartley::maxLength);
  return static_cast<int>(std::pow(4.0, std::log(counted) / std::log(4.0)));
}

}  // namespace av::type2
