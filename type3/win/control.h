#pragma once

#include "common/win/my_line_list.h"
#include "common/win/standard_arithmetic.h"
#include "common/win/timer.h"
#include "ole/control.h"
#include "ole/dispatch.h"
#include "type3/analysis.h"
#include "type3/settings.h"
#include "type3/win/analyser_picture.h"

#include <QELAudioVisualization4.h>

#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>

namespace av::type3 {

/// `CAudioVisualization4Type3`, the spectrum analyser.
///
/// It takes no lock but the line list's: blocks too arrive on the control thread. Calls into the host (its buffers, its
/// container, its font objects) may come back with anything, so nothing is cached across one of them.
class CAudioVisualization4Type3 final : public ole::Control, public ole::Dual<IAudioVisualization4Type3> {
 public:
  explicit CAudioVisualization4Type3(IUnknown* outer);

  // IDispatch [control thread]
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* argumentError) override;

  // IAudioVisualizationTemplate [control thread]
  STDMETHODIMP _OnTimer() override;
  STDMETHODIMP SendAudioData(IUnknown* audioData) override;
  STDMETHODIMP Repaint() override;
  STDMETHODIMP SetAdditionalParam(BSTR, VARIANT) override { return S_OK; }
  STDMETHODIMP GetAdditionalParam(BSTR, VARIANT*) override { return S_OK; }

