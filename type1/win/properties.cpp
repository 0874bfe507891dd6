#include "type1/win/control.h"

namespace av::type1 {

// The rows of the property table that are more than a value in the settings.

STDMETHODIMP CAudioVisualization4Type1::get_LineColor(LONG channel, OLE_COLOR* value) {
  if (!value) return E_POINTER;
  const auto colour = lineColor(m_settings, channel);
  if (!colour) return E_INVALIDARG;
  *value = *colour;
  return S_OK;
}

STDMETHODIMP CAudioVisualization4Type1::put_LineColor(LONG channel, OLE_COLOR value) {
  return change(rule::lineColor.effects,
                [&] { return putLineColor(m_settings, channel, value) ? S_OK : E_INVALIDARG; });
}

STDMETHODIMP CAudioVisualization4Type1::get_ScaleFont(IFontDisp** value) {
  return value ? m_picture.font(value) : E_POINTER;
}

STDMETHODIMP CAudioVisualization4Type1::putref_ScaleFont(IFontDisp* value) {
  if (!value) return S_OK;
  return change(rule::scaleFont.effects, [&] { return m_picture.setFont(value); });
}

}  // namespace av::type1
