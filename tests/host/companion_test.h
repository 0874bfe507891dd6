#pragma once

#include "host/late_bound_test.h"

#include <windows.h>

#include <AudioBlocks.h>
#include <QELAudioVisualization4.h>
#include <gtest/gtest.h>
#include <oleauto.h>
#include <wrl/client.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

namespace av::test {

inline constexpr wchar_t companionName[] = L"AudioBlocks.dll";

/// An object as scripts see it: by names. Texts of refusals stay until the next call.
class LateBound {
 public:
  LateBound() = default;
  explicit LateBound(IDispatch* object) : m_object(object) {}

  HRESULT call(const wchar_t* name, const std::vector<VARIANT>& arguments = {}, VARIANT* result = nullptr) {
    return invoke(name, DISPATCH_METHOD | (result ? DISPATCH_PROPERTYGET : 0), arguments, result);
  }
  HRESULT put(const wchar_t* name, const VARIANT& value, WORD flags = DISPATCH_PROPERTYPUT) {
    return invoke(name, flags, {value}, nullptr);
  }
  HRESULT put(const wchar_t* name, LONG value) { return put(name, Value(VT_I4, value)); }

  /// A number; NaN where the call fails.
  double number(const wchar_t* name, const std::vector<VARIANT>& arguments = {}) {
    Value value;
    if (FAILED(invoke(name, DISPATCH_PROPERTYGET, arguments, &value)) ||
        FAILED(VariantChangeType(&value, &value, 0, VT_R8)))
      return std::numeric_limits<double>::quiet_NaN();
    return V_R8(&value);
  }
  std::wstring text(const wchar_t* name) {
    Value value;
    EXPECT_EQ(S_OK, invoke(name, DISPATCH_PROPERTYGET, {}, &value));
    return V_VT(&value) == VT_BSTR ? std::wstring(V_BSTR(&value), SysStringLen(V_BSTR(&value))) : L"no text";
  }
  /// The object that a method returns; none where it fails or returns Nothing.
  LateBound object(const wchar_t* name, const std::vector<VARIANT>& arguments = {}) {
    Value value;
    if (FAILED(call(name, arguments, &value)) || V_VT(&value) != VT_DISPATCH) return {};
    return LateBound(V_DISPATCH(&value));
  }

  IDispatch* get() const { return m_object.Get(); }
  void reset() { m_object.Reset(); }
  explicit operator bool() const { return m_object != nullptr; }

  std::wstring refusal;  ///< the text of the last failure
  std::wstring source;   ///< who says so
  HRESULT reason = S_OK;

 private:
  HRESULT invoke(std::wstring name, WORD flags, std::vector<VARIANT> arguments, VARIANT* result) {
    refusal.clear();
    source.clear();
    LPOLESTR names = name.data();
    DISPID id = 0;
    const HRESULT found = m_object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(found)) return found;
    std::reverse(arguments.begin(), arguments.end());
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS parameters{arguments.data(), puts ? &put : nullptr, static_cast<UINT>(arguments.size()), puts ? 1u : 0u};
    EXCEPINFO exception{};
    const HRESULT answer =
        m_object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, &exception, nullptr);
    reason = answer == DISP_E_EXCEPTION ? exception.scode : answer;
    if (exception.bstrDescription) refusal = exception.bstrDescription;
    if (exception.bstrSource) source = exception.bstrSource;
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
    return answer;
  }

  ComPtr<IDispatch> m_object;
};

/// A safe array of numbers of one type, from index `first` on.
template <class Number>
Value arrayOf(VARTYPE type, const std::vector<Number>& numbers, LONG first = 0) {
  SAFEARRAYBOUND bound{static_cast<ULONG>(numbers.size()), first};
  SAFEARRAY* const array = SafeArrayCreate(type, 1, &bound);
  void* data = nullptr;
  EXPECT_EQ(S_OK, SafeArrayAccessData(array, &data));
  EXPECT_EQ(sizeof(Number), SafeArrayGetElemsize(array));
  std::copy(numbers.begin(), numbers.end(), static_cast<Number*>(data));
  SafeArrayUnaccessData(array);
  Value value;
  V_VT(&value) = static_cast<VARTYPE>(VT_ARRAY | type);
  V_ARRAY(&value) = array;
  return value;
}

/// What VBScript makes: an array of VARIANTs, which it takes over.
inline Value arrayOfVariants(std::vector<Value> elements) {
  Value value = arrayOf(VT_VARIANT, std::vector<VARIANT>(elements.begin(), elements.end()));
  for (Value& each : elements) VariantInit(&each);
  return value;
}

inline Value numbers(std::initializer_list<double> values) { return arrayOf(VT_R8, std::vector<double>(values)); }

/// A test that makes the companion's objects straight from the DLL beside the program; neither library is registered. A
/// test that leaks a reference fails.
class CompanionTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { unregister(); }
  // Wine registers a type library that it finds through a manifest; nobody asked for that.
  static void TearDownTestSuite() { unregister(); }

  void SetUp() override {
    ASSERT_EQ(S_OK, m_apartment.result());
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(companionName));
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
  }
  void TearDown() override {
    EXPECT_EQ(S_OK, m_library.canUnloadNow()) << "something of the DLL is still in use";
    EXPECT_TRUE(m_library.unload());
    EXPECT_EQ(S_OK, LoadedDll().canUnloadNow()) << "a control is still there";
  }

  static void unregister() {
    ASSERT_EQ(S_OK, LoadedDll().unregisterServer());
    ASSERT_EQ(S_OK, LoadedDll(besideProgram(companionName)).unregisterServer());
  }

  LateBound make(REFCLSID classId) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(S_OK, m_library.create(classId, object.GetAddressOf()));
    return LateBound(object.Get());
  }
  LateBound makeBlock(LONG channels, LONG rateHz, LONG bits) {
    LateBound block = make(CLSID_AudioBlock);
    EXPECT_EQ(S_OK, block.call(L"SetFormat", {Value(VT_I4, channels), Value(VT_I4, rateHz), Value(VT_I4, bits)}));
    return block;
  }

  avhost::Apartment m_apartment;
  avhost::ControlLibrary m_library;
};

}  // namespace av::test
