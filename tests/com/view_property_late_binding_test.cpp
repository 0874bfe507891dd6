// The view's properties as scripts and other late-bound hosts reach them: by name and DISPID, with whatever types,
// counts and kinds of call they send.

#include "host/view_test.h"

#include <iterator>

namespace av::test {
namespace {

class ViewLateBinding : public ViewTest {
 protected:
  DISPID idOf(std::wstring name, LCID locale = LOCALE_USER_DEFAULT) {
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR text = name.data();
    EXPECT_EQ(S_OK, m_view->GetIDsOfNames(IID_NULL, &text, 1, locale, &id));
    return id;
  }

  /// Puts `value` and expects the failure, with nothing changed.
  void expectRefused(DISPID id, const VARIANT& value, HRESULT failure) {
    const LONG before = getLong(id);
    VARIANT argument = value;
    EXPECT_EQ(failure, invoke(id, DISPATCH_PROPERTYPUT, &argument, 1))
        << "property " << id << ", type " << V_VT(&value);
    EXPECT_EQ(before, getLong(id));
  }

  static constexpr DISPID longId = 23;    // ScaleYMin
  static constexpr DISPID boolId = 25;    // GridVisible
  static constexpr DISPID colourId = 11;  // GridColor
};

TEST_F(ViewLateBinding, NamesLeadToTheirDispIdsInAnySpellingAndLocale) {
  for (const NumberRow& row : numberRows) {
    std::wstring upper = row.name, lower = row.name;
    CharUpperW(upper.data());
    CharLowerW(lower.data());
    for (const std::wstring& name : {std::wstring(row.name), upper, lower})
      for (const LCID locale : {LCID{LOCALE_USER_DEFAULT}, LCID{LOCALE_NEUTRAL}, LCID{0x0407}, LCID{0x7777}})
        EXPECT_EQ(row.dispId, idOf(name, locale));
  }
  EXPECT_EQ(lineColorId, idOf(L"linecolor"));
  EXPECT_EQ(scaleFontId, idOf(L"SCALEFONT"));
  EXPECT_EQ(0xaae61, idOf(L"_OnTimer"));
  EXPECT_EQ(0xaae62, idOf(L"sendaudiodata"));
  EXPECT_EQ(0xaae63, idOf(L"Repaint"));
}

TEST_F(ViewLateBinding, ArgumentNamesResolveBesideTheirMember) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(L"LineColor"), const_cast<LPOLESTR>(L"Channel")};
  DISPID ids[] = {77, 77};
  EXPECT_EQ(S_OK, m_view->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids));
  EXPECT_EQ(lineColorId, ids[0]);
  EXPECT_EQ(0, ids[1]);
}

