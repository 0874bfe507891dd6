#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace av::test {

/// The pixels that a window shows, as 0x00RRGGBB, top row first.
struct WindowPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
  friend bool operator==(const WindowPicture&, const WindowPicture&) = default;
};

/// What `draw` leaves in a memory device context of that size, which is black before.
template <class Draw>
WindowPicture pictureDrawnBy(SIZE size, Draw draw) {
  WindowPicture picture{size.cx, size.cy, {}};
  HDC memory = CreateCompatibleDC(nullptr);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ old = SelectObject(memory, bitmap);
  draw(memory);
  GdiFlush();
  const auto* first = static_cast<const std::uint32_t*>(bits);
  picture.pixels.assign(first, first + size.cx * size.cy);
  for (std::uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  return picture;
}

inline WindowPicture pictureOf(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  HDC source = GetDC(window);
  WindowPicture picture = pictureDrawnBy({client.right, client.bottom}, [&](HDC memory) {
    BitBlt(memory, 0, 0, client.right, client.bottom, source, 0, 0, SRCCOPY);
  });
  ReleaseDC(window, source);
  return picture;
}

/// The part of the picture inside the rectangle, which lies inside of it.
inline WindowPicture cutOut(const WindowPicture& whole, const RECT& part) {
  WindowPicture cut{part.right - part.left, part.bottom - part.top, {}};
  for (LONG y = part.top; y < part.bottom; ++y)
    for (LONG x = part.left; x < part.right; ++x) cut.pixels.push_back(whole.at(x, y));
  return cut;
}

}  // namespace av::test
