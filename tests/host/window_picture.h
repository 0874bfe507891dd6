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

inline WindowPicture pictureOf(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  WindowPicture picture{client.right, client.bottom, {}};
  HDC source = GetDC(window);
  HDC memory = CreateCompatibleDC(source);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, client.right, -client.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ old = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, client.right, client.bottom, source, 0, 0, SRCCOPY);
  GdiFlush();
  const auto* first = static_cast<const std::uint32_t*>(bits);
  picture.pixels.assign(first, first + client.right * client.bottom);
  for (std::uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(window, source);
  return picture;
}

}  // namespace av::test
