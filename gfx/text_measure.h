#pragma once

#include "gfx/geometry.h"

#include <string_view>

namespace av {

/// No text counts as larger, and no line as higher: more than any picture has room for, and so little that sums of such
/// sizes stay within int. Fonts may be of any size.
inline constexpr int largestTextPx = 1000000;

/// How large texts come out in the font that will draw them. The platform implements it; tests use a made-up font.
class TextMeasure {
 public:
  /// Width and height in pixels of an ASCII text on one line, rounded up, side bearings included; at most largestTextPx.
  virtual Size measure(std::string_view text) const = 0;

 protected:
  TextMeasure() = default;
  TextMeasure(const TextMeasure&) = default;
  TextMeasure& operator=(const TextMeasure&) = default;
  ~TextMeasure() = default;
};

}  // namespace av
