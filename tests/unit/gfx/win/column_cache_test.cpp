#include "gfx/win/column_cache.h"

#include "gfx/win/gdiplus_token.h"
#include "gfx/win/prepared_image.h"
#include "type1/win/view_painter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace av {
namespace {

constexpr Argb white = argbFromRgb(255, 255, 255);
constexpr Argb gridGrey = argbFromRgb(169, 169, 169);

/// The platform, or what a test puts in its place, counted.
class CountingSource final : public ColumnSource {
 public:
  using Draw = std::function<bool(OffscreenSurface&, const Rect&)>;
  explicit CountingSource(Draw draw) : m_draw(std::move(draw)) {}
  explicit CountingSource(const PreparedImage& image)
      : m_draw([&image](OffscreenSurface& surface, const Rect& column) { return image.drawColumn(surface, column); }) {}

  bool drawColumn(OffscreenSurface& surface, const Rect& column) const noexcept override {
    ++m_calls;
    return m_draw(surface, column);
  }

  /// Calls since this was asked last.
  int calls() { return std::exchange(m_calls, 0); }

 private:
  Draw m_draw;
  mutable int m_calls = 0;
};

Argb& pixelOf(OffscreenSurface& surface, int x, int y) {
  return surface.pixels()[static_cast<std::size_t>(y * surface.size().widthPx + x)];
}

/// Two pictures of one size: one drawn through the cache, one by the platform alone.
class ColumnCacheTest : public testing::Test {
 protected:
  void open(Size size) {
    ASSERT_TRUE(surface.resize(size));
    ASSERT_TRUE(reference.resize(size));
    fill([](int, int) { return opaqueBlack; });
  }

  template <class Colour>
  void fill(Colour colour) {
    const auto pixels = surface.pixels();
    const auto width = static_cast<std::size_t>(surface.size().widthPx);
    for (std::size_t i = 0; i < pixels.size(); ++i)
      pixels[i] = colour(static_cast<int>(i % width), static_cast<int>(i / width));
    std::ranges::copy(pixels, reference.pixels().begin());
  }

  /// Draws the column in both pictures, in the reference without the cache.
  void draw(const ColumnSource& source, const ColumnSource& platform, int x, int top, int bottom) {
    ASSERT_TRUE(platform.drawColumn(reference, {x, top, x + 1, bottom}));
    cache.begin(surface, source, bottom);
    ASSERT_TRUE(cache.draw(x, top));
  }

  /// A frame of columns with these tops, from x = 0 on.
  void drawFrame(const CountingSource& source, const std::vector<int>& tops, int bottom,
                 Argb background = opaqueBlack) {
    surface.clear(background);
    cache.begin(surface, source, bottom);
    for (std::size_t i = 0; i < tops.size(); ++i) ASSERT_TRUE(cache.draw(static_cast<int>(i), tops[i]));
  }

  std::string differences() {
    const auto ours = surface.pixels();
    const auto theirs = reference.pixels();
    const auto [our, their] = std::ranges::mismatch(ours, theirs);
    if (our == ours.end()) return {};
    const int at = static_cast<int>(our - ours.begin());
    return "at " + std::to_string(at % surface.size().widthPx) + ", " + std::to_string(at / surface.size().widthPx);
  }

  /// Every height up to `tallest`, ending above row `bottom`, over eight kinds of background.
  void expectThePlatformsPixels(const PreparedImage& image, int tallest, int bottom) {
    constexpr int kinds = 8;
    constexpr int width = 2 * kinds;  // each kind twice: the first column is learned, the second one copied
    open({width, bottom + 3});
    cache.release();
    std::mt19937 random(static_cast<unsigned>(bottom));
    std::vector<Argb> noise(static_cast<std::size_t>(bottom + 3));
    for (Argb& colour : noise) colour = opaqueBlack | (static_cast<Argb>(random()) & 0xFFFFFFu);
    std::vector<Argb> background;
    const auto colourAt = [&](int x, int y) {
      switch (x / 2) {
        case 0: return opaqueBlack;
        case 1: return white;
        case 2: return gridGrey;                                     // along a grid line
        case 3: return y % 10 < 2 ? gridGrey : opaqueBlack;          // across grid lines
        case 4: return y == bottom - 1 ? 0xFF140000u : opaqueBlack;  // down to a border
        case 5: return argbFromRgb(static_cast<unsigned>(y), 7, 255 - static_cast<unsigned>(y));
        case 6: return noise[static_cast<std::size_t>(y)];
        default: return argbFromRgb(10, 200, 30);
      }
    };
    fill(colourAt);
    const std::vector<Argb> blank(surface.pixels().begin(), surface.pixels().end());
    CountingSource source(image);
    int copied = 0;
    for (int top = bottom - tallest; top < bottom; ++top) {
      const int calls = source.calls();
      for (int x = 0; x < width; ++x) ASSERT_NO_FATAL_FAILURE(draw(source, image, x, top, bottom));
      ASSERT_EQ("", differences()) << "rows " << top << " to " << bottom;
      copied += width - source.calls() + calls;
      std::ranges::copy(blank, surface.pixels().begin());
      std::ranges::copy(blank, reference.pixels().begin());
    }
    EXPECT_GT(copied, tallest * kinds / 2);
  }

