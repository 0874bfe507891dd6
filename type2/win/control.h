#pragma once

#include "common/win/critical_section.h"
#include "common/win/mutex.h"
#include "common/win/my_line_list.h"
#include "common/win/standard_arithmetic.h"
#include "common/win/timer.h"
#include "ole/control.h"
#include "ole/dispatch.h"
#include "type2/analysis.h"
#include "type2/settings.h"
#include "type2/win/meter_picture.h"

#include <QELAudioVisualization4.h>

#include <mutex>
#include <new>
#include <string>

namespace av::type2 {

/// `CAudioVisualization4Type2`, the level meter.
///
/// Locks, in this order: the mutex (one block at a time), the drawing lock (the picture and the settings that it reads),
/// the lock of the line list. The container is called with none of them held, save for the redraw that a block itself
/// asks for.
class CAudioVisualization4Type2 final : public ole::Control, public ole::Dual<IAudioVisualization4Type2> {
 public:
  explicit CAudioVisualization4Type2(IUnknown* outer);

  // IDispatch [control thread]
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* argumentError) override;

  // IAudioVisualizationTemplate
  STDMETHODIMP _OnTimer() override;                          // [control thread]
  STDMETHODIMP SendAudioData(IUnknown* audioData) override;  // [control thread or audio thread]
  STDMETHODIMP Repaint() override;                           // [control thread]
  STDMETHODIMP SetAdditionalParam(BSTR, VARIANT) override { return S_OK; }
  STDMETHODIMP GetAdditionalParam(BSTR, VARIANT*) override { return S_OK; }

  // IAudioVisualization4Type2 [control thread]
  STDMETHODIMP get_LineType(LONG* value) override { return get(rule::lineType, value); }
  STDMETHODIMP put_LineType(LONG value) override { return put(rule::lineType, value); }
  STDMETHODIMP get_LineInterval(LONG* value) override { return get(rule::lineInterval, value); }
  STDMETHODIMP put_LineInterval(LONG value) override { return put(rule::lineInterval, value); }
  STDMETHODIMP get_LineCount(LONG* value) override;
  STDMETHODIMP put_LineCount(LONG value) override;
  STDMETHODIMP get_BackColor(OLE_COLOR* value) override { return get(rule::backColor, value); }
  STDMETHODIMP put_BackColor(OLE_COLOR value) override { return put(rule::backColor, value); }
  STDMETHODIMP get_BorderColor(OLE_COLOR* value) override { return get(rule::borderColor, value); }
  STDMETHODIMP put_BorderColor(OLE_COLOR value) override { return put(rule::borderColor, value); }
  STDMETHODIMP get_LineLowColor(OLE_COLOR* value) override { return get(rule::lineLowColor, value); }
  STDMETHODIMP put_LineLowColor(OLE_COLOR value) override { return put(rule::lineLowColor, value); }
  STDMETHODIMP get_LineMidColor(OLE_COLOR* value) override { return get(rule::lineMidColor, value); }
  STDMETHODIMP put_LineMidColor(OLE_COLOR value) override { return put(rule::lineMidColor, value); }
  STDMETHODIMP get_LineHighColor(OLE_COLOR* value) override { return get(rule::lineHighColor, value); }
  STDMETHODIMP put_LineHighColor(OLE_COLOR value) override { return put(rule::lineHighColor, value); }
  STDMETHODIMP get_BackLineLowColor(OLE_COLOR* value) override { return get(rule::backLineLowColor, value); }
  STDMETHODIMP put_BackLineLowColor(OLE_COLOR value) override { return put(rule::backLineLowColor, value); }
  STDMETHODIMP get_BackLineMidColor(OLE_COLOR* value) override { return get(rule::backLineMidColor, value); }
  STDMETHODIMP put_BackLineMidColor(OLE_COLOR value) override { return put(rule::backLineMidColor, value); }
  STDMETHODIMP get_BackLineHighColor(OLE_COLOR* value) override { return get(rule::backLineHighColor, value); }
  STDMETHODIMP put_BackLineHighColor(OLE_COLOR value) override { return put(rule::backLineHighColor, value); }
  STDMETHODIMP get_TickDelayTime(LONG* value) override { return get(rule::tickDelayTime, value); }
  STDMETHODIMP put_TickDelayTime(LONG value) override;
  STDMETHODIMP get_TickReleaseTime(LONG* value) override { return get(rule::tickReleaseTime, value); }
  STDMETHODIMP put_TickReleaseTime(LONG value) override;
  STDMETHODIMP get_TickVisible(VARIANT_BOOL* value) override { return get(rule::tickVisible, value); }
  STDMETHODIMP put_TickVisible(VARIANT_BOOL value) override;
  STDMETHODIMP get_SpotHeight(LONG* value) override { return get(rule::spotHeight, value); }
  STDMETHODIMP put_SpotHeight(LONG value) override { return put(rule::spotHeight, value); }
  STDMETHODIMP get_SpotInterval(LONG* value) override { return get(rule::spotInterval, value); }
  STDMETHODIMP put_SpotInterval(LONG value) override { return put(rule::spotInterval, value); }
  STDMETHODIMP get_MidPoint(LONG* value) override { return get(rule::midPoint, value); }
  STDMETHODIMP put_MidPoint(LONG value) override { return put(rule::midPoint, value); }
  STDMETHODIMP get_HighPoint(LONG* value) override { return get(rule::highPoint, value); }
  STDMETHODIMP put_HighPoint(LONG value) override { return put(rule::highPoint, value); }
  STDMETHODIMP get_AlignmentY(LONG* value) override { return get(rule::alignmentY, value); }
  STDMETHODIMP put_AlignmentY(LONG value) override { return put(rule::alignmentY, value); }
  STDMETHODIMP get_AlignmentX(LONG* value) override { return get(rule::alignmentX, value); }
  STDMETHODIMP put_AlignmentX(LONG value) override { return put(rule::alignmentX, value); }
  STDMETHODIMP get_BorderType(LONG* value) override { return get(rule::borderType, value); }
  STDMETHODIMP put_BorderType(LONG value) override { return put(rule::borderType, value); }
  STDMETHODIMP get_BorderWidth(LONG* value) override { return get(rule::borderWidth, value); }
  STDMETHODIMP put_BorderWidth(LONG value) override { return put(rule::borderWidth, value); }
  STDMETHODIMP get_AutoRepaint(VARIANT_BOOL* value) override;
  STDMETHODIMP put_AutoRepaint(VARIANT_BOOL) override { return S_OK; }
  STDMETHODIMP get_AutoSize(VARIANT_BOOL* value) override { return get(rule::autoSize, value); }
  STDMETHODIMP put_AutoSize(VARIANT_BOOL value) override { return put(rule::autoSize, value); }
  STDMETHODIMP get_FFTWindowSize(LONG* value) override { return get(rule::fftWindowSize, value); }
  STDMETHODIMP put_FFTWindowSize(LONG value) override { return put(rule::fftWindowSize, value); }
  STDMETHODIMP get_FFTWindowType(LONG* value) override { return get(rule::fftWindowType, value); }
  STDMETHODIMP put_FFTWindowType(LONG value) override { return put(rule::fftWindowType, value); }
  STDMETHODIMP get_FFTViewType(LONG* value) override { return get(rule::fftViewType, value); }
  STDMETHODIMP put_FFTViewType(LONG value) override { return put(rule::fftViewType, value); }

