#include "tests/soak/random_properties.h"

#include <olectl.h>

#include <wrl/client.h>
#include <algorithm>
#include <climits>

namespace av::soak {
namespace {

using Microsoft::WRL::ComPtr;

/// What keeps a run within a machine's memory and time, and alive: a transform of 0, 1 or 2 samples ends the process, as
/// its documentation says.
LONG inBounds(const std::wstring& property, LONG value) {
  if (property == L"FFTLength") {
    const bool accepted = value >= 0 && (value & (value - 1)) == 0;
    return accepted ? std::clamp(value, 4l, 16384l) : value;
  }
  if (property == L"LineCount") return std::min(value, 4000l);
  // Putting TickVisible to 0 waits for a sleep of this length.
  if (property == L"TickReleaseTime") return std::min(value, 100l);
  // A meter that sizes itself makes its window as large as these ask for.
  for (const wchar_t* length : {L"BorderWidth", L"SpotHeight", L"SpotInterval", L"LineInterval"})
    if (property == length) return std::min(value, 300l);
  return value;
}

LONG number(RandomSource& random) {
  const int kind = random.upTo(99);
  if (kind < 50) return static_cast<LONG>(random.between(-2, 16));
  if (kind < 80) return static_cast<LONG>(random.between(-200, 500));
  if (kind < 90) return 1l << random.upTo(14);
  if (kind < 95) return random.oneOf<LONG>({255, 256, 1000, 32767, 32768, 65535, 65536, 0xFFFFFF});
  return random.oneOf<LONG>({LONG_MIN, LONG_MIN + 1, LONG_MAX - 1, LONG_MAX});
}

ComPtr<IFontDisp> font(RandomSource& random) {
  std::wstring face = random.oneOf<std::wstring>({L"Arial", L"Courier New", L"No Such Face", L""});
  FONTDESC description{};
  description.cbSizeofstruct = sizeof description;
  description.lpstrName = face.data();
  description.cySize.int64 = random.between(0, 40) * 10000;
  description.sWeight = random.chance(20) ? 700 : 400;
  description.sCharset = DEFAULT_CHARSET;
  ComPtr<IFontDisp> made;
  OleCreateFontIndirect(&description, IID_PPV_ARGS(made.GetAddressOf()));
  return made;
}

/// The type behind the aliases and enumerations of a type library.
VARTYPE bareType(const TYPEDESC& type) {
  if (type.vt == VT_PTR) return VT_DISPATCH;
  return type.vt == VT_USERDEFINED ? VARTYPE{VT_UI4} : type.vt;
}

}  // namespace

PropertySet::PropertySet(IDispatch& control) {
  ComPtr<ITypeInfo> info;
  if (FAILED(control.GetTypeInfo(0, LOCALE_NEUTRAL, &info))) return;
  TYPEATTR* attributes = nullptr;
  if (FAILED(info->GetTypeAttr(&attributes))) return;
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    if (FAILED(info->GetFuncDesc(i, &function))) continue;
    if (function->invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF) && function->cParams > 0) {
      Property property;
      BSTR name = nullptr;
      UINT names = 0;
      info->GetNames(function->memid, &name, 1, &names);
      if (name) property.name = name;
      SysFreeString(name);
      property.id = function->memid;
      property.type = bareType(function->lprgelemdescParam[function->cParams - 1].tdesc);
      property.indexed = function->cParams > 1;
      property.reference = (function->invkind & INVOKE_PROPERTYPUTREF) != 0;
      m_properties.push_back(property);
    }
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(attributes);
}

HRESULT PropertySet::putAny(IDispatch& control, RandomSource& random) const {
  const Property& property = random.oneOf(m_properties);
  VARIANTARG arguments[2];  // from the last to the first
  for (VARIANTARG& argument : arguments) VariantInit(&argument);
  VARIANTARG& value = arguments[0];
  switch (property.type) {
    case VT_BOOL:
      value.vt = VT_BOOL;
      value.boolVal = random.oneOf<VARIANT_BOOL>({VARIANT_TRUE, VARIANT_FALSE, VARIANT_TRUE, 1});
      break;
    case VT_R4:
    case VT_R8:
      value.vt = VT_R8;
      value.dblVal = static_cast<double>(number(random)) / 10.0;
      break;
    case VT_UI4:
      value.vt = VT_I4;  // a colour
      value.lVal = random.chance(80) ? static_cast<LONG>(random.between(0, 0xFFFFFF)) : number(random);
      break;
    case VT_DISPATCH:
      value.vt = VT_DISPATCH;
      value.pdispVal = font(random).Detach();
      break;
    default:
      value.vt = VT_I4;
      value.lVal = inBounds(property.name, number(random));
      break;
  }
  arguments[1].vt = VT_I4;
  arguments[1].lVal = random.upTo(20) - 1;
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{arguments, &named, property.indexed ? 2u : 1u, 1};
  EXCEPINFO exception{};
  const HRESULT result = control.Invoke(property.id, IID_NULL, LOCALE_NEUTRAL,
                                        property.reference ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT,
                                        &parameters, nullptr, &exception, nullptr);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  VariantClear(&value);
  return result;
}

}  // namespace av::soak
