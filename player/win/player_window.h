#pragma once

#include "host/view_events.h"
#include "player/options.h"
#include "player/win/block_sender.h"
#include "player/win/control_source.h"
#include "player/win/look.h"
#include "player/win/panel.h"
#include "player/win/preset_store.h"
#include "player/win/sound_thread.h"
#include "player/win/stage.h"
#include "player/win/theme.h"
#include "player/win/transport_bar.h"
#include "player/win/window.h"

#include <windows.h>

#include <shellapi.h>

#include <memory>
#include <string>

namespace avplayer {

/// The program's window: puts the parts together and carries out the menu's commands.
class PlayerWindow final : public Window {
 public:
  explicit PlayerWindow(const Options& options);
  ~PlayerWindow() override;

  /// Empty, or one line for the user on what is missing.
  std::wstring open();
  /// Keys that mean something before they reach the window that has the keyboard. True: the message is dealt with.
  bool translate(MSG& message);

 private:
  /// What lies under the pointer over the view, for the status line.
  struct PointerReading final : avhost::ViewEvents {
    explicit PointerReading(PlayerWindow& owner) : window(owner) {}
    ~PointerReading() override = default;
    void mouseMove(LONG x, LONG y, LONG xValue, LONG yValue) override;
    PlayerWindow& window;
  };

  LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  std::wstring openControls();
  void openParts();
  void takeFirstPlace();
  void openSound();
  void useSound(std::shared_ptr<const Sound> sound, const std::wstring& title, bool loop);
  bool openFile(const std::wstring& file);

  void arrange();
  void changeDpi(int dpi);
  void setFullScreen(bool on);
  void limitSize(MINMAXINFO& limits) const;

  void onTimer();
  void sendBlocks(const SoundThread::State& state, double nowMs);
  void showTransport(const SoundThread::State& state);
  void settle();

  void carryOut(int id);
  void carryOutPlay(int id);
  bool onKey(WPARAM key);
  bool onStageKey(WPARAM key);
  void seekBy(double seconds);
  void seekTo(double place);

  void select(ControlKind control);
  HostedControl& selected() { return m_controls[indexOf(m_stage.selected())]; }
  void showPanel(bool visible);
  void loadPreset(const std::wstring& name);
  void stepPreset(int by);
  void savePreset();
  void deletePreset();
  void showPresets();
  std::vector<std::wstring> presetNames() const;
  void takeSnapshot(bool all);
  void drop(HDROP files);

  void say(const std::wstring& text, bool bad = false);
  void paintStatus(HDC context, const RECT& rect) const;
  void redrawStatus() const;
  void paint();
  void savePicture();

  const Options& m_options;
  ControlSource m_source;  ///< outlives the controls
  std::unique_ptr<Theme> m_theme;
  WindowLayout m_layout;
  LayoutWish m_wish;
  WINDOWPLACEMENT m_placement = {};  ///< before the full screen
  HMENU m_menu = nullptr;
  HACCEL m_keys = nullptr;
  HWND m_lastFocus = nullptr;

  Controls m_controls;
  PointerReading m_pointer{*this};
  Stage m_stage;
  TransportBar m_transport;
  Panel m_panel;
  PresetStore m_presets;
  Preset m_defaults;
  std::wstring m_preset;

  std::shared_ptr<const Sound> m_sound;
  std::unique_ptr<SoundThread> m_playback;
  BlockSender m_blocks;
  std::wstring m_title;
  double m_nextBlockMs = 0;
  double m_settledMs = 0;  ///< until when a paused sound is sent at full pace
  double m_endedMs = 0;    ///< when it came to its end; 0: it has not
  double m_nextRefreshMs = 0;
  bool m_wasPlaying = false;

  std::wstring m_status, m_pointerText, m_levelText, m_outputText, m_timeText;
  bool m_statusBad = false;
  double m_pictureMs = 0;
};

}  // namespace avplayer
