#pragma once

#include "ole/control.h"
#include "ole/dispatch.h"

#include <QELAudioVisualization4.h>

namespace av::type3 {

/// `CAudioVisualization4Type3`, the spectrum analyser: it can be created, sited and sized, and shows an empty black area. Its
/// accessors answer E_NOTIMPL until the picture behind them exists.
class CAudioVisualization4Type3 final : public ole::Control, public ole::Dual<IAudioVisualization4Type3> {
 public:
  explicit CAudioVisualization4Type3(IUnknown* outer) noexcept;

  // IAudioVisualizationTemplate [control thread]
  STDMETHODIMP _OnTimer() override { return S_OK; }
  STDMETHODIMP SendAudioData(IUnknown*) override { return S_OK; }
  STDMETHODIMP Repaint() override { return S_OK; }
  STDMETHODIMP SetAdditionalParam(BSTR, VARIANT) override { return S_OK; }
  STDMETHODIMP GetAdditionalParam(BSTR, VARIANT*) override { return S_OK; }

  // IAudioVisualization4Type3 [control thread]
  STDMETHODIMP get_ScaleXVisible(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP put_ScaleXVisible(VARIANT_BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP get_ScaleYVisible(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP put_ScaleYVisible(VARIANT_BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP get_ScaleYMax(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_ScaleYMax(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_ScaleYMin(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_ScaleYMin(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_FFTLength(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_FFTLength(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_BackColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BackColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BackLineHighColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BackLineHighColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BackLineMidColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BackLineMidColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BackLineLowColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BackLineLowColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineHighColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineHighColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineMidColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineMidColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineLowColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineLowColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_MidPoint(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_MidPoint(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_HighPoint(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_HighPoint(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineInterval(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineInterval(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_SpotInterval(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_SpotInterval(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_SpotHeight(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_SpotHeight(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_LineCount(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_LineCount(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_TickVisible(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP put_TickVisible(VARIANT_BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP get_DynamicRange(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_DynamicRange(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_ScaleFont(IFontDisp**) override { return E_NOTIMPL; }
  STDMETHODIMP putref_ScaleFont(IFontDisp*) override { return E_NOTIMPL; }
  STDMETHODIMP get_ScaleColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_ScaleColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BorderColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BorderColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_BorderType(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_BorderType(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_FFTWindowType(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_FFTWindowType(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_FFTWindowCount(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP get_FFTWindowName(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP get_HasWindowParam(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP get_FFTWindowParam(float*) override { return E_NOTIMPL; }
  STDMETHODIMP put_FFTWindowParam(float) override { return E_NOTIMPL; }
  STDMETHODIMP get_AutoRepaint(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP put_AutoRepaint(VARIANT_BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP get_XScaleType(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_XScaleType(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_TickColor(OLE_COLOR*) override { return E_NOTIMPL; }
  STDMETHODIMP put_TickColor(OLE_COLOR) override { return E_NOTIMPL; }
  STDMETHODIMP get_AlignmentX(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_AlignmentX(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_AlignmentY(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_AlignmentY(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_ViewType(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP put_ViewType(LONG) override { return E_NOTIMPL; }
  STDMETHODIMP get_AutoSize(VARIANT_BOOL*) override { return E_NOTIMPL; }
  STDMETHODIMP put_AutoSize(VARIANT_BOOL) override { return E_NOTIMPL; }

 private:
  void draw(HDC target, const RECT& bounds) override;
  REFIID dispatchInterfaceId() const noexcept override { return IID_IAudioVisualization4Type3; }
  void* findInterface(REFIID iid) noexcept override;
  void tearDown() noexcept override { leaveContainer(); }
};

/// Makes the control; see ole::CreateFunction.
HRESULT createType3Control(IUnknown* outer, REFIID iid, void** object);

}  // namespace av::type3
