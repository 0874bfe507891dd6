#pragma once

#include "common/win/critical_section.h"
#include "common/win/mutex.h"
#include "common/win/standard_arithmetic.h"
#include "common/win/timer.h"
#include "ole/control.h"
#include "ole/dispatch.h"
#include "type1/analysis.h"
#include "type1/pointer_units.h"
#include "type1/settings.h"
#include "type1/win/view_picture.h"

#include <QELAudioVisualization4.h>

#include <mutex>
#include <new>
#include <string>

namespace av::type1 {

/// `CAudioVisualization4Type1`, the waveform and spectrum view.
///
/// Locks, in this order: the mutex (one block at a time, and the puts that reallocate what a block is analysed into),
/// then the drawing lock (the picture and what it reads). The container is called with neither of them held, save for
/// the redraw that a block itself asks for.
class CAudioVisualization4Type1 final : public ole::Control, public ole::Dual<IAudioVisualization4Type1> {
 public:
  explicit CAudioVisualization4Type1(IUnknown* outer);

  // IDispatch [control thread]
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* argumentError) override;

  // IAudioVisualizationTemplate
  STDMETHODIMP _OnTimer() override;                          // [control thread]
  STDMETHODIMP SendAudioData(IUnknown* audioData) override;  // [control thread or audio thread]
  STDMETHODIMP Repaint() override { return S_OK; }           // inert: hosts of this view rely on the timer
  STDMETHODIMP SetAdditionalParam(BSTR, VARIANT) override { return S_OK; }
  STDMETHODIMP GetAdditionalParam(BSTR, VARIANT*) override { return S_OK; }

  // IAudioVisualization4Type1 [control thread]
  STDMETHODIMP get_VisualizationType(LONG* value) override { return get(rule::visualizationType, value); }
  STDMETHODIMP put_VisualizationType(LONG value) override { return put(rule::visualizationType, value); }
  STDMETHODIMP get_VisualizationSmooth(VARIANT_BOOL* value) override { return get(rule::visualizationSmooth, value); }
  STDMETHODIMP put_VisualizationSmooth(VARIANT_BOOL value) override { return put(rule::visualizationSmooth, value); }
  STDMETHODIMP get_BackColor(OLE_COLOR* value) override { return get(rule::backColor, value); }
  STDMETHODIMP put_BackColor(OLE_COLOR value) override { return put(rule::backColor, value); }
  STDMETHODIMP get_GridColor(OLE_COLOR* value) override { return get(rule::gridColor, value); }
  STDMETHODIMP put_GridColor(OLE_COLOR value) override { return put(rule::gridColor, value); }
  STDMETHODIMP get_ScaleColor(OLE_COLOR* value) override { return get(rule::scaleColor, value); }
  STDMETHODIMP put_ScaleColor(OLE_COLOR value) override { return put(rule::scaleColor, value); }
  STDMETHODIMP get_TextColor(OLE_COLOR* value) override { return get_LineColor(0, value); }
  STDMETHODIMP put_TextColor(OLE_COLOR value) override { return put_LineColor(0, value); }
  STDMETHODIMP get_BorderColor(OLE_COLOR* value) override { return get(rule::borderColor, value); }
  STDMETHODIMP put_BorderColor(OLE_COLOR value) override { return put(rule::borderColor, value); }
  STDMETHODIMP get_LineColor(LONG channel, OLE_COLOR* value) override;
  STDMETHODIMP put_LineColor(LONG channel, OLE_COLOR value) override;
  STDMETHODIMP get_ScaleXVisible(VARIANT_BOOL* value) override { return get(rule::scaleXVisible, value); }
  STDMETHODIMP put_ScaleXVisible(VARIANT_BOOL value) override { return put(rule::scaleXVisible, value); }
  STDMETHODIMP get_ScaleYVisible(VARIANT_BOOL* value) override { return get(rule::scaleYVisible, value); }
  STDMETHODIMP put_ScaleYVisible(VARIANT_BOOL value) override { return put(rule::scaleYVisible, value); }
  STDMETHODIMP get_ScaleFont(IFontDisp** value) override;
  STDMETHODIMP putref_ScaleFont(IFontDisp* value) override;
  STDMETHODIMP get_ScaleYMin(LONG* value) override { return get(rule::scaleYMin, value); }
  STDMETHODIMP put_ScaleYMin(LONG value) override { return put(rule::scaleYMin, value); }
  STDMETHODIMP get_ScaleYMax(LONG* value) override { return get(rule::scaleYMax, value); }
  STDMETHODIMP put_ScaleYMax(LONG value) override { return put(rule::scaleYMax, value); }
  STDMETHODIMP get_GridVisible(VARIANT_BOOL* value) override { return get(rule::gridVisible, value); }
  STDMETHODIMP put_GridVisible(VARIANT_BOOL value) override { return put(rule::gridVisible, value); }
  STDMETHODIMP get_DynamicRange(LONG* value) override { return get(rule::dynamicRange, value); }
  STDMETHODIMP put_DynamicRange(LONG value) override { return put(rule::dynamicRange, value); }
  STDMETHODIMP get_BorderType(LONG* value) override { return get(rule::borderType, value); }
  STDMETHODIMP put_BorderType(LONG value) override { return put(rule::borderType, value); }
  STDMETHODIMP get_FFTWindowSize(LONG* value) override { return get(rule::fftWindowSize, value); }
  STDMETHODIMP put_FFTWindowSize(LONG value) override { return put(rule::fftWindowSize, value); }
  STDMETHODIMP get_FFTWindowType(LONG* value) override { return get(rule::fftWindowType, value); }
  STDMETHODIMP put_FFTWindowType(LONG value) override { return put(rule::fftWindowType, value); }
  STDMETHODIMP get_FFTViewType(LONG* value) override { return get(rule::fftViewType, value); }
  STDMETHODIMP put_FFTViewType(LONG value) override { return put(rule::fftViewType, value); }

