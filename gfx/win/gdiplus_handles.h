#pragma once

#include "gfx/argb.h"
#include "gfx/win/gdiplus_flat.h"

#include <memory>

/// Owners of GDI+ objects on the flat interface. Each has to be gone before the last `GdiplusToken` ends.
namespace av {

struct GdiplusDeleter {
  void operator()(Gdiplus::GpPen* pen) const noexcept { Gdiplus::DllExports::GdipDeletePen(pen); }
  void operator()(Gdiplus::GpBrush* brush) const noexcept { Gdiplus::DllExports::GdipDeleteBrush(brush); }
  void operator()(Gdiplus::GpFont* font) const noexcept { Gdiplus::DllExports::GdipDeleteFont(font); }
  void operator()(Gdiplus::GpFontFamily* family) const noexcept { Gdiplus::DllExports::GdipDeleteFontFamily(family); }
  void operator()(Gdiplus::GpGraphics* graphics) const noexcept { Gdiplus::DllExports::GdipDeleteGraphics(graphics); }
  void operator()(Gdiplus::GpImage* image) const noexcept { Gdiplus::DllExports::GdipDisposeImage(image); }
  void operator()(Gdiplus::GpStringFormat* format) const noexcept {
    Gdiplus::DllExports::GdipDeleteStringFormat(format);
  }
};

using PenHandle = std::unique_ptr<Gdiplus::GpPen, GdiplusDeleter>;
using SolidBrushHandle = std::unique_ptr<Gdiplus::GpSolidFill, GdiplusDeleter>;
using FontHandle = std::unique_ptr<Gdiplus::GpFont, GdiplusDeleter>;
using FontFamilyHandle = std::unique_ptr<Gdiplus::GpFontFamily, GdiplusDeleter>;
using GraphicsHandle = std::unique_ptr<Gdiplus::GpGraphics, GdiplusDeleter>;
using BitmapHandle = std::unique_ptr<Gdiplus::GpBitmap, GdiplusDeleter>;
using StringFormatHandle = std::unique_ptr<Gdiplus::GpStringFormat, GdiplusDeleter>;

/// A solid pen of `widthPx`; null when GDI+ fails.
PenHandle createPen(Argb colour, float widthPx) noexcept;

/// A brush of one colour; null when GDI+ fails.
SolidBrushHandle createSolidBrush(Argb colour) noexcept;

/// The format of scale texts: centred both ways on one line, running over the rectangle where it does not fit.
/// Null when GDI+ fails.
StringFormatHandle createCentredFormat() noexcept;

}  // namespace av