TEST_F(ViewLateBinding, NamesThatDoNotExistAreUnknown) {
  DISPID id = 0;
  LPOLESTR unknown = const_cast<LPOLESTR>(L"NoSuchProperty");
  EXPECT_EQ(DISP_E_UNKNOWNNAME, m_view->GetIDsOfNames(IID_NULL, &unknown, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(DISPID_UNKNOWN, id);
  LPOLESTR names[] = {const_cast<LPOLESTR>(L"LineColor"), const_cast<LPOLESTR>(L"NoSuchArgument")};
  DISPID ids[] = {77, 77};
  EXPECT_EQ(DISP_E_UNKNOWNNAME, m_view->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids));
  EXPECT_EQ(DISPID_UNKNOWN, ids[1]);
}

TEST_F(ViewLateBinding, NameLookupsRefuseNullsAndForeignInterfaceIds) {
  DISPID id = 0;
  LPOLESTR name = const_cast<LPOLESTR>(L"BackColor"), none = nullptr;
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, m_view->GetIDsOfNames(IID_IDispatch, &name, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(E_POINTER, m_view->GetIDsOfNames(IID_NULL, nullptr, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(E_POINTER, m_view->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, nullptr));
  EXPECT_EQ(E_INVALIDARG, m_view->GetIDsOfNames(IID_NULL, &none, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(S_OK, m_view->GetIDsOfNames(IID_NULL, &name, 0, LOCALE_USER_DEFAULT, &id));
}

TEST_F(ViewLateBinding, TypeInformationHasOneEntry) {
  UINT count = 0;
  EXPECT_EQ(S_OK, m_view->GetTypeInfoCount(&count));
  EXPECT_EQ(1u, count);
  EXPECT_EQ(E_POINTER, m_view->GetTypeInfoCount(nullptr));
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(DISP_E_BADINDEX, m_view->GetTypeInfo(1, LOCALE_USER_DEFAULT, &info));
  EXPECT_FALSE(info);
  EXPECT_EQ(E_POINTER, m_view->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr));
}

TEST_F(ViewLateBinding, EveryRowIsReadAndPutInEveryWayThatLanguagesCallIt) {
  for (const NumberRow& row : numberRows) {
    for (const WORD get : {WORD{DISPATCH_PROPERTYGET}, WORD{DISPATCH_METHOD | DISPATCH_PROPERTYGET}}) {
      for (const LCID locale : {LCID{LOCALE_USER_DEFAULT}, LCID{LOCALE_NEUTRAL}, LCID{0x0407}, LCID{0x7777}}) {
        Value value;
        EXPECT_EQ(S_OK, invoke(row.dispId, get, nullptr, 0, &value, nullptr, nullptr, locale)) << row.dispId;
        EXPECT_EQ(row.type == VT_BOOL, V_VT(&value) == VT_BOOL) << row.dispId;
        EXPECT_EQ(S_OK, VariantChangeType(&value, &value, 0, VT_I4));
        EXPECT_EQ(row.defaultValue, V_I4(&value)) << row.dispId;
      }
    }
    EXPECT_EQ(S_OK, invokePut(row.dispId, Value(row.type, row.otherValue))) << row.dispId;
    EXPECT_EQ(row.otherValue, getLong(row.dispId)) << row.dispId;
  }
}

TEST_F(ViewLateBinding, ReadingWithoutAPlaceForTheResultSucceeds) {
  EXPECT_EQ(S_OK, invoke(longId, DISPATCH_PROPERTYGET, nullptr, 0));
}

TEST_F(ViewLateBinding, NumbersAreConvertedToLong) {
  LONG referred = 31;
  Value inner(VT_I4, 32), reference(VT_BYREF | VT_I4, 0), nested(VT_BYREF | VT_VARIANT, 0);
  V_I4REF(&reference) = &referred;
  V_VARIANTREF(&nested) = &inner;
  Value small(VT_I2, 0), byte(VT_UI1, 0), currency, date, single;
  V_I2(&small) = -3;
  V_UI1(&byte) = 200;
  V_VT(&currency) = VT_CY;
  V_CY(&currency).int64 = 70000;
  V_VT(&date) = VT_DATE;
  V_DATE(&date) = 41.0;
  V_VT(&single) = VT_R4;
  V_R4(&single) = 8.0f;
  const struct {
    const VARIANT& put;
    LONG reads;
  } cases[] = {{Value(L"5"), 5},
               {Value(L"-17"), -17},
               {Value(2.5), 2},  // to the even neighbour, as automation rounds everywhere
               {Value(3.5), 4},
               {Value(-2.5), -2},
               {Value(VT_BOOL, VARIANT_TRUE), -1},
               {Value(VT_BOOL, VARIANT_FALSE), 0},
               {Value(), 0},
               {small, -3},
               {byte, 200},
               {currency, 7},
               {date, 41},
               {single, 8},
               {reference, 31},
               {nested, 32}};
  for (const auto& one : cases) {
    ASSERT_EQ(S_OK, invokePut(longId, Value(VT_I4, 12345)));
    EXPECT_EQ(S_OK, invokePut(longId, one.put)) << "type " << V_VT(&one.put);
    EXPECT_EQ(one.reads, getLong(longId)) << "type " << V_VT(&one.put);
  }
}

TEST_F(ViewLateBinding, NumbersAndTextsAreConvertedToBooleans) {
  const struct {
    const VARIANT& put;
    LONG reads;
  } cases[] = {{Value(VT_I4, 5), -1}, {Value(VT_I4, 0), 0}, {Value(0.5), -1},   {Value(), 0},
               {Value(L"True"), -1},  {Value(L"False"), 0}, {Value(L"-1"), -1}, {Value(VT_BOOL, 1), 1}};
  for (const auto& one : cases) {
    ASSERT_EQ(S_OK, invokePut(boolId, Value(VT_BOOL, 2)));
    EXPECT_EQ(S_OK, invokePut(boolId, one.put)) << "type " << V_VT(&one.put);
    EXPECT_EQ(one.reads, getLong(boolId)) << "type " << V_VT(&one.put);
  }
}

TEST_F(ViewLateBinding, NumbersAndTextsAreConvertedToColours) {
  const struct {
    const VARIANT& put;
    LONG reads;
  } cases[] = {{Value(VT_I4, 0x00FF0000), 0x00FF0000},
               {Value(VT_UI4, 0x0000FF00), 0x0000FF00},
               {Value(255.0), 255},
               {Value(L"65280"), 65280},
               {Value(), 0},
               // Languages without unsigned numbers write system colours as negative ones.
               {Value(VT_I4, static_cast<LONG>(0x8000000F)), 0x0000000F}};
  for (const auto& one : cases) {
    ASSERT_EQ(S_OK, invokePut(colourId, Value(VT_UI4, 0x00123456)));
    EXPECT_EQ(S_OK, invokePut(colourId, one.put)) << "type " << V_VT(&one.put);
    EXPECT_EQ(one.reads, getLong(colourId)) << "type " << V_VT(&one.put);
  }
}

TEST_F(ViewLateBinding, ValuesOfNoUsableTypeAreAMismatchAndChangeNothing) {
  Value null, array;
  V_VT(&null) = VT_NULL;
  V_VT(&array) = VT_ARRAY | VT_I4;
  SAFEARRAYBOUND bound{2, 0};
  V_ARRAY(&array) = SafeArrayCreate(VT_I4, 1, &bound);
  for (const DISPID id : {longId, boolId, colourId}) {
    expectRefused(id, Value(L"green"), DISP_E_TYPEMISMATCH);
    expectRefused(id, Value(L""), DISP_E_TYPEMISMATCH);
    expectRefused(id, null, DISP_E_TYPEMISMATCH);
    expectRefused(id, array, DISP_E_TYPEMISMATCH);
  }
}

TEST_F(ViewLateBinding, NumbersBeyondTheTypeOverflowAndChangeNothing) {
  expectRefused(longId, Value(1e10), DISP_E_OVERFLOW);
  expectRefused(longId, Value(L"99999999999"), DISP_E_OVERFLOW);
  expectRefused(colourId, Value(1e10), DISP_E_OVERFLOW);
}

TEST_F(ViewLateBinding, WrongCountsOfArgumentsAreRefused) {
  Value two[] = {Value(VT_I4, 1), Value(VT_I4, 2)};
  Value three[] = {Value(VT_I4, 1), Value(VT_I4, 2), Value(VT_I4, 3)};
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, invoke(longId, DISPATCH_PROPERTYGET, two, 1));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, invoke(longId, DISPATCH_PROPERTYPUT, two, 2));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, invoke(lineColorId, DISPATCH_PROPERTYGET, nullptr, 0));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, invoke(lineColorId, DISPATCH_PROPERTYGET, two, 2));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, invoke(lineColorId, DISPATCH_PROPERTYPUT, three, 3));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, invoke(0xaae63, DISPATCH_METHOD, two, 1));
  EXPECT_EQ(0, getLong(longId));
  DISPPARAMS nothing{};
  EXPECT_TRUE(FAILED(m_view->Invoke(longId, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &nothing, nullptr,
                                    nullptr, nullptr)));
  EXPECT_EQ(0, getLong(longId));
}

