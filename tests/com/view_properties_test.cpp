// The view's property table as hosts see it: by its virtual table, and late bound by DISPID and by name.

#include "host/container.h"
#include "host/dll_test.h"

#include <olectl.h>

#include <cmath>
#include <limits>
#include <string>

namespace av::test {
namespace {

struct Row {
  const wchar_t* name;
  DISPID dispId;
  VARTYPE type;
  LONG defaultValue;
  LONG otherValue;
};

// ScaleColor and ScaleFont depend on the system and have tests of their own.
constexpr Row rows[] = {
    {L"VisualizationType", 5, VT_I4, 1, 2},
    {L"VisualizationSmooth", 6, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"BackColor", 10, VT_I4, 0, 0x00123456},
    {L"GridColor", 11, VT_I4, 0x00A9A9A9, 0x000000FF},
    {L"TextColor", 13, VT_I4, 0, 0x0000FF00},
    {L"BorderColor", 14, VT_I4, 0, 0x00FF0000},
    {L"ScaleXVisible", 20, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"ScaleYVisible", 21, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"ScaleYMin", 23, VT_I4, 0, 10},
    {L"ScaleYMax", 24, VT_I4, 100, 50},
    {L"GridVisible", 25, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"DynamicRange", 30, VT_I4, 90, 60},
    {L"BorderType", 31, VT_I4, 0, 2},
    {L"FFTWindowSize", 40, VT_I4, 1024, 256},
    {L"FFTWindowType", 41, VT_I4, 0, 3},
    {L"FFTViewType", 42, VT_I4, 1, 2},
};

class ViewProperties : public DllTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_view = createView();
    ASSERT_TRUE(m_view);
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_view ? m_view.Reset() : 0u);
    DllTest::TearDown();
  }

  DISPID idOf(const wchar_t* name) {
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR text = const_cast<LPOLESTR>(name);
    EXPECT_EQ(S_OK, m_view->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id));
    return id;
  }

  HRESULT invokeGet(DISPID id, VARIANT* value) {
    DISPPARAMS none{};
    return m_view->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, value, nullptr, nullptr);
  }

  HRESULT invokePut(DISPID id, VARIANT value) {
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS arguments{&value, &put, 1, 1};
    return m_view->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &arguments, nullptr, nullptr,
                          nullptr);
  }

  LONG getLong(DISPID id) {
    VARIANT value;
    VariantInit(&value);
    EXPECT_EQ(S_OK, invokeGet(id, &value));
    EXPECT_EQ(S_OK, VariantChangeType(&value, &value, 0, VT_I4));
    return V_I4(&value);
  }

  static VARIANT variantOf(VARTYPE type, LONG value) {
    VARIANT result;
    VariantInit(&result);
    V_VT(&result) = type;
    if (type == VT_BOOL) V_BOOL(&result) = static_cast<VARIANT_BOOL>(value);
    else V_I4(&result) = value;
    return result;
  }

  ComPtr<IAudioVisualization4Type1> m_view;
};

