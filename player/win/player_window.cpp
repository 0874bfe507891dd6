#include "player/win/player_window.h"

#include "player/builtin_presets.h"
#include "player/win/commands.h"
#include "player/win/dialogs.h"
#include "player/win/file_sound.h"
#include "player/win/snapshot.h"
#include "player/win/text.h"
#include "player/win/trace.h"

#include <shellapi.h>

#include <algorithm>
#include <cmath>
#include <cwchar>

namespace avplayer {

namespace {

constexpr wchar_t programName[] = L"QELAudioVisualization4 Player";
constexpr UINT_PTR timerId = 1;
constexpr UINT timerMs = 10;
/// The pace of the blocks.
constexpr double blockMs = 40;
/// A paused sound is sent at that pace for so long after a change, until smoothed curves and ticks have come to rest.
constexpr double settleMs = 1500;
/// From then on seldom, and only because the analyser's columns fall half a second after the last block.
constexpr double pausedBlockMs = 200;
constexpr double refreshMs = 500;
constexpr double seekStepS = 5;
constexpr const wchar_t* fileNames[controlCount] = {L"view", L"meter", L"analyser"};

std::wstring formatTime(double seconds) {
  const int tenths = static_cast<int>(seconds * 10);
  wchar_t text[32];
  wsprintfW(text, L"%d:%02d.%d", tenths / 600, tenths / 10 % 60, tenths % 10);
  return text;
}

const wchar_t* outputText(Output output) {
  switch (output) {
    case Output::device: return L"Sound device";
    case Output::silent: return L"Silent";
    case Output::none: return L"No sound device";
    default: return L"Sound device lost";
  }
}

std::wstring boxText(const wchar_t* name, HWND window) {
  RECT rect = {};
  GetClientRect(window, &rect);
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&rect), 2);
  wchar_t text[96];
  wsprintfW(text, L"box %s %d %d %d %d", name, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top);
  return text;
}

}  // namespace

PlayerWindow::PlayerWindow(const Options& options)
    : m_options(options), m_wish{options.panel, false}, m_presets(options.presetFile) {}

PlayerWindow::~PlayerWindow() {
  m_playback.reset();  // first the sound, then those who show it
  m_pointer.disconnect();
  for (HostedControl& control : m_controls) control.close();
  if (m_keys) DestroyAcceleratorTable(m_keys);
  if (m_menu && hwnd()) SetMenu(hwnd(), nullptr);
  if (m_menu) DestroyMenu(m_menu);
}

// Opening.

std::wstring PlayerWindow::open() {
  if (FAILED(m_source.open(m_options.registered)))
    return L"QELAudioVisualization4.dll cannot be loaded: it has to lie beside this program, in the same architecture.";
  m_menu = makeMenu();
  m_keys = makeAccelerators();
  Creation creation{
      .className = L"avplayer.Player", .title = programName, .style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN};
  creation.box = {CW_USEDEFAULT, 0, 640, 480};
  if (!create(creation)) return L"The window cannot be made.";
  m_theme = std::make_unique<Theme>(dpiOf(hwnd()));
  SetMenu(hwnd(), m_menu);
  openParts();
  const std::wstring problem = openControls();
  if (!problem.empty()) return problem;

  takeFirstPlace();
  m_defaults = captureLook(m_controls, std::string(defaultsPreset), m_theme->dpi());
  const std::wstring preset = m_options.preset.empty() ? wide(firstPreset) : m_options.preset;
  showPresets();
  showPanel(m_options.panel);
  loadPreset(preset);
  for (const ControlKind kind : allControls)
    if (m_options.selected == fileNames[indexOf(kind)]) m_stage.select(kind);
  select(m_stage.selected());
  openSound();
  DragAcceptFiles(hwnd(), TRUE);
  ShowWindow(hwnd(), SW_SHOWNORMAL);
  if (m_options.fullScreen) setFullScreen(true);
  SetFocus(m_stage.hwnd());
  SetTimer(hwnd(), timerId, timerMs, nullptr);
  if (!m_presets.problem().empty()) say(m_presets.problem(), true);
  trace(L"ready");
  return {};
}

/// The size that was asked for, as far as the screen has room, in the screen's middle.
void PlayerWindow::takeFirstPlace() {
  RECT frame = {0, 0, m_theme->px(m_options.width96), m_theme->px(m_options.height96)};
  AdjustWindowRectEx(&frame, WS_OVERLAPPEDWINDOW, TRUE, 0);
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoW(MonitorFromWindow(hwnd(), MONITOR_DEFAULTTONEAREST), &monitor);
  const RECT& room = monitor.rcWork;
  const LONG width = std::min(frame.right - frame.left, room.right - room.left);
  const LONG height = std::min(frame.bottom - frame.top, room.bottom - room.top);
  SetWindowPos(hwnd(), nullptr, (room.left + room.right - width) / 2, (room.top + room.bottom - height) / 2, width,
               height, SWP_NOZORDER);
}

