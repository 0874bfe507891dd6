#pragma once

#include "player/win/look.h"
#include "player/win/theme.h"
#include "player/win/window.h"

#include <functional>

namespace avplayer {

/// The dark ground with the three controls, their names and the frame around the selected one. Holds the keyboard when
/// no field has it.
class Stage final : public Window {
 public:
  /// Called when a press of the mouse selects a control.
  std::function<void(ControlKind)> onSelect;

  bool create(HWND parent) {
    return Window::create({.className = L"avplayer.Stage", .style = stageStyle, .parent = parent});
  }
  ~Stage() override = default;

  /// Boxes are those of the parent's client area; `layout.stage` becomes the window's own place.
  void arrange(const WindowLayout& layout, const Theme& theme, Controls& controls);
  void select(ControlKind control);
  ControlKind selected() const noexcept { return m_selected; }

  /// Draws the ground and the names, without the controls.
  void drawGround(HDC context, const RECT& rect) const;

 private:
  static constexpr DWORD stageStyle = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | WS_TABSTOP;

  LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void selectAt(int x, int y);

  const Theme* m_theme = nullptr;
  WindowLayout m_layout;
  ControlKind m_selected = ControlKind::view;
};

}  // namespace avplayer
