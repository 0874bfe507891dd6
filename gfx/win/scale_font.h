#pragma once

#include "gfx/win/gdiplus_handles.h"

#include <ocidl.h>
#include <wrl/client.h>

namespace av {

/// The font of fresh controls as an OLE font object: Arial. Null when the system fails.
Microsoft::WRL::ComPtr<IFontDisp> createDefaultScaleFont(int points = 6) noexcept;

/// `object` as a font object, counted; null for what is none.
Microsoft::WRL::ComPtr<IFontDisp> asScaleFont(IUnknown* object) noexcept;

/// The LOGFONT of `font` as its properties are now; all zero for what is no font, or has no LOGFONT to give.
LOGFONTW describeScaleFont(IUnknown* font) noexcept;

/// Whether two descriptions ask for the same drawing font.
bool sameFont(const LOGFONTW& a, const LOGFONTW& b) noexcept;

/// The GDI+ font that draws `font`: its face, |lfHeight| of its LOGFONT taken as points, bold above weight 500, italic
/// and underlined as it says. A missing face is replaced by what GDI would take, then by the generic sans-serif, then by
/// any; a missing style by another of the face. Null for an object that is no font, or when GDI+ has no font at all.
/// Throws std::bad_alloc only.
FontHandle createScaleFont(IUnknown* font);

/// The font's height on `graphics` in pixels, rounded to the nearest; 0 when there is no font.
int fontHeightPx(const Gdiplus::GpFont* font, const Gdiplus::GpGraphics* graphics) noexcept;

}  // namespace av
