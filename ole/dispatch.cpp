#include "ole/dispatch.h"

#include "ole/module_instance.h"

namespace av::ole {

using Microsoft::WRL::ComPtr;

namespace {

/// How many arguments a caller passes for a member: its parameters without the result. −1 where `info` has no such
/// member itself.
int argumentCountOf(ITypeInfo& info, DISPID member, INVOKEKIND kind) {
  ComPtr<ITypeInfo2> finder;
  UINT index = 0;
  FUNCDESC* function = nullptr;
  if (FAILED(info.QueryInterface(IID_PPV_ARGS(&finder))) || FAILED(finder->GetFuncIndexOfMemId(member, kind, &index)) ||
      FAILED(info.GetFuncDesc(index, &function)))
    return -1;
  int count = function->cParams;
  if (count > 0 && (function->lprgelemdescParam[count - 1].paramdesc.wParamFlags & PARAMFLAG_FRETVAL)) --count;
  info.ReleaseFuncDesc(function);
  return count;
}

/// Whether a call passes more arguments than the member of `dispatchSide` has. Not every system's type library code
/// looks: some drop the surplus and call.
bool hasSurplusArguments(ITypeInfo& dispatchSide, DISPID member, WORD flags, UINT count) {
  if (count == 0) return false;
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> level;  // the vtable side, then the interfaces that it derives from
  if (FAILED(dispatchSide.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)) ||
      FAILED(dispatchSide.GetRefTypeInfo(reference, &level)))
    return false;
  while (level) {
    for (const INVOKEKIND kind : {INVOKE_FUNC, INVOKE_PROPERTYGET, INVOKE_PROPERTYPUT, INVOKE_PROPERTYPUTREF}) {
      if (!(flags & kind)) continue;
      const int has = argumentCountOf(*level.Get(), member, kind);
      if (has >= 0) return count > static_cast<UINT>(has);
    }
    ComPtr<ITypeInfo> base;
    if (FAILED(level->GetRefTypeOfImplType(0, &reference)) || FAILED(level->GetRefTypeInfo(reference, &base)))
      return false;
    level = base;
  }
  return false;
}

}  // namespace

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
  if (hasSurplusArguments(*m_info.Get(), member, flags, arguments->cArgs)) return DISP_E_BADPARAMCOUNT;
  SetErrorInfo(0, nullptr);
  return m_info->Invoke(instance, member, flags, arguments, result, exception, argumentError);
}

}  // namespace av::ole
