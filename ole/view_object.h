#pragma once

#include "ole/part.h"

#include <ocidl.h>
#include <oleidl.h>
#include <wrl/client.h>

namespace av::ole {

/// IViewObject, IViewObject2, IViewObjectEx: the picture outside the control's own window. Only the content aspect
/// exists; the picture is opaque and covers its rectangle. [control thread]
class ViewObject final : public ControlPart<IViewObjectEx> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP Draw(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* device, HDC information, HDC target,
                    LPCRECTL bounds, LPCRECTL windowBounds, BOOL(CALLBACK* proceed)(ULONG_PTR),
                    ULONG_PTR proceedArgument) override;
  STDMETHODIMP GetColorSet(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* device, HDC information,
                           LOGPALETTE** colors) override;
  STDMETHODIMP Freeze(DWORD aspect, LONG index, void* aspectInfo, DWORD* token) override;
  STDMETHODIMP Unfreeze(DWORD token) override;
  STDMETHODIMP SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
  STDMETHODIMP GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
  STDMETHODIMP GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device, LPSIZEL himetric) override;
  STDMETHODIMP GetRect(DWORD aspect, LPRECTL bounds) override;
  STDMETHODIMP GetViewStatus(DWORD* status) override;
  STDMETHODIMP QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT location, LONG closeHint, DWORD* hit) override;
  STDMETHODIMP QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT location, LONG closeHint, DWORD* hit) override;
  STDMETHODIMP GetNaturalExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device, HDC target, DVEXTENTINFO* info,
                                LPSIZEL himetric) override;

  /// Tells the view's sink, if there is one, that the picture has changed. [control thread or audio thread]
  void viewChanged();
  /// Lets the sink go: the control is at its end.
  void disconnect() noexcept;

 private:
  /// Blocks that draw on the audio thread read the sink while the container may be replacing it. Never held during a
  /// call of the sink.
  SRWLOCK m_sinkLock = SRWLOCK_INIT;
  Microsoft::WRL::ComPtr<IAdviseSink> m_sink;
  DWORD m_sinkAspects = 0;
  DWORD m_sinkFlags = 0;
};

}  // namespace av::ole