 private:
  void draw(HDC target, const RECT& bounds) override;
  void activationVerbDone() override;
  void resized(SIZE client) override;
  std::wstring spokenValue() override;
  std::wstring spokenDescription() override;
  bool handleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
  REFIID dispatchInterfaceId() const noexcept override { return IID_IAudioVisualization4Type1; }
  void* findInterface(REFIID iid) noexcept override;
  void tearDown() noexcept override;

  template <class Rule, class Value>
  HRESULT get(const Rule& rule, Value* value) const;
  template <class Rule, class Value>
  HRESULT put(const Rule& rule, Value value);
  /// A put: stores with `store` under the locks that the row's effects ask for, then carries the effects out in their
  /// order. `store` returns the failure that keeps the old value.
  template <class Store>
  HRESULT change(Effects effects, Store&& store);

  void pushBlock(IUnknown* audioData);
  /// Asks the container for more room when there is less than scales and curves can use.
  void growToMinimumSize(Size client);
  void layoutWindow();

  // The mouse, see mouse.cpp. Positions count from the client area's corner.
  struct PointerReading {
    PointerValue value;
    bool reportsMove = false;
  };
  PointerReading readingAt(Point position);
  void fireAt(DISPID event, Point position, PointerValue value);

  std::wstring m_spoken;   // the words of the last look at what is shown
  bool m_growing = false;  // waits for the container's answer to a wish for a larger rectangle
  Mutex m_mutex;
  CriticalSection m_drawingLock;
  ViewSettings m_settings;
  ViewAnalysis m_analysis{m_drawingLock};
  ViewPicture m_picture;
  CTimer<CAudioVisualization4Type1, IAudioVisualization4Type1, &IID_IAudioVisualization4Type1> m_timer{*this};
};

template <class Rule, class Value>
HRESULT CAudioVisualization4Type1::get(const Rule& rule, Value* value) const {
  if (!value) return E_POINTER;
  *value = static_cast<Value>(applyGet(rule, m_settings));
  return S_OK;
}

template <class Rule, class Value>
HRESULT CAudioVisualization4Type1::put(const Rule& rule, Value value) {
  return change(rule.effects, [&] { return applyPut(rule, m_settings, value) ? S_OK : E_INVALIDARG; });
}

template <class Store>
HRESULT CAudioVisualization4Type1::change(Effects effects, Store&& store) {
  const ole::KeepAlive alive(*this);
  // Drawing into the own window belongs to the put as a whole; a container is asked for it with no lock held.
  const bool redraws = has(effects, Effects::redraw);
  const bool drawsItself = redraws && hasActiveWindow();
  try {
    // A block may be arriving on the host's audio thread: what it is analysed into changes between blocks only.
    std::unique_lock betweenBlocks(m_mutex, std::defer_lock);
    if (has(effects, Effects::reset)) betweenBlocks.lock();
    const std::lock_guard picture(m_drawingLock);
    const StandardArithmetic arithmetic;
    const HRESULT stored = store();
    if (FAILED(stored)) return stored;
    if (has(effects, Effects::reallocate)) m_analysis.resizeWindow(m_settings);
    if (has(effects, Effects::reset)) m_analysis.reset(m_settings);
    if (betweenBlocks.owns_lock()) betweenBlocks.unlock();  // the next block need not wait for the picture
    if (has(effects, Effects::relayout)) layoutWindow();
    if (drawsItself) drawNow();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  if (redraws && !drawsItself) drawNow();
  return S_OK;
}

/// Makes the control; see ole::CreateFunction.
HRESULT createType1Control(IUnknown* outer, REFIID iid, void** object);

}  // namespace av::type1
