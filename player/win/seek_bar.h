#pragma once

#include "player/win/theme.h"
#include "player/win/window.h"

#include <functional>

namespace avplayer {

/// Where in the sound it plays, from 0 to 1; the mouse and the arrow keys move it.
class SeekBar final : public Window {
 public:
  /// Called with the place that was asked for, from 0 to 1.
  std::function<void(double)> onSeek;
  /// Called with seconds to go on or back.
  std::function<void(double)> onStep;

  bool create(HWND parent) {
    return Window::create({.className = L"avplayer.SeekBar",
                           .title = L"Position",
                           .style = WS_CHILD | WS_VISIBLE | WS_TABSTOP,
                           .parent = parent});
  }
  ~SeekBar() override = default;

  void setTheme(const Theme& theme) { m_theme = &theme; }
  void setPlace(double place);

 private:
  LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void paint();
  void seekTo(int x);
  bool onKey(WPARAM key);

  const Theme* m_theme = nullptr;
  double m_place = 0;
  int m_shownX = -1;
};

}  // namespace avplayer
