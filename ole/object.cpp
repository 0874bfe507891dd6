#include "ole/object.h"

namespace av::ole {

namespace {

// Far from zero in both directions: counted pairs during tearDown() move it a little and nothing more.
constexpr ULONG pinnedCount = 0x40000000;

}  // namespace

Object::Object(IUnknown* outer) noexcept : m_outer(outer ? outer : &m_inner) {}

Object::~Object() = default;

STDMETHODIMP Object::Inner::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (IsEqualIID(iid, IID_IUnknown)) {
    *object = static_cast<IUnknown*>(this);
    AddRef();
    return S_OK;
  }
  void* part = m_object.findInterface(iid);
  if (!part) return E_NOINTERFACE;
  *object = part;
  // Parts count on the controlling object, also in an aggregate.
  m_object.addRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) Object::Inner::AddRef() { return ++m_object.m_references; }

STDMETHODIMP_(ULONG) Object::Inner::Release() {
  const ULONG left = --m_object.m_references;
  if (left == 0) {
    m_object.m_references = pinnedCount;
    // In an aggregate the outer object is already going; its count is not ours to touch any more.
    m_object.m_outer = this;
    m_object.tearDown();
    delete &m_object;
  }
  return left;
}

}  // namespace av::ole
