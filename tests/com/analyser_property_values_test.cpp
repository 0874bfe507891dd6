// What the spectrum analyser's properties read, keep and refuse, by the virtual table: defaults, limits, and values beyond
// them.

#include "host/analyser_test.h"

#include <limits>

namespace av::test {
namespace {

constexpr LONG lowest = std::numeric_limits<LONG>::min();
constexpr LONG highest = std::numeric_limits<LONG>::max();

class AnalyserPropertyValues : public AnalyserTest {
 protected:
  std::wstring windowName() {
    BSTR text = nullptr;
    EXPECT_EQ(S_OK, m_analyser->get_FFTWindowName(&text));
    const std::wstring name = text ? text : L"";
    SysFreeString(text);
    return name;
  }
  float windowParam() {
    float value = -1;
    EXPECT_EQ(S_OK, m_analyser->get_FFTWindowParam(&value));
    return value;
  }
};

TEST_F(AnalyserPropertyValues, FreshControlsReadTheDefaultsAtEveryVtableOffset) {
  int numbers = 0;
  const int called = forEachAccessor(INVOKE_PROPERTYGET, [&](DISPID id, void* slot) {
    using Get = HRESULT(STDMETHODCALLTYPE*)(void*, void*);
    const NumberRow* row = analyserRow(id);
    if (!row) return;
    LONG direct = 0;
    EXPECT_EQ(S_OK, (*static_cast<Get*>(slot))(m_analyser.Get(), &direct)) << id;
    if (row->type == VT_BOOL) direct = static_cast<SHORT>(direct);
    EXPECT_EQ(row->defaultValue, direct) << id;
    EXPECT_EQ(getLong(id), direct) << id;
    ++numbers;
  });
  EXPECT_EQ(36, called);
  EXPECT_EQ(31, numbers);
}

TEST_F(AnalyserPropertyValues, EveryPutReachesItsOwnPropertyAtItsVtableOffset) {
  int numbers = 0;
  const int called = forEachAccessor(INVOKE_PROPERTYPUT, [&](DISPID id, void* slot) {
    using Put = HRESULT(STDMETHODCALLTYPE*)(void*, LONG);
    const NumberRow* row = analyserRow(id);
    if (!row) return;
    EXPECT_EQ(S_OK, (*static_cast<Put*>(slot))(m_analyser.Get(), row->otherValue)) << id;
    ++numbers;
  });
  EXPECT_EQ(32, called);  // all but FFTWindowCount, FFTWindowName, HasWindowParam and the font
  EXPECT_EQ(31, numbers);
  // Read only now: a put that reached another row would have been overwritten there.
  for (const NumberRow& row : analyserRows) EXPECT_EQ(row.otherValue, getLong(row.dispId)) << row.dispId;
}

TEST_F(AnalyserPropertyValues, NumbersOutsideTheirRangeAreRefusedAndNothingChanges) {
  const struct {
    DISPID id;
    LONG lowestAccepted, highestAccepted;
  } ranges[] = {{8, 0, highest},  {9, 0, highest},  {18, 0, 100}, {19, 0, 100}, {20, 0, highest},
                {21, 0, highest}, {22, 0, highest}, {23, 4, 200}, {25, 0, 200}, {29, 0, 3},
                {30, 0, 10},      {36, 0, 1},       {38, 0, 1},   {39, 0, 1},   {40, 0, 3}};
  for (const auto& range : ranges) {
    for (const LONG value : {lowest, -1L, 0L, 1L, 3L, 4L, 10L, 11L, 100L, 101L, 200L, 201L, highest}) {
      const LONG before = getLong(range.id);
      const bool accepted = value >= range.lowestAccepted && value <= range.highestAccepted;
      EXPECT_EQ(accepted ? S_OK : E_INVALIDARG, putLong(range.id, value)) << range.id << " = " << value;
      EXPECT_EQ(accepted ? value : before, getLong(range.id)) << range.id << " = " << value;
    }
  }
}

TEST_F(AnalyserPropertyValues, EveryPowerOfTwoAndZeroIsAnFftLength) {
  for (LONG value = 1; value <= 65536; value *= 2) {
    EXPECT_EQ(S_OK, m_analyser->put_FFTLength(value)) << value;
    EXPECT_EQ(value, getLong(10));
  }
  EXPECT_EQ(S_OK, m_analyser->put_FFTLength(0));
  EXPECT_EQ(0, getLong(10));
  ASSERT_EQ(S_OK, m_analyser->put_FFTLength(256));
  for (const LONG value : {3L, 6L, 1000L, 511L, 513L, -1L, -2L, -512L, lowest, highest}) {
    EXPECT_EQ(E_INVALIDARG, m_analyser->put_FFTLength(value)) << value;
    EXPECT_EQ(256, getLong(10));
  }
}

TEST_F(AnalyserPropertyValues, BooleansComeBackAsPut) {
  for (const DISPID id : {6, 7, 24, 35, 41}) {
    for (const LONG value : {1L, 2L, -2L, 0L, -1L}) {
      EXPECT_EQ(S_OK, invokePut(id, Value(VT_BOOL, value))) << id;
      EXPECT_EQ(value, getLong(id)) << id;
    }
  }
}

TEST_F(AnalyserPropertyValues, ColoursAreTranslatedAndReadBackAsWhatTheyMean) {
  for (const NumberRow& row : analyserRows) {
    if (row.type != VT_UI4) continue;
    const LONG buttonShadow = static_cast<LONG>(0x80000000u | COLOR_BTNSHADOW);
    EXPECT_EQ(S_OK, putLong(row.dispId, buttonShadow)) << row.dispId;
    EXPECT_EQ(static_cast<LONG>(GetSysColor(COLOR_BTNSHADOW)), getLong(row.dispId)) << row.dispId;
    EXPECT_EQ(S_OK, putLong(row.dispId, 0x00ABCDEF)) << row.dispId;
    EXPECT_EQ(0x00ABCDEF, getLong(row.dispId)) << row.dispId;
  }
}

TEST_F(AnalyserPropertyValues, AColourThatTheSystemDoesNotKnowIsRefusedAsTheSystemSays) {
  // No system colour of that number, and kinds that there are not.
  for (const OLE_COLOR wrong :
       {OLE_COLOR{0x800000FF}, OLE_COLOR{0x8000FFFF}, OLE_COLOR{0xC0000000}, OLE_COLOR{0x55000000}}) {
    COLORREF ignored = 0;
    const HRESULT systems = OleTranslateColor(wrong, nullptr, &ignored);
    ASSERT_TRUE(FAILED(systems)) << std::hex << wrong;
    for (const NumberRow& row : analyserRows) {
      if (row.type != VT_UI4) continue;
      EXPECT_EQ(systems, putLong(row.dispId, static_cast<LONG>(wrong))) << row.dispId;
      EXPECT_EQ(row.defaultValue, getLong(row.dispId)) << row.dispId;
    }
  }
}

TEST_F(AnalyserPropertyValues, TheElevenWindowsHaveNames) {
  const wchar_t* const names[] = {L"Boxcar",   L"Hamming",         L"Hann",   L"Bartlett", L"Bartlett-Hann",
                                  L"Blackman", L"Blackman-Harris", L"Bohman", L"Nuttall",  L"Triangular",
                                  L"Kaiser"};
  EXPECT_EQ(11, getLong(fftWindowCountId));
  EXPECT_EQ(L"Hann", windowName());
  for (LONG type = 0; type <= 10; ++type) {
    ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(type));
    EXPECT_EQ(names[type], windowName());
    EXPECT_EQ(11, getLong(fftWindowCountId));
    VARIANT_BOOL has = 77;
    EXPECT_EQ(S_OK, m_analyser->get_HasWindowParam(&has));
    EXPECT_EQ(type == 10 ? VARIANT_TRUE : VARIANT_FALSE, has) << type;
  }
}

TEST_F(AnalyserPropertyValues, OnlyKaiserTakesAParameterFromOneToTen) {
  for (LONG type = 0; type <= 9; ++type) {
    ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(type));
    EXPECT_EQ(0.0f, windowParam());
    for (const float value : {0.0f, 1.0f, 4.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()})
      EXPECT_EQ(E_INVALIDARG, m_analyser->put_FFTWindowParam(value)) << type;
  }
  ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(10));
  EXPECT_EQ(4.0f, windowParam());
  for (const float value : {1.0f, 10.0f, 5.5f}) {
    EXPECT_EQ(S_OK, m_analyser->put_FFTWindowParam(value));
    EXPECT_EQ(value, windowParam());
  }
  for (const float value : {0.5f, 10.00001f, -4.0f, std::numeric_limits<float>::infinity()}) {
    EXPECT_EQ(E_INVALIDARG, m_analyser->put_FFTWindowParam(value)) << value;
    EXPECT_EQ(5.5f, windowParam());
  }
  EXPECT_EQ(S_OK, m_analyser->put_FFTWindowParam(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_TRUE(std::isnan(windowParam()));
  // The value stays with its window.
  EXPECT_EQ(S_OK, m_analyser->put_FFTWindowParam(7.0f));
  ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(3));
  EXPECT_EQ(0.0f, windowParam());
  ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(10));
  EXPECT_EQ(7.0f, windowParam());
}

