// What the view's properties read and keep, by the virtual table: defaults, limits, and values beyond them.

#include "host/view_test.h"

#include <iterator>
#include <limits>

namespace av::test {
namespace {

constexpr LONG lowest = std::numeric_limits<LONG>::min();
constexpr LONG highest = std::numeric_limits<LONG>::max();

class ViewPropertyValues : public ViewTest {
 protected:
  static const NumberRow& rowOf(DISPID id) {
    for (const NumberRow& row : numberRows)
      if (row.dispId == id) return row;
    ADD_FAILURE() << "no row " << id;
    return numberRows[0];
  }
};

TEST_F(ViewPropertyValues, FreshControlsReadTheDefaultsAtEveryVtableOffset) {
  const int called = forEachAccessor(
      INVOKE_PROPERTYGET,
      [&](DISPID id, void* slot) {
        using Get = HRESULT(STDMETHODCALLTYPE*)(void*, void*);
        LONG direct = 0;
        EXPECT_EQ(S_OK, (*static_cast<Get*>(slot))(m_view.Get(), &direct)) << id;
        const NumberRow& row = rowOf(id);
        if (row.type == VT_BOOL) direct = static_cast<SHORT>(direct);
        EXPECT_EQ(row.defaultValue, direct) << id;
        EXPECT_EQ(getLong(id), direct) << id;
      },
      scaleFontId);
  EXPECT_EQ(17, called);
}

TEST_F(ViewPropertyValues, EveryPutReachesItsOwnPropertyAtItsVtableOffset) {
  const int called = forEachAccessor(
      INVOKE_PROPERTYPUT,
      [&](DISPID id, void* slot) {
        using Put = HRESULT(STDMETHODCALLTYPE*)(void*, LONG);
        EXPECT_EQ(S_OK, (*static_cast<Put*>(slot))(m_view.Get(), rowOf(id).otherValue)) << id;
      },
      scaleFontId);
  EXPECT_EQ(17, called);
  // Read only now: a put that reached another row would have been overwritten there.
  for (const NumberRow& row : numberRows) EXPECT_EQ(row.otherValue, getLong(row.dispId)) << row.dispId;
}

TEST_F(ViewPropertyValues, LongsAreStoredAsGivenAtTheIntegersLimits) {
  for (const DISPID id : {5, 23, 24, 30, 31, 41, 42}) {
    for (const LONG value : {lowest, -60L, -1L, 0L, highest}) {
      EXPECT_EQ(S_OK, invokePut(id, Value(VT_I4, value)));
      EXPECT_EQ(value, getLong(id)) << id;
    }
  }
}

TEST_F(ViewPropertyValues, ExtremeValuesOfEveryRowDrawSomethingOrNothingButDoNoHarm) {
  activate({160, 120});
  for (const DISPID id : {5, 23, 24, 30, 31, 41, 42}) {
    const LONG before = getLong(id);
    for (const LONG value : {lowest, -1L, 0L, highest}) EXPECT_EQ(S_OK, invokePut(id, Value(VT_I4, value)));
    EXPECT_EQ(S_OK, invokePut(id, Value(VT_I4, before)));
  }
}

TEST_F(ViewPropertyValues, BooleansComeBackAsPut) {
  for (const VARIANT_BOOL value : {VARIANT_BOOL{1}, VARIANT_BOOL{2}, VARIANT_BOOL{-2}, VARIANT_FALSE, VARIANT_TRUE}) {
    VARIANT_BOOL read = 77;
    EXPECT_EQ(S_OK, m_view->put_VisualizationSmooth(value));
    EXPECT_EQ(S_OK, m_view->get_VisualizationSmooth(&read));
    EXPECT_EQ(value, read);
    EXPECT_EQ(S_OK, m_view->put_ScaleXVisible(value));
    EXPECT_EQ(S_OK, m_view->get_ScaleXVisible(&read));
    EXPECT_EQ(value, read);
    EXPECT_EQ(S_OK, m_view->put_ScaleYVisible(value));
    EXPECT_EQ(S_OK, m_view->get_ScaleYVisible(&read));
    EXPECT_EQ(value, read);
    EXPECT_EQ(S_OK, m_view->put_GridVisible(value));
    EXPECT_EQ(S_OK, m_view->get_GridVisible(&read));
    EXPECT_EQ(value, read);
  }
}

TEST_F(ViewPropertyValues, WindowSizesAreClampedAndRoundedToPowersOfTwo) {
  const struct {
    LONG put, reads;
  } cases[] = {{10, 64},     {64, 64},        {90, 64}, {91, 128},    {181, 128},      {182, 256},
               {1000, 1024}, {100000, 16384}, {-1, 64}, {lowest, 64}, {highest, 16384}};
  for (const auto& one : cases) {
    EXPECT_EQ(S_OK, m_view->put_FFTWindowSize(one.put));
    LONG value = 0;
    EXPECT_EQ(S_OK, m_view->get_FFTWindowSize(&value));
    EXPECT_EQ(one.reads, value) << one.put;
  }
}

TEST_F(ViewPropertyValues, LineColorsHaveTheirDefaults) {
  const OLE_COLOR expected[] = {0,          0x008080F0, 0x0000FFFF, 0x00008000, 0x00FF0000, 0x00E22B8A, 0x00FFFF00,
                                0x00008CFF, 0x00FF00FF, 0x00D0E040, 0,          0,          0,          0,
                                0,          0,          0,          0,          0};
  ASSERT_EQ(19u, std::size(expected));
  for (LONG i = 0; i < 19; ++i) EXPECT_EQ(expected[i], lineColor(i)) << i;
}

TEST_F(ViewPropertyValues, LineColorZeroIsTheTextColourBothWays) {
  OLE_COLOR colour = 0;
  EXPECT_EQ(S_OK, m_view->put_LineColor(0, 0x000000FF));
  EXPECT_EQ(S_OK, m_view->get_TextColor(&colour));
  EXPECT_EQ(0x000000FFu, colour);
  EXPECT_EQ(S_OK, m_view->put_TextColor(0x00FF0000));
  EXPECT_EQ(0x00FF0000u, lineColor(0));
}

TEST_F(ViewPropertyValues, EachLineColourIsKeptAtItsOwnIndex) {
  for (LONG i = 0; i < 19; ++i) EXPECT_EQ(S_OK, m_view->put_LineColor(i, static_cast<OLE_COLOR>(0x00102030 + i)));
  for (LONG i = 0; i < 19; ++i) EXPECT_EQ(static_cast<OLE_COLOR>(0x00102030 + i), lineColor(i));
}

TEST_F(ViewPropertyValues, LineColorRefusesIndicesThatDoNotExist) {
  OLE_COLOR colour = 77;
  for (const LONG index : {-1L, 19L, lowest, highest}) {
    EXPECT_EQ(E_INVALIDARG, m_view->get_LineColor(index, &colour));
    EXPECT_EQ(E_INVALIDARG, m_view->put_LineColor(index, 0x00FFFFFF));
  }
  EXPECT_EQ(77u, colour);
  EXPECT_EQ(0u, lineColor(0));
  EXPECT_EQ(0u, lineColor(18));
}

TEST_F(ViewPropertyValues, ColoursLoseTheirHighByteAndSystemColoursAreNotResolved) {
  for (const DISPID id : {10, 11, 12, 13, 14}) {
    EXPECT_EQ(S_OK, invokePut(id, Value(VT_UI4, static_cast<LONG>(0x80000005))));
    EXPECT_EQ(0x00000005, getLong(id)) << id;
    EXPECT_EQ(S_OK, invokePut(id, Value(VT_UI4, static_cast<LONG>(0xFFFFFFFF))));
    EXPECT_EQ(0x00FFFFFF, getLong(id)) << id;
  }
}

TEST_F(ViewPropertyValues, TheScaleColourIsTheButtonFaceAtConstruction) {
  OLE_COLOR colour = 0;
  EXPECT_EQ(S_OK, m_view->get_ScaleColor(&colour));
  EXPECT_EQ(GetSysColor(COLOR_BTNFACE), colour);
}

TEST_F(ViewPropertyValues, NullOutPointersAreRefusedByEveryGet) {
  const int called = forEachAccessor(
      INVOKE_PROPERTYGET,
      [&](DISPID id, void* slot) {
        using Get = HRESULT(STDMETHODCALLTYPE*)(void*, void*);
        EXPECT_EQ(E_POINTER, (*static_cast<Get*>(slot))(m_view.Get(), nullptr)) << id;
      },
      scaleFontId);
  EXPECT_EQ(17, called);
  EXPECT_EQ(E_POINTER, m_view->get_LineColor(1, nullptr));
  EXPECT_EQ(E_POINTER, m_view->get_LineColor(99, nullptr));
  EXPECT_EQ(E_POINTER, m_view->get_ScaleFont(nullptr));
}

TEST_F(ViewPropertyValues, TheInertMethodsDoNothingAndSaySo) {
  EXPECT_EQ(S_OK, m_view->Repaint());
  Value value(VT_I4, 4711);
  BSTR name = SysAllocString(L"anything");
  EXPECT_EQ(S_OK, m_view->SetAdditionalParam(name, value));
  EXPECT_EQ(S_OK, m_view->GetAdditionalParam(name, &value));
  EXPECT_EQ(VT_I4, V_VT(&value));
  EXPECT_EQ(4711, V_I4(&value));
  EXPECT_EQ(S_OK, m_view->GetAdditionalParam(nullptr, nullptr));
  SysFreeString(name);
  EXPECT_EQ(S_OK, m_view->_OnTimer());
}

}  // namespace
}  // namespace av::test
