#include "gfx/win/gdiplus_handles.h"

namespace av {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

PenHandle createPen(Argb colour, float widthPx) noexcept {
  GpPen* pen = nullptr;
  return PenHandle(GdipCreatePen1(colour, widthPx, UnitPixel, &pen) == Ok ? pen : nullptr);
}

SolidBrushHandle createSolidBrush(Argb colour) noexcept {
  GpSolidFill* brush = nullptr;
  return SolidBrushHandle(GdipCreateSolidFill(colour, &brush) == Ok ? brush : nullptr);
}

StringFormatHandle createCentredFormat() noexcept {
  GpStringFormat* created = nullptr;
  if (GdipCreateStringFormat(StringFormatFlagsNoWrap | StringFormatFlagsNoClip, LANG_NEUTRAL, &created) != Ok) {
    return nullptr;
  }
  StringFormatHandle format(created);
  if (GdipSetStringFormatAlign(created, StringAlignmentCenter) != Ok ||
      GdipSetStringFormatLineAlign(created, StringAlignmentCenter) != Ok) {
    return nullptr;
  }
  return format;
}

}  // namespace av
