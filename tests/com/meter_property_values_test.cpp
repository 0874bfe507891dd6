// What the level meter's properties read and keep, by the virtual table: defaults, limits, and values beyond them.

#include "host/meter_test.h"

#include <limits>

namespace av::test {
namespace {

constexpr LONG lowest = std::numeric_limits<LONG>::min();
constexpr LONG highest = std::numeric_limits<LONG>::max();

class MeterPropertyValues : public MeterTest {
 protected:
  LONG lineCountAfterPut(LONG value) {
    EXPECT_EQ(S_OK, m_meter->put_LineCount(value));
    return lineCount();
  }
};

TEST_F(MeterPropertyValues, FreshControlsReadTheDefaultsAtEveryVtableOffset) {
  const int called = forEachAccessor(INVOKE_PROPERTYGET, [&](DISPID id, void* slot) {
    using Get = HRESULT(STDMETHODCALLTYPE*)(void*, void*);
    LONG direct = 0;
    EXPECT_EQ(S_OK, (*static_cast<Get*>(slot))(m_meter.Get(), &direct)) << id;
    const NumberRow& row = meterRow(id);
    if (row.type == VT_BOOL) direct = static_cast<SHORT>(direct);
    EXPECT_EQ(row.defaultValue, direct) << id;
    EXPECT_EQ(getLong(id), direct) << id;
  });
  EXPECT_EQ(27, called);
}

TEST_F(MeterPropertyValues, EveryPutReachesItsOwnPropertyAtItsVtableOffset) {
  const int called = forEachAccessor(INVOKE_PROPERTYPUT, [&](DISPID id, void* slot) {
    using Put = HRESULT(STDMETHODCALLTYPE*)(void*, LONG);
    EXPECT_EQ(S_OK, (*static_cast<Put*>(slot))(m_meter.Get(), meterRow(id).otherValue)) << id;
  });
  EXPECT_EQ(27, called);
  // Read only now: a put that reached another row would have been overwritten there.
  for (const NumberRow& row : meterRows) EXPECT_EQ(row.otherValue, getLong(row.dispId)) << row.dispId;
}

TEST_F(MeterPropertyValues, MostLongsAreStoredAsGivenAtTheIntegersLimits) {
  for (const DISPID id : {7, 30, 31, 40, 41, 45, 46, 60, 61, 62}) {
    for (const LONG value : {lowest, -60L, -1L, 0L, 10000L, highest}) {
      EXPECT_EQ(S_OK, invokePut(id, Value(VT_I4, value)));
      EXPECT_EQ(value, getLong(id)) << id;
    }
  }
}

TEST_F(MeterPropertyValues, SizesBelowZeroBecomeZero) {
  for (const DISPID id : {8, 33, 34}) {
    const struct { LONG put, reads; } cases[] = {{lowest, 0}, {-1, 0}, {0, 0}, {1, 1}, {highest, highest}};
    for (const auto& one : cases) {
      EXPECT_EQ(S_OK, invokePut(id, Value(VT_I4, one.put)));
      EXPECT_EQ(one.reads, getLong(id)) << id;
    }
  }
}

TEST_F(MeterPropertyValues, ZoneLimitsAreClampedToPercents) {
  for (const DISPID id : {35, 36}) {
    const struct {
      LONG put, reads;
    } cases[] = {{lowest, 0}, {-5, 0}, {0, 0}, {100, 100}, {101, 100}, {150, 100}, {highest, 100}};
    for (const auto& one : cases) {
      EXPECT_EQ(S_OK, invokePut(id, Value(VT_I4, one.put)));
      EXPECT_EQ(one.reads, getLong(id)) << id;
    }
  }
}

TEST_F(MeterPropertyValues, LineCountsAreAtLeastThree) {
  for (const LONG value : {lowest, -1L, 0L, 1L, 2L, 3L}) EXPECT_EQ(3, lineCountAfterPut(value));
  EXPECT_EQ(4, lineCountAfterPut(4));
}

TEST_F(MeterPropertyValues, WithoutAWidthLineCountsEndAtTheLongestBlock) {
  EXPECT_EQ(500, lineCountAfterPut(500));
  EXPECT_EQ(48000, lineCountAfterPut(48000));
  EXPECT_EQ(48000, lineCountAfterPut(48001));
  EXPECT_EQ(48000, lineCountAfterPut(highest));
}

TEST_F(MeterPropertyValues, LineCountsAreLimitedByTheCurrentWidth) {
  activate({200, 100});
  EXPECT_EQ(100, lineCount()) << "the default is not looked at";
  EXPECT_EQ(99, lineCountAfterPut(500));  // (200 - 2) / 1 / 2
  EXPECT_EQ(98, lineCountAfterPut(98));
  ASSERT_EQ(S_OK, m_meter->put_BorderWidth(10));
  EXPECT_EQ(98, lineCount()) << "a smaller limit does not reach back";
  EXPECT_EQ(89, lineCountAfterPut(500));  // (200 - 22) / 1 / 2
  ASSERT_EQ(S_OK, m_meter->put_LineInterval(7));
  EXPECT_EQ(12, lineCountAfterPut(500));  // 178 / 7 = 25, 25 / 2 = 12
  ASSERT_EQ(S_OK, m_meter->put_LineInterval(0));
  EXPECT_EQ(178, lineCountAfterPut(500));  // a pixel each
  ASSERT_EQ(S_OK, m_meter->put_LineInterval(100));
  EXPECT_EQ(3, lineCountAfterPut(500));  // 178 / 100 / 2 = 0
  ASSERT_EQ(S_OK, m_meter->put_LineInterval(1));
  ASSERT_EQ(S_OK, m_meter->put_BorderWidth(highest));
  EXPECT_EQ(3, lineCountAfterPut(500));
  ASSERT_EQ(S_OK, m_meter->put_BorderWidth(0));
  ASSERT_EQ(S_OK, m_container.resize({400, 100}));
  EXPECT_EQ(199, lineCountAfterPut(500));
}

TEST_F(MeterPropertyValues, ColoursLoseTheirHighByteAndSystemColoursAreNotResolved) {
  for (const NumberRow& row : meterRows) {
    if (row.type != VT_UI4) continue;
    EXPECT_EQ(S_OK, invokePut(row.dispId, Value(VT_UI4, static_cast<LONG>(0x80000005))));
    EXPECT_EQ(0x00000005, getLong(row.dispId)) << row.dispId;
    EXPECT_EQ(S_OK, invokePut(row.dispId, Value(VT_UI4, static_cast<LONG>(0xFFFFFFFF))));
    EXPECT_EQ(0x00FFFFFF, getLong(row.dispId)) << row.dispId;
  }
}

TEST_F(MeterPropertyValues, AutoRepaintCannotBeSwitchedOff) {
  for (const VARIANT_BOOL value : {VARIANT_FALSE, VARIANT_BOOL{1}, VARIANT_TRUE}) {
    VARIANT_BOOL read = 77;
    EXPECT_EQ(S_OK, m_meter->put_AutoRepaint(value));
    EXPECT_EQ(S_OK, m_meter->get_AutoRepaint(&read));
    EXPECT_EQ(VARIANT_TRUE, read);
  }
}

TEST_F(MeterPropertyValues, BooleansComeBackAsPut) {
  VARIANT_BOOL read = 77;
  EXPECT_EQ(S_OK, m_meter->get_TickVisible(&read));
  EXPECT_EQ(1, read) << "not -1, until somebody puts it";
  for (const VARIANT_BOOL value : {VARIANT_BOOL{1}, VARIANT_BOOL{2}, VARIANT_BOOL{-2}, VARIANT_FALSE, VARIANT_TRUE}) {
    EXPECT_EQ(S_OK, m_meter->put_TickVisible(value));
    EXPECT_EQ(S_OK, m_meter->get_TickVisible(&read));
    EXPECT_EQ(value, read);
    EXPECT_EQ(S_OK, m_meter->put_AutoSize(value));
    EXPECT_EQ(S_OK, m_meter->get_AutoSize(&read));
    EXPECT_EQ(value, read);
  }
}

TEST_F(MeterPropertyValues, TheWindowSizeIsWhatWasPutUntilTheNextBlock) {
  EXPECT_EQ(S_OK, m_meter->put_FFTWindowSize(4096));
  EXPECT_EQ(4096, windowSize());
  EXPECT_EQ(S_OK, sendNoise(m_meter.Get(), 1024));
  EXPECT_EQ(1024, windowSize());
}

TEST_F(MeterPropertyValues, NullOutPointersAreRefusedByEveryGet) {
  const int called = forEachAccessor(INVOKE_PROPERTYGET, [&](DISPID id, void* slot) {
    using Get = HRESULT(STDMETHODCALLTYPE*)(void*, void*);
    EXPECT_EQ(E_POINTER, (*static_cast<Get*>(slot))(m_meter.Get(), nullptr)) << id;
  });
  EXPECT_EQ(27, called);
}

TEST_F(MeterPropertyValues, ExtremeValuesOfEveryRowDrawSomethingOrNothingButDoNoHarm) {
  activate({160, 120});
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ASSERT_EQ(S_OK, m_meter->Repaint());
  const WindowPicture before = picture();
  for (const NumberRow& row : meterRows) {
    if (row.type != VT_I4) continue;
    for (const LONG value : {lowest, -1L, 0L, 5L, highest}) {
      EXPECT_EQ(S_OK, invokePut(row.dispId, Value(VT_I4, value))) << row.dispId;
      EXPECT_EQ(S_OK, m_meter->Repaint());
    }
    EXPECT_EQ(S_OK, invokePut(row.dispId, Value(VT_I4, row.defaultValue))) << row.dispId;
  }
  ASSERT_EQ(S_OK, m_meter->Repaint());
  EXPECT_EQ(before.width, picture().width);
  EXPECT_EQ(before.height, picture().height);
}

TEST_F(MeterPropertyValues, TheInertMethodsDoNothingAndSaySo) {
  Value value(VT_I4, 4711);
  BSTR name = SysAllocString(L"anything");
  EXPECT_EQ(S_OK, m_meter->SetAdditionalParam(name, value));
  EXPECT_EQ(S_OK, m_meter->GetAdditionalParam(name, &value));
  EXPECT_EQ(VT_I4, V_VT(&value));
  EXPECT_EQ(4711, V_I4(&value));
  EXPECT_EQ(S_OK, m_meter->GetAdditionalParam(nullptr, nullptr));
  SysFreeString(name);
  EXPECT_EQ(S_OK, m_meter->Repaint());
  EXPECT_EQ(S_OK, m_meter->_OnTimer());
}

}  // namespace
}  // namespace av::test
