#include "common/win/tick_object.h"

#include <new>

namespace av {

using Microsoft::WRL::ComPtr;

ComPtr<TickObject> TickObject::create(IAudioVisualizationTemplate* control, const IID& dispatchId,
                                      ole::ModuleLock& moduleLock) noexcept {
  ComPtr<TickObject> object;
  // MinGW's Attach() would add a reference to the one that the object is born with.
  *object.GetAddressOf() = new (std::nothrow) TickObject(control, dispatchId, moduleLock);
  return object;
}

TickObject::TickObject(IAudioVisualizationTemplate* control, const IID& dispatchId,
                       ole::ModuleLock& moduleLock) noexcept
    : m_moduleLock(moduleLock), m_dispatchId(dispatchId), m_control(control) {
  m_moduleLock.lockModule();
}

TickObject::~TickObject() { m_moduleLock.unlockModule(); }

STDMETHODIMP TickObject::QueryInterface(REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) ||
      IsEqualIID(id, IID_IAudioVisualizationTemplate) || IsEqualIID(id, m_dispatchId)) {
    *object = static_cast<IAudioVisualizationTemplate*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) TickObject::AddRef() { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }

STDMETHODIMP_(ULONG) TickObject::Release() {
  const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
  if (left == 0) delete this;
  return left;
}

STDMETHODIMP TickObject::_OnTimer() {
  struct OnStack {
    explicit OnStack(int& depth) noexcept : m_depth(depth) { ++m_depth; }
    ~OnStack() { --m_depth; }
    int& m_depth;
  };
  // The order matters: releasing the control may destroy it and with it the timer, which has to know that this tick
  // is still on the stack, and which gives up its reference to this object.
  const ComPtr<TickObject> self(this);
  const OnStack tick(m_ticksOnStack);
  const ComPtr<IAudioVisualizationTemplate> control(m_control);
  if (!control) return S_OK;
  control->_OnTimer();
  return S_OK;
}

STDMETHODIMP TickObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

STDMETHODIMP TickObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return E_NOTIMPL;
}

}  // namespace av
