#include "player/win/dialogs.h"

#include "player/win/text.h"
#include "player/win/theme.h"

#include <commdlg.h>

namespace avplayer {

std::optional<COLORREF> askForColour(HWND owner, COLORREF shown) {
  static COLORREF customColours[16] = {};  // those that the user mixed, as long as the program runs
  CHOOSECOLORW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = GetAncestor(owner, GA_ROOT);
  dialog.rgbResult = shown;
  dialog.lpCustColors = customColours;
  dialog.Flags = CC_RGBINIT | CC_FULLOPEN;
  return ChooseColorW(&dialog) ? std::optional(dialog.rgbResult) : std::nullopt;
}

std::optional<FontText> askForFont(HWND owner, const FontText& shown) {
  LOGFONTW font = {};
  font.lfHeight = -MulDiv(static_cast<int>(shown.points * 10), dpiOf(owner), 720);
  font.lfWeight = shown.bold ? FW_BOLD : FW_NORMAL;
  font.lfItalic = shown.italic;
  font.lfUnderline = shown.underline;
  font.lfStrikeOut = shown.strikeout;
  font.lfCharSet = DEFAULT_CHARSET;
  lstrcpynW(font.lfFaceName, wide(shown.face).c_str(), LF_FACESIZE);
  CHOOSEFONTW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = GetAncestor(owner, GA_ROOT);
  dialog.lpLogFont = &font;
  dialog.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT | CF_EFFECTS | CF_NOVERTFONTS;
  if (!ChooseFontW(&dialog)) return std::nullopt;
  return FontText{narrow(font.lfFaceName), dialog.iPointSize / 10.0, font.lfWeight >= FW_SEMIBOLD,
                  font.lfItalic != 0,      font.lfUnderline != 0,    font.lfStrikeOut != 0};
}

std::optional<std::wstring> askForWavFile(HWND owner) {
  wchar_t path[1024] = {};
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner;
  dialog.lpstrFilter = L"WAV files (*.wav)\0*.wav\0All files\0*.*\0";
  dialog.lpstrFile = path;
  dialog.nMaxFile = ARRAYSIZE(path);
  dialog.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_EXPLORER;
  return GetOpenFileNameW(&dialog) ? std::optional<std::wstring>(path) : std::nullopt;
}

}  // namespace avplayer