 private:
  void draw(HDC target, const RECT& bounds) override;
  void resized(SIZE client) override;
  std::wstring spokenValue() override;
  std::wstring spokenDescription() override;
  REFIID dispatchInterfaceId() const noexcept override { return IID_IAudioVisualization4Type2; }
  void* findInterface(REFIID iid) noexcept override;
  void tearDown() noexcept override;

  template <class Rule, class Value>
  HRESULT get(const Rule& rule, Value* value) const;
  template <class Rule, class Value>
  HRESULT put(const Rule& rule, Value value);
  /// A put: stores with `store` under the drawing lock, tells the line list with `tell`, which no lock is held for, and
  /// carries the row's effects out in their order. E_OUTOFMEMORY where one of them throws std::bad_alloc.
  template <class Store, class Tell>
  HRESULT change(Effects effects, Store&& store, Tell&& tell);

  void pushBlock(IUnknown* audioData);
  /// With `AutoSize`: asks the container for the size nearest to `client` that whole lines and segments fill.
  void snapSize(SIZE client);
  /// As far as there is a window. Throws std::bad_alloc.
  void layoutWindow();

  // Goes last, after everything that its thread and the blocks know.
  CMyLineList<IAudioVisualization4Type2> m_list;
  CriticalSection m_drawingLock;
  MeterPicture m_picture;
  MeterSettings m_settings;
  MeterAnalysis m_analysis{m_list.lines()};
  Mutex m_mutex;
  bool m_snapping = false;  // waits for the container's answer to a wish for another rectangle
  CTimer<CAudioVisualization4Type2, IAudioVisualization4Type2, &IID_IAudioVisualization4Type2> m_timer{*this};
};

template <class Rule, class Value>
HRESULT CAudioVisualization4Type2::get(const Rule& rule, Value* value) const {
  if (!value) return E_POINTER;
  *value = static_cast<Value>(applyGet(rule, m_settings));
  return S_OK;
}

template <class Rule, class Value>
HRESULT CAudioVisualization4Type2::put(const Rule& rule, Value value) {
  return change(
      rule.effects, [&] { applyPut(rule, m_settings, value); }, [] {});
}

template <class Store, class Tell>
HRESULT CAudioVisualization4Type2::change(Effects effects, Store&& store, Tell&& tell) {
  const ole::KeepAlive alive(*this);
  const bool relayouts = has(effects, Effects::relayout);
  try {
    {
      // In one go, so that a block on the audio thread never draws new values by an old layout.
      const std::lock_guard picture(m_drawingLock);
      store();
      if (relayouts || has(effects, Effects::rebuild)) layoutWindow();
    }
    tell();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  // The container's answer is a resize, which brings its own layout.
  if (const auto client = clientSize(); relayouts && client) snapSize(*client);
  if (has(effects, Effects::redraw)) drawNow();
  return S_OK;
}

/// Makes the control; see ole::CreateFunction.
HRESULT createType2Control(IUnknown* outer, REFIID iid, void** object);

}  // namespace av::type2
