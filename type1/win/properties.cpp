#include "gfx/win/scale_font.h"
#include "ole/error_text.h"
#include "type1/win/control.h"

namespace av::type1 {

// The rows of the property table that are more than a value in the settings.

namespace {

HRESULT refuseArgument(const wchar_t* text) noexcept {
  // The classes share one ProgID, so the source that a script's user reads is library and class.
  return ole::refuse(E_INVALIDARG, IID_IAudioVisualization4Type1, L"QELAudioVisualization4.CAudioVisualization4Type1",
                     text);
}

HRESULT refuseChannel() noexcept { return refuseArgument(L"LineColor: the channel must be 0 to 18."); }

}  // namespace

STDMETHODIMP CAudioVisualization4Type1::get_LineColor(LONG channel, OLE_COLOR* value) {
  if (!value) return E_POINTER;
  const auto colour = lineColor(m_settings, channel);
  if (!colour) return refuseChannel();
  *value = *colour;
  return S_OK;
}

STDMETHODIMP CAudioVisualization4Type1::put_LineColor(LONG channel, OLE_COLOR value) {
  return change(rule::lineColor.effects,
                [&] { return putLineColor(m_settings, channel, value) ? S_OK : refuseChannel(); });
}

STDMETHODIMP CAudioVisualization4Type1::get_ScaleFont(IFontDisp** value) {
  return value ? m_picture.font(value) : E_POINTER;
}

STDMETHODIMP CAudioVisualization4Type1::putref_ScaleFont(IFontDisp* value) {
  if (!value) return S_OK;
  // A font object is the host's code: it is asked, and the old one let go, with no lock held.
  Microsoft::WRL::ComPtr<IFontDisp> font = asScaleFont(value);
  if (!font) return refuseArgument(L"ScaleFont: the object is no font.");
  return change(rule::scaleFont.effects, [&] {
    m_picture.exchangeFont(font);
    return S_OK;
  });
}

}  // namespace av::type1
