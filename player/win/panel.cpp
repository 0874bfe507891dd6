#include "player/win/panel.h"

#include "player/win/buttons.h"
#include "player/win/commands.h"
#include "player/win/text.h"

#include <commctrl.h>

namespace avplayer {

namespace {

/// What the system's frame adds to the line of a list, at any DPI.
constexpr int listFrame = 6;
constexpr int presetBoxId = 10;
constexpr int filterId = 11;
constexpr int firstTabId = 20;

void setFont(HWND window, HFONT font) { SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE); }

HWND makeChild(HWND parent, const wchar_t* className, DWORD style, int id) {
  return CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, 0, 0, 10, 10, parent,
                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
}

}  // namespace

bool Panel::create(HWND parent) {
  if (!Window::create({.className = L"avplayer.Panel", .exStyle = WS_EX_CONTROLPARENT, .parent = parent})) return false;
  for (const ControlKind kind : allControls)
    m_tabs[indexOf(kind)] =
        makeButton(hwnd(), firstTabId + static_cast<int>(indexOf(kind)), wide(shortName(kind)).c_str());
  m_presetBox = makeChild(hwnd(), L"COMBOBOX", CBS_DROPDOWN | CBS_AUTOHSCROLL | WS_VSCROLL, presetBoxId);
  m_save = makeButton(hwnd(), command::savePreset, L"Save");
  m_delete = makeButton(hwnd(), command::deletePreset, L"Delete");
  m_filter = makeChild(hwnd(), L"EDIT", ES_AUTOHSCROLL, filterId);
  SendMessageW(m_filter, EM_SETCUEBANNER, TRUE, reinterpret_cast<LPARAM>(L"Find a property (Ctrl+F)"));
  return rows.create(hwnd());
}

void Panel::arrange(const Box& box, const Theme& theme) {
  setTheme(theme);
  m_layout = layOutPanel(box.width, box.height, theme.dpi());
  place(box);
  const auto put = [](HWND window, const Box& at) {
    SetWindowPos(window, nullptr, at.x, at.y, at.width, at.height, SWP_NOZORDER | SWP_NOACTIVATE);
  };
  for (std::size_t i = 0; i < controlCount; ++i) put(m_tabs[i], m_layout.tabs[i]);
  SendMessageW(m_presetBox, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), m_layout.presetName.height - listFrame);
  Box list = m_layout.presetName;
  list.height += theme.px(300);
  put(m_presetBox, list);
  SendMessageW(m_presetBox, CB_SETEDITSEL, 0, MAKELPARAM(-1, 0));  // a resize selects its text
  COMBOBOXINFO parts = {};
  parts.cbSize = sizeof parts;
  if (GetComboBoxInfo(m_presetBox, &parts)) {
    // Its text field keeps to the top otherwise.
    const RECT& item = parts.rcItem;
    SetWindowPos(parts.hwndItem, nullptr, item.left + theme.px(4),
                 (m_layout.presetName.height - theme.lineHeight()) / 2, item.right - item.left - theme.px(4),
                 theme.lineHeight(), SWP_NOZORDER | SWP_NOACTIVATE);
  }
  put(m_save, m_layout.savePreset);
  put(m_delete, m_layout.deletePreset);
  put(m_filter, textPlace(theme, m_layout.filter));
  rows.place(m_layout.rows);
  redraw();
}

void Panel::setTheme(const Theme& theme) {
  m_theme = &theme;
  setFont(m_presetBox, theme.text());
  setFont(m_filter, theme.text());
}

void Panel::select(HostedControl& control) {
  m_selected = control.kind();
  for (HWND tab : m_tabs) InvalidateRect(tab, nullptr, FALSE);
  if (m_theme) rows.build(control, *m_theme);
  rows.filter(textOf(m_filter));
  tell({control.className(), control.help()});
}

