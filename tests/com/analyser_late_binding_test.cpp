// The spectrum analyser as scripts and other late-bound hosts reach it: by name and DISPID, with whatever types, counts
// and kinds of call they send.

#include "host/analyser_test.h"

namespace av::test {
namespace {

class AnalyserLateBinding : public AnalyserTest {
 protected:
  DISPID idOf(std::wstring name, LCID locale = LOCALE_USER_DEFAULT) {
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR text = name.data();
    EXPECT_EQ(S_OK, m_analyser->GetIDsOfNames(IID_NULL, &text, 1, locale, &id));
    return id;
  }
};

TEST_F(AnalyserLateBinding, NamesLeadToTheirDispIdsInAnySpellingAndLocale) {
  for (const NumberRow& row : analyserRows) {
    std::wstring upper = row.name, lower = row.name;
    CharUpperW(upper.data());
    CharLowerW(lower.data());
    for (const std::wstring& name : {std::wstring(row.name), upper, lower})
      for (const LCID locale : {LCID{LOCALE_USER_DEFAULT}, LCID{LOCALE_NEUTRAL}, LCID{0x0407}, LCID{0x7777}})
        EXPECT_EQ(row.dispId, idOf(name, locale));
  }
  EXPECT_EQ(analyserScaleFontId, idOf(L"scalefont"));
  EXPECT_EQ(fftWindowCountId, idOf(L"FFTWindowCount"));
  EXPECT_EQ(fftWindowNameId, idOf(L"fftwindowname"));
  EXPECT_EQ(hasWindowParamId, idOf(L"HASWINDOWPARAM"));
  EXPECT_EQ(fftWindowParamId, idOf(L"FFTWindowParam"));
  EXPECT_EQ(0xaae61, idOf(L"_OnTimer"));
  EXPECT_EQ(0xaae62, idOf(L"sendaudiodata"));
  EXPECT_EQ(0xaae63, idOf(L"Repaint"));
  EXPECT_EQ(0xaae64, idOf(L"SetAdditionalParam"));
  EXPECT_EQ(0xaae65, idOf(L"GetAdditionalParam"));
}

TEST_F(AnalyserLateBinding, NamesThatDoNotExistAreUnknown) {
  DISPID id = 0;
  LPOLESTR unknown = const_cast<LPOLESTR>(L"NoSuchProperty");
  EXPECT_EQ(DISP_E_UNKNOWNNAME, m_analyser->GetIDsOfNames(IID_NULL, &unknown, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(DISPID_UNKNOWN, id);
}

TEST_F(AnalyserLateBinding, EveryRowIsReadAndPutInEveryWayThatLanguagesCallIt) {
  for (const NumberRow& row : analyserRows) {
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

TEST_F(AnalyserLateBinding, TheWindowsNameAndParameterAreReadAsTextAndNumber) {
  Value name, has, count, parameter;
  EXPECT_EQ(S_OK, invokePut(30, Value(L"10")));
  EXPECT_EQ(S_OK, invokeGet(fftWindowNameId, &name));
  ASSERT_EQ(VT_BSTR, V_VT(&name));
  EXPECT_STREQ(L"Kaiser", V_BSTR(&name));
  EXPECT_EQ(S_OK, invokeGet(hasWindowParamId, &has));
  EXPECT_EQ(VT_BOOL, V_VT(&has));
  EXPECT_EQ(VARIANT_TRUE, V_BOOL(&has));
  EXPECT_EQ(S_OK, invokeGet(fftWindowCountId, &count));
  EXPECT_EQ(11, V_I4(&count));
  EXPECT_EQ(S_OK, invokePut(fftWindowParamId, Value(2.5)));
  EXPECT_EQ(S_OK, invokeGet(fftWindowParamId, &parameter));
  ASSERT_EQ(VT_R4, V_VT(&parameter));
  EXPECT_EQ(2.5f, V_R4(&parameter));
}

TEST_F(AnalyserLateBinding, WhatIsReadOnlyHasNoPut) {
  for (const DISPID id : {fftWindowCountId, fftWindowNameId, hasWindowParamId}) {
    Value value(VT_I4, 1);
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(id, DISPATCH_PROPERTYPUT, &value, 1)) << id;
  }
}

TEST_F(AnalyserLateBinding, ARefusalIsAnExceptionWithATextThatSaysWhatIsTaken) {
  const struct {
    DISPID id;
    LONG value;
    const wchar_t* text;
  } cases[] = {{18, 101, L"MidPoint: the value must be 0 to 100."},
               {23, 3, L"LineCount: the value must be 4 to 200."},
               {20, -1, L"LineInterval: the value must be 0 or more."},
               {10, 1000, L"FFTLength: the value must be a power of two."},
               {30, 11, L"FFTWindowType: the value must be 0 to 10."},
               {34, 11, L"FFTWindowParam: the window takes no such value."},
               {39, 2, L"AlignmentY: the value must be 0 to 1."},
               {11, static_cast<LONG>(0x800000FF), L"BackColor: the system knows no such colour."}};
  for (const auto& one : cases) {
    Value value(VT_I4, one.value);
    EXCEPINFO exception{};
    EXPECT_EQ(DISP_E_EXCEPTION, invoke(one.id, DISPATCH_PROPERTYPUT, &value, 1, nullptr, &exception)) << one.id;
    EXPECT_TRUE(FAILED(exception.scode));
    EXPECT_STREQ(one.text, exception.bstrDescription);
    EXPECT_STREQ(L"QELAudioVisualization4.CAudioVisualization4Type3", exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
  }
}

TEST_F(AnalyserLateBinding, WhatCannotBeConvertedIsRefusedAndChangesNothing) {
  for (const NumberRow& row : analyserRows) {
    if (row.type != VT_I4) continue;
    Value text(L"many");
    EXPECT_EQ(DISP_E_TYPEMISMATCH, invoke(row.dispId, DISPATCH_PROPERTYPUT, &text, 1)) << row.dispId;
    Value large(4294967296.0);
    EXPECT_EQ(DISP_E_OVERFLOW, invoke(row.dispId, DISPATCH_PROPERTYPUT, &large, 1)) << row.dispId;
    EXPECT_EQ(row.defaultValue, getLong(row.dispId)) << row.dispId;
  }
}

TEST_F(AnalyserLateBinding, MethodsAreCalledByTheirIdentifiers) {
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
}

}  // namespace
}  // namespace av::test
