#include "demo/named_properties.h"

#include <olectl.h>
#include <wrl/client.h>

#include <cwchar>
#include <vector>

namespace avdemo {

namespace {

using Microsoft::WRL::ComPtr;

/// A VARIANT that owns what it holds.
class Value : public VARIANT {
 public:
  Value() { VariantInit(this); }
  explicit Value(const std::wstring& text) : Value() {
    V_VT(this) = VT_BSTR;
    V_BSTR(this) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  }
  Value(Value&& other) noexcept : VARIANT(other) { VariantInit(&other); }
  Value(const Value&) = delete;
  ~Value() { VariantClear(this); }
};

struct Member {
  std::wstring name;
  std::wstring index;  ///< empty: the property has none
};

Member parseMember(std::wstring_view text) {
  const size_t open = text.find(L'(');
  if (open == std::wstring_view::npos) return {std::wstring(text), {}};
  return {std::wstring(text.substr(0, open)), std::wstring(text.substr(open + 1, text.find(L')') - open - 1))};
}

std::wstring take(BSTR text) {
  std::wstring copy = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
  SysFreeString(text);
  return copy;
}

HRESULT findMember(IDispatch& control, const Member& member, DISPID& id) {
  std::wstring name = member.name;
  LPOLESTR names = name.data();
  return control.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
}

/// Arguments stand in the order of DISPPARAMS, the last one first.
Answer call(IDispatch& control, DISPID id, WORD kind, std::vector<Value>& arguments, VARIANT* result) {
  DISPID put = DISPID_PROPERTYPUT;
  const bool puts = kind != DISPATCH_PROPERTYGET;
  DISPPARAMS parameters = {arguments.data(), puts ? &put : nullptr, static_cast<UINT>(arguments.size()),
                           puts ? 1u : 0u};
  EXCEPINFO exception = {};
  Answer answer;
  answer.result = control.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, result, &exception, nullptr);
  if (answer.result != DISP_E_EXCEPTION) return answer;
  if (exception.pfnDeferredFillIn) exception.pfnDeferredFillIn(&exception);
  answer.result = exception.scode;
  answer.text = take(exception.bstrDescription);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrHelpFile);
  return answer;
}

std::wstring colourNumber(const std::wstring& text) {
  unsigned red = 0, green = 0, blue = 0;
  if (std::swscanf(text.c_str(), L"#%2x%2x%2x", &red, &green, &blue) != 3) return text;
  return std::to_wstring(RGB(red, green, blue));
}

/// Empty where the text describes no font.
ComPtr<IFontDisp> parseFont(const std::wstring& text) {
  ComPtr<IFontDisp> font;
  const size_t comma = text.find(L',');
  if (comma == std::wstring::npos) return font;
  std::wstring face = text.substr(0, comma);
  int points = 0, weight = FW_NORMAL;
  std::swscanf(text.c_str() + comma, L",%d,%d", &points, &weight);
  FONTDESC description = {};
  description.cbSizeofstruct = sizeof description;
  description.lpstrName = face.data();
  description.cySize.int64 = points * 10000ll;
  description.sWeight = static_cast<SHORT>(weight);
  description.sCharset = DEFAULT_CHARSET;
  OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(font.GetAddressOf()));
  return font;
}

std::wstring describeFont(IDispatch* object) {
  ComPtr<IFont> font;
  if (!object || FAILED(object->QueryInterface(IID_IFont, reinterpret_cast<void**>(font.GetAddressOf()))))
    return L"no font";
  BSTR face = nullptr;
  CY size = {};
  SHORT weight = 0;
  font->get_Name(&face);
  font->get_Size(&size);
  font->get_Weight(&weight);
  wchar_t rest[64];
  std::swprintf(rest, ARRAYSIZE(rest), L",%g,%d", static_cast<double>(size.int64) / 10000, weight);
  return take(face) + rest;
}

std::wstring describe(VARIANT& value) {
  wchar_t text[64] = L"";
  switch (V_VT(&value)) {
    case VT_BOOL: return std::to_wstring(V_BOOL(&value));
    case VT_I4: return std::to_wstring(V_I4(&value));
    case VT_UI4: std::swprintf(text, ARRAYSIZE(text), L"0x%08X", static_cast<unsigned>(V_UI4(&value))); return text;
    case VT_R4: std::swprintf(text, ARRAYSIZE(text), L"%g", static_cast<double>(V_R4(&value))); return text;
    case VT_BSTR: return V_BSTR(&value) ? V_BSTR(&value) : L"";
    case VT_DISPATCH: return describeFont(V_DISPATCH(&value));
    default: return L"VARTYPE " + std::to_wstring(V_VT(&value));
  }
}

}  // namespace

Answer putNamed(IDispatch& control, std::wstring_view assignment) {
  const size_t equals = assignment.find(L'=');
  if (equals == std::wstring_view::npos) return {E_INVALIDARG, L"no value"};
  const Member member = parseMember(assignment.substr(0, equals));
  const std::wstring text = colourNumber(std::wstring(assignment.substr(equals + 1)));
  DISPID id = DISPID_UNKNOWN;
  const HRESULT found = findMember(control, member, id);
  if (FAILED(found)) return {found, {}};

  std::vector<Value> arguments;
  WORD kind = DISPATCH_PROPERTYPUT;
  if (const ComPtr<IFontDisp> font = parseFont(text)) {
    Value& value = arguments.emplace_back();
    V_VT(&value) = VT_DISPATCH;
    V_DISPATCH(&value) = font.Get();
    font->AddRef();
    kind = DISPATCH_PROPERTYPUTREF;
  } else if (int number = 0; std::swscanf(text.c_str(), L"bool %d", &number) == 1) {
    Value& value = arguments.emplace_back();
    V_VT(&value) = VT_BOOL;
    V_BOOL(&value) = static_cast<VARIANT_BOOL>(number);
  } else {
    arguments.emplace_back(text);
  }
  if (!member.index.empty()) arguments.emplace_back(member.index);
  return call(control, id, kind, arguments, nullptr);
}

Answer getNamed(IDispatch& control, std::wstring_view name) {
  const Member member = parseMember(name);
  DISPID id = DISPID_UNKNOWN;
  const HRESULT found = findMember(control, member, id);
  if (FAILED(found)) return {found, {}};
  std::vector<Value> arguments;
  if (!member.index.empty()) arguments.emplace_back(member.index);
  Value value;
  Answer answer = call(control, id, DISPATCH_PROPERTYGET, arguments, &value);
  if (SUCCEEDED(answer.result)) answer.text = describe(value);
  return answer;
}

}  // namespace avdemo
