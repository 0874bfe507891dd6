#include "player/win/property_info.h"

#include "player/win/text.h"

#include <ocidl.h>
#include <wrl/client.h>

#include <algorithm>

namespace avplayer {

namespace {

using Microsoft::WRL::ComPtr;

struct ValueType {
  ValueKind kind = ValueKind::other;
  VARTYPE type = VT_EMPTY;
};

ValueType typeOf(ITypeInfo& info, const TYPEDESC& description);

/// A type with a name of its own: an alias, or an interface behind a pointer.
ValueType namedType(ITypeInfo& info, HREFTYPE reference, bool pointer) {
  ComPtr<ITypeInfo> named;
  if (FAILED(info.GetRefTypeInfo(reference, named.GetAddressOf()))) return {};
  BSTR name = nullptr;
  named->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
  if (taken(name) == L"OLE_COLOR") return {ValueKind::colour, VT_I4};
  TYPEATTR* attributes = nullptr;
  if (FAILED(named->GetTypeAttr(&attributes))) return {};
  ValueType type;
  if (pointer && attributes->guid == IID_IFontDisp) type = {ValueKind::font, VT_DISPATCH};
  else if (attributes->typekind == TKIND_ALIAS) type = typeOf(*named.Get(), attributes->tdescAlias);
  named->ReleaseTypeAttr(attributes);
  return type;
}

ValueType typeOf(ITypeInfo& info, const TYPEDESC& description) {
  switch (description.vt) {
    case VT_BOOL: return {ValueKind::boolean, VT_BOOL};
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_INT:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UINT: return {ValueKind::whole, VT_I4};
    case VT_R4:
    case VT_R8: return {ValueKind::real, VT_R4};
    case VT_BSTR: return {ValueKind::text, VT_BSTR};
    case VT_USERDEFINED: return namedType(info, description.hreftype, false);
    case VT_PTR:
      if (description.lptdesc->vt == VT_USERDEFINED) return namedType(info, description.lptdesc->hreftype, true);
      return {};
    default: return {};
  }
}

/// The value's type and how many parameters stand before it.
ValueType valueType(ITypeInfo& info, const FUNCDESC& function, int& indexCount) {
  const bool get = function.invkind == INVOKE_PROPERTYGET;
  for (int i = 0; i < function.cParams; ++i) {
    const ELEMDESC& parameter = function.lprgelemdescParam[i];
    const bool isResult = (parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
    const bool isValue = get ? isResult : i + 1 == function.cParams;
    if (!isValue) continue;
    indexCount = i;
    // A result is written through a pointer.
    return typeOf(info, isResult && parameter.tdesc.vt == VT_PTR ? *parameter.tdesc.lptdesc : parameter.tdesc);
  }
  indexCount = function.cParams;  // the dispatch form of a get: its result is the function's
  return typeOf(info, function.elemdescFunc.tdesc);
}

void addAccessor(ITypeInfo& info, const FUNCDESC& function, std::vector<Property>& properties) {
  constexpr WORD hidden = FUNCFLAG_FHIDDEN | FUNCFLAG_FRESTRICTED | FUNCFLAG_FNONBROWSABLE;
  if (function.invkind == INVOKE_FUNC || (function.wFuncFlags & hidden) != 0) return;
  int indexCount = 0;
  const ValueType type = valueType(info, function, indexCount);
  if (indexCount > 1) return;  // no property of ours; nothing could edit it
  auto found =
      std::find_if(properties.begin(), properties.end(), [&](const Property& p) { return p.id == function.memid; });
  if (found == properties.end()) {
    BSTR name = nullptr, help = nullptr;
    if (FAILED(info.GetDocumentation(function.memid, &name, &help, nullptr, nullptr))) return;
    Property property;
    property.name = taken(name);
    property.help = taken(help);
    property.id = function.memid;
    property.kind = type.kind;
    property.type = type.type;
    property.indexed = indexCount == 1;
    found = properties.insert(properties.end(), property);
  }
  if (function.invkind == INVOKE_PROPERTYGET) found->readable = true;
  else found->writable = true;
  if (function.invkind == INVOKE_PROPERTYPUTREF) found->byReference = true;
}

/// The interface with the virtual table behind a dispatch interface: it names its base, the other one may not.
ComPtr<ITypeInfo> interfaceOf(const ComPtr<ITypeInfo>& info) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> whole;
  if (SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)) &&
      SUCCEEDED(info->GetRefTypeInfo(reference, whole.GetAddressOf())))
    return whole;
  return info;
}

ComPtr<ITypeInfo> baseOf(ITypeInfo& info) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> base;
  if (FAILED(info.GetRefTypeOfImplType(0, &reference)) || FAILED(info.GetRefTypeInfo(reference, base.GetAddressOf())))
    return nullptr;
  return base;
}

bool addAccessorsOf(ITypeInfo& info, std::vector<Property>& properties) {
  TYPEATTR* attributes = nullptr;
  if (FAILED(info.GetTypeAttr(&attributes))) return false;
  const bool ours = attributes->guid != IID_IDispatch && attributes->guid != IID_IUnknown;
  const UINT count = ours ? attributes->cFuncs : 0;
  info.ReleaseTypeAttr(attributes);
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    if (FAILED(info.GetFuncDesc(i, &function))) continue;
    addAccessor(info, *function, properties);
    info.ReleaseFuncDesc(function);
  }
  return ours;
}

}  // namespace

std::vector<Property> readProperties(IDispatch& object) {
  std::vector<Property> properties;
  ComPtr<ITypeInfo> info;
  if (FAILED(object.GetTypeInfo(0, GetUserDefaultLCID(), info.GetAddressOf())) || !info) return properties;
  info = interfaceOf(info);
  while (info && addAccessorsOf(*info.Get(), properties)) info = baseOf(*info.Get());
  return properties;
}

std::wstring interfaceHelp(IDispatch& object) {
  ComPtr<ITypeInfo> info;
  BSTR help = nullptr;
  if (SUCCEEDED(object.GetTypeInfo(0, GetUserDefaultLCID(), info.GetAddressOf())) && info)
    info->GetDocumentation(MEMBERID_NIL, nullptr, &help, nullptr, nullptr);
  return taken(help);
}

}  // namespace avplayer