std::wstring PlayerWindow::openControls() {
  const CLSID* classes[] = {&CLSID_CAudioVisualization4Type1, &CLSID_CAudioVisualization4Type2,
                            &CLSID_CAudioVisualization4Type3};
  for (const ControlKind kind : allControls) {
    Microsoft::WRL::ComPtr<IAudioVisualizationTemplate> control;
    HRESULT result = m_source.create(*classes[indexOf(kind)], control);
    if (SUCCEEDED(result)) result = m_controls[indexOf(kind)].open(kind, control, m_stage.hwnd());
    if (FAILED(result))
      return L"The " + std::wstring(fileNames[indexOf(kind)]) + L" cannot be made: " + hexText(result);
  }
  m_pointer.connect(&m_controls[indexOf(ControlKind::view)].control());
  return {};
}

void PlayerWindow::openParts() {
  m_stage.create(hwnd());
  m_transport.create(hwnd());
  m_panel.create(hwnd());
  m_stage.onSelect = [this](ControlKind kind) { select(kind); };
  m_panel.onSelect = [this](ControlKind kind) { select(kind); };
  m_panel.onPreset = [this](const std::wstring& name) { loadPreset(name); };
  m_panel.rows.onMessageText = [this](const RowMessage& message) {
    m_panel.tell(message);
    trace((message.bad ? L"refused " : L"row ") + message.title + L" | " + message.text);
  };
  m_panel.rows.onPut = [this](const Setting& setting, std::string_view text, const Answer& answer) {
    trace(L"put " + setting.name() + L" " + wide(text) + L" " + hexText(answer.result));
    settle();
  };
  m_transport.seekBar().onSeek = [this](double place) { seekTo(place); };
  m_transport.seekBar().onStep = [this](double seconds) { seekBy(seconds); };
}

void PlayerWindow::openSound() {
  m_playback = std::make_unique<SoundThread>(m_options.silent);
  const bool loaded = !m_options.file.empty() && openFile(m_options.file);
  if (!loaded)
    useSound(std::make_shared<Sound>(demonstrationSound()), L"Demonstration sound", m_options.loop.value_or(true));
  m_playback->seek(static_cast<std::int64_t>(m_options.atS * m_sound->sampleRateHz));
  if (!m_options.paused) m_playback->play();
  if (!m_options.picture.empty()) m_pictureMs = SoundThread::nowMs() + settleMs + 500;
}

bool PlayerWindow::openFile(const std::wstring& file) {
  const FileSound read = readSound(file);
  const std::wstring name = std::filesystem::path(file).filename().wstring();
  if (!read.sound) {
    say(name + L": " + read.problem, true);
    trace(L"problem " + read.problem);
    return false;
  }
  useSound(read.sound, name + L"  \x00B7  " + read.format, m_options.loop.value_or(false));
  say({});
  return true;
}

void PlayerWindow::useSound(std::shared_ptr<const Sound> sound, const std::wstring& title, bool loop) {
  m_sound = std::move(sound);
  m_title = title;
  m_playback->load(m_sound);
  m_playback->setLoop(loop);
  SetWindowTextW(hwnd(), (title.substr(0, title.find(L"  ")) + L" - " + programName).c_str());
  settle();
  redrawStatus();
}

// Places and sizes.

void PlayerWindow::arrange() {
  if (!m_theme || !m_stage.hwnd() || IsIconic(hwnd())) return;
  RECT client = {};
  GetClientRect(hwnd(), &client);
  m_layout = layOutWindow(client.right, client.bottom, m_theme->dpi(), m_wish);
  m_stage.arrange(m_layout, *m_theme, m_controls);
  const bool full = m_wish.fullScreen;
  m_transport.show(!full);
  m_panel.show(!full && m_wish.panel);
  if (!full) m_transport.arrange(m_layout, *m_theme);
  if (!full && m_wish.panel) m_panel.arrange(m_layout.panel, *m_theme);
  settle();
  InvalidateRect(hwnd(), nullptr, FALSE);
  for (HostedControl& control : m_controls)
    if (control.container().window()) trace(boxText(fileNames[indexOf(control.kind())], control.container().window()));
  trace(boxText(L"panel", m_panel.hwnd()));
  trace(boxText(L"transport", m_transport.hwnd()));
  trace(boxText(L"client", hwnd()));
}