TEST_F(ViewProperties, NamesLeadToTheirDispIdsInAnySpelling) {
  for (const Row& row : rows) {
    EXPECT_EQ(row.dispId, idOf(row.name));
    std::wstring upper = row.name;
    CharUpperW(upper.data());
    EXPECT_EQ(row.dispId, idOf(upper.c_str()));
  }
  DISPID id = 0;
  LPOLESTR unknown = const_cast<LPOLESTR>(L"NoSuchProperty");
  EXPECT_EQ(DISP_E_UNKNOWNNAME, m_view->GetIDsOfNames(IID_NULL, &unknown, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(DISPID_UNKNOWN, id);
}

TEST_F(ViewProperties, FreshControlsHaveTheDefaultsAndKeepWhatIsPut) {
  for (const Row& row : rows) {
    EXPECT_EQ(row.defaultValue, getLong(row.dispId)) << row.name;
    VARIANT value;
    VariantInit(&value);
    ASSERT_EQ(S_OK, invokeGet(row.dispId, &value));
    EXPECT_EQ(row.type, row.type == VT_BOOL ? V_VT(&value) : VARTYPE{VT_I4}) << row.name;
    EXPECT_EQ(S_OK, invokePut(row.dispId, variantOf(row.type, row.otherValue))) << row.name;
    EXPECT_EQ(row.otherValue, getLong(row.dispId)) << row.name;
  }
}

TEST_F(ViewProperties, LongsAreStoredAsGivenAtTheIntegersLimits) {
  for (const DISPID id : {5, 23, 24, 31, 41, 42}) {
    for (const LONG value : {std::numeric_limits<LONG>::min(), -1L, 0L, std::numeric_limits<LONG>::max()}) {
      EXPECT_EQ(S_OK, invokePut(id, variantOf(VT_I4, value)));
      EXPECT_EQ(value, getLong(id));
    }
  }
  for (const LONG value : {std::numeric_limits<LONG>::min(), -60L, 0L, std::numeric_limits<LONG>::max()}) {
    EXPECT_EQ(S_OK, m_view->put_DynamicRange(value));
    EXPECT_EQ(value, getLong(30));
  }
}

TEST_F(ViewProperties, WindowSizesAreClampedAndRoundedToPowersOfTwo) {
  const struct {
    LONG put, reads;
  } cases[] = {{10, 64},
               {64, 64},
               {90, 64},
               {91, 128},
               {181, 128},
               {182, 256},
               {1000, 1024},
               {100000, 16384},
               {-1, 64},
               {std::numeric_limits<LONG>::min(), 64},
               {std::numeric_limits<LONG>::max(), 16384}};
  for (const auto& one : cases) {
    EXPECT_EQ(S_OK, m_view->put_FFTWindowSize(one.put));
    LONG value = 0;
    EXPECT_EQ(S_OK, m_view->get_FFTWindowSize(&value));
    EXPECT_EQ(one.reads, value) << one.put;
  }
}

TEST_F(ViewProperties, LineColorsHaveTheirDefaultsAndIndexZeroIsTheTextColour) {
  const OLE_COLOR expected[] = {0,          0x008080F0, 0x0000FFFF, 0x00008000, 0x00FF0000, 0x00E22B8A, 0x00FFFF00,
                                0x00008CFF, 0x00FF00FF, 0x00D0E040, 0,          0,          0,          0,
                                0,          0,          0,          0,          0};
  for (LONG i = 0; i < 19; ++i) {
    OLE_COLOR colour = 1;
    EXPECT_EQ(S_OK, m_view->get_LineColor(i, &colour));
    EXPECT_EQ(expected[i], colour) << i;
  }
  OLE_COLOR colour = 0;
  EXPECT_EQ(S_OK, m_view->put_LineColor(0, 0x000000FF));
  EXPECT_EQ(S_OK, m_view->get_TextColor(&colour));
  EXPECT_EQ(0x000000FFu, colour);
  EXPECT_EQ(S_OK, m_view->put_TextColor(0x00FF0000));
  EXPECT_EQ(S_OK, m_view->get_LineColor(0, &colour));
  EXPECT_EQ(0x00FF0000u, colour);
}

TEST_F(ViewProperties, LineColorRefusesIndicesThatDoNotExist) {
  OLE_COLOR colour = 77;
  for (const LONG index : {-1L, 19L, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()}) {
    EXPECT_EQ(E_INVALIDARG, m_view->get_LineColor(index, &colour));
    EXPECT_EQ(E_INVALIDARG, m_view->put_LineColor(index, 0x00FFFFFF));
  }
  EXPECT_EQ(77u, colour);
}

TEST_F(ViewProperties, IndexedPropertiesWorkLateBound) {
  VARIANT arguments[2] = {variantOf(VT_I4, 0x00010203), variantOf(VT_I4, 18)};  // reversed: value first, index last
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{arguments, &put, 2, 1};
  EXPECT_EQ(S_OK, m_view->Invoke(15, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr,
                                 nullptr));
  OLE_COLOR colour = 0;
  EXPECT_EQ(S_OK, m_view->get_LineColor(18, &colour));
  EXPECT_EQ(0x00010203u, colour);
  VARIANT index = variantOf(VT_I4, 18), result;
  VariantInit(&result);
  DISPPARAMS one{&index, nullptr, 1, 0};
  EXPECT_EQ(S_OK,
            m_view->Invoke(15, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &one, &result, nullptr, nullptr));
  EXPECT_EQ(S_OK, VariantChangeType(&result, &result, 0, VT_I4));
  EXPECT_EQ(0x00010203, V_I4(&result));
}

TEST_F(ViewProperties, SystemColoursAreNotResolvedButLoseTheirFlag) {
  EXPECT_EQ(S_OK, m_view->put_BackColor(0x80000005));
  OLE_COLOR colour = 0;
  EXPECT_EQ(S_OK, m_view->get_BackColor(&colour));
  EXPECT_EQ(0x00000005u, colour);
}

TEST_F(ViewProperties, TheScaleColourIsTheButtonFaceAtConstruction) {
  OLE_COLOR colour = 0;
  EXPECT_EQ(S_OK, m_view->get_ScaleColor(&colour));
  EXPECT_EQ(GetSysColor(COLOR_BTNFACE), colour);
}

TEST_F(ViewProperties, TheScaleFontIsArialOfSixPoints) {
  ComPtr<IFontDisp> dispatch;
  ASSERT_EQ(S_OK, m_view->get_ScaleFont(&dispatch));
  ComPtr<IFont> font;
  ASSERT_EQ(S_OK, dispatch.As(&font));
  // Not the character set: the system reports the one that it mapped the font to.
  BSTR name = nullptr;
  CY size{};
  SHORT weight = 0;
  BOOL italic = TRUE, underline = TRUE, strikethrough = TRUE;
  font->get_Name(&name);
  font->get_Size(&size);
  font->get_Weight(&weight);
  font->get_Italic(&italic);
  font->get_Underline(&underline);
  font->get_Strikethrough(&strikethrough);
  EXPECT_STREQ(L"Arial", name);
  EXPECT_EQ(60000, size.int64);
  EXPECT_EQ(400, weight);
  EXPECT_FALSE(italic || underline || strikethrough);
  SysFreeString(name);
}

TEST_F(ViewProperties, AnotherScaleFontIsKeptANullOneIgnoredAndNoFontRefused) {
  FONTDESC description{};
  description.cbSizeofstruct = sizeof description;
  description.lpstrName = const_cast<LPOLESTR>(L"Tahoma");
  description.cySize.int64 = 140000;
  description.sWeight = 700;
  ComPtr<IFontDisp> font, read;
  ASSERT_EQ(S_OK, OleCreateFontIndirect(&description, IID_PPV_ARGS(&font)));
  EXPECT_EQ(S_OK, m_view->putref_ScaleFont(font.Get()));
  ASSERT_EQ(S_OK, m_view->get_ScaleFont(&read));
  EXPECT_EQ(font.Get(), read.Get());
  EXPECT_EQ(S_OK, m_view->putref_ScaleFont(nullptr));
  EXPECT_EQ(E_INVALIDARG, m_view->putref_ScaleFont(reinterpret_cast<IFontDisp*>(m_view.Get())));
  ASSERT_EQ(S_OK, m_view->get_ScaleFont(&read));
  EXPECT_EQ(font.Get(), read.Get());
}

TEST_F(ViewProperties, NullOutPointersAreRefused) {
  EXPECT_EQ(E_POINTER, m_view->get_VisualizationType(nullptr));
  EXPECT_EQ(E_POINTER, m_view->get_BackColor(nullptr));
  EXPECT_EQ(E_POINTER, m_view->get_LineColor(1, nullptr));
  EXPECT_EQ(E_POINTER, m_view->get_ScaleFont(nullptr));
}

TEST_F(ViewProperties, TheInertMethodsDoNothingAndSaySo) {
  EXPECT_EQ(S_OK, m_view->Repaint());
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_I4;
  V_I4(&value) = 4711;
  BSTR name = SysAllocString(L"anything");
  EXPECT_EQ(S_OK, m_view->SetAdditionalParam(name, value));
  EXPECT_EQ(S_OK, m_view->GetAdditionalParam(name, &value));
  EXPECT_EQ(VT_I4, V_VT(&value));
  EXPECT_EQ(4711, V_I4(&value));
  EXPECT_EQ(S_OK, m_view->GetAdditionalParam(nullptr, nullptr));
  SysFreeString(name);
  EXPECT_EQ(S_OK, m_view->_OnTimer());
}

/// Calls every accessor at the offset that the type library gives it, and the same through Invoke.
TEST_F(ViewProperties, EveryGetAnswersTheSameAtItsVtableOffsetAndThroughInvoke) {
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(S_OK, m_view->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info));
  // The vtable view of the dual interface carries the offsets.
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> vtable;
  ASSERT_EQ(S_OK, info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
  ASSERT_EQ(S_OK, info->GetRefTypeInfo(reference, &vtable));
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, vtable->GetTypeAttr(&attributes));
  const UINT count = attributes->cFuncs;
  vtable->ReleaseTypeAttr(attributes);
  int compared = 0;
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    ASSERT_EQ(S_OK, vtable->GetFuncDesc(i, &function));
    if (function->invkind == INVOKE_PROPERTYGET && function->cParams == 1 && function->memid != 22) {
      using Get = HRESULT(STDMETHODCALLTYPE*)(void*, void*);
      const auto table = *reinterpret_cast<char**>(m_view.Get());
      const auto get = *reinterpret_cast<Get*>(table + function->oVft);
      LONG direct = 0;
      EXPECT_EQ(S_OK, get(m_view.Get(), &direct)) << function->memid;
      const bool isBool = function->lprgelemdescParam[0].tdesc.lptdesc->vt == VT_BOOL;
      EXPECT_EQ(isBool ? static_cast<SHORT>(direct) : direct, getLong(function->memid)) << function->memid;
      ++compared;
    }
    vtable->ReleaseFuncDesc(function);
  }
  EXPECT_EQ(17, compared);
}

}  // namespace
}  // namespace av::test
