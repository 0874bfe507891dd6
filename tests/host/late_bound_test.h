#pragma once

#include "host/dll_test.h"

#include <olectl.h>

#include <string>

namespace av::test {

/// A VARIANT that owns what it holds.
class Value : public VARIANT {
 public:
  Value() { VariantInit(this); }
  Value(VARTYPE type, LONG number) : Value() {
    V_VT(this) = type;
    if (type == VT_BOOL) V_BOOL(this) = static_cast<VARIANT_BOOL>(number);
    else V_I4(this) = number;
  }
  explicit Value(const wchar_t* text) : Value() {
    V_VT(this) = VT_BSTR;
    V_BSTR(this) = SysAllocString(text);
  }
  explicit Value(double number) : Value() {
    V_VT(this) = VT_R8;
    V_R8(this) = number;
  }
  explicit Value(IDispatch* object) : Value() {
    V_VT(this) = VT_DISPATCH;
    V_DISPATCH(this) = object;
    if (object) object->AddRef();
  }
  Value(Value&& other) noexcept : VARIANT(other) { VariantInit(&other); }
  ~Value() { VariantClear(this); }
};

/// A row of a control's property table whose value is a number.
struct NumberRow {
  const wchar_t* name;
  DISPID dispId;
  VARTYPE type;  ///< VT_UI4 for colours
  LONG defaultValue;
  LONG otherValue;
};

/// A test with a control of its own, whose properties it also reads and puts through IDispatch.
class LateBoundTest : public DllTest {
 protected:
  virtual IDispatch* dispatch() = 0;

  HRESULT invoke(DISPID id, WORD flags, VARIANT* arguments, UINT count, VARIANT* result = nullptr,
                 EXCEPINFO* exception = nullptr, UINT* argumentError = nullptr, LCID locale = LOCALE_USER_DEFAULT) {
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS parameters{arguments, puts ? &put : nullptr, count, puts ? 1u : 0u};
    return dispatch()->Invoke(id, IID_NULL, locale, flags, &parameters, result, exception, argumentError);
  }
  HRESULT invokeGet(DISPID id, VARIANT* value) { return invoke(id, DISPATCH_PROPERTYGET, nullptr, 0, value); }
  HRESULT invokePut(DISPID id, const VARIANT& value) {
    VARIANT argument = value;  // stays the caller's
    return invoke(id, DISPATCH_PROPERTYPUT, &argument, 1);
  }

  LONG getLong(DISPID id) {
    Value value;
    EXPECT_EQ(S_OK, invokeGet(id, &value)) << id;
    EXPECT_EQ(S_OK, VariantChangeType(&value, &value, 0, VT_I4)) << id;
    return V_I4(&value);
  }

  /// Calls every one-argument accessor of that kind at the offset that the type library gives it, save the one of
  /// `except`. Returns how many there are.
  template <class Call>
  int forEachAccessor(INVOKEKIND kind, Call call, DISPID except = DISPID_UNKNOWN) {
    ComPtr<ITypeInfo> info, vtable;
    EXPECT_EQ(S_OK, dispatch()->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info));
    HREFTYPE reference = 0;  // the vtable side of the dual interface carries the offsets
    EXPECT_EQ(S_OK, info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
    EXPECT_EQ(S_OK, info->GetRefTypeInfo(reference, &vtable));
    TYPEATTR* attributes = nullptr;
    EXPECT_EQ(S_OK, vtable->GetTypeAttr(&attributes));
    const UINT count = attributes->cFuncs;
    vtable->ReleaseTypeAttr(attributes);
    int called = 0;
    for (UINT i = 0; i < count; ++i) {
      FUNCDESC* function = nullptr;
      EXPECT_EQ(S_OK, vtable->GetFuncDesc(i, &function));
      if (function->invkind == kind && function->cParams == 1 && function->memid != except) {
        const auto table = *reinterpret_cast<char**>(dispatch());
        call(function->memid, table + function->oVft);
        ++called;
      }
      vtable->ReleaseFuncDesc(function);
    }
    return called;
  }
};

}  // namespace av::test
