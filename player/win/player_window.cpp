// The window: opening, places and sizes, messages.

#include "player/win/player_window.h"

#include "player/builtin_presets.h"
#include "player/win/commands.h"
#include "player/win/file_sound.h"
#include "player/win/names.h"
#include "player/win/text.h"
#include "player/win/trace.h"

#include <shellapi.h>

#include <algorithm>

namespace avplayer {

namespace {

constexpr UINT_PTR timerId = 1;
constexpr UINT timerMs = 10;
/// When a picture of the window is taken: everything has come to rest, or plays well on.
constexpr double pictureMs = 2000;

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
  if (!m_options.picture.empty()) m_pictureMs = SoundThread::nowMs() + pictureMs;
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

// Messages.

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
