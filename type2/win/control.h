#pragma once

#include "ole/control.h"
#include "ole/dispatch.h"

#include <QELAudioVisualization4.h>

namespace av::type2 {

/// `CAudioVisualization4Type2`, the level meter: it can be created, sited and sized, and shows an empty black area. Its
/// accessors answer E_NOTIMPL until the picture behind them exists.
class CAudioVisualization4Type2 final : public ole::Control, public ole::Dual<IAudioVisualization4Type2> {
 public:
  explicit CAudioVisualization4Type2(IUnknown* outer) noexcept;

  // IAudioVisualizationTemplate [control thread]
  STDMETHODIMP _OnTimer() override { return S_OK; }
  STDMETHODIMP SendAudioData(IUnknown*) override { return S_OK; }
  STDMETHODIMP Repaint() override { return S_OK; }
  STDMETHODIMP SetAdditionalParam(BSTR, VARIANT) override { return S_OK; }
  STDMETHODIMP GetAdditionalParam(BSTR, VARIANT*) override { return S_OK; }

  // IAudioVisualization4Type2 [control thread]
  STDMETHODIMP get_LineType(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineType(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineInterval(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineInterval(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineCount(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineCount(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_BackColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BackColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BorderColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BorderColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineLowColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineLowColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineMidColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineMidColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineHighColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineHighColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BackLineLowColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BackLineLowColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BackLineMidColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BackLineMidColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BackLineHighColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BackLineHighColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_TickDelayTime(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_TickDelayTime(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_TickReleaseTime(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_TickReleaseTime(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_TickVisible(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP put_TickVisible(VARIANT_BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP get_SpotHeight(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_SpotHeight(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_SpotInterval(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_SpotInterval(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_MidPoint(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_MidPoint(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_HighPoint(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_HighPoint(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_AlignmentY(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_AlignmentY(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_AlignmentX(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_AlignmentX(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_BorderType(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BorderType(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_BorderWidth(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BorderWidth(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_AutoRepaint(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP put_AutoRepaint(VARIANT_BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP get_AutoSize(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP put_AutoSize(VARIANT_BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP get_FFTWindowSize(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_FFTWindowSize(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_FFTWindowType(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_FFTWindowType(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_FFTViewType(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_FFTViewType(LONG) override { return E_NOTIMPL; }

 private:
  void draw(HDC target, const RECT& bounds) override;
  REFIID dispatchInterfaceId() const noexcept override { return IID_IAudioVisualization4Type2; }
  void* findInterface(REFIID iid) noexcept override;
  void tearDown() noexcept override { leaveContainer(); }
};

/// Makes the control; see ole::CreateFunction.
HRESULT createType2Control(IUnknown* outer, REFIID iid, void** object);

}  // namespace av::type2