TEST_F(AnalyserPropertyValues, TheScalesColourIsTheSystemsButtonFaceAtFirst) {
  OLE_COLOR colour = 0;
  EXPECT_EQ(S_OK, m_analyser->get_ScaleColor(&colour));
  EXPECT_EQ(GetSysColor(COLOR_BTNFACE), colour);
}

TEST_F(AnalyserPropertyValues, NullOutPointersSucceedAtEveryGet) {
  const int called = forEachAccessor(INVOKE_PROPERTYGET, [&](DISPID id, void* slot) {
    using Get = HRESULT(STDMETHODCALLTYPE*)(void*, void*);
    EXPECT_EQ(S_OK, (*static_cast<Get*>(slot))(m_analyser.Get(), nullptr)) << id;
  });
  EXPECT_EQ(36, called);
}

TEST_F(AnalyserPropertyValues, ExtremeValuesOfEveryRowDrawSomethingOrNothingButDoNoHarm) {
  activate({160, 120});
  for (const NumberRow& row : analyserRows) {
    if (row.type != VT_I4 || row.dispId == 10) continue;
    for (const LONG value : {0L, 1L, 3L, 100L, 200L, 65536L, highest - 1, highest}) {
      putLong(row.dispId, value);
      EXPECT_EQ(S_OK, send(noiseBlock()));
      EXPECT_EQ(S_OK, m_analyser->Repaint());
    }
    EXPECT_EQ(S_OK, putLong(row.dispId, row.defaultValue)) << row.dispId;
  }
  EXPECT_EQ(160, picture().width);
}

