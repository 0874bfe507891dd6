// The level meter as scripts and other late-bound hosts reach it: the names that it knows, and its rows through Invoke.

#include "host/meter_test.h"

#include <string>
#include <vector>

namespace av::test {
namespace {

class MeterLateBinding : public MeterTest {
 protected:
  HRESULT idsOf(std::vector<const wchar_t*> names, std::vector<DISPID>& ids, LCID locale = LOCALE_USER_DEFAULT) {
    std::vector<LPOLESTR> texts;
    for (const wchar_t* name : names) texts.push_back(const_cast<LPOLESTR>(name));
    ids.assign(names.size(), 77);
    return m_meter->GetIDsOfNames(IID_NULL, texts.data(), static_cast<UINT>(texts.size()), locale, ids.data());
  }
  DISPID idOf(const std::wstring& name, LCID locale = LOCALE_USER_DEFAULT) {
    std::vector<DISPID> ids;
    EXPECT_EQ(S_OK, idsOf({name.c_str()}, ids, locale)) << std::string(name.begin(), name.end());
    return ids[0];
  }
};

TEST_F(MeterLateBinding, PropertiesAndTheirAccessorsHaveNamesInAnySpellingAndLocale) {
  for (const NumberRow& row : meterRows) {
    for (const std::wstring prefix : {L"", L"get_", L"put_"}) {
      const std::wstring name = prefix + row.name;
      std::wstring upper = name, lower = name;
      CharUpperW(upper.data());
      CharLowerW(lower.data());
      for (const std::wstring& spelled : {name, upper, lower})
        for (const LCID locale : {LCID{LOCALE_USER_DEFAULT}, LCID{LOCALE_NEUTRAL}, LCID{0x0407}, LCID{0x7777}})
          EXPECT_EQ(row.dispId, idOf(spelled, locale));
    }
  }
}

TEST_F(MeterLateBinding, TheParameterNameAndTheMethodsHaveIdentifiers) {
  EXPECT_EQ(0, idOf(L"pVal"));
  EXPECT_EQ(0, idOf(L"PVAL"));
  EXPECT_EQ(0xaae61, idOf(L"_OnTimer"));
  EXPECT_EQ(0xaae62, idOf(L"sendaudiodata"));
  EXPECT_EQ(0xaae63, idOf(L"Repaint"));
  EXPECT_EQ(0xaae64, idOf(L"SetAdditionalParam"));
  EXPECT_EQ(0xaae65, idOf(L"GetAdditionalParam"));
}

TEST_F(MeterLateBinding, ArgumentNamesResolveBesideTheirMember) {
  std::vector<DISPID> ids;
  EXPECT_EQ(S_OK, idsOf({L"SendAudioData", L"audiodata"}, ids));
  EXPECT_EQ((std::vector<DISPID>{0xaae62, 0}), ids);
  EXPECT_EQ(S_OK, idsOf({L"SetAdditionalParam", L"ParamValue", L"ParamName"}, ids));
  EXPECT_EQ((std::vector<DISPID>{0xaae64, 1, 0}), ids);
  EXPECT_EQ(S_OK, idsOf({L"get_LineCount", L"pVal"}, ids));
  EXPECT_EQ((std::vector<DISPID>{9, 0}), ids);
}

TEST_F(MeterLateBinding, NamesThatDoNotExistAreUnknown) {
  std::vector<DISPID> ids;
  for (const wchar_t* name : {L"NoSuchProperty", L"", L"get_", L"set_LineType", L"get_get_LineType", L"LineType ",
                              L"QueryInterface", L"AudioData", L"Value"}) {
    EXPECT_EQ(DISP_E_UNKNOWNNAME, idsOf({name}, ids));
    EXPECT_EQ(DISPID_UNKNOWN, ids[0]);
  }
  EXPECT_EQ(DISP_E_UNKNOWNNAME, idsOf({L"SendAudioData", L"NoSuchArgument"}, ids));
  EXPECT_EQ((std::vector<DISPID>{0xaae62, DISPID_UNKNOWN}), ids);
  EXPECT_EQ(DISP_E_UNKNOWNNAME, idsOf({L"NoSuchProperty", L"pVal"}, ids));
  EXPECT_EQ(DISPID_UNKNOWN, ids[0]);
}

TEST_F(MeterLateBinding, NameLookupsRefuseNullsAndForeignInterfaceIds) {
  DISPID id = 0;
  LPOLESTR name = const_cast<LPOLESTR>(L"BackColor"), none = nullptr;
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, m_meter->GetIDsOfNames(IID_IDispatch, &name, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(E_POINTER, m_meter->GetIDsOfNames(IID_NULL, nullptr, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(E_POINTER, m_meter->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, nullptr));
  EXPECT_EQ(E_INVALIDARG, m_meter->GetIDsOfNames(IID_NULL, &none, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(S_OK, m_meter->GetIDsOfNames(IID_NULL, &name, 0, LOCALE_USER_DEFAULT, &id));
}

TEST_F(MeterLateBinding, EveryRowIsReadAndPutInEveryWayThatLanguagesCallIt) {
  for (const NumberRow& row : meterRows) {
    for (const WORD get : {WORD{DISPATCH_PROPERTYGET}, WORD{DISPATCH_METHOD | DISPATCH_PROPERTYGET}}) {
      Value value;
      EXPECT_EQ(S_OK, invoke(row.dispId, get, nullptr, 0, &value)) << row.dispId;
      EXPECT_EQ(row.type == VT_BOOL, V_VT(&value) == VT_BOOL) << row.dispId;
      EXPECT_EQ(S_OK, VariantChangeType(&value, &value, 0, VT_I4));
      EXPECT_EQ(row.defaultValue, V_I4(&value)) << row.dispId;
    }
    EXPECT_EQ(S_OK, invokePut(row.dispId, Value(row.type, row.otherValue))) << row.dispId;
    EXPECT_EQ(row.otherValue, getLong(row.dispId)) << row.dispId;
  }
}

TEST_F(MeterLateBinding, ValuesAreConvertedAndTheRowsLimitsHold) {
  EXPECT_EQ(S_OK, invokePut(9, Value(L"20")));
  EXPECT_EQ(20, getLong(9));
  EXPECT_EQ(S_OK, invokePut(9, Value(1.0)));
  EXPECT_EQ(3, getLong(9));
  EXPECT_EQ(S_OK, invokePut(36, Value(VT_I4, 150)));
  EXPECT_EQ(100, getLong(36));
  EXPECT_EQ(S_OK, invokePut(32, Value(VT_I4, 5)));
  EXPECT_EQ(-1, getLong(32));
  EXPECT_EQ(S_OK, invokePut(50, Value(VT_BOOL, VARIANT_FALSE)));
  EXPECT_EQ(-1, getLong(50));
}

TEST_F(MeterLateBinding, WhatCannotBeConvertedIsRefusedAndChangesNothing) {
  for (const NumberRow& row : meterRows) {
    if (row.type != VT_I4) continue;
    Value text(L"many");
    EXPECT_EQ(DISP_E_TYPEMISMATCH, invoke(row.dispId, DISPATCH_PROPERTYPUT, &text, 1)) << row.dispId;
    Value large(4294967296.0);
    EXPECT_EQ(DISP_E_OVERFLOW, invoke(row.dispId, DISPATCH_PROPERTYPUT, &large, 1)) << row.dispId;
    EXPECT_EQ(row.defaultValue, getLong(row.dispId)) << row.dispId;
  }
}

TEST_F(MeterLateBinding, MethodsAreCalledByTheirIdentifiers) {
  EXPECT_EQ(S_OK, invoke(0xaae61, DISPATCH_METHOD, nullptr, 0));
  EXPECT_EQ(S_OK, invoke(0xaae63, DISPATCH_METHOD, nullptr, 0));
  Value arguments[] = {Value(VT_I4, 1), Value(L"anything")};
  EXPECT_EQ(S_OK, invoke(0xaae64, DISPATCH_METHOD, arguments, 2));
  Value none(VT_UNKNOWN, 0);
  V_UNKNOWN(&none) = nullptr;
  EXPECT_EQ(S_OK, invoke(0xaae62, DISPATCH_METHOD, &none, 1));
  Value number(VT_I4, 5);
  EXPECT_EQ(DISP_E_TYPEMISMATCH, invoke(0xaae62, DISPATCH_METHOD, &number, 1));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, invoke(0xaae62, DISPATCH_METHOD, nullptr, 0));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(10, DISPATCH_PROPERTYGET, nullptr, 0))
      << "between BackColor and its neighbours";
}

}  // namespace
}  // namespace av::test
