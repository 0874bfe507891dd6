#include "common/sample_scale.h"

#include <cmath>

namespace av {

double dynamicRangeDb(double fullScale) noexcept { return 20.0 * std::log10(fullScale); }

}  // namespace av
