// The reference count of accessible objects, and late binding to them.

#include "ole/accessible.h"
#include "ole/oleacc_library.h"

namespace av::ole {

STDMETHODIMP Accessible::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IDispatch) && !IsEqualIID(iid, __uuidof(IAccessible)))
    return E_NOINTERFACE;
  *object = static_cast<IAccessible*>(this);
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) Accessible::AddRef() { return ++m_references; }

STDMETHODIMP_(ULONG) Accessible::Release() {
  const ULONG left = --m_references;
  if (left == 0) delete this;
  return left;
}

ITypeInfo* Accessible::typeInfo() noexcept {
  if (!m_typeInfo) loadAccessibleTypeInfo(&m_typeInfo);
  return m_typeInfo.Get();
}

STDMETHODIMP Accessible::GetTypeInfoCount(UINT* count) {
  if (!count) return E_POINTER;
  *count = 0;
  const HRESULT result = connected();
  if (SUCCEEDED(result) && typeInfo()) *count = 1;
  return result;
}

STDMETHODIMP Accessible::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  const HRESULT result = connected();
  if (FAILED(result)) return result;
  if (index != 0) return DISP_E_BADINDEX;
  if (!typeInfo()) return E_NOTIMPL;
  *info = m_typeInfo.Get();
  (*info)->AddRef();
  return S_OK;
}

STDMETHODIMP Accessible::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (!names || !ids || count == 0) return E_INVALIDARG;
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  const HRESULT result = connected();
  if (FAILED(result)) return result;
  return typeInfo() ? m_typeInfo->GetIDsOfNames(names, count, ids) : DISP_E_UNKNOWNNAME;
}

STDMETHODIMP Accessible::Invoke(DISPID member, REFIID reserved, LCID, WORD flags, DISPPARAMS* arguments,
                                VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (!arguments) return E_INVALIDARG;
  const HRESULT usable = connected();
  if (FAILED(usable)) return usable;
  if (!typeInfo()) return DISP_E_MEMBERNOTFOUND;
  return m_typeInfo->Invoke(static_cast<IAccessible*>(this), member, flags, arguments, result, exception,
                            argumentError);
}

}  // namespace av::ole
