#include "ole/class_info.h"

#include "ole/control.h"
#include "ole/module_instance.h"

namespace av::ole {

using Microsoft::WRL::ComPtr;

STDMETHODIMP ClassInfo::GetClassInfo(ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  ComPtr<ITypeLib> library;
  const HRESULT result = loadModuleTypeLibrary(&library);
  return FAILED(result) ? result : library->GetTypeInfoOfGuid(control().info().classId, info);
}

STDMETHODIMP ClassInfo::GetGUID(DWORD kind, GUID* guid) {
  if (!guid) return E_POINTER;
  *guid = GUID_NULL;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;

  ComPtr<ITypeInfo> coclass;
  HRESULT result = GetClassInfo(&coclass);
  if (FAILED(result)) return result;
  TYPEATTR* attributes = nullptr;
  result = coclass->GetTypeAttr(&attributes);
  if (FAILED(result)) return result;
  const UINT count = attributes->cImplTypes;
  coclass->ReleaseTypeAttr(attributes);

  constexpr INT defaultSource = IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE;
  for (UINT i = 0; i < count; ++i) {
    INT flags = 0;
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> events;
    if (FAILED(coclass->GetImplTypeFlags(i, &flags)) || (flags & defaultSource) != defaultSource) continue;
    result = coclass->GetRefTypeOfImplType(i, &reference);
    if (SUCCEEDED(result)) result = coclass->GetRefTypeInfo(reference, &events);
    if (SUCCEEDED(result)) result = events->GetTypeAttr(&attributes);
    if (FAILED(result)) return result;
    *guid = attributes->guid;
    events->ReleaseTypeAttr(attributes);
    return S_OK;
  }
  return E_FAIL;  // a class without events
}

STDMETHODIMP ErrorInfoSupport::InterfaceSupportsErrorInfo(REFIID iid) {
  // IDispatch has failures of its own, and tells of the members' in its exception record.
  if (iid == IID_IUnknown || iid == IID_IDispatch) return S_FALSE;
  // The dual interface and those that it derives from are one table of methods.
  ComPtr<IUnknown> asked, dual;
  if (FAILED(control().queryInterface(iid, reinterpret_cast<void**>(asked.GetAddressOf())))) return S_FALSE;
  const HRESULT found =
      control().queryInterface(control().dispatchInterfaceId(), reinterpret_cast<void**>(dual.GetAddressOf()));
  return SUCCEEDED(found) && asked.Get() == dual.Get() ? S_OK : S_FALSE;
}

}  // namespace av::ole
