#include "demo/window_picture.h"

#include "demo/failure.h"

// GDI+ wants COM's types and the macros that NOMINMAX takes away.
#include <objidl.h>

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include <vector>

namespace avdemo {

namespace {

constexpr CLSID pngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

/// 24-bit pixels, top row first, rows padded to four bytes.
struct Pixels {
  int width = 0;
  int height = 0;
  int stride = 0;
  std::vector<BYTE> bytes;
};

BITMAPINFO topDownInfo(int width, int height) {
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}

Pixels readWindow(HWND window) {
  RECT client = {};
  GetClientRect(window, &client);
  Pixels pixels;
  pixels.width = client.right;
  pixels.height = client.bottom;
  pixels.stride = (pixels.width * 3 + 3) & ~3;
  const BITMAPINFO info = topDownInfo(pixels.width, pixels.height);
  HDC source = GetDC(window);
  HDC memory = CreateCompatibleDC(source);
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  bool copied = false;
  if (source && memory && bitmap) {
    const HGDIOBJ before = SelectObject(memory, bitmap);
    copied = BitBlt(memory, 0, 0, pixels.width, pixels.height, source, 0, 0, SRCCOPY) != FALSE;
    GdiFlush();
    const BYTE* first = static_cast<const BYTE*>(bits);
    if (copied)
      pixels.bytes.assign(first, first + static_cast<size_t>(pixels.stride) * static_cast<size_t>(pixels.height));
    SelectObject(memory, before);
  }
  if (bitmap) DeleteObject(bitmap);
  if (memory) DeleteDC(memory);
  if (source) ReleaseDC(window, source);
  if (!copied) throw Failure{L"cannot read the window's pixels"};
  return pixels;
}

}  // namespace

GdiplusSession::GdiplusSession() {
  const Gdiplus::GdiplusStartupInput input;
  if (Gdiplus::GdiplusStartup(&m_token, &input, nullptr) != Gdiplus::Ok) throw Failure{L"GDI+ does not start"};
}

GdiplusSession::~GdiplusSession() { Gdiplus::GdiplusShutdown(m_token); }

void saveWindowPicture(HWND window, const std::filesystem::path& file) {
  Pixels pixels = readWindow(window);
  Gdiplus::Bitmap bitmap(pixels.width, pixels.height, pixels.stride, PixelFormat24bppRGB, pixels.bytes.data());
  const Gdiplus::Status status = bitmap.Save(file.c_str(), &pngEncoder, nullptr);
  if (status != Gdiplus::Ok) throw Failure{L"cannot write " + file.wstring()};
}

}  // namespace avdemo