TEST_F(AnalyserPropertyValues, TheAdditionalParametersDoNothingAndSaySo) {
  Value value(VT_I4, 4711);
  BSTR name = SysAllocString(L"anything");
  EXPECT_EQ(S_OK, m_analyser->SetAdditionalParam(name, value));
  EXPECT_EQ(S_OK, m_analyser->GetAdditionalParam(name, &value));
  EXPECT_EQ(VT_I4, V_VT(&value));
  EXPECT_EQ(4711, V_I4(&value));
  EXPECT_EQ(S_OK, m_analyser->GetAdditionalParam(nullptr, nullptr));
  SysFreeString(name);
}

TEST_F(AnalyserPropertyValues, OnlyTheSizeSurvivesASaveAndALoad) {
  ComPtr<IOleObject> object;
  ASSERT_EQ(S_OK, m_analyser.As(&object));
  SIZEL size{4321, 1234};
  ASSERT_EQ(S_OK, object->SetExtent(DVASPECT_CONTENT, &size));
  for (const NumberRow& row : analyserRows) ASSERT_EQ(S_OK, putLong(row.dispId, row.otherValue));
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, &stream));
  ComPtr<IPersistStreamInit> saved;
  ASSERT_EQ(S_OK, m_analyser.As(&saved));
  ASSERT_EQ(S_OK, saved->Save(stream.Get(), TRUE));
  ASSERT_EQ(S_OK, stream->Seek({}, STREAM_SEEK_SET, nullptr));

  saved.Reset();
  object.Reset();
  m_analyser = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
  ComPtr<IPersistStreamInit> loaded;
  ASSERT_EQ(S_OK, m_analyser.As(&loaded));
  ASSERT_EQ(S_OK, loaded->Load(stream.Get()));
  SIZEL read{};
  ASSERT_EQ(S_OK, m_analyser.As(&object));
  ASSERT_EQ(S_OK, object->GetExtent(DVASPECT_CONTENT, &read));
  EXPECT_EQ(4321, read.cx);
  EXPECT_EQ(1234, read.cy);
  for (const NumberRow& row : analyserRows) EXPECT_EQ(row.defaultValue, getLong(row.dispId)) << row.dispId;
}

}  // namespace
}  // namespace av::test
