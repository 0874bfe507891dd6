#pragma once

#include "player/win/property_rows.h"
#include "player/win/theme.h"
#include "player/win/window.h"

#include <functional>
#include <string>
#include <vector>

namespace avplayer {

/// The light panel at the right: the choice of a control, the presets, and the properties of the selected control.
class Panel final : public Window {
 public:
  std::function<void(ControlKind)> onSelect;
  /// A preset was chosen from the list.
  std::function<void(const std::wstring&)> onPreset;
  PropertyRows rows;

  bool create(HWND parent);
  ~Panel() override = default;

  void arrange(const Box& box, const Theme& theme);
  /// For a panel that is hidden; `arrange` does it too.
  void setTheme(const Theme& theme);
  /// Shows the properties of that control.
  void select(HostedControl& control);
  void setPresets(const std::vector<std::wstring>& names, const std::wstring& current);
  std::wstring presetName() const { return textOfPreset(); }
  void tell(const RowMessage& message);

  void focusProperties();
  void focusFilter() const;
  void focusPresetName() const;
  bool hasFocus() const { return IsChild(hwnd(), GetFocus()) != FALSE; }
  /// Enter and Escape for the field that has the keyboard.
  bool onKey(WPARAM key);

 private:
  LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void onCommand(int id, WORD notice);
  void onPresetNotice(WORD notice);
  void paint();
  std::wstring textOfPreset() const;

  const Theme* m_theme = nullptr;
  PanelLayout m_layout;
  HWND m_tabs[controlCount] = {};
  HWND m_presetBox = nullptr, m_save = nullptr, m_delete = nullptr, m_filter = nullptr;
  ControlKind m_selected = ControlKind::view;
  RowMessage m_message;
  bool m_updating = false;
};

}  // namespace avplayer
