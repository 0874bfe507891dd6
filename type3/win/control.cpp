#include "type3/win/control.h"

#include "common/win/audio_call.h"
#include "common/win/audio_input.h"
#include "common/win/wide_text.h"
#include "gfx/win/scale_font.h"
#include "type3/spoken_value.h"

#include <oleacc.h>

namespace av::type3 {

namespace {

const ole::ControlInfo controlInfo{CLSID_CAudioVisualization4Type3,
                                   L"CAudioVisualization4Type3 Object",
                                   OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
                                       OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST,
                                   false,
                                   {},
                                   L"Spectrum analyser",
                                   ROLE_SYSTEM_CHART};

constexpr std::uint32_t repaintPeriodMs = 50;
constexpr std::int32_t tickFallPeriodMs = 10;
constexpr std::int32_t tickHoldMs = 200;

/// The extent in pixels of the screen.
SIZE pixelsOf(SIZEL himetric) noexcept {
  constexpr int himetricPerInch = 2540;
  const HDC screen = GetDC(nullptr);
  const SIZE pixels{MulDiv(himetric.cx, GetDeviceCaps(screen, LOGPIXELSX), himetricPerInch),
                    MulDiv(himetric.cy, GetDeviceCaps(screen, LOGPIXELSY), himetricPerInch)};
  ReleaseDC(nullptr, screen);
  return pixels;
}

bool isObjectButNoFont(VARIANT& argument) noexcept {
  VARIANT value;
  VariantInit(&value);
  if (FAILED(VariantCopyInd(&value, &argument))) return false;
  const bool isObject = V_VT(&value) == VT_DISPATCH || V_VT(&value) == VT_UNKNOWN;
  const bool noFont = isObject && V_UNKNOWN(&value) && !asScaleFont(V_UNKNOWN(&value));
  VariantClear(&value);
  return noFont;
}

}  // namespace

CAudioVisualization4Type3::CAudioVisualization4Type3(IUnknown* outer)
    : Control(outer, controlInfo), Dual(static_cast<ole::Object&>(*this)) {
  m_settings.scaleColor = GetSysColor(COLOR_BTNFACE);
  m_lines.StartFall(tickFallPeriodMs);
  // Of the columns that exist now; those of a later LineCount hold their ticks for as long as every new line does.
  m_lines.lines().SetHoldTime(tickHoldMs);
  m_lines.SetTickRunning(isTrue(m_settings.tickVisible));
}

void CAudioVisualization4Type3::tearDown() noexcept {
  // Ticks that arrive from here on, also while the waits below dispatch messages, find no control any more.
  m_timer.cutLoose();
  leaveContainer();
  m_picture.discard();
  m_timer.shutDown();
}

void* CAudioVisualization4Type3::findInterface(REFIID iid) noexcept {
  if (iid == IID_IDispatch || iid == IID_IAudioVisualizationTemplate || iid == IID_IAudioVisualization4Type3)
    return static_cast<IAudioVisualization4Type3*>(this);
  return Control::findInterface(iid);
}

STDMETHODIMP CAudioVisualization4Type3::Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                               DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                               UINT* argumentError) {
  const ole::KeepAlive alive(*this);
  if (member == dispidSendAudioData && IsEqualIID(reserved, IID_NULL)) {
    return invokeSendAudioData(flags, arguments, result, exception, argumentError,
                               [this](IUnknown* audioData) { return SendAudioData(audioData); });
  }
  if (member == rule::scaleFont.dispId && (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF))) {
    flags = DISPATCH_PROPERTYPUTREF;  // scripts that know no `Set` assign a font with a plain put
    // The dispatch of the type library would fail for an object of another interface, where the put itself succeeds.
    if (arguments && arguments->cArgs == 1 && isObjectButNoFont(arguments->rgvarg[0])) return S_OK;
  }
  return Dual::Invoke(member, reserved, locale, flags, arguments, result, exception, argumentError);
}