  // IAudioVisualization4Type3 [control thread]
  STDMETHODIMP get_ScaleXVisible(VARIANT_BOOL* value) override { return get(rule::scaleXVisible, value); }
  STDMETHODIMP put_ScaleXVisible(VARIANT_BOOL value) override { return put(rule::scaleXVisible, value); }
  STDMETHODIMP get_ScaleYVisible(VARIANT_BOOL* value) override { return get(rule::scaleYVisible, value); }
  STDMETHODIMP put_ScaleYVisible(VARIANT_BOOL value) override { return put(rule::scaleYVisible, value); }
  STDMETHODIMP get_ScaleYMax(LONG* value) override { return get(rule::scaleYMax, value); }
  STDMETHODIMP put_ScaleYMax(LONG value) override { return put(rule::scaleYMax, value); }
  STDMETHODIMP get_ScaleYMin(LONG* value) override { return get(rule::scaleYMin, value); }
  STDMETHODIMP put_ScaleYMin(LONG value) override { return put(rule::scaleYMin, value); }
  STDMETHODIMP get_FFTLength(LONG* value) override;
  STDMETHODIMP put_FFTLength(LONG value) override;
  STDMETHODIMP get_BackColor(OLE_COLOR* value) override { return get(rule::backColor, value); }
  STDMETHODIMP put_BackColor(OLE_COLOR value) override { return putColor(rule::backColor, value); }
  STDMETHODIMP get_BackLineHighColor(OLE_COLOR* value) override { return get(rule::backLineHighColor, value); }
  STDMETHODIMP put_BackLineHighColor(OLE_COLOR value) override { return putColor(rule::backLineHighColor, value); }
  STDMETHODIMP get_BackLineMidColor(OLE_COLOR* value) override { return get(rule::backLineMidColor, value); }
  STDMETHODIMP put_BackLineMidColor(OLE_COLOR value) override { return putColor(rule::backLineMidColor, value); }
  STDMETHODIMP get_BackLineLowColor(OLE_COLOR* value) override { return get(rule::backLineLowColor, value); }
  STDMETHODIMP put_BackLineLowColor(OLE_COLOR value) override { return putColor(rule::backLineLowColor, value); }
  STDMETHODIMP get_LineHighColor(OLE_COLOR* value) override { return get(rule::lineHighColor, value); }
  STDMETHODIMP put_LineHighColor(OLE_COLOR value) override { return putColor(rule::lineHighColor, value); }
  STDMETHODIMP get_LineMidColor(OLE_COLOR* value) override { return get(rule::lineMidColor, value); }
  STDMETHODIMP put_LineMidColor(OLE_COLOR value) override { return putColor(rule::lineMidColor, value); }
  STDMETHODIMP get_LineLowColor(OLE_COLOR* value) override { return get(rule::lineLowColor, value); }
  STDMETHODIMP put_LineLowColor(OLE_COLOR value) override { return putColor(rule::lineLowColor, value); }
  STDMETHODIMP get_MidPoint(LONG* value) override { return get(rule::midPoint, value); }
  STDMETHODIMP put_MidPoint(LONG value) override { return put(rule::midPoint, value); }
  STDMETHODIMP get_HighPoint(LONG* value) override { return get(rule::highPoint, value); }
  STDMETHODIMP put_HighPoint(LONG value) override { return put(rule::highPoint, value); }
  STDMETHODIMP get_LineInterval(LONG* value) override { return get(rule::lineInterval, value); }
  STDMETHODIMP put_LineInterval(LONG value) override { return put(rule::lineInterval, value); }
  STDMETHODIMP get_SpotInterval(LONG* value) override { return get(rule::spotInterval, value); }
  STDMETHODIMP put_SpotInterval(LONG value) override { return put(rule::spotInterval, value); }
  STDMETHODIMP get_SpotHeight(LONG* value) override { return get(rule::spotHeight, value); }
  STDMETHODIMP put_SpotHeight(LONG value) override { return put(rule::spotHeight, value); }
  STDMETHODIMP get_LineCount(LONG* value) override { return get(rule::lineCount, value); }
  STDMETHODIMP put_LineCount(LONG value) override;
  STDMETHODIMP get_TickVisible(VARIANT_BOOL* value) override { return get(rule::tickVisible, value); }
  STDMETHODIMP put_TickVisible(VARIANT_BOOL value) override;
  STDMETHODIMP get_DynamicRange(LONG* value) override { return get(rule::dynamicRange, value); }
  STDMETHODIMP put_DynamicRange(LONG value) override { return put(rule::dynamicRange, value); }
  STDMETHODIMP get_ScaleFont(IFontDisp** value) override;
  STDMETHODIMP putref_ScaleFont(IFontDisp* value) override;
  STDMETHODIMP get_ScaleColor(OLE_COLOR* value) override { return get(rule::scaleColor, value); }
  STDMETHODIMP put_ScaleColor(OLE_COLOR value) override { return putColor(rule::scaleColor, value); }
  STDMETHODIMP get_BorderColor(OLE_COLOR* value) override { return get(rule::borderColor, value); }
  STDMETHODIMP put_BorderColor(OLE_COLOR value) override { return putColor(rule::borderColor, value); }
  STDMETHODIMP get_BorderType(LONG* value) override { return get(rule::borderType, value); }
  STDMETHODIMP put_BorderType(LONG value) override { return put(rule::borderType, value); }
  STDMETHODIMP get_FFTWindowType(LONG* value) override;
  STDMETHODIMP put_FFTWindowType(LONG value) override;
  STDMETHODIMP get_FFTWindowCount(LONG* value) override;
  STDMETHODIMP get_FFTWindowName(BSTR* value) override;
  STDMETHODIMP get_HasWindowParam(VARIANT_BOOL* value) override;
  STDMETHODIMP get_FFTWindowParam(float* value) override;
  STDMETHODIMP put_FFTWindowParam(float value) override;
  STDMETHODIMP get_AutoRepaint(VARIANT_BOOL* value) override { return get(rule::autoRepaint, value); }
  STDMETHODIMP put_AutoRepaint(VARIANT_BOOL value) override { return put(rule::autoRepaint, value); }
  STDMETHODIMP get_XScaleType(LONG* value) override { return get(rule::xScaleType, value); }
  STDMETHODIMP put_XScaleType(LONG value) override { return put(rule::xScaleType, value); }
  STDMETHODIMP get_TickColor(OLE_COLOR* value) override { return get(rule::tickColor, value); }
  STDMETHODIMP put_TickColor(OLE_COLOR value) override { return putColor(rule::tickColor, value); }
  STDMETHODIMP get_AlignmentX(LONG* value) override { return get(rule::alignmentX, value); }
  STDMETHODIMP put_AlignmentX(LONG value) override { return put(rule::alignmentX, value); }
  STDMETHODIMP get_AlignmentY(LONG* value) override { return get(rule::alignmentY, value); }
  STDMETHODIMP put_AlignmentY(LONG value) override;
  STDMETHODIMP get_ViewType(LONG* value) override { return get(rule::viewType, value); }
  STDMETHODIMP put_ViewType(LONG value) override { return put(rule::viewType, value); }
  STDMETHODIMP get_AutoSize(VARIANT_BOOL* value) override { return get(rule::autoSize, value); }
  STDMETHODIMP put_AutoSize(VARIANT_BOOL value) override { return put(rule::autoSize, value); }

