#include "gfx/win/scale_font.h"
#include "ole/error_text.h"
#include "type3/win/control.h"

#include <string>
#include <string_view>
#include <utility>

namespace av::type3 {

// The rows of the property table that are more than a value in the settings.

namespace {

HRESULT refuseArgument(HRESULT result, const PropertyRow& row, std::wstring_view why) noexcept {
  try {
    const std::wstring text = std::wstring(row.name.begin(), row.name.end()).append(L": ").append(why);
    // The classes share one ProgID, so the source that a script's user reads is library and class.
    return ole::refuse(result, IID_IAudioVisualization4Type3, L"QELAudioVisualization4.CAudioVisualization4Type3",
                       text.c_str());
  } catch (const std::bad_alloc&) {
    return result;
  }
}

}  // namespace

HRESULT refuseValue(const PropertyRow& row, std::int32_t lowest, std::int32_t highest) noexcept {
  try {
    const std::wstring from = L"the value must be " + std::to_wstring(lowest);
    const bool open = highest == std::numeric_limits<std::int32_t>::max();
    return refuseArgument(E_INVALIDARG, row, from + (open ? L" or more." : L" to " + std::to_wstring(highest) + L"."));
  } catch (const std::bad_alloc&) {
    return E_INVALIDARG;
  }
}

HRESULT CAudioVisualization4Type3::putColor(const rule::ColorRule& rule, OLE_COLOR value) {
  ColourPut translated;
  return change(rule.effects, [&] {
    translated = putColour(rule, m_settings, value, [](std::uint32_t oleColour, std::uint32_t* colour) {
      COLORREF reference = 0;
      const HRESULT result = OleTranslateColor(oleColour, nullptr, &reference);
      *colour = reference;
      return result;
    });
    if (translated.result >= 0) return S_OK;
    return refuseArgument(translated.result, rule, L"the system knows no such colour.");
  });
}

STDMETHODIMP CAudioVisualization4Type3::get_FFTLength(LONG* value) {
  return answer(value, m_analysis.transform().length());
}

STDMETHODIMP CAudioVisualization4Type3::put_FFTLength(LONG value) {
  return change(rule::fftLength.effects, [&] {
    if (!isFftLength(value)) return refuseArgument(E_INVALIDARG, rule::fftLength, L"the value must be a power of two.");
    m_analysis.setFftLength(value);
    return S_OK;
  });
}

STDMETHODIMP CAudioVisualization4Type3::put_LineCount(LONG value) {
  return change(rule::lineCount.effects, [&] {
    if (value < fewestLines || value > mostLines) return refuseValue(rule::lineCount, fewestLines, mostLines);
    m_analysis.setLineCount(value);
    applyPut(rule::lineCount, m_settings, value);
    return S_OK;
  });
}

STDMETHODIMP CAudioVisualization4Type3::put_TickVisible(VARIANT_BOOL value) {
  return change(rule::tickVisible.effects, [&] {
    applyPut(rule::tickVisible, m_settings, value);
    m_lines.SetTickRunning(isTrue(value));  // dispatches messages while the fall thread ends
    return S_OK;
  });
}

STDMETHODIMP CAudioVisualization4Type3::put_AlignmentY(LONG value) {
  const ole::KeepAlive alive(*this);
  const HRESULT stored = change(Effects::relayout, [&] {
    return applyPut(rule::alignmentY, m_settings, value) ? S_OK : refuseValue(rule::alignmentY, 0, 1);
  });
  if (FAILED(stored)) return stored;
  return change(Effects::redraw, [&] {
    m_analysis.updateHeights(m_settings, columnAreaHeightPx(), GetTickCount());
    return S_OK;
  });
}

STDMETHODIMP CAudioVisualization4Type3::get_ScaleFont(IFontDisp** value) {
  return value ? m_picture.font(value) : S_OK;
}

STDMETHODIMP CAudioVisualization4Type3::putref_ScaleFont(IFontDisp* value) {
  const ole::KeepAlive alive(*this);
  // A font object is the host's code; it may do anything while it is asked, and while the old one is let go.
  Microsoft::WRL::ComPtr<IFontDisp> font = asScaleFont(value);
  if (!font) return S_OK;
  change(rule::scaleFont.effects, [&] {
    m_picture.exchangeFont(font);
    return S_OK;
  });
  return S_OK;
}

STDMETHODIMP CAudioVisualization4Type3::get_FFTWindowType(LONG* value) {
  return answer(value, m_analysis.transform().windowType());
}

STDMETHODIMP CAudioVisualization4Type3::put_FFTWindowType(LONG value) {
  return change(rule::fftWindowType.effects, [&] {
    constexpr auto last = static_cast<std::int32_t>(dsp::WindowTable.size()) - 1;
    return m_analysis.setWindowType(value) ? S_OK : refuseValue(rule::fftWindowType, 0, last);
  });
}

STDMETHODIMP CAudioVisualization4Type3::get_FFTWindowCount(LONG* value) {
  return answer(value, dsp::WindowTable.size());
}

STDMETHODIMP CAudioVisualization4Type3::get_FFTWindowName(BSTR* value) {
  if (!value) return S_OK;
  const std::string_view name = m_analysis.transform().window().name;
  try {
    *value = SysAllocString(std::wstring(name.begin(), name.end()).c_str());
  } catch (const std::bad_alloc&) {
    *value = nullptr;
  }
  return *value ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP CAudioVisualization4Type3::get_HasWindowParam(VARIANT_BOOL* value) {
  return answer(value, m_analysis.transform().window().hasParameter ? VARIANT_TRUE : VARIANT_FALSE);
}

STDMETHODIMP CAudioVisualization4Type3::get_FFTWindowParam(float* value) {
  return answer(value, m_analysis.transform().GetWindowParam());
}

STDMETHODIMP CAudioVisualization4Type3::put_FFTWindowParam(float value) {
  return change(rule::fftWindowParam.effects, [&] {
    return m_analysis.setWindowParam(value)
               ? S_OK
               : refuseArgument(E_INVALIDARG, rule::fftWindowParam, L"the window takes no such value.");
  });
}

}  // namespace av::type3
