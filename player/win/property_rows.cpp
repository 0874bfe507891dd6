#include "player/win/property_rows.h"

#include "player/win/buttons.h"
#include "player/win/text.h"

#include <commctrl.h>

#include <algorithm>

namespace avplayer {

namespace {

constexpr DWORD fieldStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP;

HWND makeChild(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, DWORD exStyle = 0) {
  return CreateWindowExW(exStyle, className, text, style, 0, 0, 10, 10, parent, nullptr, GetModuleHandleW(nullptr),
                         nullptr);
}

void setFont(HWND window, HFONT font) { SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE); }

bool containsWord(std::wstring text, std::wstring word) {
  CharLowerW(text.data());
  CharLowerW(word.data());
  return text.find(word) != std::wstring::npos;
}

std::wstring titleOf(const Setting& setting) {
  const std::wstring unit = setting.rule ? wide(setting.rule->unit) : std::wstring();
  return unit.empty() ? setting.name() : setting.name() + L", " + unit;
}

}  // namespace

bool PropertyRows::create(HWND parent) {
  return Window::create({.className = L"avplayer.PropertyRows",
                         .style = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | WS_VSCROLL,
                         .exStyle = WS_EX_CONTROLPARENT,
                         .parent = parent});
}

void PropertyRows::build(HostedControl& control, const Theme& theme) {
  m_updating = true;
  for (const Row& row : m_rows)
    for (HWND window : {row.label, row.main, row.extra})
      if (window) DestroyWindow(window);
  m_rows.clear();
  m_control = &control;
  m_theme = &theme;
  const auto groups = propertyGroups();
  for (std::size_t group = 0; group < groups.size(); ++group) {
    bool first = true;
    for (const Setting& setting : control.settings()) {
      if (groupOf(setting.rule) != group) continue;
      if (first) addHeading(wide(groups[group]).c_str());
      first = false;
      addRow(setting);
    }
  }
  m_updating = false;
  m_scroll = 0;
  arrange();
  for (Row& row : m_rows) showValue(row, true);
}

void PropertyRows::addHeading(const wchar_t* text) {
  Row row;
  row.label = makeChild(hwnd(), L"STATIC", text, WS_CHILD | WS_VISIBLE | SS_CENTERIMAGE | SS_NOPREFIX);
  setFont(row.label, m_theme->bold());
  m_rows.push_back(row);
}

void PropertyRows::addRow(const Setting& setting) {
  Row row;
  row.setting = &setting;
  // The label before its field: so screen readers know what the field is called.
  row.label = makeChild(hwnd(), L"STATIC", titleOf(setting).c_str(),
                        WS_CHILD | WS_VISIBLE | SS_CENTERIMAGE | SS_NOPREFIX | SS_ENDELLIPSIS);
  setFont(row.label, m_theme->text());
  makeField(row);
  setFont(row.main, m_theme->text());
  m_rows.push_back(row);
}

void PropertyRows::makeField(Row& row) {
  const Property& property = *row.setting->property;
  const PropertyRule* rule = row.setting->rule;
  const bool writable = property.writable && property.kind != ValueKind::other;
  if (!writable) row.field = Field::fixed;
  else if (rule && !rule->choices.empty()) row.field = Field::list;
  else if (property.kind == ValueKind::boolean) row.field = Field::check;
  else if (property.kind == ValueKind::whole || property.kind == ValueKind::real) row.field = Field::number;
  else if (property.kind == ValueKind::colour) row.field = Field::colour;
  else if (property.kind == ValueKind::font) row.field = Field::font;
  else row.field = Field::text;

  constexpr DWORD edit = fieldStyle | ES_AUTOHSCROLL;
  switch (row.field) {
    case Field::check: row.main = makeChild(hwnd(), L"BUTTON", L"", fieldStyle | BS_AUTOCHECKBOX | BS_NOTIFY); break;
    case Field::list:
      row.main = makeChild(hwnd(), L"COMBOBOX", L"",
                           fieldStyle | WS_VSCROLL | CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS);
      for (const Choice& choice : rule->choices)
        SendMessageW(row.main, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(choice.name).c_str()));
      break;
    case Field::number:
      row.main = makeChild(hwnd(), L"EDIT", L"", edit);
      row.extra = makeChild(hwnd(), UPDOWN_CLASSW, L"", WS_CHILD | WS_VISIBLE | UDS_ARROWKEYS);
      SendMessageW(row.extra, UDM_SETBUDDY, reinterpret_cast<WPARAM>(row.main), 0);
      // Its own number never moves: the control's value is what counts.
      SendMessageW(row.extra, UDM_SETRANGE32, 0, 2);
      SendMessageW(row.extra, UDM_SETPOS32, 0, 1);
      break;
    case Field::colour:
      row.main = makeChild(hwnd(), L"EDIT", L"", edit);
      row.extra = makeButton(hwnd(), 0, L"");
      break;
    case Field::font: row.main = makeButton(hwnd(), 0, L""); break;
    case Field::text: row.main = makeChild(hwnd(), L"EDIT", L"", edit); break;
    case Field::fixed:
      row.main = makeChild(hwnd(), L"EDIT", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_READONLY | ES_AUTOHSCROLL);
      break;
  }
}

void PropertyRows::filter(const std::wstring& text) {
  Row* heading = nullptr;
  for (Row& row : m_rows) {
    if (!row.setting) {
      heading = &row;
      row.visible = false;
      continue;
    }
    row.visible = text.empty() || containsWord(row.setting->name(), text);
    if (row.visible && heading) heading->visible = true;
  }
  m_scroll = 0;
  arrange();
}

PropertyRows::Row* PropertyRows::rowOf(HWND window) {
  for (Row& row : m_rows)
    if (row.setting && window && (row.main == window || row.extra == window)) return &row;
  return nullptr;
}

LRESULT PropertyRows::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: paint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_SIZE: arrange(); return 0;
    case WM_VSCROLL: onScrollBar(LOWORD(wParam)); return 0;
    case WM_MOUSEWHEEL:
      scrollTo(m_scroll - GET_WHEEL_DELTA_WPARAM(wParam) * (m_theme ? m_theme->px(60) : 60) / WHEEL_DELTA);
      return 0;
    case WM_COMMAND: onCommand(reinterpret_cast<HWND>(lParam), HIWORD(wParam)); return 0;
    case WM_NOTIFY: {
      const auto& notice = *reinterpret_cast<const NMUPDOWN*>(lParam);
      if (notice.hdr.code != UDN_DELTAPOS) return 0;
      if (Row* row = rowOf(notice.hdr.hwndFrom)) step(*row, notice.iDelta > 0 ? 1 : -1);
      return 1;  // its own number stays
    }
    case WM_DRAWITEM: drawField(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
    case WM_MEASUREITEM:
      reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = static_cast<UINT>(m_theme->px(22));
      return TRUE;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      SetBkColor(reinterpret_cast<HDC>(wParam), colour::panel);
      SetTextColor(reinterpret_cast<HDC>(wParam), colour::text);
      return reinterpret_cast<LRESULT>(brushOf(colour::panel));
    default: return Window::onMessage(message, wParam, lParam);
  }
}

}  // namespace avplayer
