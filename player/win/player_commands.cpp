// The window: what its commands and keys do, presets and snapshots.

#include "player/win/player_window.h"

#include "player/win/commands.h"
#include "player/win/dialogs.h"
#include "player/win/names.h"
#include "player/win/snapshot.h"
#include "player/win/text.h"
#include "player/win/trace.h"

#include <algorithm>
#include <cmath>

namespace avplayer {

namespace {

constexpr double seekStepS = 5;

}  // namespace

// Commands.

void PlayerWindow::carryOut(int id) {
  if (id >= command::firstPreset) {
    const std::vector<std::wstring> names = presetNames();
    const auto index = static_cast<std::size_t>(id - command::firstPreset);
    if (index < names.size()) loadPreset(names[index]);
    return;
  }
  switch (id) {
    case command::open:
      if (const auto file = askForWavFile(hwnd()); file && openFile(*file)) m_playback->play();
      break;
    case command::demonstration:
      useSound(std::make_shared<Sound>(demonstrationSound()), L"Demonstration sound", true);
      m_playback->play();
      break;
    case command::snapshot: takeSnapshot(false); break;
    case command::snapshotAll: takeSnapshot(true); break;
    case command::quit: PostMessageW(hwnd(), WM_CLOSE, 0, 0); break;
    case command::selectView: select(ControlKind::view); break;
    case command::selectMeter: select(ControlKind::meter); break;
    case command::selectAnalyser: select(ControlKind::analyser); break;
    case command::nextControl: select(allControls[(indexOf(m_stage.selected()) + 1) % controlCount]); break;
    case command::previousControl:
      select(allControls[(indexOf(m_stage.selected()) + controlCount - 1) % controlCount]);
      break;
    case command::nextPreset: stepPreset(1); break;
    case command::previousPreset: stepPreset(-1); break;
    case command::presetName:
      showPanel(true);
      m_panel.focusPresetName();
      break;
    case command::savePreset: savePreset(); break;
    case command::deletePreset: deletePreset(); break;
    case command::togglePanel: showPanel(!m_wish.panel); break;
    case command::findProperty:
      showPanel(true);
      m_panel.focusFilter();
      break;
    case command::switchPane:
      if (m_panel.hasFocus()) {
        SetFocus(m_stage.hwnd());
      } else {
        showPanel(true);
        m_panel.focusProperties();
      }
      break;
    case command::fullScreen: setFullScreen(!m_wish.fullScreen); break;
    case command::keys: MessageBoxW(hwnd(), keyHelp().c_str(), programName, MB_OK); break;
    case command::toStage: SetFocus(m_stage.hwnd()); break;
    default: carryOutPlay(id); break;
  }
}

void PlayerWindow::carryOutPlay(int id) {
  switch (id) {
    case command::playPause: {
      const bool playing = m_playback->state().playing;
      if (playing) m_playback->pause();
      else m_playback->play();
      trace(playing ? L"paused" : L"playing");
      break;
    }
    case command::toStart: seekTo(0); break;
    case command::back: seekBy(-seekStepS); break;
    case command::forward: seekBy(seekStepS); break;
    case command::loop: m_playback->setLoop(!m_playback->state().looping); break;
    default: break;
  }
}

void PlayerWindow::seekTo(double place) {
  m_playback->seek(std::llround(place * static_cast<double>(m_sound->frameCount())));
  settle();
}

void PlayerWindow::seekBy(double seconds) {
  m_playback->seek(m_playback->state().position + std::llround(seconds * m_sound->sampleRateHz));
  settle();
}

bool PlayerWindow::translate(MSG& message) {
  if (GetActiveWindow() != hwnd()) return false;
  if (TranslateAcceleratorW(hwnd(), m_keys, &message)) return true;
  if (message.message == WM_KEYDOWN && onKey(message.wParam)) return true;
  return IsDialogMessageW(hwnd(), &message) != FALSE;
}

bool PlayerWindow::onKey(WPARAM key) {
  const HWND focus = GetFocus();
  if (focus == m_stage.hwnd() || IsChild(m_stage.hwnd(), focus)) return onStageKey(key);
  if (key != VK_RETURN && key != VK_ESCAPE) return false;
  if (SendMessageW(focus, CB_GETDROPPEDSTATE, 0, 0) || SendMessageW(GetParent(focus), CB_GETDROPPEDSTATE, 0, 0))
    return false;
  if (m_panel.hasFocus() && m_panel.onKey(key)) return true;
  wchar_t name[16] = {};
  GetClassNameW(focus, name, ARRAYSIZE(name));
  if (key == VK_ESCAPE) SetFocus(m_stage.hwnd());
  else if (lstrcmpiW(name, L"Button") == 0) SendMessageW(focus, BM_CLICK, 0, 0);
  return true;
}

bool PlayerWindow::onStageKey(WPARAM key) {
  switch (key) {
    case VK_SPACE: carryOut(command::playPause); return true;
    case VK_LEFT: seekBy(-seekStepS); return true;
    case VK_RIGHT: seekBy(seekStepS); return true;
    case VK_HOME: seekTo(0); return true;
    case VK_END: seekTo(1); return true;
    case VK_ESCAPE: setFullScreen(false); return true;
    case '1':
    case '2':
    case '3': select(allControls[key - '1']); return true;
    default: return false;
  }
}

void PlayerWindow::select(ControlKind control) {
  const bool inPanel = m_panel.hasFocus();
  m_stage.select(control);
  m_panel.select(selected());
  if (inPanel) m_panel.focusProperties();
  trace(std::wstring(L"selected ") + fileNames[indexOf(control)]);
}

void PlayerWindow::showPanel(bool visible) {
  if (!visible && m_panel.hasFocus()) SetFocus(m_stage.hwnd());
  if (visible) setFullScreen(false);
  if (visible == m_wish.panel && m_layout.stage.width > 0) return;
  m_wish.panel = visible;
  CheckMenuItem(m_menu, command::togglePanel, static_cast<UINT>(visible ? MF_CHECKED : MF_UNCHECKED));
  arrange();
}

// Presets and snapshots.

std::vector<std::wstring> PlayerWindow::presetNames() const {
  std::vector<std::wstring> names;
  for (const Preset& preset : m_presets.presets()) names.push_back(wide(preset.name));
  return names;
}

void PlayerWindow::showPresets() {
  m_panel.setPresets(presetNames(), m_preset);
  fillPresetMenu(m_menu, presetNames(), m_preset);
}

void PlayerWindow::loadPreset(const std::wstring& name) {
  const Preset* preset = findPreset(m_presets.presets(), narrow(name));
  if (!preset) return say(L"No preset is called \"" + name + L"\".", true);
  const LookProblems problems = applyLook(m_controls, m_defaults, *preset, m_theme->dpi());
  m_preset = name;
  showPresets();
  m_panel.rows.refresh();
  settle();
  trace(L"preset " + name);
  for (const std::wstring& problem : problems) trace(L"problem " + problem);
  if (problems.empty()) say(L"Preset " + name);
  else
    say(problems.front() +
            (problems.size() > 1 ? L" (and " + std::to_wstring(problems.size() - 1) + L" more)" : std::wstring()),
        true);
}

void PlayerWindow::stepPreset(int by) {
  const std::vector<std::wstring> names = presetNames();
  const auto count = static_cast<std::ptrdiff_t>(names.size());
  const std::ptrdiff_t at = std::find(names.begin(), names.end(), m_preset) - names.begin();
  loadPreset(names[static_cast<std::size_t>(((at == count ? -1 : at) + by + count) % count)]);
}

void PlayerWindow::savePreset() {
  const std::wstring name = m_panel.presetName();
  const std::wstring problem = m_presets.save(captureLook(m_controls, narrow(name), m_theme->dpi()));
  trace(L"saved " + name + (problem.empty() ? problem : L" " + problem));
  if (!problem.empty()) {
    showPanel(true);
    m_panel.focusPresetName();
    return say(problem, true);
  }
  m_preset = name;
  showPresets();
  say(L"Saved as \"" + name + L"\" in " + m_presets.file().wstring());
}

void PlayerWindow::deletePreset() {
  const std::wstring name = m_panel.presetName();
  const std::wstring problem = m_presets.remove(narrow(name));
  trace(L"deleted " + name + (problem.empty() ? problem : L" " + problem));
  if (!problem.empty()) return say(problem, true);
  if (m_preset == name) m_preset.clear();
  showPresets();
  say(L"Deleted \"" + name + L"\"");
}

void PlayerWindow::takeSnapshot(bool all) {
  const std::wstring name = all ? L"all" : fileNames[indexOf(m_stage.selected())];
  const std::filesystem::path file = newSnapshotFile(m_options.snapshotFolder, name);
  const bool saved = all ? saveStage(m_stage, m_controls, file) : saveSnapshot(selected(), file);
  say((saved ? L"Snapshot: " : L"Cannot write ") + file.wstring(), !saved);
  trace((saved ? L"snapshot " : L"problem ") + file.wstring());
}

void PlayerWindow::drop(HDROP files) {
  wchar_t path[1024] = {};
  const bool named = DragQueryFileW(files, 0, path, ARRAYSIZE(path)) != 0;
  DragFinish(files);
  if (named && openFile(path)) m_playback->play();
}

}  // namespace avplayer
