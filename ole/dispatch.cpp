#include "ole/dispatch.h"

#include "ole/module_instance.h"

namespace av::ole {

using Microsoft::WRL::ComPtr;

HRESULT TypeInfoDispatch::load() {
  if (m_info) return S_OK;
  ComPtr<ITypeLib> library;
  const HRESULT result = loadModuleTypeLibrary(&library);
  return FAILED(result) ? result : library->GetTypeInfoOfGuid(m_interfaceId, &m_info);
}

HRESULT TypeInfoDispatch::getTypeInfoCount(UINT* count) noexcept {
  if (!count) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT TypeInfoDispatch::getTypeInfo(UINT index, ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  const HRESULT result = load();
  return FAILED(result) ? result : m_info.CopyTo(info);
}

HRESULT TypeInfoDispatch::getIdsOfNames(REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (count == 0) return S_OK;
  if (!names || !ids) return E_POINTER;
  for (UINT i = 0; i < count; ++i) {
    ids[i] = DISPID_UNKNOWN;
    if (!names[i]) return E_INVALIDARG;
  }
  const HRESULT result = load();
  return FAILED(result) ? result : m_info->GetIDsOfNames(names, count, ids);
}

HRESULT TypeInfoDispatch::invoke(void* instance, DISPID member, REFIID reserved, WORD flags, DISPPARAMS* arguments,
                                 VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (!arguments) return E_POINTER;
  const HRESULT loaded = load();
  if (FAILED(loaded)) return loaded;
  SetErrorInfo(0, nullptr);
  return m_info->Invoke(instance, member, flags, arguments, result, exception, argumentError);
}

}  // namespace av::ole
