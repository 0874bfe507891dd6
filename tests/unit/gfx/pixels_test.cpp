#include "gfx/pixels.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

namespace av {
namespace {

constexpr Argb ground = 0xFF0A0B0C;

struct Picture {
  Size size;
  std::vector<Argb> all = std::vector<Argb>(static_cast<std::size_t>(size.widthPx * size.heightPx), ground);

  Pixels pixels() { return {all, size}; }
};

TEST(FillRect, ColoursExactlyThePixelsInsideRectangleAndPicture) {
  std::mt19937 random(20261121);
  std::uniform_int_distribution<int> coordinate(-4, 14);
  for (int round = 0; round < 3000; ++round) {
    Picture picture{{9, 7}};
    const Rect rect{coordinate(random), coordinate(random), coordinate(random), coordinate(random)};
    fillRect(picture.pixels(), rect, 0xFF112233);
    for (int y = 0; y < 7; ++y)
      for (int x = 0; x < 9; ++x) {
        const bool inside = x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
        ASSERT_EQ(inside ? 0xFF112233 : ground, picture.all[static_cast<std::size_t>(y * 9 + x)]) << x << ", " << y;
      }
  }
}

TEST(FillFromColumn, TakesEachRowsColourFromTheColumnAndLeavesWhatLiesBeyondIt) {
  std::mt19937 random(4711);
  std::uniform_int_distribution<int> coordinate(-4, 14);
  const std::vector<Argb> column{0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004, 0xFF000005};
  for (int round = 0; round < 3000; ++round) {
    Picture picture{{9, 7}};
    const ColumnFill fill{
        0, coordinate(random), {coordinate(random), coordinate(random), coordinate(random), coordinate(random)}};
    fillFromColumn(picture.pixels(), fill, column);
    for (int y = 0; y < 7; ++y)
      for (int x = 0; x < 9; ++x) {
        const int row = fill.firstRow + y - fill.rect.top;
        const bool inside = x >= fill.rect.left && x < fill.rect.right && y >= fill.rect.top && y < fill.rect.bottom &&
                            row >= 0 && row < 5;
        ASSERT_EQ(inside ? 0xFF000001 + static_cast<Argb>(row) : ground,
                  picture.all[static_cast<std::size_t>(y * 9 + x)])
            << x << ", " << y;
      }
  }
}

TEST(FillFromColumn, CoordinatesAtTheEndsOfTheirRangeDoNoHarm) {
  const std::vector<Argb> column(3, 0xFF123456);
  for (const int a : {INT_MIN, -1, 0, 1, INT_MAX})
    for (const int b : {INT_MIN, -1, 0, 1, INT_MAX})
      for (const int first : {INT_MIN, -1, 0, 2, INT_MAX}) {
        Picture picture{{4, 4}};
        fillFromColumn(picture.pixels(), {0, first, {a, b, b, a}}, column);
        fillFromColumn(picture.pixels(), {0, first, {a, a, b, b}}, column);
        fillRect(picture.pixels(), {a, b, b, a}, 0xFF123456);
      }
}

}  // namespace
}  // namespace av
