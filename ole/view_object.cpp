#include "ole/view_object.h"

#include "ole/control.h"

#include <utility>

namespace av::ole {

using Microsoft::WRL::ComPtr;

namespace {

class Exclusive {
 public:
  explicit Exclusive(SRWLOCK& lock) noexcept : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
  ~Exclusive() { ReleaseSRWLockExclusive(&m_lock); }
  Exclusive(const Exclusive&) = delete;
  Exclusive& operator=(const Exclusive&) = delete;

 private:
  SRWLOCK& m_lock;
};

}  // namespace

STDMETHODIMP ViewObject::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC target, LPCRECTL bounds, LPCRECTL,
                              BOOL(CALLBACK*)(ULONG_PTR), ULONG_PTR) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  // An active windowless control knows its rectangle in the container's window, which the target shows.
  if (!target || (!bounds && !control().inPlace().isWindowless())) return E_INVALIDARG;
  const KeepAlive alive(control());
  RECT pixels = control().inPlace().position();
  if (bounds) pixels = {bounds->left, bounds->top, bounds->right, bounds->bottom};
  const int saved = SaveDC(target);
  // The caller's logical rectangle in device pixels, then drawing in pixels. A metafile has no device: its logical
  // units are kept.
  const DWORD kind = GetObjectType(target);
  if (kind != OBJ_METADC && kind != OBJ_ENHMETADC) {
    LPtoDP(target, reinterpret_cast<POINT*>(&pixels), 2);
    ModifyWorldTransform(target, nullptr, MWT_IDENTITY);  // fails where there can be none
    SetMapMode(target, MM_TEXT);
    SetWindowOrgEx(target, 0, 0, nullptr);
    SetViewportOrgEx(target, 0, 0, nullptr);
  }
  if (pixels.right < pixels.left) std::swap(pixels.left, pixels.right);
  if (pixels.bottom < pixels.top) std::swap(pixels.top, pixels.bottom);
  control().draw(target, pixels);
  if (saved) RestoreDC(target, saved);
  return S_OK;
}

STDMETHODIMP ViewObject::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE** colors) {
  if (!colors) return E_POINTER;
  *colors = nullptr;
  return S_FALSE;
}

STDMETHODIMP ViewObject::Freeze(DWORD, LONG, void*, DWORD*) { return E_NOTIMPL; }

STDMETHODIMP ViewObject::Unfreeze(DWORD) { return E_NOTIMPL; }

STDMETHODIMP ViewObject::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
  const KeepAlive alive(control());
  ComPtr<IAdviseSink> incoming = sink;
  {
    const Exclusive lock(m_sinkLock);
    m_sinkAspects = aspects;
    m_sinkFlags = flags;
    m_sink.Swap(incoming);
  }
  incoming.Reset();  // the old sink
  if (sink && (flags & ADVF_PRIMEFIRST)) viewChanged();
  return S_OK;
}

STDMETHODIMP ViewObject::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
  ComPtr<IAdviseSink> current;
  {
    const Exclusive lock(m_sinkLock);
    if (aspects) *aspects = m_sinkAspects;
    if (flags) *flags = m_sinkFlags;
    current = m_sink;
  }
  return sink ? current.CopyTo(sink) : S_OK;
}

STDMETHODIMP ViewObject::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL himetric) {
  return control().oleObject().GetExtent(aspect, himetric);
}

STDMETHODIMP ViewObject::GetRect(DWORD, LPRECTL bounds) {
  if (bounds) *bounds = {};
  return E_NOTIMPL;
}

STDMETHODIMP ViewObject::GetViewStatus(DWORD* status) {
  if (!status) return E_POINTER;
  *status = VIEWSTATUS_OPAQUE;
  return S_OK;
}

STDMETHODIMP ViewObject::QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT location, LONG, DWORD* hit) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (!bounds || !hit) return E_POINTER;
  *hit = PtInRect(bounds, location) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
  return S_OK;
}

STDMETHODIMP ViewObject::QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT location, LONG, DWORD* hit) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (!bounds || !location || !hit) return E_POINTER;
  RECT common;
  *hit = IntersectRect(&common, bounds, location) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
  return S_OK;
}

STDMETHODIMP ViewObject::GetNaturalExtent(DWORD, LONG, DVTARGETDEVICE*, HDC, DVEXTENTINFO*, LPSIZEL) {
  return E_NOTIMPL;
}

void ViewObject::disconnect() noexcept {
  ComPtr<IAdviseSink> sink;
  const Exclusive lock(m_sinkLock);
  sink.Swap(m_sink);
}

void ViewObject::viewChanged() {
  ComPtr<IAdviseSink> sink;
  {
    const Exclusive lock(m_sinkLock);
    if (!(m_sinkAspects & DVASPECT_CONTENT)) return;
    if (m_sinkFlags & ADVF_ONLYONCE) sink.Swap(m_sink);
    else sink = m_sink;
  }
  if (sink) sink->OnViewChange(DVASPECT_CONTENT, -1);
}

}  // namespace av::ole