  GdiplusToken token;
  type1::BarGradients images = type1::loadBarGradients(GetModuleHandleW(nullptr));
  OffscreenSurface surface;
  OffscreenSurface reference;
  ColumnCache cache;
};

TEST_F(ColumnCacheTest, GivesThePlatformsPixelsForEveryHeightUpTo400OverAnyBackground) {
  expectThePlatformsPixels(images[0], 400, 403);
}

using FullColumnCacheTest = ColumnCacheTest;

TEST_F(FullColumnCacheTest, GivesThePlatformsPixelsForEveryHeightUpTo1200AtManyRows) {
  for (const int below : {0, 1, 2, 3, 10, 57, 400})
    ASSERT_NO_FATAL_FAILURE(expectThePlatformsPixels(images[static_cast<std::size_t>(below % 3)], 1200, 1200 + below));
}

TEST_F(ColumnCacheTest, AsksThePlatformThreeTimesForAColumnThatItDoesNotKnowAndNeverAgain) {
  open({40, 300});
  CountingSource source(images[1]);
  const std::vector<int> tops = {0, 10, 20, 0, 0, 10, 299, 150};
  drawFrame(source, tops, 300);
  EXPECT_EQ(5 * 3, source.calls());  // on black and white, and at its place
  drawFrame(source, tops, 300);
  drawFrame(source, {299, 0, 150, 20, 20, 10}, 300);
  EXPECT_EQ(0, source.calls());
}

TEST_F(ColumnCacheTest, AsksOnceMoreForEachColourThatShinesThrough) {
  open({40, 300});
  CountingSource source(images[0]);
  drawFrame(source, {4}, 300);
  source.calls();
  drawFrame(source, {4, 4, 4}, 300, gridGrey);
  EXPECT_EQ(1, source.calls());
  reference.clear(gridGrey);
  for (int x = 0; x < 3; ++x) images[0].drawColumn(reference, {x, 4, x + 1, 300});
  EXPECT_EQ("", differences());
}

TEST_F(ColumnCacheTest, StaysRightWhenMoreColoursTakeTurnsThanItRemembers) {
  open({60, 300});
  CountingSource source(images[2]);
  for (int round = 0; round < 3; ++round) {
    fill([](int x, int) { return argbFromRgb(static_cast<unsigned>(40 * (x % 6)), 60, 200); });
    for (int x = 0; x < 60; ++x) ASSERT_NO_FATAL_FAILURE(draw(source, images[2], x, 7, 300));
    EXPECT_EQ("", differences());
  }
}

TEST_F(ColumnCacheTest, BeginsAnewWithAnotherSourceBottomOrSize) {
  open({40, 300});
  CountingSource source(images[0]);
  CountingSource other(images[1]);
  const auto expectAnew = [&](CountingSource& of, int bottom) {
    drawFrame(of, {5, 5}, bottom);
    EXPECT_EQ(3, of.calls());
    drawFrame(of, {5, 5}, bottom);
    EXPECT_EQ(0, of.calls());
  };
  expectAnew(source, 300);
  expectAnew(other, 300);
  expectAnew(source, 300);
  expectAnew(source, 299);
  open({41, 300});
  expectAnew(source, 299);
  cache.release();
  expectAnew(source, 299);
}

/// What such a platform draws is drawn, without a pixel from memory.
class ColumnsOfOtherPlatforms : public ColumnCacheTest {
 protected:
  /// The last call of several over different backgrounds is the platform's own too.
  void expectEveryColumnToBeThePlatforms(CountingSource& source) {
    open({30, 100});
    for (const Argb background : {opaqueBlack, white, gridGrey, opaqueBlack}) {
      fill([&](int, int) { return background; });
      for (int x = 1; x < 29; x += 3) ASSERT_NO_FATAL_FAILURE(draw(source, source, x, 20, 90));
      EXPECT_EQ("", differences());
    }
  }

