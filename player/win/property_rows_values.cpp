// The rows' values: from the control into the fields and back.

#include "player/value_text.h"
#include "player/win/buttons.h"
#include "player/win/dialogs.h"
#include "player/win/property_rows.h"
#include "player/win/text.h"

#include <algorithm>

namespace avplayer {

namespace {

void setText(HWND window, const std::string& text) {
  const std::wstring shown = wide(text);
  if (textOf(window) != shown) SetWindowTextW(window, shown.c_str());
}

COLORREF shownColour(const std::string& text) {
  COLORREF colour = 0;
  OleTranslateColor(parseColour(text).value_or(0), nullptr, &colour);
  return colour;
}

}  // namespace

void PropertyRows::onCommand(HWND window, WORD notice) {
  Row* row = rowOf(window);
  if (!row || m_updating) return;
  const bool isList = row->field == Field::list;
  const bool isButton = window == row->extra || row->field == Field::font || row->field == Field::check;
  const WORD gotKeyboard = isList ? CBN_SETFOCUS : isButton ? BN_SETFOCUS : EN_SETFOCUS;
  if (notice == gotKeyboard) {
    showRow(*row);
    tell(*row);
    if (!isList && !isButton) SendMessageW(window, EM_SETSEL, 0, -1);
    if (isButton) InvalidateRect(window, nullptr, FALSE);
    else InvalidateRect(hwnd(), nullptr, FALSE);  // the frame shows it
  } else if (isList) {
    if (notice == CBN_SELCHANGE) commit(*row);
  } else if (isButton) {
    if (notice == BN_KILLFOCUS) InvalidateRect(window, nullptr, FALSE);
    if (notice != BN_CLICKED) return;
    if (row->field == Field::colour) chooseColour(*row);
    else if (row->field == Field::font) chooseFont(*row);
    else commit(*row);
  } else if (notice == EN_KILLFOCUS) {
    InvalidateRect(hwnd(), nullptr, FALSE);
    if (SendMessageW(window, EM_GETMODIFY, 0, 0)) commit(*row);
  }
}

bool PropertyRows::onKey(WPARAM key) {
  Row* row = rowOf(GetFocus());
  const bool isEdit = row && GetFocus() == row->main && row->field != Field::list && row->field != Field::font;
  if (!isEdit || row->field == Field::check) return false;
  if (key == VK_RETURN) {
    commit(*row);
  } else {
    if (!SendMessageW(row->main, EM_GETMODIFY, 0, 0)) return false;
    showValue(*row, true);
  }
  SendMessageW(row->main, EM_SETSEL, 0, -1);
  return true;
}

void PropertyRows::focusFirst() {
  for (const Row& row : m_rows) {
    if (!row.setting || !row.visible) continue;
    SetFocus(row.main);
    return;
  }
}

/// One step of the arrows, from the value in the field.
void PropertyRows::step(Row& row, int direction) {
  const std::int32_t by = row.setting->rule ? row.setting->rule->step : 1;
  const std::string text = fieldText(row);
  if (row.setting->property->kind == ValueKind::real) {
    if (const auto value = parseReal(text)) put(row, formatReal(*value + static_cast<float>(direction) * 0.5f));
    return;
  }
  const auto value = parseWhole(text);
  if (value)
    put(row, formatWhole(static_cast<std::int32_t>(
                 std::clamp<std::int64_t>(std::int64_t{*value} + direction * by, INT32_MIN, INT32_MAX))));
  if (GetFocus() == row.main) SendMessageW(row.main, EM_SETSEL, 0, -1);
}

std::string PropertyRows::fieldText(const Row& row) const {
  switch (row.field) {
    case Field::check: return formatBoolean(SendMessageW(row.main, BM_GETCHECK, 0, 0) == BST_CHECKED);
    case Field::list: {
      const auto chosen = static_cast<std::size_t>(SendMessageW(row.main, CB_GETCURSEL, 0, 0));
      const auto choices = row.setting->rule->choices;
      return chosen < choices.size() ? formatWhole(choices[chosen].value) : row.shown;
    }
    default: return narrow(textOf(row.main));
  }
}

void PropertyRows::commit(Row& row) {
  if (row.field != Field::fixed) put(row, fieldText(row));
}

/// Puts a value and says what came of it. A refused one gives way to the old one.
void PropertyRows::put(Row& row, const std::string& text) {
  const Setting& setting = *row.setting;
  const Answer answer = m_control->put(setting, text);
  refresh();
  showValue(row, true);
  if (onPut) onPut(setting, text, answer);
  if (!onMessageText) return;
  const std::wstring name = setting.name();
  if (!answer.sent) {
    onMessageText({name + L" stays", answer.text, true});
  } else if (FAILED(answer.result)) {
    onMessageText({name + L" refuses " + wide(text) + L": " + hexText(answer.result), answer.text, true});
  } else {
    const bool number = setting.property->kind == ValueKind::whole && parseWhole(text) != parseWhole(row.shown);
    if (number)
      onMessageText({name, L"Took " + wide(row.shown) + L" instead of " + wide(text) + L". " + setting.property->help});
    else tell(row);
  }
}

void PropertyRows::tell(const Row& row) {
  if (!onMessageText) return;
  const Property& property = *row.setting->property;
  onMessageText({row.setting->name(), property.writable ? property.help : property.help + L" (read only)"});
}

void PropertyRows::refresh() {
  for (Row& row : m_rows) showValue(row, false);
}

/// Brings the control's value into the field. Unless forced, a text that is being typed stays.
void PropertyRows::showValue(Row& row, bool force) {
  if (!row.setting) return;
  std::string text = row.shown;
  if (row.setting->property->readable && FAILED(m_control->get(*row.setting, text).result)) text.clear();
  const bool edit = row.field == Field::number || row.field == Field::text || row.field == Field::colour;
  const bool typing = edit && GetFocus() == row.main && SendMessageW(row.main, EM_GETMODIFY, 0, 0) != 0;
  if (!force && (typing || text == row.shown)) return;
  row.shown = text;
  m_updating = true;
  switch (row.field) {
    case Field::check:
      SendMessageW(row.main, BM_SETCHECK, parseBoolean(text).value_or(false) ? BST_CHECKED : BST_UNCHECKED, 0);
      break;
    case Field::list: {
      const auto choices = row.setting->rule->choices;
      const auto value = parseWhole(text);
      int chosen = -1;
      for (std::size_t i = 0; i < choices.size(); ++i)
        if (value == choices[i].value) chosen = static_cast<int>(i);
      SendMessageW(row.main, CB_SETCURSEL, static_cast<WPARAM>(chosen), 0);
      break;
    }
    default:
      setText(row.main, text);
      if (edit) SendMessageW(row.main, EM_SETMODIFY, FALSE, 0);
      if (row.extra && row.field == Field::colour) InvalidateRect(row.extra, nullptr, FALSE);
      if (row.field == Field::font) InvalidateRect(row.main, nullptr, FALSE);
      break;
  }
  m_updating = false;
}

void PropertyRows::chooseColour(Row& row) {
  if (const auto chosen = askForColour(hwnd(), shownColour(row.shown))) put(row, formatColour(*chosen));
}

void PropertyRows::chooseFont(Row& row) {
  const FontText before = parseFont(row.shown).value_or(FontText{"Arial"});
  if (const auto chosen = askForFont(hwnd(), before)) put(row, formatFont(*chosen));
}

void PropertyRows::drawField(const DRAWITEMSTRUCT& item) {
  const Row* row = rowOf(item.hwndItem);
  if (!row || !m_theme) return;
  if (item.CtlType == ODT_COMBOBOX) drawListItem(item, *m_theme);
  else if (row->field == Field::colour) drawSwatch(item, *m_theme, shownColour(row->shown));
  else drawTextButton(item, *m_theme, ButtonLook::left);
}

}  // namespace avplayer
