#include "gfx/win/scale_font.h"

#include "gfx/saturate.h"
#include "gfx/win/gdi_handles.h"

#include <olectl.h>

#include <cstddef>
#include <cwchar>
#include <iterator>
#include <vector>

namespace av {

using namespace Gdiplus;
using namespace Gdiplus::DllExports;
using Microsoft::WRL::ComPtr;

namespace {

/// The GDI font of a font object, which stays the object's, and its description; null for what is no font.
HFONT gdiFontOf(IUnknown* font, LOGFONTW& description) noexcept {
  ComPtr<IFont> source;
  HFONT gdiFont = nullptr;
  if (!font || FAILED(font->QueryInterface(IID_IFont, reinterpret_cast<void**>(source.GetAddressOf()))) || !source ||
      FAILED(source->get_hFont(&gdiFont)) ||
      GetObjectW(gdiFont, static_cast<int>(sizeof description), &description) == 0)
    return nullptr;
  description.lfFaceName[std::size(description.lfFaceName) - 1] = L'\0';
  return gdiFont;
}

FontFamilyHandle familyNamed(const wchar_t* name) {
  GpFontFamily* family = nullptr;
  return FontFamilyHandle(GdipCreateFontFamilyFromName(name, nullptr, &family) == Ok ? family : nullptr);
}

FontFamilyHandle genericSansSerif() {
  GpFontFamily* family = nullptr;
  return FontFamilyHandle(GdipGetGenericFontFamilySansSerif(&family) == Ok ? family : nullptr);
}

/// The family that GDI's font mapper takes for `font`: it always finds one, also where GDI+ knows no such name.
FontFamilyHandle familyMappedByGdi(HFONT font) {
  const HDC dc = CreateCompatibleDC(nullptr);
  if (!dc) return nullptr;
  wchar_t face[LF_FACESIZE] = L"";
  {
    const GdiSelection selected(dc, font);
    if (selected) GetTextFaceW(dc, LF_FACESIZE, face);  // not the face that any context has at first
  }
  DeleteDC(dc);
  return face[0] ? familyNamed(face) : nullptr;
}

FontHandle fontOf(const FontFamilyHandle& family, float points, int style) {
  if (!family) return nullptr;
  GpFont* font = nullptr;
  if (GdipCreateFont(family.get(), points, style, UnitPoint, &font) == Ok) return FontHandle(font);
  // Some faces exist in one weight or slope only.
  const int underline = style & FontStyleUnderline;
  for (const int shape : {FontStyleRegular, FontStyleBold, FontStyleItalic, FontStyleBoldItalic}) {
    if (GdipCreateFont(family.get(), points, shape | underline, UnitPoint, &font) == Ok) return FontHandle(font);
  }
  return nullptr;
}

FontHandle fontOfAnyFamily(float points, int style) {
  GpFontCollection* installed = nullptr;  // the system's, not to be deleted
  INT count = 0;
  if (GdipNewInstalledFontCollection(&installed) != Ok || GdipGetFontCollectionFamilyCount(installed, &count) != Ok ||
      count < 1) {
    return nullptr;
  }
  std::vector<GpFontFamily*> families(static_cast<std::size_t>(count));
  if (GdipGetFontCollectionFamilyList(installed, count, families.data(), &count) != Ok) return nullptr;
  families.resize(static_cast<std::size_t>(count));
  for (GpFontFamily* const listed : families) {
    GpFontFamily* family = nullptr;  // the list's entries stay the collection's
    if (GdipCloneFontFamily(listed, &family) != Ok) continue;
    if (FontHandle made = fontOf(FontFamilyHandle(family), points, style)) return made;
  }
  return nullptr;
}

}  // namespace

ComPtr<IFontDisp> createDefaultScaleFont(int points) noexcept {
  wchar_t face[] = L"Arial";
  FONTDESC description{};
  description.cbSizeofstruct = sizeof description;
  description.lpstrName = face;
  description.cySize.int64 = LONGLONG{points} * 10000;  // currency values count ten-thousandths
  description.sWeight = FW_NORMAL;
  description.sCharset = DEFAULT_CHARSET;
  ComPtr<IFontDisp> font;
  OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(font.GetAddressOf()));
  return font;
}

ComPtr<IFontDisp> asScaleFont(IUnknown* object) noexcept {
  ComPtr<IFont> font;
  ComPtr<IFontDisp> dispatch;
  if (object && SUCCEEDED(object->QueryInterface(IID_IFont, reinterpret_cast<void**>(font.GetAddressOf()))) && font)
    font->QueryInterface(IID_IFontDisp, reinterpret_cast<void**>(dispatch.GetAddressOf()));
  return dispatch;
}

LOGFONTW describeScaleFont(IUnknown* font) noexcept {
  LOGFONTW description{};
  gdiFontOf(font, description);
  return description;
}

bool sameFont(const LOGFONTW& a, const LOGFONTW& b) noexcept {
  return a.lfHeight == b.lfHeight && a.lfWeight == b.lfWeight && a.lfItalic == b.lfItalic &&
         a.lfUnderline == b.lfUnderline && a.lfStrikeOut == b.lfStrikeOut && a.lfCharSet == b.lfCharSet &&
         std::wcscmp(a.lfFaceName, b.lfFaceName) == 0;
}

FontHandle createScaleFont(IUnknown* font) {
  LOGFONTW description{};
  const HFONT gdiFont = gdiFontOf(font, description);
  if (!gdiFont) return nullptr;
  const int style = (description.lfWeight > 500 ? FontStyleBold : 0) | (description.lfItalic ? FontStyleItalic : 0) |
                    (description.lfUnderline ? FontStyleUnderline : 0);
  const LONG height = description.lfHeight < 0 ? -description.lfHeight : description.lfHeight;
  const float points = height > 0 ? static_cast<float>(height) : 1.0f;

  if (FontHandle made = fontOf(familyNamed(description.lfFaceName), points, style)) return made;
  if (FontHandle made = fontOf(familyMappedByGdi(gdiFont), points, style)) return made;
  if (FontHandle made = fontOf(genericSansSerif(), points, style)) return made;
  return fontOfAnyFamily(points, style);
}

int fontHeightPx(const GpFont* font, const GpGraphics* graphics) noexcept {
  // Not GdipGetFontHeight: Wine's takes the screen's resolution instead of the surface's.
  REAL dpi = 0;
  REAL height = 0;
  if (!font || !graphics || GdipGetDpiY(const_cast<GpGraphics*>(graphics), &dpi) != Ok ||
      GdipGetFontHeightGivenDPI(font, dpi, &height) != Ok) {
    return 0;
  }
  return truncToInt(static_cast<double>(height) + 0.5);
}

}  // namespace av