  static void set(OffscreenSurface& picture, int x, int y, Argb colour) {
    const Size size = picture.size();
    if (x >= 0 && y >= 0 && x < size.widthPx && y < size.heightPx) pixelOf(picture, x, y) = colour;
  }
  static void fillColumn(OffscreenSurface& picture, const Rect& column, Argb colour) {
    for (int y = column.top; y < column.bottom; ++y) set(picture, column.left, y, colour);
  }
};

TEST_F(ColumnsOfOtherPlatforms, MayTouchTheColumnBeside) {
  for (const int beside : {-1, 1}) {
    CountingSource source([beside](OffscreenSurface& picture, const Rect& column) {
      fillColumn(picture, column, 0xFF102030);
      set(picture, column.left + beside, column.top, 0xFF010203);
      return true;
    });
    expectEveryColumnToBeThePlatforms(source);
  }
}

TEST_F(ColumnsOfOtherPlatforms, MayTouchTheRowAboveOrBelow) {
  for (const bool above : {true, false}) {
    CountingSource source([above](OffscreenSurface& picture, const Rect& column) {
      fillColumn(picture, column, 0xFF102030);
      set(picture, column.left, above ? column.top - 1 : column.bottom, 0xFF010203);
      return true;
    });
    expectEveryColumnToBeThePlatforms(source);
  }
}

TEST_F(ColumnsOfOtherPlatforms, MayDependOnTheirPlace) {
  // In the whole column, or in a last row that lets the background through.
  for (const bool onlyLastRow : {false, true}) {
    CountingSource source([onlyLastRow](OffscreenSurface& picture, const Rect& column) {
      const Argb place = static_cast<Argb>(picture.size().widthPx == 30 ? column.left : 0);
      if (!onlyLastRow) {
        fillColumn(picture, column, opaqueBlack + place);
        return true;
      }
      fillColumn(picture, {column.left, column.top, column.right, column.bottom - 1}, opaqueBlack);
      Argb& last = pixelOf(picture, column.left, column.bottom - 1);
      last = opaqueBlack | ((last & 0xFEFEFE) / 2 + place);
      return true;
    });
    cache.release();
    open({30, 100});
    for (int x = 1; x < 29; ++x) ASSERT_NO_FATAL_FAILURE(draw(source, source, x, 20, 90));
    EXPECT_EQ("", differences()) << onlyLastRow;
  }
}

TEST_F(ColumnsOfOtherPlatforms, MayShineThroughAnywhere) {
  const auto shineThrough = [](int first, int last) {
    return [=](OffscreenSurface& picture, const Rect& column) {
      for (int y = column.top; y < column.bottom; ++y) {
        Argb& pixel = pixelOf(picture, column.left, y);
        const bool half = y - column.top >= first && y - column.top < last;
        pixel = opaqueBlack | (half ? (pixel & 0xFEFEFE) / 2 + static_cast<Argb>(y) : static_cast<Argb>(y));
      }
      return true;
    };
  };
  for (const auto& [first, last] : {std::pair{0, 1}, {0, 5}, {30, 33}, {69, 70}, {60, 70}, {20, 60}, {0, 70}}) {
    CountingSource source(shineThrough(first, last));
    cache.release();
    expectEveryColumnToBeThePlatforms(source);
  }
}

TEST_F(ColumnsOfOtherPlatforms, MayFail) {
  open({30, 100});
  for (const int failing : {1, 2, 3}) {
    int count = 0;
    CountingSource source([&](OffscreenSurface& picture, const Rect& column) {
      fillColumn(picture, column, white);
      return ++count != failing;
    });
    cache.release();
    cache.begin(surface, source, 90);
    EXPECT_FALSE(cache.draw(3, 20)) << failing;
    EXPECT_TRUE(cache.draw(3, 20)) << failing;
    EXPECT_EQ(white, pixelOf(surface, 3, 20));
  }
}

TEST_F(ColumnsOfOtherPlatforms, AreLeftToThemBeyondFourMegabytes) {
  CountingSource source([](OffscreenSurface& picture, const Rect& column) {
    const auto pixels = picture.pixels();
    auto at = static_cast<std::size_t>(column.top * picture.size().widthPx + column.left);
    for (int y = column.top; y < column.bottom; ++y, at += static_cast<std::size_t>(picture.size().widthPx))
      pixels[at] = opaqueBlack + static_cast<Argb>(column.bottom - y);
    return true;
  });
  constexpr int bottom = 3000;  // 500 columns hold 1,375,250 pixels
  open({500, bottom});
  std::vector<int> tops(500);
  for (int i = 0; i < 500; ++i) tops[static_cast<std::size_t>(i)] = i;
  drawFrame(source, tops, bottom);
  source.calls();
  drawFrame(source, tops, bottom);
  int known = 0;
  for (long long pixels = 0; pixels + bottom - known <= 1 << 20; ++known) pixels += bottom - known;
  EXPECT_EQ(500 - known, source.calls());
  for (int x = 0; x < 500; ++x) source.drawColumn(reference, {x, x, x + 1, bottom});
  EXPECT_EQ("", differences());
}

}  // namespace
}  // namespace av
