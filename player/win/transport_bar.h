#pragma once

#include "player/win/buttons.h"
#include "player/win/seek_bar.h"
#include "player/win/theme.h"
#include "player/win/window.h"

#include <string>

namespace avplayer {

/// The dark bar under the stage: buttons, the seek bar and the time. Commands go to the parent window.
class TransportBar final : public Window {
 public:
  bool create(HWND parent);
  ~TransportBar() override = default;

  void arrange(const WindowLayout& layout, const Theme& theme);
  /// For a bar that is hidden; `arrange` does it too.
  void setTheme(const Theme& theme);
  SeekBar& seekBar() noexcept { return m_seekBar; }
  void setPlaying(bool playing);
  void setLooping(bool looping);
  void setTime(const std::wstring& time);

 private:
  LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void drawButton(const DRAWITEMSTRUCT& item) const;
  void paint();

  const Theme* m_theme = nullptr;
  WindowLayout m_layout;
  SeekBar m_seekBar;
  HWND m_toStart = nullptr, m_play = nullptr, m_loop = nullptr, m_snapshot = nullptr, m_fullScreen = nullptr;
  HWND m_tips = nullptr;
  bool m_playing = false;
  bool m_looping = false;
  std::wstring m_time;
};

}  // namespace avplayer
