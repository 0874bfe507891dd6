#include "companion/scaled_font.h"

#include <QELAudioVisualization4.h>
#include <olectl.h>

namespace av::companion {

using Microsoft::WRL::ComPtr;

namespace {

/// Calls `work` with the control's interface that has a ScaleFont, if it has one.
template <class Work>
HRESULT withScaleFont(IDispatch& control, Work&& work) {
  ComPtr<IAudioVisualization4Type1> view;
  if (SUCCEEDED(control.QueryInterface(IID_PPV_ARGS(&view)))) return work(*view.Get());
  ComPtr<IAudioVisualization4Type3> analyser;
  if (SUCCEEDED(control.QueryInterface(IID_PPV_ARGS(&analyser)))) return work(*analyser.Get());
  return E_NOINTERFACE;
}

ComPtr<IFontDisp> fontOf(IDispatch& control) {
  ComPtr<IFontDisp> font;
  withScaleFont(control, [&](auto& one) { return one.get_ScaleFont(font.GetAddressOf()); });
  return font;
}

HRESULT putFont(IDispatch& control, IFontDisp* font) {
  return withScaleFont(control, [&](auto& one) { return one.putref_ScaleFont(font); });
}

bool isSame(IUnknown* one, IUnknown* other) {
  if (!one || !other) return one == other;
  ComPtr<IUnknown> first, second;
  one->QueryInterface(IID_PPV_ARGS(&first));
  other->QueryInterface(IID_PPV_ARGS(&second));
  return first.Get() == second.Get();
}

/// A copy of `font`, `factor` times as large.
ComPtr<IFontDisp> scaledCopy(IFontDisp* font, int numerator, int denominator) {
  ComPtr<IFont> source, copy;
  ComPtr<IFontDisp> result;
  CY size = {};
  if (FAILED(font->QueryInterface(IID_PPV_ARGS(&source))) || FAILED(source->get_Size(&size)) ||
      FAILED(source->Clone(&copy)))
    return nullptr;
  size.int64 = size.int64 * numerator / denominator;
  if (FAILED(copy->put_Size(size))) return nullptr;
  copy.As(&result);
  return result;
}

}  // namespace

void ScaledFont::scale(IDispatch& control, int dpi, int screenDpi) noexcept {
  const ComPtr<IFontDisp> now = fontOf(control);
  if (!now) return;
  const bool ours = m_given && isSame(now.Get(), m_given.Get());
  if (!ours) m_own = now;
  if (!ours && dpi == screenDpi) return;
  const ComPtr<IFontDisp> next = dpi == screenDpi ? m_own : scaledCopy(m_own.Get(), dpi, screenDpi);
  if (next && SUCCEEDED(putFont(control, next.Get()))) m_given = next;
}

void ScaledFont::restore(IDispatch& control) noexcept {
  if (m_given && isSame(fontOf(control).Get(), m_given.Get())) putFont(control, m_own.Get());
  m_own.Reset();
  m_given.Reset();
}

}  // namespace av::companion