/// Lengths of the controls are pixels: they grow with the display, as those of a preset do.
void PlayerWindow::changeDpi(int dpi) {
  const Preset look = captureLook(m_controls, {}, m_theme->dpi());
  const std::unique_ptr<Theme> before = std::move(m_theme);  // windows hold its fonts until they have the new ones
  m_theme = std::make_unique<Theme>(dpi);
  m_transport.setTheme(*m_theme);
  m_panel.setTheme(*m_theme);
  arrange();
  applyLook(m_controls, m_defaults, look, dpi);
  m_panel.select(selected());
}

void PlayerWindow::limitSize(MINMAXINFO& limits) const {
  if (!m_theme || m_wish.fullScreen) return;
  RECT frame = {0, 0, m_theme->px(smallestWidth96), m_theme->px(smallestHeight96)};
  AdjustWindowRectEx(&frame, WS_OVERLAPPEDWINDOW, TRUE, 0);
  limits.ptMinTrackSize = {frame.right - frame.left, frame.bottom - frame.top};
}

void PlayerWindow::setFullScreen(bool on) {
  if (on == m_wish.fullScreen) return;
  m_wish.fullScreen = on;
  if (on) {
    m_placement.length = sizeof m_placement;
    GetWindowPlacement(hwnd(), &m_placement);
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(hwnd(), MONITOR_DEFAULTTONEAREST), &monitor);
    const RECT& screen = monitor.rcMonitor;
    SetMenu(hwnd(), nullptr);
    SetWindowLongPtrW(hwnd(), GWL_STYLE, static_cast<LONG_PTR>(WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN));
    SetWindowPos(hwnd(), HWND_TOP, screen.left, screen.top, screen.right - screen.left, screen.bottom - screen.top,
                 SWP_FRAMECHANGED);
    SetFocus(m_stage.hwnd());
  } else {
    SetWindowLongPtrW(hwnd(), GWL_STYLE, static_cast<LONG_PTR>(WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_CLIPCHILDREN));
    SetMenu(hwnd(), m_menu);
    SetWindowPlacement(hwnd(), &m_placement);
    SetWindowPos(hwnd(), nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_FRAMECHANGED);
  }
  arrange();
}

// Time.

void PlayerWindow::settle() {
  const double nowMs = SoundThread::nowMs();
  m_settledMs = nowMs + settleMs;
  m_nextBlockMs = std::min(m_nextBlockMs, nowMs + blockMs);
}

void PlayerWindow::onTimer() {
  if (!m_playback) return;
  const double nowMs = SoundThread::nowMs();
  const SoundThread::State state = m_playback->state();
  if (nowMs >= m_nextBlockMs) {
    // Late blocks are not made up for.
    const double paceMs = state.playing || nowMs < m_settledMs ? blockMs : pausedBlockMs;
    m_nextBlockMs = std::max(m_nextBlockMs, nowMs - paceMs) + paceMs;
    sendBlocks(state, nowMs);
    showTransport(state);
  }
  if (nowMs >= m_nextRefreshMs && m_wish.panel) {
    m_nextRefreshMs = nowMs + refreshMs;
    m_panel.rows.refresh();  // blocks change some properties
  }
  if (m_pictureMs > 0 && nowMs >= m_pictureMs) savePicture();
}

void PlayerWindow::sendBlocks(const SoundThread::State& state, double nowMs) {
  const bool atEnd = !state.playing && state.position >= m_sound->frameCount();
  if (m_wasPlaying && !state.playing) settle();
  if (m_wasPlaying && atEnd) m_endedMs = nowMs;
  if (!atEnd) m_endedMs = 0;
  m_wasPlaying = state.playing;
  if (atEnd && nowMs > m_settledMs) return;
  // Behind the end comes silence, in which bars and ticks fall.
  const double behindEndMs = m_endedMs > 0 ? nowMs - m_endedMs : 0;
  m_blocks.send(m_controls, *m_sound,
                state.position + static_cast<std::int64_t>(behindEndMs * m_sound->sampleRateHz / 1000));
}

