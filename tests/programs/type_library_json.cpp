#include "tests/programs/type_library_json.h"

#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <cstdio>
#include <stdexcept>
#include <vector>

namespace av::json {

namespace {

using Microsoft::WRL::ComPtr;

void require(HRESULT result, const char* what) {
  if (FAILED(result)) throw std::runtime_error(what);
}

std::wstring take(BSTR text) {
  std::wstring copy = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
  SysFreeString(text);
  return copy;
}

/// The attributes of a type, given back at the end of the scope.
class Attributes {
 public:
  explicit Attributes(ITypeInfo& info) : m_info(info) { require(info.GetTypeAttr(&m_attributes), "type attributes"); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { m_info.ReleaseTypeAttr(m_attributes); }
  const TYPEATTR* operator->() const { return m_attributes; }

 private:
  ITypeInfo& m_info;
  TYPEATTR* m_attributes = nullptr;
};

struct Documentation {
  std::wstring name, help;
};

Documentation documentation(ITypeInfo& info, MEMBERID member) {
  BSTR name = nullptr, help = nullptr;
  require(info.GetDocumentation(member, &name, &help, nullptr, nullptr), "documentation");
  return {take(name), take(help)};
}

ComPtr<ITypeInfo> referenced(ITypeInfo& info, HREFTYPE reference) {
  ComPtr<ITypeInfo> other;
  require(info.GetRefTypeInfo(reference, &other), "referenced type");
  return other;
}

std::wstring typeName(ITypeInfo& info, const TYPEDESC& type) {
  switch (type.vt) {
    case VT_PTR: return typeName(info, *type.lptdesc) + L"*";
    case VT_USERDEFINED: return documentation(*referenced(info, type.hreftype).Get(), MEMBERID_NIL).name;
    case VT_I4: return L"long";
    case VT_UI4: return L"unsigned long";
    case VT_R4: return L"float";
    case VT_R8: return L"double";
    case VT_BOOL: return L"VARIANT_BOOL";
    case VT_BSTR: return L"BSTR";
    case VT_VARIANT: return L"VARIANT";
    case VT_UNKNOWN: return L"IUnknown*";
    case VT_DISPATCH: return L"IDispatch*";
    case VT_HRESULT: return L"HRESULT";
    case VT_VOID: return L"void";
    default: return L"VARTYPE " + std::to_wstring(type.vt);
  }
}

const wchar_t* wayOf(USHORT flags) {
  if (flags & PARAMFLAG_FRETVAL) return L"result";
  return flags & PARAMFLAG_FOUT ? L"inout" : L"in";
}

const wchar_t* kindOf(INVOKEKIND kind) {
  switch (kind) {
    case INVOKE_PROPERTYGET: return L"get";
    case INVOKE_PROPERTYPUT: return L"put";
    case INVOKE_PROPERTYPUTREF: return L"putref";
    default: return L"method";
  }
}

/// A list, in brackets and with commas.
std::string array(const std::vector<std::string>& elements) {
  std::string text;
  for (const std::string& element : elements) text += (text.empty() ? "" : ", ") + element;
  return "[" + text + "]";
}

std::string parameters(ITypeInfo& info, const FUNCDESC& function) {
  std::vector<BSTR> names(static_cast<size_t>(function.cParams) + 1);
  UINT count = 0;
  info.GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &count);
  std::vector<std::wstring> texts;
  for (const BSTR name : names) texts.push_back(take(name));
  std::vector<std::string> elements;
  for (size_t i = 0; i < static_cast<size_t>(function.cParams); ++i) {
    const ELEMDESC& parameter = function.lprgelemdescParam[i];
    elements.push_back("{\"name\": " + quoted(texts[i + 1]) + ", \"type\": " + quoted(typeName(info, parameter.tdesc)) +
                       ", \"way\": " + quoted(wayOf(parameter.paramdesc.wParamFlags)) + "}");
  }
  return array(elements);
}

std::string member(ITypeInfo& info, const FUNCDESC& function) {
  const Documentation text = documentation(info, function.memid);
  const int slot = function.oVft / static_cast<int>(sizeof(void*));
  return "\n      {\"name\": " + quoted(text.name) + ", \"id\": " + std::to_string(function.memid) +
         ", \"kind\": " + quoted(kindOf(function.invkind)) + ", \"slot\": " + std::to_string(slot) +
         ", \"hidden\": " + (function.wFuncFlags & FUNCFLAG_FHIDDEN ? "true" : "false") +
         ", \"help\": " + quoted(text.help) + ", \"parameters\": " + parameters(info, function) + "}";
}

std::string members(ITypeInfo& info) {
  const Attributes attributes(info);
  std::vector<std::string> elements;
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    require(info.GetFuncDesc(i, &function), "function");
    elements.push_back(member(info, *function));
    info.ReleaseFuncDesc(function);
  }
  return array(elements);
}

std::string parts(ITypeInfo& info) {
  const Attributes attributes(info);
  std::vector<std::string> elements;
  for (UINT i = 0; attributes->typekind == TKIND_COCLASS && i < attributes->cImplTypes; ++i) {
    HREFTYPE reference = 0;
    INT flags = 0;
    require(info.GetRefTypeOfImplType(i, &reference), "part of a class");
    require(info.GetImplTypeFlags(i, &flags), "flags of a part");
    elements.push_back("{\"name\": " + quoted(documentation(*referenced(info, reference).Get(), MEMBERID_NIL).name) +
                       ", \"source\": " + (flags & IMPLTYPEFLAG_FSOURCE ? "true" : "false") +
                       ", \"default\": " + (flags & IMPLTYPEFLAG_FDEFAULT ? "true" : "false") + "}");
  }
  return array(elements);
}

std::wstring baseName(ITypeInfo& info) {
  HREFTYPE reference = 0;
  if (FAILED(info.GetRefTypeOfImplType(0, &reference))) return {};
  return documentation(*referenced(info, reference).Get(), MEMBERID_NIL).name;
}

/// Of a dual interface the side with the virtual table, which alone has slots and parameters as callers see them.
ComPtr<ITypeInfo> virtualTableSide(const ComPtr<ITypeInfo>& info) {
  HREFTYPE reference = 0;
  if (FAILED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference))) return info;
  return referenced(*info.Get(), reference);
}