TEST_F(ViewLateBinding, MembersThatDoNotExistAreNotFound) {
  for (const DISPID id : {0, 1, 7, 9, 16, 43, 9999, 0xaae60, 0xaae66, DISPID_UNKNOWN, DISPID_BACKCOLOR}) {
    Value value;
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invokeGet(id, &value)) << id;
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invokePut(id, Value(VT_I4, 1))) << id;
    EXPECT_EQ(VT_EMPTY, V_VT(&value)) << id;
  }
}

TEST_F(ViewLateBinding, CallsOfAKindThatAMemberHasNotAreNotFound) {
  Value number(VT_I4, 5);
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(longId, DISPATCH_METHOD, nullptr, 0));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(longId, DISPATCH_PROPERTYPUTREF, &number, 1));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(0xaae63, DISPATCH_PROPERTYPUT, &number, 1));
  EXPECT_EQ(0, getLong(longId));
}

TEST_F(ViewLateBinding, CallsWithoutParametersOrWithForeignInterfaceIdsAreRefused) {
  Value value;
  DISPPARAMS none{};
  EXPECT_EQ(E_POINTER, m_view->Invoke(longId, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, nullptr, &value,
                                      nullptr, nullptr));
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, m_view->Invoke(longId, IID_IDispatch, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                                                    &none, &value, nullptr, nullptr));
}

TEST_F(ViewLateBinding, IndexedPropertiesTakeTheIndexFirst) {
  Value arguments[] = {Value(VT_I4, 0x00010203), Value(L"18")};  // reversed: value first, index last
  EXPECT_EQ(S_OK, invoke(lineColorId, DISPATCH_PROPERTYPUT, arguments, 2));
  EXPECT_EQ(0x00010203u, lineColor(18));
  Value index(18.0), result;
  EXPECT_EQ(S_OK, invoke(lineColorId, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &index, 1, &result));
  EXPECT_EQ(S_OK, VariantChangeType(&result, &result, 0, VT_I4));
  EXPECT_EQ(0x00010203, V_I4(&result));
}

TEST_F(ViewLateBinding, AFailureOfTheAccessorArrivesAsAnExceptionWithItsCode) {
  Value arguments[] = {Value(VT_I4, 0x00010203), Value(VT_I4, 19)};
  EXCEPINFO exception{};
  EXPECT_EQ(DISP_E_EXCEPTION, invoke(lineColorId, DISPATCH_PROPERTYPUT, arguments, 2, nullptr, &exception));
  EXPECT_EQ(E_INVALIDARG, exception.scode);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
}

}  // namespace
}  // namespace av::test
