#include "gfx/pixels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace av {

void fillRect(const Pixels& picture, const Rect& rect, Argb colour) noexcept {
  const int left = std::max(rect.left, 0);
  const int right = std::min(rect.right, picture.size.widthPx);
  const int bottom = std::min(rect.bottom, picture.size.heightPx);
  if (left >= right) return;
  for (int y = std::max(rect.top, 0); y < bottom; ++y) {
    const auto row = picture.all.begin() + static_cast<std::ptrdiff_t>(y) * picture.size.widthPx;
    std::fill(row + left, row + right, colour);
  }
}

void fillFromColumn(const Pixels& picture, const ColumnFill& fill, PreparedColumn column) noexcept {
  const int left = std::max(fill.rect.left, 0);
  const int right = std::min(fill.rect.right, picture.size.widthPx);
  if (left >= right) return;
  const std::int64_t columnTop = std::int64_t{fill.rect.top} - fill.firstRow;  // where its row 0 would lie
  const std::int64_t top = std::max({std::int64_t{fill.rect.top}, std::int64_t{0}, columnTop});
  const std::int64_t bottom = std::min({std::int64_t{fill.rect.bottom}, std::int64_t{picture.size.heightPx},
                                        columnTop + static_cast<std::int64_t>(column.size())});
  if (top >= bottom) return;
  // Both lie within the picture, whose pixels any pointer's width can count.
  for (auto y = static_cast<std::ptrdiff_t>(top); y < bottom; ++y) {
    const auto row = picture.all.begin() + y * picture.size.widthPx;
    std::fill(row + left, row + right, column[static_cast<std::size_t>(y - columnTop)]);
  }
}

}  // namespace av
