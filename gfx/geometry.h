#pragma once

namespace av {

/// A pixel position; x to the right, y down.
struct Point {
  int x = 0;
  int y = 0;

  friend constexpr bool operator==(const Point&, const Point&) = default;
};

/// A pixel rectangle; right and bottom are exclusive.
struct Rect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  constexpr int width() const noexcept { return right - left; }
  constexpr int height() const noexcept { return bottom - top; }
  constexpr bool isEmpty() const noexcept { return right <= left || bottom <= top; }

  friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

/// A width and a height in pixels.
struct Size {
  int widthPx = 0;
  int heightPx = 0;

  friend constexpr bool operator==(const Size&, const Size&) = default;
};

}  // namespace av
