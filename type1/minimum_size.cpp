#include "type1/minimum_size.h"

#include <algorithm>

namespace av::type1 {

std::optional<Size> grownSize(Size size) noexcept {
  const Size grown{std::max(size.widthPx, minimumSize.widthPx), std::max(size.heightPx, minimumSize.heightPx)};
  if (grown == size) return std::nullopt;
  return grown;
}

}  // namespace av::type1