STDMETHODIMP CAudioVisualization4Type3::SendAudioData(IUnknown* audioData) {
  const ole::KeepAlive alive(*this);
  return guardSendAudioData([&] { pushBlock(audioData); });
}

void CAudioVisualization4Type3::pushBlock(IUnknown* audioData) {
  if (!audioData) return drawNow();
  // The host's interfaces are held until the block has been shown.
  const AudioInput input(audioData);
  const AudioBlock* block = input.block();
  if (!block) return;
  const int heightPx = columnAreaHeightPx();
  const bool accepted = [&] {
    const StandardArithmetic arithmetic;
    return m_analysis.accept(*block, m_settings, heightPx, GetTickCount());
  }();
  if (accepted) drawNow();
}

STDMETHODIMP CAudioVisualization4Type3::_OnTimer() {
  const ole::KeepAlive alive(*this);
  const bool asked = takeRedrawRequest();
  const bool fell = [&] {
    const StandardArithmetic arithmetic;
    return m_analysis.tick(m_settings, GetTickCount());
  }();
  if (fell || asked) drawNow();
  inPlace().valueMayHaveChanged();
  return S_OK;
}

STDMETHODIMP CAudioVisualization4Type3::Repaint() {
  const ole::KeepAlive alive(*this);
  drawNow();
  return S_OK;
}

void CAudioVisualization4Type3::activationVerbDone() { m_timer.Start(repaintPeriodMs); }

void CAudioVisualization4Type3::carryOut(Effects effects) {
  if (has(effects, Effects::relayout)) {
    layout();
  } else if (has(effects, Effects::rebuild)) {
    const StandardArithmetic arithmetic;
    m_picture.rebuild(m_settings);
  }
  if (has(effects, Effects::redraw)) drawNow();
}

void CAudioVisualization4Type3::resized(SIZE) {
  try {
    layout();
  } catch (const std::bad_alloc&) {
    // Paints make a layout of their own while the kept one is another size's.
  }
}

void CAudioVisualization4Type3::layout() {
  const StandardArithmetic arithmetic;
  const auto client = clientSize();
  const Size kept = m_picture.size();
  if (client) {
    m_picture.layout(m_settings, {client->cx, client->cy});
  } else if (kept != Size{}) {
    m_picture.layout(m_settings, kept);
  } else {
    const SIZE extent = pixelsOf(extentHimetric());
    m_picture.layout(m_settings, {extent.cx, extent.cy});
  }
}

int CAudioVisualization4Type3::columnAreaHeightPx() {
  if (!m_picture.isLaidOut()) layout();
  return m_picture.columnAreaHeightPx();
}

void CAudioVisualization4Type3::draw(HDC target, const RECT& bounds) {
  try {
    const StandardArithmetic arithmetic;
    const Size size{bounds.right - bounds.left, bounds.bottom - bounds.top};
    // What its container draws of an inactive control is its picture from then on; beside an active control's window
    // it is another one. A layout that failed is made again.
    if (m_picture.size() == size) {
      if (!m_picture.isLaidOut()) m_picture.layout(m_settings, size);
    } else if (!clientSize()) {
      const int before = m_picture.columnAreaHeightPx();
      m_picture.layout(m_settings, size);
      m_analysis.moveColumns(m_settings, before, m_picture.columnAreaHeightPx());
    }
    m_picture.paint(target, bounds, m_settings, m_analysis.axis(m_settings), m_lines.lines());
  } catch (const std::bad_alloc&) {
    // The target keeps what it shows.
  }
}

std::wstring CAudioVisualization4Type3::spokenValue() {
  const StandardArithmetic arithmetic;
  return wideText(type3::spokenValue(m_analysis.bands(), m_analysis.foldedAxis(), m_analysis.foldedPlan()));
}

std::wstring CAudioVisualization4Type3::spokenDescription() {
  return L"Frequency spectrum of the sound as columns, each a band";
}

HRESULT createType3Control(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<CAudioVisualization4Type3>(outer, iid, object);
}

}  // namespace av::type3
