#include "player/win/property_access.h"

#include "player/value_text.h"
#include "player/win/text.h"

#include <ocidl.h>
#include <olectl.h>
#include <wrl/client.h>

#include <cmath>

namespace avplayer {

namespace {

using Microsoft::WRL::ComPtr;

class Variant {
 public:
  Variant() { VariantInit(&value); }
  ~Variant() { VariantClear(&value); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  VARIANT value;
};

std::wstring systemText(HRESULT result) {
  wchar_t* text = nullptr;
  FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                 static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::wstring copy = text ? text : L"";
  LocalFree(text);
  while (!copy.empty() && copy.back() <= L' ') copy.pop_back();
  return copy;
}

Answer invoke(IDispatch& object, DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result) {
  EXCEPINFO exception = {};
  UINT wrongArgument = 0;
  Answer answer;
  answer.result =
      object.Invoke(id, IID_NULL, GetUserDefaultLCID(), flags, &parameters, result, &exception, &wrongArgument);
  if (answer.result == DISP_E_EXCEPTION) {
    if (exception.pfnDeferredFillIn) exception.pfnDeferredFillIn(&exception);
    answer.result = exception.scode != 0 ? exception.scode : E_FAIL;
    answer.text = taken(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
  }
  if (FAILED(answer.result) && answer.text.empty()) answer.text = systemText(answer.result);
  return answer;
}

std::string fontText(IDispatch* object) {
  ComPtr<IFont> font;
  if (!object || FAILED(object->QueryInterface(IID_IFont, reinterpret_cast<void**>(font.GetAddressOf())))) return {};
  BSTR name = nullptr;
  CY size = {};
  BOOL bold = FALSE, italic = FALSE, underline = FALSE, strikeout = FALSE;
  font->get_Name(&name);
  font->get_Size(&size);
  font->get_Bold(&bold);
  font->get_Italic(&italic);
  font->get_Underline(&underline);
  font->get_Strikethrough(&strikeout);
  return formatFont({narrow(taken(name)), static_cast<double>(size.int64) / 10000, bold != FALSE, italic != FALSE,
                     underline != FALSE, strikeout != FALSE});
}

bool setFont(VARIANT& value, const FontText& font) {
  std::wstring face = wide(font.face);
  FONTDESC description = {};
  description.cbSizeofstruct = sizeof description;
  description.lpstrName = face.data();
  description.cySize.int64 = std::llround(font.points * 10000);
  description.sWeight = font.bold ? FW_BOLD : FW_NORMAL;
  description.sCharset = DEFAULT_CHARSET;
  description.fItalic = font.italic;
  description.fUnderline = font.underline;
  description.fStrikethrough = font.strikeout;
  IDispatch* made = nullptr;
  if (FAILED(OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(&made)))) return false;
  V_VT(&value) = VT_DISPATCH;
  V_DISPATCH(&value) = made;
  return true;
}

std::string valueText(const Property& property, VARIANT& value) {
  if (property.kind == ValueKind::font)
    return V_VT(&value) == VT_DISPATCH ? fontText(V_DISPATCH(&value)) : std::string();
  if (FAILED(VariantChangeType(&value, &value, 0, property.type))) return {};
  switch (property.kind) {
    case ValueKind::boolean: return formatBoolean(V_BOOL(&value) != VARIANT_FALSE);
    case ValueKind::whole: return formatWhole(V_I4(&value));
    case ValueKind::colour: return formatColour(static_cast<std::uint32_t>(V_I4(&value)));
    case ValueKind::real: return formatReal(V_R4(&value));
    case ValueKind::text: return narrow(std::wstring_view(V_BSTR(&value), SysStringLen(V_BSTR(&value))));
    default: return {};
  }
}

template <class Number>
bool keep(const std::optional<Number>& number, VARIANT& value, VARTYPE type, Number& place) {
  if (!number) return false;
  V_VT(&value) = type;
  place = *number;
  return true;
}

/// Fills in the value, or says what it should have been.
const wchar_t* readValue(const Property& property, std::string_view text, VARIANT& value) {
  switch (property.kind) {
    case ValueKind::boolean: {
      const auto yes = parseBoolean(text);
      if (!yes) return L"is neither true nor false";
      V_VT(&value) = VT_BOOL;
      V_BOOL(&value) = *yes ? VARIANT_TRUE : VARIANT_FALSE;
      return nullptr;
    }
    case ValueKind::whole: {
      std::int32_t number = 0;
      if (!keep(parseWhole(text), value, VT_I4, number)) return L"is no whole number";
      V_I4(&value) = number;
      return nullptr;
    }
    case ValueKind::colour: {
      std::uint32_t number = 0;
      if (!keep(parseColour(text), value, VT_I4, number)) return L"is no colour such as #1E90FF";
      V_I4(&value) = static_cast<LONG>(number);
      return nullptr;
    }
    case ValueKind::real: return keep(parseReal(text), value, VT_R4, V_R4(&value)) ? nullptr : L"is no number";
    case ValueKind::font: {
      const auto font = parseFont(text);
      return font && setFont(value, *font) ? nullptr : L"is no font such as Arial, 8 pt, bold";
    }
    case ValueKind::text:
      V_VT(&value) = VT_BSTR;
      V_BSTR(&value) = SysAllocString(wide(text).c_str());
      return nullptr;
    default: return L"cannot be edited here";
  }
}

}  // namespace

Answer getText(IDispatch& object, const Property& property, Index index, std::string& text) {
  VARIANT argument;
  V_VT(&argument) = VT_I4;
  V_I4(&argument) = index.value_or(0);
  DISPPARAMS parameters = {&argument, nullptr, index ? 1u : 0u, 0};
  Variant result;
  Answer answer = invoke(object, property.id, DISPATCH_PROPERTYGET, parameters, &result.value);
  if (SUCCEEDED(answer.result)) text = valueText(property, result.value);
  return answer;
}

Answer putText(IDispatch& object, const Property& property, Index index, std::string_view text) {
  Variant value;
  if (const wchar_t* problem = readValue(property, text, value.value))
    return {E_INVALIDARG, L"\"" + wide(text) + L"\" " + problem + L".", false};
  VARIANT arguments[2];  // the last parameter comes first
  arguments[0] = value.value;
  V_VT(&arguments[1]) = VT_I4;
  V_I4(&arguments[1]) = index.value_or(0);
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters = {arguments, &put, index ? 2u : 1u, 1};
  return invoke(object, property.id, property.byReference ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT, parameters,
                nullptr);
}

}  // namespace avplayer
