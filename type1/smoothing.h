#pragma once

#include <span>

namespace av::type1 {

/// One smoothing step of the first half of a channel's arrays: a display value below its analysis value rises by half the
/// gap; one that is above it (then) falls by a quarter of the gap. Returns whether every element has converged, that is
/// whether display and analysis agree once each is truncated toward zero.
/// A display value that is not finite takes the analysis value at once; halving such a gap would never end.
/// Both arrays hold N elements; the first N/2 take part.
bool smoothToward(std::span<const double> analysis, std::span<double> display) noexcept;

}  // namespace av::type1