void PlayerWindow::showTransport(const SoundThread::State& state) {
  const double atS = static_cast<double>(state.position) / m_sound->sampleRateHz;
  m_transport.setPlaying(state.playing);
  m_transport.setLooping(state.looping);
  m_transport.seekBar().setPlace(atS / m_sound->lengthS());
  const std::wstring time = formatTime(atS) + L" / " + formatTime(m_sound->lengthS());
  m_transport.setTime(time);
  const double levelDb =
      peakLevelDb(*m_sound, state.position, static_cast<std::int64_t>(m_sound->sampleRateHz * blockMs / 1000));
  wchar_t level[32];
  std::swprintf(level, ARRAYSIZE(level), levelDb <= -100 ? L"silence" : L"%.1f dB", levelDb);
  const bool same = m_timeText == time && m_levelText == level && m_outputText == outputText(state.output);
  if (m_outputText != outputText(state.output)) trace(std::wstring(L"output ") + outputText(state.output));
  m_timeText = time;
  m_levelText = level;
  m_outputText = outputText(state.output);
  if (!same) redrawStatus();
}

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
    say(problems.front() + (problems.size() > 1 ? L" (and " + std::to_wstring(problems.size() - 1) + L" more)" : L""),
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
  trace(L"saved " + name + (problem.empty() ? L"" : L" " + problem));
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
  trace(L"deleted " + name + (problem.empty() ? L"" : L" " + problem));
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

void PlayerWindow::savePicture() {
  m_pictureMs = 0;
  RedrawWindow(hwnd(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
  if (!saveWindow(hwnd(), m_options.picture)) trace(L"problem " + m_options.picture);
  PostMessageW(hwnd(), WM_CLOSE, 0, 0);
}

// The status line.

void PlayerWindow::PointerReading::mouseMove(LONG, LONG, LONG xValue, LONG yValue) {
  const bool waveform = window.m_controls[indexOf(ControlKind::view)].number(L"VisualizationType") == 1;
  window.m_pointerText = (waveform ? L"sample " + std::to_wstring(xValue) : std::to_wstring(xValue) + L" Hz") + L", " +
                         std::to_wstring(yValue) + L" dB";
  window.redrawStatus();
}

void PlayerWindow::say(const std::wstring& text, bool bad) {
  m_status = text;
  m_statusBad = bad;
  redrawStatus();
}

void PlayerWindow::redrawStatus() const {
  const Box& box = m_layout.status;
  const RECT rect = {box.x, box.y, box.right(), box.bottom()};
  InvalidateRect(hwnd(), &rect, FALSE);
}

void PlayerWindow::paintStatus(HDC context, const RECT& rect) const {
  fill(context, rect, colour::panelSoft);
  fill(context, {rect.left, rect.top, rect.right, rect.top + m_theme->px(1)}, colour::panelLine);
  RECT place = {rect.left + m_theme->px(12), rect.top + m_theme->px(1), rect.right - m_theme->px(12), rect.bottom};
  const auto right = [&](const std::wstring& text, int width96) {
    const RECT part = {place.right - m_theme->px(width96), place.top, place.right, place.bottom};
    if (part.left < place.left + m_theme->px(120)) return;
    drawText(context, m_theme->text(), colour::quiet, text.c_str(), part, DT_RIGHT);
    place.right = part.left - m_theme->px(8);
  };
  right(m_outputText, 112);
  right(m_levelText, 64);
  right(m_timeText, 104);
  right(m_pointerText, 128);
  const std::wstring text = m_status.empty() ? m_title : m_statusBad ? m_status : m_title + L"  \x00B7  " + m_status;
  drawText(context, m_theme->text(), m_statusBad ? colour::bad : colour::text, text.c_str(), place);
}

void PlayerWindow::paint() {
  PAINTSTRUCT paintStruct;
  HDC target = BeginPaint(hwnd(), &paintStruct);
  const Box& box = m_layout.status;
  if (m_theme && box.width > 0) {
    // In one piece, so that it does not flicker 25 times a second.
    HDC memory = CreateCompatibleDC(target);
    HBITMAP bitmap = CreateCompatibleBitmap(target, box.width, box.height);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    paintStatus(memory, {0, 0, box.width, box.height});
    BitBlt(target, box.x, box.y, box.width, box.height, memory, 0, 0, SRCCOPY);
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
  }
  EndPaint(hwnd(), &paintStruct);
}

LRESULT PlayerWindow::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr UINT dpiChanged = 0x02E0;  // WM_DPICHANGED, of Windows 8.1
  switch (message) {
    case WM_PAINT: paint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_SIZE: arrange(); return 0;
    case WM_GETMINMAXINFO: limitSize(*reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
    case WM_TIMER: onTimer(); return 0;
    case WM_COMMAND: carryOut(LOWORD(wParam)); return 0;
    case WM_DROPFILES: drop(reinterpret_cast<HDROP>(wParam)); return 0;
    case WM_ACTIVATE:
      if (LOWORD(wParam) == WA_INACTIVE) m_lastFocus = GetFocus();
      break;
    case WM_SETFOCUS: SetFocus(IsChild(hwnd(), m_lastFocus) ? m_lastFocus : m_stage.hwnd()); return 0;
    case dpiChanged: {
      const RECT& wanted = *reinterpret_cast<const RECT*>(lParam);
      SetWindowPos(hwnd(), nullptr, wanted.left, wanted.top, wanted.right - wanted.left, wanted.bottom - wanted.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
      changeDpi(LOWORD(wParam));
      return 0;
    }
    case WM_DESTROY:
      KillTimer(hwnd(), timerId);
      PostQuitMessage(0);
      return 0;
    default: break;
  }
  return Window::onMessage(message, wParam, lParam);
}

}  // namespace avplayer
