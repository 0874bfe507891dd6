#include "player/win/commands.h"

#include <algorithm>

namespace avplayer {

namespace {

constexpr BYTE plain = FVIRTKEY;
constexpr BYTE ctrl = FVIRTKEY | FCONTROL;
constexpr BYTE alt = FVIRTKEY | FALT;
constexpr BYTE shift = FVIRTKEY | FSHIFT;

/// A line of the menu with its key, from which the menu, the accelerators and the help are made. Without an identifier:
/// the title of a menu, or, without a text, a separator.
struct Line {
  const wchar_t* text;
  int id = 0;
  const wchar_t* keyName = nullptr;
  BYTE keyFlags = 0;
  WORD key = 0;
};

constexpr Line lines[] = {
    {L"&File"},
    {L"&Open...", command::open, L"Ctrl+O", ctrl, 'O'},
    {L"&Demonstration sound", command::demonstration, L"Ctrl+D", ctrl, 'D'},
    {nullptr},
    {L"&Snapshot of the selected control", command::snapshot, L"F12", plain, VK_F12},
    {L"Snapshot of &all three", command::snapshotAll, L"Shift+F12", shift, VK_F12},
    {nullptr},
    {L"E&xit", command::quit, L"Ctrl+Q", ctrl, 'Q'},
    {L"&Play"},
    {L"&Play or pause", command::playPause, L"Ctrl+P", ctrl, 'P'},
    {L"To the &beginning", command::toStart, L"Ctrl+Home", ctrl, VK_HOME},
    {L"5 seconds &back", command::back, L"Alt+Left", alt, VK_LEFT},
    {L"5 seconds &on", command::forward, L"Alt+Right", alt, VK_RIGHT},
    {L"&Repeat", command::loop, L"Ctrl+R", ctrl, 'R'},
    {L"&Control"},
    {L"Waveform and spectrum &view", command::selectView, L"Ctrl+1", ctrl, '1'},
    {L"Level &meter", command::selectMeter, L"Ctrl+2", ctrl, '2'},
    {L"Spectrum &analyser", command::selectAnalyser, L"Ctrl+3", ctrl, '3'},
    {nullptr},
    {L"&Next control", command::nextControl, L"Ctrl+Tab", ctrl, VK_TAB},
    {L"&Previous control", command::previousControl, L"Ctrl+Shift+Tab", ctrl | FSHIFT, VK_TAB},
    {L"P&reset"},
    {L"&Next preset", command::nextPreset, L"Ctrl+PgDn", ctrl, VK_NEXT},
    {L"&Previous preset", command::previousPreset, L"Ctrl+PgUp", ctrl, VK_PRIOR},
    {nullptr},
    {L"&Type a name", command::presetName, L"F3", plain, VK_F3},
    {L"&Save under that name", command::savePreset, L"Ctrl+S", ctrl, 'S'},
    {L"&Delete", command::deletePreset, L"Ctrl+Shift+D", ctrl | FSHIFT, 'D'},
    {L"&Window"},
    {L"&Properties to and fro", command::switchPane, L"F6", plain, VK_F6},
    {L"&Find a property", command::findProperty, L"Ctrl+F", ctrl, 'F'},
    {L"&Show the properties", command::togglePanel, L"Ctrl+B", ctrl, 'B'},
    {L"F&ull screen", command::fullScreen, L"F11", plain, VK_F11},
    {L"&Help"},
    {L"&Keys", command::keys, L"F1", plain, VK_F1},
};

bool isTitle(const Line& line) { return line.text && line.id == 0; }

std::wstring withoutMarks(const wchar_t* text) {
  std::wstring plainText;
  for (; *text; ++text)
    if (*text != L'&') plainText += *text;
  return plainText;
}

/// The tab stops of a message box: every eight average letters of its font.
class TabStops {
 public:
  TabStops() : m_screen(GetDC(nullptr)) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    m_font = CreateFontIndirectW(&metrics.lfMessageFont);
    m_before = SelectObject(m_screen, m_font);
    TEXTMETRICW text = {};
    GetTextMetricsW(m_screen, &text);
    m_stop = std::max<int>(1, 8 * text.tmAveCharWidth);
  }
  TabStops(const TabStops&) = delete;
  TabStops& operator=(const TabStops&) = delete;
  ~TabStops() {
    SelectObject(m_screen, m_before);
    DeleteObject(m_font);
    ReleaseDC(nullptr, m_screen);
  }
  /// How many stops a text reaches over.
  int stopsIn(const wchar_t* text) const {
    SIZE size = {};
    GetTextExtentPoint32W(m_screen, text, lstrlenW(text), &size);
    return size.cx / m_stop;
  }

 private:
  HDC m_screen;
  HFONT m_font;
  HGDIOBJ m_before;
  int m_stop;
};

}  // namespace

HMENU makeMenu() {
  HMENU bar = CreateMenu();
  HMENU menu = nullptr;
  for (const Line& line : lines) {
    if (isTitle(line)) {
      menu = CreatePopupMenu();
      AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), line.text);
    } else if (!line.text) {
      AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    } else {
      const std::wstring text = std::wstring(line.text) + L"\t" + line.keyName;
      AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(line.id), text.c_str());
    }
  }
  return bar;
}

HACCEL makeAccelerators() {
  std::vector<ACCEL> keys;
  for (const Line& line : lines)
    if (line.id != 0) keys.push_back({line.keyFlags, line.key, static_cast<WORD>(line.id)});
  return CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size()));
}

void fillPresetMenu(HMENU menu, const std::vector<std::wstring>& names, const std::wstring& current) {
  constexpr int presetMenu = 3;
  HMENU presets = GetSubMenu(menu, presetMenu);
  int fixed = 0;
  for (int i = 0; i < GetMenuItemCount(presets); ++i) {
    const UINT id = GetMenuItemID(presets, i);
    if (id > 0 && id < UINT{command::firstPreset}) fixed = i + 1;
  }
  while (GetMenuItemCount(presets) > fixed) DeleteMenu(presets, static_cast<UINT>(fixed), MF_BYPOSITION);
  AppendMenuW(presets, MF_SEPARATOR, 0, nullptr);
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::wstring text;  // a name's own ampersands are no marks
    for (const wchar_t c : names[i]) text += c == L'&' ? L"&&" : std::wstring(1, c);
    AppendMenuW(presets, MF_STRING | (names[i] == current ? MF_CHECKED : 0u), UINT_PTR{command::firstPreset} + i,
                text.c_str());
  }
}

std::wstring keyHelp() {
  const TabStops stops;
  int column = 0;
  for (const Line& line : lines)
    if (line.id != 0) column = std::max(column, stops.stopsIn(line.keyName) + 1);
  std::wstring text;
  for (const Line& line : lines) {
    if (line.id == 0) continue;
    const std::wstring tabs(static_cast<std::size_t>(column - stops.stopsIn(line.keyName)), L'\t');
    text += line.keyName + tabs + withoutMarks(line.text) + L"\n";
  }
  text +=
      L"\nWith the keyboard on the stage: Space plays or pauses, Left and Right seek, 1, 2 and 3 select a control."
      L"\nIn a property: Enter puts it, Esc brings the old value back, Up and Down step.";
  return text;
}

}  // namespace avplayer
