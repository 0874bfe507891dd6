#include "type1/win/control.h"

#include "common/win/audio_call.h"
#include "common/win/audio_input.h"
#include "common/win/wide_text.h"
#include "type1/minimum_size.h"
#include "type1/spoken_value.h"

#include <oleacc.h>

#include <mutex>

namespace av::type1 {

namespace {

const ole::ControlInfo controlInfo{CLSID_CAudioVisualization4Type1,
                                   L"CAudioVisualization4Type1 Object",
                                   OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
                                       OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST,
                                   false,
                                   DIID__IAudioVisualization4Type1Events,
                                   L"Waveform and spectrum view",
                                   ROLE_SYSTEM_CHART};

constexpr std::uint32_t repaintPeriodMs = 30;

}  // namespace

CAudioVisualization4Type1::CAudioVisualization4Type1(IUnknown* outer)
    : Control(outer, controlInfo), Dual(static_cast<ole::Object&>(*this)) {
  m_settings.scaleColor = argbFromOleColor(GetSysColor(COLOR_BTNFACE));
}

void CAudioVisualization4Type1::tearDown() noexcept {
  // Ticks that arrive from here on, also while the waits below dispatch messages, find no control any more.
  m_timer.cutLoose();
  leaveContainer();
  m_picture.discard();
  m_timer.shutDown();
}

void* CAudioVisualization4Type1::findInterface(REFIID iid) noexcept {
  if (iid == IID_IDispatch || iid == IID_IAudioVisualizationTemplate || iid == IID_IAudioVisualization4Type1)
    return static_cast<IAudioVisualization4Type1*>(this);
  return Control::findInterface(iid);
}

STDMETHODIMP CAudioVisualization4Type1::Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                               DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                               UINT* argumentError) {
  const ole::KeepAlive alive(*this);
  if (member == dispidSendAudioData && IsEqualIID(reserved, IID_NULL)) {
    return invokeSendAudioData(flags, arguments, result, exception, argumentError,
                               [this](IUnknown* audioData) { return SendAudioData(audioData); });
  }
  // Scripts that know no `Set` assign a font with a plain put.
  if (member == rule::scaleFont.dispId && (flags & DISPATCH_PROPERTYPUT)) flags = DISPATCH_PROPERTYPUTREF;
  return Dual::Invoke(member, reserved, locale, flags, arguments, result, exception, argumentError);
}

STDMETHODIMP CAudioVisualization4Type1::SendAudioData(IUnknown* audioData) {
  const ole::KeepAlive alive(*this);
  return guardSendAudioData([&] { pushBlock(audioData); });
}

void CAudioVisualization4Type1::pushBlock(IUnknown* audioData) {
  const std::lock_guard lock(m_mutex);
  if (!audioData) return;
  const AudioInput input(audioData);
  const AudioBlock* block = input.block();
  if (!block) return;
  const auto outcome = [&] {
    const StandardArithmetic arithmetic;
    return m_analysis.accept(*block, m_settings);
  }();
  if (outcome == ViewAnalysis::Outcome::analysed && !m_settings.visualizationSmooth) drawNow();
}

STDMETHODIMP CAudioVisualization4Type1::_OnTimer() {
  const ole::KeepAlive alive(*this);
  const bool asked = takeRedrawRequest();
  const bool moved = [&] {
    const StandardArithmetic arithmetic;
    return m_analysis.smoothingStep(m_settings);
  }();
  if (moved || asked) drawNow();
  inPlace().valueMayHaveChanged();
  return S_OK;
}

void CAudioVisualization4Type1::activationVerbDone() { m_timer.Start(repaintPeriodMs); }

void CAudioVisualization4Type1::resized(SIZE client) {
  growToMinimumSize({client.cx, client.cy});
  try {
    layoutWindow();
  } catch (const std::bad_alloc&) {
    // Paints make a layout of their own while the kept one is another size's.
  }
}

void CAudioVisualization4Type1::growToMinimumSize(Size client) {
  // A container that answers with another small rectangle has decided.
  if (m_growing) return;
  const auto grown = grownSize(client);
  if (!grown) return;
  const RECT now = inPlace().position();
  m_growing = true;
  inPlace().requestPosition({now.left, now.top, now.left + grown->widthPx, now.top + grown->heightPx});
  m_growing = false;
}

void CAudioVisualization4Type1::layoutWindow() {
  const auto client = clientSize();
  if (!client) return;
  const StandardArithmetic arithmetic;
  const std::lock_guard lock(m_drawingLock);
  m_picture.layout(m_settings, m_analysis.signal().sampleRateHz, *client);
}

void CAudioVisualization4Type1::draw(HDC target, const RECT& bounds) {
  const bool inWindow = clientSize().has_value();
  try {
    const StandardArithmetic arithmetic;
    const std::lock_guard lock(m_drawingLock);
    m_picture.paint(target, bounds, inWindow, m_settings, m_analysis.signal());
  } catch (const std::bad_alloc&) {
    // The target keeps what it shows.
  }
  // Ticks are delivered to the thread that starts the timer, so a block that draws on the audio thread does not.
  if (inWindow && onControlThread() && bounds.right - bounds.left >= 2 && bounds.bottom - bounds.top >= 2)
    m_timer.Start(repaintPeriodMs);
}

std::wstring CAudioVisualization4Type1::spokenValue() {
  // A block that is being analysed on another thread has samples where levels will be; it is not waited for, since its
  // buffer is the host's.
  const std::unique_lock betweenBlocks(m_mutex, std::try_to_lock);
  if (betweenBlocks || m_spoken.empty()) {
    const StandardArithmetic arithmetic;
    const std::lock_guard picture(m_drawingLock);
    m_spoken = wideText(type1::spokenValue(m_settings, m_analysis.signal()));
  }
  return m_spoken;
}

std::wstring CAudioVisualization4Type1::spokenDescription() { return wideText(type1::spokenDescription(m_settings)); }

HRESULT createType1Control(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<CAudioVisualization4Type1>(outer, iid, object);
}

}  // namespace av::type1
