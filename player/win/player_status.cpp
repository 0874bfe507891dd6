// The window: what happens as time passes, and what the status line tells of it.

#include "player/win/player_window.h"

#include "player/win/snapshot.h"
#include "player/win/trace.h"

#include <algorithm>
#include <cwchar>

namespace avplayer {

namespace {

/// The pace of the blocks.
constexpr double blockMs = 40;
/// A paused sound is sent at that pace for so long after a change, until smoothed curves and ticks have come to rest.
constexpr double settleMs = 1500;
/// From then on seldom, and only because the analyser's columns fall half a second after the last block.
constexpr double pausedBlockMs = 200;
constexpr double refreshMs = 500;

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

}  // namespace

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

}  // namespace avplayer