void Panel::setPresets(const std::vector<std::wstring>& names, const std::wstring& current) {
  m_updating = true;
  SendMessageW(m_presetBox, CB_RESETCONTENT, 0, 0);
  for (const std::wstring& name : names)
    SendMessageW(m_presetBox, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
  const auto found = static_cast<WPARAM>(SendMessageW(m_presetBox, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                                      reinterpret_cast<LPARAM>(current.c_str())));
  SendMessageW(m_presetBox, CB_SETCURSEL, found, 0);
  SetWindowTextW(m_presetBox, current.c_str());
  m_updating = false;
}

void Panel::tell(const RowMessage& message) {
  m_message = message;
  const Box& box = m_layout.help;
  const RECT rect = {0, box.y - 20, box.right() + 20, box.bottom() + 20};
  InvalidateRect(hwnd(), &rect, FALSE);
}

void Panel::focusProperties() { rows.focusFirst(); }
void Panel::focusFilter() const {
  SetFocus(m_filter);
  SendMessageW(m_filter, EM_SETSEL, 0, -1);
}
void Panel::focusPresetName() const {
  SetFocus(m_presetBox);
  SendMessageW(m_presetBox, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
}

std::wstring Panel::textOfPreset() const {
  std::wstring text = textOf(m_presetBox);
  const auto first = text.find_first_not_of(L" \t"), last = text.find_last_not_of(L" \t");
  return first == std::wstring::npos ? std::wstring() : text.substr(first, last - first + 1);
}

bool Panel::onKey(WPARAM key) {
  const HWND focus = GetFocus();
  if (focus == m_filter && key == VK_RETURN) {
    rows.focusFirst();
    return true;
  }
  if (focus == m_filter && key == VK_ESCAPE && GetWindowTextLengthW(m_filter) > 0) {
    SetWindowTextW(m_filter, L"");
    return true;
  }
  const bool presetOpen = SendMessageW(m_presetBox, CB_GETDROPPEDSTATE, 0, 0) != 0;
  if (IsChild(m_presetBox, focus) && key == VK_RETURN && !presetOpen) {
    const std::wstring name = textOfPreset();
    const LRESULT found =
        SendMessageW(m_presetBox, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(name.c_str()));
    if (found >= 0 && onPreset) onPreset(name);
    return true;
  }
  if (presetOpen) return false;
  return rows.onKey(key);
}

LRESULT Panel::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: paint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_COMMAND: onCommand(LOWORD(wParam), HIWORD(wParam)); return 0;
    case WM_DRAWITEM: {
      const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      const bool selected = item.hwndItem == m_tabs[indexOf(m_selected)];
      if (m_theme) drawTextButton(item, *m_theme, selected ? ButtonLook::tabSelected : ButtonLook::plain);
      return TRUE;
    }
    default: return Window::onMessage(message, wParam, lParam);
  }
}

void Panel::onCommand(int id, WORD notice) {
  const bool tab = id >= firstTabId && id < firstTabId + static_cast<int>(controlCount);
  if (tab && notice == BN_CLICKED && onSelect) onSelect(allControls[static_cast<std::size_t>(id - firstTabId)]);
  else if (id == filterId && notice == EN_CHANGE) rows.filter(textOf(m_filter));
  else if (id == filterId && (notice == EN_SETFOCUS || notice == EN_KILLFOCUS)) redraw();  // its frame shows it
  else if (id == presetBoxId) onPresetNotice(notice);
  else if (id >= command::open && notice == BN_CLICKED)
    SendMessageW(GetParent(hwnd()), WM_COMMAND, static_cast<WPARAM>(id), 0);
}

void Panel::onPresetNotice(WORD notice) {
  if (notice != CBN_SELCHANGE || m_updating || !onPreset) return;
  const LRESULT chosen = SendMessageW(m_presetBox, CB_GETCURSEL, 0, 0);
  if (chosen < 0) return;
  std::wstring name(
      static_cast<std::size_t>(SendMessageW(m_presetBox, CB_GETLBTEXTLEN, static_cast<WPARAM>(chosen), 0)), L'\0');
  SendMessageW(m_presetBox, CB_GETLBTEXT, static_cast<WPARAM>(chosen), reinterpret_cast<LPARAM>(name.data()));
  onPreset(name);
}

void Panel::paint() {
  const BufferedPaint buffer(hwnd());
  const RECT& client = buffer.client();
  HDC context = buffer.context();
  fill(context, client, colour::panel);
  if (!m_theme) return;
  fill(context, {0, 0, m_theme->px(1), client.bottom}, colour::panelLine);
  drawFieldFrame(context, *m_theme, m_layout.filter, GetFocus() == m_filter);
  const Box& box = m_layout.help;
  const int top = m_layout.rows.bottom();
  fill(context, {0, top, client.right, client.bottom}, colour::panelSoft);
  fill(context, {0, top, client.right, top + m_theme->px(1)}, colour::panelLine);
  const int line = m_theme->px(18);
  const COLORREF ink = m_message.bad ? colour::bad : colour::text;
  drawText(context, m_theme->bold(), ink, m_message.title.c_str(), {box.x, box.y, box.right(), box.y + line});
  drawText(context, m_theme->text(), m_message.bad ? colour::bad : colour::quiet, m_message.text.c_str(),
           {box.x, box.y + line, box.right(), box.bottom()}, DT_WORDBREAK);
}

}  // namespace avplayer