std::string type(const ComPtr<ITypeInfo>& info) {
  const Attributes attributes(*info.Get());
  const Documentation text = documentation(*info.Get(), MEMBERID_NIL);
  const bool isClass = attributes->typekind == TKIND_COCLASS;
  const bool dual = attributes->typekind == TKIND_DISPATCH && (attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0;
  const ComPtr<ITypeInfo> side = dual ? virtualTableSide(info) : info;
  wchar_t guid[40] = L"";
  StringFromGUID2(attributes->guid, guid, ARRAYSIZE(guid));
  const wchar_t* kind = isClass                                  ? L"class"
                        : dual                                   ? L"dual"
                        : attributes->typekind == TKIND_DISPATCH ? L"events"
                                                                 : L"other";
  return "\n    {\"name\": " + quoted(text.name) + ", \"kind\": " + quoted(kind) + ", \"guid\": " + quoted(guid) +
         ", \"help\": " + quoted(text.help) +
         ", \"base\": " + quoted(isClass ? std::wstring() : baseName(*side.Get())) +
         ", \"parts\": " + parts(*info.Get()) + ",\n     \"members\": " + members(*side.Get()) + "}";
}

}  // namespace

std::string quoted(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string utf8(text.size() * 3, '\0');
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), static_cast<int>(utf8.size()),
                                        nullptr, nullptr);
  utf8.resize(static_cast<size_t>(bytes));
  std::string result = "\"";
  for (const char letter : utf8) {
    if (letter == '"' || letter == '\\') result += '\\';
    if (static_cast<unsigned char>(letter) >= 0x20) result += letter;
  }
  return result + "\"";
}

std::wstring hex(unsigned long number) {
  wchar_t text[16];
  wsprintfW(text, L"0x%08lX", number);
  return text;
}

std::string typeLibrary(const wchar_t* path) {
  ComPtr<ITypeLib> library;
  require(LoadTypeLibEx(path, REGKIND_NONE, &library), "the type library cannot be loaded");
  std::vector<std::string> types;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    require(library->GetTypeInfo(i, &info), "type");
    types.push_back(type(info));
  }
  return array(types);
}

}  // namespace av::json
