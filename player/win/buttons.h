#pragma once

#include "player/win/theme.h"

#include <windows.h>

namespace avplayer {

/// What a button of the transport bar shows.
enum class Icon { play, pause, toStart, loop, camera, fullScreen };

/// A push button that its parent draws (WM_DRAWITEM).
HWND makeButton(HWND parent, int command, const wchar_t* text);

/// On the dark bar: an icon; `on` for a switch that is on.
void drawIconButton(const DRAWITEMSTRUCT& item, const Theme& theme, Icon icon, bool on);

enum class ButtonLook { plain, tab, tabSelected, left };

/// On the light panel: a text. `left` aligns it, for buttons that show a value.
void drawTextButton(const DRAWITEMSTRUCT& item, const Theme& theme, ButtonLook look);

/// The frame of a text field, within which the field stands without one: so the text is in the middle of its height.
void drawFieldFrame(HDC context, const Theme& theme, const Box& box, bool focus);

/// Where the text of a field stands in its frame.
Box textPlace(const Theme& theme, const Box& frame);

/// An item of a drop-down list, or its closed part.
void drawListItem(const DRAWITEMSTRUCT& item, const Theme& theme);

/// On the light panel: a colour, of an automation colour value.
void drawSwatch(const DRAWITEMSTRUCT& item, const Theme& theme, COLORREF shown);

}  // namespace avplayer
