#pragma once

#include "gfx/win/offscreen.h"

#include <cstdlib>
#include <string>

namespace av::test {

/// Writes the surface as NAME.png into the folder that AV_PICTURES names, for the eye; does nothing without it.
inline void savePng(OffscreenSurface& surface, const std::string& name) {
  const char* const folder = std::getenv("AV_PICTURES");
  if (!folder) return;
  const std::string path = std::string(folder) + "/" + name + ".png";
  const std::wstring widePath(path.begin(), path.end());
  const CLSID pngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
  Gdiplus::GpBitmap* bitmap = nullptr;
  if (Gdiplus::DllExports::GdipCreateBitmapFromScan0(
          surface.size().widthPx, surface.size().heightPx, surface.size().widthPx * 4, PixelFormat32bppRGB,
          reinterpret_cast<BYTE*>(surface.pixels().data()), &bitmap) != Gdiplus::Ok) {
    return;
  }
  const BitmapHandle owner(bitmap);
  Gdiplus::DllExports::GdipSaveImageToFile(bitmap, widePath.c_str(), &pngEncoder, nullptr);
}

}  // namespace av::test
