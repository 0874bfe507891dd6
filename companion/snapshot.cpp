#include "companion/snapshot.h"

#include <QELAudioVisualization4.h>

#include <algorithm>

#include "companion/file_writer.h"
#include "companion/path_argument.h"
#include "companion/picture.h"
#include "host/container.h"
#include "host/message_pump.h"

namespace av::companion {

using Microsoft::WRL::ComPtr;

namespace {

constexpr LONG longestSidePx = 8192;
constexpr LONG lowestDpi = 48;
constexpr LONG highestDpi = 768;
constexpr LONG longestWaitMs = 600'000;
/// So many steps bring the view's smoothed curve to what was analysed: the slower way, downwards, a quarter of the gap at
/// a time, then leaves less than a thousandth of 200 dB.
constexpr int settlingSteps = 48;
/// As often as the controls' own timers, roughly.
constexpr DWORD tickPeriodMs = 50;

}  // namespace

SnapshotObject::SnapshotObject(IUnknown* outer) noexcept
    : AutomationObject(outer, L"Snapshot"), m_screenDpi(avhost::screenDpi().cy), m_dpi(m_screenDpi) {}

STDMETHODIMP SnapshotObject::CreateControl(LONG number, IDispatch** created) {
  return answer(L"CreateControl", created, [&] {
    ComPtr<IDispatch> control = m_maker.create(number);
    take(control.Get());
    return control.Detach();
  });
}

STDMETHODIMP SnapshotObject::get_Control(IDispatch** value) {
  return answer(L"Control", value, [&] {
    ComPtr<IDispatch> control = m_control;
    return control.Detach();
  });
}

STDMETHODIMP SnapshotObject::put_Control(IDispatch* value) {
  return guard(L"Control", [&] { take(value); });
}

STDMETHODIMP SnapshotObject::get_Width(LONG* value) {
  return answer(L"Width", value, [&] { return m_sizePx.cx; });
}

STDMETHODIMP SnapshotObject::put_Width(LONG value) {
  return guard(L"Width", [&] { resize({value, m_sizePx.cy}); });
}

STDMETHODIMP SnapshotObject::get_Height(LONG* value) {
  return answer(L"Height", value, [&] { return m_sizePx.cy; });
}

STDMETHODIMP SnapshotObject::put_Height(LONG value) {
  return guard(L"Height", [&] { resize({m_sizePx.cx, value}); });
}

STDMETHODIMP SnapshotObject::get_Dpi(LONG* value) {
  return answer(L"Dpi", value, [&] { return LONG{m_dpi}; });
}

STDMETHODIMP SnapshotObject::put_Dpi(LONG value) {
  return guard(L"Dpi", [&] {
    if (value < lowestDpi || value > highestDpi) throw badArgument(L"it must be 48 to 768.");
    m_dpi = value;
    layOut();
  });
}

STDMETHODIMP SnapshotObject::Wait(LONG milliseconds) {
  return guard(L"Wait", [&] {
    if (milliseconds < 0 || milliseconds > longestWaitMs) throw badArgument(L"the milliseconds must be 0 to 600000.");
    const ULONGLONG endMs = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
    for (;;) {
      const ULONGLONG nowMs = GetTickCount64();
      const ULONGLONG leftMs = endMs > nowMs ? endMs - nowMs : 0;
      avhost::pumpMessages(static_cast<DWORD>(std::min<ULONGLONG>(leftMs, tickPeriodMs)));
      if (leftMs == 0) return;
      tick(1);
    }
  });
}

STDMETHODIMP SnapshotObject::Save(BSTR path) {
  return guard(L"Save", [&] {
    const std::wstring name = pathFrom(path);
    const ComPtr<IViewObject> view = m_view;
    if (!view) throw badMoment(L"there is no control yet: call CreateControl, or put Control, first.");
    ComPtr<IAudioVisualization4Type1> smoothed;
    if (SUCCEEDED(m_control.As(&smoothed))) tick(settlingSteps);
    writeFile(name, drawPng(*view.Get(), m_sizePx, m_dpi));
  });
}

void SnapshotObject::take(IDispatch* control) {
  ComPtr<IViewObject> view;
  if (control && FAILED(control->QueryInterface(IID_PPV_ARGS(&view))))
    throw badArgument(L"the object has no picture: it is no control.");
  const ComPtr<IDispatch> held = control;  // it may be the one that is let go
  letGo();
  m_control = held;
  m_view = view;
  layOut();
}

void SnapshotObject::letGo() noexcept {
  if (m_control && ownsControl()) m_font.restore(*m_control.Get());
  // Taken out first: a control that ends here dispatches messages.
  const ComPtr<IDispatch> control = std::move(m_control);
  const ComPtr<IViewObject> view = std::move(m_view);
}

void SnapshotObject::resize(SIZE sizePx) {
  if (std::min(sizePx.cx, sizePx.cy) < 1 || std::max(sizePx.cx, sizePx.cy) > longestSidePx)
    throw badArgument(L"it must be 1 to 8192.");
  m_sizePx = sizePx;
  layOut();
}

bool SnapshotObject::ownsControl() const {
  ComPtr<IOleObject> object;
  ComPtr<IOleClientSite> site;
  if (FAILED(m_control.As(&object))) return true;
  return FAILED(object->GetClientSite(&site)) || !site;
}

void SnapshotObject::layOut() {
  if (!m_control || !ownsControl()) return;
  m_font.scale(*m_control.Get(), m_dpi, m_screenDpi);
  ComPtr<IOleObject> object;
  if (SUCCEEDED(m_control.As(&object))) {
    SIZEL extent = {avhost::himetricFromPixels(m_sizePx.cx, m_screenDpi),
                    avhost::himetricFromPixels(m_sizePx.cy, m_screenDpi)};
    object->SetExtent(DVASPECT_CONTENT, &extent);
  }
  // The analyser's ticks are pixels of the picture that was drawn last: it has to have its size before the first block.
  drawNowhere(*m_view.Get(), m_sizePx);
}

void SnapshotObject::tick(int count) {
  const ComPtr<IDispatch> control = m_control;
  ComPtr<IAudioVisualizationTemplate> ticking;
  // A control that lies in a container has a timer of its own.
  if (!control || !ownsControl() || FAILED(control.As(&ticking))) return;
  for (int i = 0; i < count; ++i) ticking->_OnTimer();
}

HRESULT createSnapshot(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<SnapshotObject>(outer, iid, object);
}

}  // namespace av::companion
