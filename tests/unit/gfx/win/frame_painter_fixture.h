#pragma once

#include "gfx/win/frame_painter.h"
#include "gfx/win/gdiplus_token.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

namespace av {

inline constexpr Argb white = 0xFFFFFFFF;
inline constexpr Argb red = 0xFFFF0000;
inline constexpr Argb green = 0xFF00FF00;

/// A painter with a small picture.
class FramePainterTest : public testing::Test {
 protected:
  FramePainterTest() { surface.resize({120, 80}); }

  Argb at(int x, int y) {
    return surface.pixels()[static_cast<std::size_t>(y) * static_cast<std::size_t>(surface.size().widthPx) +
                            static_cast<std::size_t>(x)];
  }

  /// The smallest rectangle that holds every pixel that differs from `background`.
  Rect inkBox(Argb background) {
    Rect box{surface.size().widthPx, surface.size().heightPx, 0, 0};
    for (int y = 0; y < surface.size().heightPx; ++y) {
      for (int x = 0; x < surface.size().widthPx; ++x) {
        if (at(x, y) == background) continue;
        box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), std::max(box.bottom, y + 1)};
      }
    }
    return box;
  }

  /// Another picture of the same size, for what the platform draws by itself.
  void openReference(Argb background) {
    ASSERT_TRUE(reference.resize(surface.size()));
    reference.clear(background);
  }

  bool looksLikeTheReference() { return std::ranges::equal(reference.pixels(), surface.pixels()); }

  GdiplusToken token;
  OffscreenSurface surface;
  OffscreenSurface reference;
  FramePainter painter{surface};
};

}  // namespace av
