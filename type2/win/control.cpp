#include "type2/win/control.h"

#include "common/win/audio_call.h"
#include "common/win/audio_input.h"
#include "common/win/wide_text.h"
#include "type2/geometry.h"
#include "type2/spoken_value.h"

#include <oleacc.h>

#include <cstdint>
#include <span>
#include <vector>

namespace av::type2 {

namespace {

const ole::ControlInfo controlInfo{CLSID_CAudioVisualization4Type2,
                                   L"CAudioVisualization4Type2 Object",
                                   OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
                                       OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST,
                                   true,  // it paints itself from its timer, into a window of its own
                                   {},
                                   L"Level meter",
                                   ROLE_SYSTEM_INDICATOR};

constexpr std::uint32_t repaintPeriodMs = 50;
constexpr std::int32_t defaultLineCount = 100;
/// Windows are no longer on a side.
constexpr int longestSidePx = 32767;

}  // namespace

CAudioVisualization4Type2::CAudioVisualization4Type2(IUnknown* outer)
    : Control(outer, controlInfo), Dual(static_cast<ole::Object&>(*this)) {
  m_list.StartFall(m_settings.tickReleaseTimeMs);
  m_list.lines().SetHoldTime(m_settings.tickDelayTimeMs);  // in vain: the lines come after, and hold for 1000 ms
  m_list.SetTickRunning(m_settings.tickVisible != 0);
  m_list.lines().SetLineCount(defaultLineCount);
  m_timer.allowStartOnAnyThread();  // blocks start it, on whatever thread they come
}

void CAudioVisualization4Type2::tearDown() noexcept {
  // Ticks that arrive from here on, also while the waits below dispatch messages, find no control any more.
  m_timer.cutLoose();
  leaveContainer();
  m_picture.discard();
  m_timer.shutDown();
}

void* CAudioVisualization4Type2::findInterface(REFIID iid) noexcept {
  if (iid == IID_IDispatch || iid == IID_IAudioVisualizationTemplate || iid == IID_IAudioVisualization4Type2)
    return static_cast<IAudioVisualization4Type2*>(this);
  return Control::findInterface(iid);
}

STDMETHODIMP CAudioVisualization4Type2::SendAudioData(IUnknown* audioData) {
  const ole::KeepAlive alive(*this);
  return guardSendAudioData([&] { pushBlock(audioData); });
}

void CAudioVisualization4Type2::pushBlock(IUnknown* audioData) {
  const std::lock_guard lock(m_mutex);
  if (!audioData) {
    m_timer.clearRunning();
    m_analysis.clear(GetTickCount());
    drawNow();
    inPlace().valueHasSettled();  // no tick follows
    return;
  }
  m_timer.Start(repaintPeriodMs);
  const AudioInput input(audioData);
  const AudioBlock* block = input.block();
  if (!block) return;
  const auto outcome = [&] {
    const StandardArithmetic arithmetic;
    return m_analysis.accept(*block, m_settings, GetTickCount());
  }();
  // What is analysed is drawn by the next tick.
  if (outcome == MeterAnalysis::Outcome::tooShort) drawNow();
}

STDMETHODIMP CAudioVisualization4Type2::_OnTimer() {
  const ole::KeepAlive alive(*this);
  if (m_analysis.hasData()) drawNow();
  inPlace().valueMayHaveChanged();
  return S_OK;
}

STDMETHODIMP CAudioVisualization4Type2::Repaint() {
  const ole::KeepAlive alive(*this);
  drawNow();
  return S_OK;
}

void CAudioVisualization4Type2::resized(SIZE client) {
  snapSize(client);
  try {
    layoutWindow();
  } catch (const std::bad_alloc&) {
    // Paints make a layout of their own while there is none of the window.
  }
}

void CAudioVisualization4Type2::snapSize(SIZE client) {
  // A container that answers with another size has decided.
  if (m_snapping || !snapsItsSize(m_settings)) return;
  const Size given{client.cx, client.cy};
  const Size snapped = snappedSize(m_settings, m_list.lines().count(), given);
  const bool possible = snapped.widthPx > 0 && snapped.widthPx <= longestSidePx && snapped.heightPx > 0 &&
                        snapped.heightPx <= longestSidePx;
  if (!possible) return;
  // A container that resizes the window to a whole number of lines need not have told the extent.
  if (snapped == given) return takeExtentOf(client);
  m_snapping = true;
  requestSize({snapped.widthPx, snapped.heightPx});
  m_snapping = false;
}

void CAudioVisualization4Type2::layoutWindow() {
  const auto client = clientSize();
  if (!client) return;
  const StandardArithmetic arithmetic;
  const std::lock_guard lock(m_drawingLock);
  m_picture.layout(m_settings, m_list.lines().count(), *client);
}

void CAudioVisualization4Type2::draw(HDC target, const RECT& bounds) {
  try {
    const StandardArithmetic arithmetic;
    const std::lock_guard lock(m_drawingLock);
    m_picture.paint(target, bounds, clientSize().has_value(), m_settings, m_list.lines(), m_analysis.hasData());
  } catch (const std::bad_alloc&) {
    // The target keeps what it shows.
  }
}

std::wstring CAudioVisualization4Type2::spokenValue() {
  const StandardArithmetic arithmetic;
  std::vector<double> values;
  if (m_analysis.hasData()) {
    m_list.lines().withLines([&](std::span<LineInfo> lines) {
      for (const LineInfo& line : lines) values.push_back(line.value);
    });
  }
  return wideText(type2::spokenValue(values, m_analysis.axis()));
}

std::wstring CAudioVisualization4Type2::spokenDescription() { return L"Levels of the sound's frequency bands"; }

HRESULT createType2Control(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<CAudioVisualization4Type2>(outer, iid, object);
}

}  // namespace av::type2