 private:
  void draw(HDC target, const RECT& bounds) override;
  void activationVerbDone() override;
  void resized(SIZE client) override;
  std::wstring spokenValue() override;
  std::wstring spokenDescription() override;
  REFIID dispatchInterfaceId() const noexcept override { return IID_IAudioVisualization4Type3; }
  void* findInterface(REFIID iid) noexcept override;
  void tearDown() noexcept override;

  /// A get; a null out-pointer succeeds, with nothing written.
  template <class Rule, class Value>
  HRESULT get(const Rule& rule, Value* value) const;
  template <class Value, class Source>
  static HRESULT answer(Value* value, Source source);
  template <class Rule, class Value>
  HRESULT put(const Rule& rule, Value value);
  HRESULT putColor(const rule::ColorRule& rule, OLE_COLOR value);
  /// A put: stores with `store`, then carries `effects` out in their order. `store` returns the failure that keeps the
  /// old value.
  template <class Store>
  HRESULT change(Effects effects, Store&& store);
  void carryOut(Effects effects);

  void pushBlock(IUnknown* audioData);
  /// The layout of what the control draws on: its client area or, while it is inactive, what was last drawn for its
  /// container, before that its extent.
  void layout();
  int columnAreaHeightPx();

  CMyLineList<IAudioVisualization4Type3> m_lines;
  AnalyserSettings m_settings;
  AnalyserAnalysis m_analysis{m_lines.lines()};
  AnalyserPicture m_picture;
  CTimer<CAudioVisualization4Type3, IAudioVisualization4Type3, &IID_IAudioVisualization4Type3> m_timer{*this};
};

/// E_INVALIDARG with a text that names the property and says what it takes.
HRESULT refuseValue(const PropertyRow& row, std::int32_t lowest, std::int32_t highest) noexcept;

template <class Value, class Source>
HRESULT CAudioVisualization4Type3::answer(Value* value, Source source) {
  if (value) *value = static_cast<Value>(source);
  return S_OK;
}

template <class Rule, class Value>
HRESULT CAudioVisualization4Type3::get(const Rule& rule, Value* value) const {
  return answer(value, applyGet(rule, m_settings));
}

template <class Rule, class Value>
HRESULT CAudioVisualization4Type3::put(const Rule& rule, Value value) {
  return change(rule.effects, [&] {
    return applyPut(rule, m_settings, value) ? S_OK : refuseValue(rule, rule.check.lowest, rule.check.highest);
  });
}

template <class Store>
HRESULT CAudioVisualization4Type3::change(Effects effects, Store&& store) {
  const ole::KeepAlive alive(*this);
  try {
    const HRESULT stored = [&] {
      const StandardArithmetic arithmetic;
      return store();
    }();
    if (FAILED(stored)) return stored;
    carryOut(effects);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::length_error&) {
    return E_OUTOFMEMORY;  // a vector's word for lengths that no 32-bit process could have memory for
  }
  return S_OK;
}

/// Makes the control; see ole::CreateFunction.
HRESULT createType3Control(IUnknown* outer, REFIID iid, void** object);

}  // namespace av::type3
