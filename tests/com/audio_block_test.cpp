// AudioBlocks.AudioBlock: what late-bound hosts put into a block, and what a control gets of it.

#include "host/companion_test.h"

#include "host/audio_buffers.h"

#include <gmock/gmock.h>

#include <cstring>
#include <map>

namespace av::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;

/// What a control reads of a block.
struct Delivered {
  WAVEFORMATEX format{};
  std::vector<std::uint8_t> bytes;
};

Delivered deliveredBy(IUnknown* block) {
  Delivered delivered;
  ComPtr<avhost::IAudioFrameData> frames;
  EXPECT_EQ(S_OK,
            block->QueryInterface(__uuidof(avhost::IAudioFrameData), reinterpret_cast<void**>(frames.GetAddressOf())));
  if (!frames) return delivered;
  BYTE* format = nullptr;
  BYTE* buffer = nullptr;
  ULONG formatBytes = 0;
  LONG dataBytes = 0, bufferBytes = 0;
  EXPECT_EQ(S_OK, frames->GetFormat(&format));
  EXPECT_EQ(S_OK, frames->GetFormatSize(&formatBytes));
  EXPECT_EQ(S_OK, frames->GetBuffer(&buffer));
  EXPECT_EQ(S_OK, frames->GetDataSize(&dataBytes));
  EXPECT_EQ(S_OK, frames->GetBufferSize(&bufferBytes));
  EXPECT_EQ(sizeof delivered.format, formatBytes);
  EXPECT_EQ(dataBytes, bufferBytes);
  std::memcpy(&delivered.format, format, sizeof delivered.format);
  if (buffer) delivered.bytes.assign(buffer, buffer + dataBytes);
  return delivered;
}

/// An object with members that are numbers: what JScript's arrays are to COM.
class MemberList final : public IDispatch {
 public:
  explicit MemberList(std::map<std::wstring, double> members) {
    for (auto& [name, value] : members) m_members.emplace_back(name, value);
  }
  virtual ~MemberList() = default;
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    for (std::size_t i = 0; i < m_members.size(); ++i) {
      ids[0] = static_cast<DISPID>(i);
      if (m_members[i].first == names[0]) return S_OK;
    }
    return DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) override {
    V_VT(result) = VT_R8;
    V_R8(result) = m_members[static_cast<std::size_t>(id)].second;
    return S_OK;
  }
  ULONG references = 1;

 private:
  std::vector<std::pair<std::wstring, double>> m_members;
};

class AudioBlock : public CompanionTest {
 protected:
  /// Puts the numbers 3, 0 and 7 in and reads them back.
  void expectTaken(const VARIANT& array) {
    LateBound block = makeBlock(1, 8000, 16);
    ASSERT_EQ(S_OK, block.call(L"SetIntegers", {array})) << block.refusal.c_str();
    EXPECT_THAT(deliveredBy(block.get()).bytes, ElementsAre(3, 0, 0, 0, 7, 0));
  }
  template <class Number>
  void expectTypeTaken(VARTYPE type) {
    SCOPED_TRACE(type);
    expectTaken(arrayOf<Number>(type, {Number{3}, Number{0}, Number{7}}));
  }

  /// The call fails with that text and the block keeps its one sample.
  void expectRefused(const wchar_t* method, const VARIANT& argument, const wchar_t* text, LONG channels = 1) {
    LateBound block = makeBlock(channels, 8000, 16);
    const std::vector<std::int16_t> before(static_cast<std::size_t>(channels), 5);
    ASSERT_EQ(S_OK, block.call(L"SetIntegers", {arrayOf(VT_I2, before)}));
    EXPECT_EQ(DISP_E_EXCEPTION, block.call(method, {argument}));
    EXPECT_EQ(E_INVALIDARG, block.reason);
    EXPECT_EQ(L"AudioBlock." + std::wstring(method) + L": " + text, block.refusal);
    EXPECT_EQ(L"AudioBlocks.AudioBlock", block.source);
    EXPECT_EQ(1, block.number(L"Frames"));
  }
};

TEST_F(AudioBlock, IsStereoOf16BitsAndEmptyAtFirst) {
  LateBound block = make(CLSID_AudioBlock);
  EXPECT_EQ(2, block.number(L"Channels"));
  EXPECT_EQ(44100, block.number(L"SampleRate"));
  EXPECT_EQ(16, block.number(L"BitsPerSample"));
  EXPECT_EQ(0, block.number(L"Frames"));
  EXPECT_EQ(0, block.number(L"Duration"));
  EXPECT_TRUE(deliveredBy(block.get()).bytes.empty());
}

TEST_F(AudioBlock, HandsItsSamplesToControls) {
  LateBound block = makeBlock(2, 48000, 16);
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {numbers({0.5, -1, 1, 0, -0.25, 0.25})}));
  EXPECT_EQ(3, block.number(L"Frames"));
  EXPECT_EQ(3.0 / 48000, block.number(L"Duration"));
  const Delivered delivered = deliveredBy(block.get());
  EXPECT_EQ(WAVE_FORMAT_PCM, delivered.format.wFormatTag);
  EXPECT_EQ(2, delivered.format.nChannels);
  EXPECT_EQ(48000u, delivered.format.nSamplesPerSec);
  EXPECT_EQ(192000u, delivered.format.nAvgBytesPerSec);
  EXPECT_EQ(4, delivered.format.nBlockAlign);
  EXPECT_EQ(16, delivered.format.wBitsPerSample);
  EXPECT_EQ(0, delivered.format.cbSize);
  EXPECT_THAT(delivered.bytes, ElementsAre(0, 0x40, 0, 0x80, 0xFF, 0x7F, 0, 0, 0, 0xE0, 0, 0x20));
}

TEST_F(AudioBlock, HandsOver24BitsAs32WhichEveryControlReads) {
  LateBound block = makeBlock(1, 8000, 24);
  const std::vector<std::uint8_t> expected = {0, 1, 2, 3, 0, 0xFF, 0xFF, 0xFF};
  ASSERT_EQ(S_OK, block.call(L"SetBytes", {arrayOf<std::uint8_t>(VT_UI1, {1, 2, 3, 0xFF, 0xFF, 0xFF})}));
  EXPECT_EQ(expected, deliveredBy(block.get()).bytes);
  EXPECT_EQ(32, deliveredBy(block.get()).format.wBitsPerSample);
  EXPECT_EQ(4, deliveredBy(block.get()).format.nBlockAlign);
  EXPECT_EQ(24, block.number(L"BitsPerSample"));
  EXPECT_EQ(2, block.number(L"Frames"));
  ASSERT_EQ(S_OK, block.call(L"SetIntegers", {numbers({0x030201, -1})}));
  EXPECT_EQ(expected, deliveredBy(block.get()).bytes);
}

TEST_F(AudioBlock, TakesRawBytesOfEveryWidth) {
  for (const LONG bits : {8, 16, 32}) {
    LateBound block = makeBlock(1, 8000, bits);
    const std::vector<std::uint8_t> bytes = {1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_EQ(S_OK, block.call(L"SetBytes", {arrayOf(VT_UI1, bytes)}));
    EXPECT_EQ(bytes, deliveredBy(block.get()).bytes);
    EXPECT_EQ(64 / bits, block.number(L"Frames"));
  }
}

TEST_F(AudioBlock, TakesBytesThatAreNumbers) {
  LateBound block = makeBlock(1, 8000, 16);
  std::vector<Value> elements;
  for (const LONG each : {1, 0, 255, 128}) elements.emplace_back(VT_I4, each);
  ASSERT_EQ(S_OK, block.call(L"SetBytes", {arrayOfVariants(std::move(elements))}));
  EXPECT_THAT(deliveredBy(block.get()).bytes, ElementsAre(1, 0, 255, 128));
}

TEST_F(AudioBlock, TakesArraysOfEveryTypeOfNumber) {
  expectTypeTaken<std::int8_t>(VT_I1);
  expectTypeTaken<std::uint8_t>(VT_UI1);
  expectTypeTaken<std::int16_t>(VT_I2);
  expectTypeTaken<std::uint16_t>(VT_UI2);
  expectTypeTaken<std::int32_t>(VT_I4);
  expectTypeTaken<std::uint32_t>(VT_UI4);
  expectTypeTaken<std::int32_t>(VT_INT);
  expectTypeTaken<std::uint32_t>(VT_UINT);
  expectTypeTaken<std::int64_t>(VT_I8);
  expectTypeTaken<std::uint64_t>(VT_UI8);
  expectTypeTaken<float>(VT_R4);
  expectTypeTaken<double>(VT_R8);
  expectTaken(arrayOf<std::int64_t>(VT_CY, {30000, 0, 70000}));
}

TEST_F(AudioBlock, TakesArraysOfVariantsThatHoldOrReferToNumbers) {
  std::vector<Value> elements(3);
  double three = 3;
  V_VT(&elements[0]) = VT_R8 | VT_BYREF;
  V_R8REF(&elements[0]) = &three;
  V_VT(&elements[1]) = VT_EMPTY;  // an element that VBScript did not set
  V_VT(&elements[2]) = VT_UI1;
  V_UI1(&elements[2]) = 7;
  // By hand, since a copied reference would be followed.
  Value array = arrayOf<VARIANT>(VT_VARIANT, {elements[0], elements[1], elements[2]});
  expectTaken(array);
}

TEST_F(AudioBlock, TakesArraysByReferenceAndAnyLowerBound) {
  Value array = arrayOf<std::int16_t>(VT_I2, {3, 0, 7}, -5);
  expectTaken(array);
  VARIANT reference;
  V_VT(&reference) = VT_ARRAY | VT_I2 | VT_BYREF;
  V_ARRAYREF(&reference) = &V_ARRAY(&array);
  expectTaken(reference);
  VARIANT whole;
  V_VT(&whole) = VT_VARIANT | VT_BYREF;
  V_VARIANTREF(&whole) = &array;
  expectTaken(whole);
}

TEST_F(AudioBlock, TakesObjectsThatAreArrays) {
  MemberList list({{L"length", 3}, {L"0", 3}, {L"1", 0}, {L"2", 7}});
  expectTaken(Value(&list));
  EXPECT_EQ(1u, list.references);
}

TEST_F(AudioBlock, TakesAnEmptyArray) {
  LateBound block = makeBlock(2, 8000, 16);
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {numbers({1, 1})}));
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {numbers({})}));
  EXPECT_EQ(0, block.number(L"Frames"));
}

TEST_F(AudioBlock, RefusesWhatIsNoArray) {
  const wchar_t wanted[] = L"an array of numbers is wanted.";
  for (const wchar_t* method : {L"SetSamples", L"SetIntegers", L"SetBytes"}) {
    expectRefused(method, Value(VT_I4, 5), wanted);
    expectRefused(method, Value(0.5), wanted);
    expectRefused(method, Value(L"1, 2, 3"), wanted);
    expectRefused(method, Value(), wanted);
    expectRefused(method, Value(VT_NULL, 0), wanted);
    expectRefused(method, Value(static_cast<IDispatch*>(nullptr)), wanted);
    expectRefused(method, Value(VT_ERROR, DISP_E_PARAMNOTFOUND), wanted);
    VARIANT noArray;
    V_VT(&noArray) = VT_ARRAY | VT_R8;
    V_ARRAY(&noArray) = nullptr;
    expectRefused(method, noArray, wanted);
    MemberList noList({{L"0", 3}});
    expectRefused(method, Value(&noList), wanted);
    MemberList negative({{L"length", -1}});
    expectRefused(method, Value(&negative), wanted);
    MemberList fraction({{L"length", 0.5}, {L"0", 3}});
    expectRefused(method, Value(&fraction), wanted);
  }
}

TEST_F(AudioBlock, RefusesLengthsOfMoreThanABlockHoldsBeforeItReadsAnElement) {
  for (const double length : {2147483648.0, 1e300, std::numeric_limits<double>::infinity()}) {
    MemberList list({{L"length", length}});  // an element that is asked for would be no number
    expectRefused(L"SetSamples", Value(&list), L"a block holds at most 2 GB.");
  }
}

TEST_F(AudioBlock, RefusesArraysOfSeveralDimensions) {
  SAFEARRAYBOUND bounds[2] = {{2, 0}, {3, 0}};
  Value array;
  V_VT(&array) = VT_ARRAY | VT_R8;
  V_ARRAY(&array) = SafeArrayCreate(VT_R8, 2, bounds);
  for (const wchar_t* method : {L"SetSamples", L"SetIntegers", L"SetBytes"})
    expectRefused(method, array, L"the array has several dimensions; one is wanted.");
}

TEST_F(AudioBlock, RefusesElementsThatAreNoNumbers) {
  std::vector<Value> wrong;
  wrong.emplace_back(L"0.5");
  wrong.emplace_back(VT_NULL, 0);
  wrong.emplace_back(VT_BOOL, VARIANT_TRUE);
  wrong.emplace_back(VT_ERROR, 0);
  wrong.emplace_back(static_cast<IDispatch*>(nullptr));
  for (Value& each : wrong) {
    SCOPED_TRACE(V_VT(&each));
    std::vector<Value> elements;
    elements.emplace_back(0.5);
    elements.push_back(std::move(each));
    expectRefused(L"SetSamples", arrayOfVariants(std::move(elements)), L"element 1 is no number.");
  }
  expectRefused(L"SetSamples", arrayOf<BSTR>(VT_BSTR, {nullptr}), L"element 0 is no number.");
  expectRefused(L"SetSamples", arrayOf<double>(VT_DATE, {1}), L"element 0 is no number.");
  MemberList hole({{L"length", 3}, {L"0", 3}, {L"2", 7}});
  expectRefused(L"SetSamples", Value(&hole), L"element 1 is no number.");
}

TEST_F(AudioBlock, RefusesCountsThatMakeNoWholeFrames) {
  expectRefused(L"SetSamples", numbers({1, 2, 3}), L"3 values make no whole frames of 2 channels.", 2);
  expectRefused(L"SetIntegers", numbers({1}), L"1 values make no whole frames of 2 channels.", 2);
  expectRefused(L"SetBytes", arrayOf<std::uint8_t>(VT_UI1, {1, 2, 3, 4, 5, 6}),
                L"6 bytes make no whole frames of 4 bytes.", 2);
}

TEST_F(AudioBlock, RefusesIntegersOutsideOfTheirWidth) {
  expectRefused(L"SetIntegers", numbers({0, 32768}), L"element 1 is no whole number of 16 bits.");
  expectRefused(L"SetIntegers", numbers({-32769}), L"element 0 is no whole number of 16 bits.");
  expectRefused(L"SetIntegers", numbers({0.5}), L"element 0 is no whole number of 16 bits.");
  expectRefused(L"SetIntegers", numbers({std::numeric_limits<double>::quiet_NaN()}),
                L"element 0 is no whole number of 16 bits.");
  expectRefused(L"SetBytes", numbers({0, 256}), L"element 1 is no byte: it must be 0 to 255.");
  expectRefused(L"SetBytes", numbers({-1, 0}), L"element 0 is no byte: it must be 0 to 255.");
  LateBound block = makeBlock(1, 8000, 8);
  EXPECT_EQ(S_OK, block.call(L"SetIntegers", {numbers({0, 255})}));
  EXPECT_NE(S_OK, block.call(L"SetIntegers", {numbers({-1})}));
  EXPECT_EQ(L"AudioBlock.SetIntegers: element 0 is no whole number of 8 bits (0 to 255).", block.refusal);
}

TEST_F(AudioBlock, RefusesFormatsThatNoControlReadsAndKeepsItsOwn) {
  LateBound block = makeBlock(1, 8000, 16);
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {numbers({1})}));
  const auto refused = [&](LONG channels, LONG rate, LONG bits) {
    EXPECT_EQ(DISP_E_EXCEPTION,
              block.call(L"SetFormat", {Value(VT_I4, channels), Value(VT_I4, rate), Value(VT_I4, bits)}));
    return block.refusal;
  };
  EXPECT_EQ(L"AudioBlock.SetFormat: there must be 1 to 18 channels.", refused(0, 44100, 16));
  EXPECT_EQ(L"AudioBlock.SetFormat: there must be 1 to 18 channels.", refused(19, 44100, 16));
  EXPECT_EQ(L"AudioBlock.SetFormat: the sample rate must be 1 to 10000000 Hz.", refused(2, 0, 16));
  EXPECT_EQ(L"AudioBlock.SetFormat: the sample rate must be 1 to 10000000 Hz.", refused(2, -44100, 16));
  EXPECT_EQ(L"AudioBlock.SetFormat: samples must have 8, 16, 24 or 32 bits.", refused(2, 44100, 12));
  EXPECT_EQ(1, block.number(L"Frames"));
  EXPECT_EQ(8000, block.number(L"SampleRate"));
  ASSERT_EQ(S_OK, block.call(L"SetFormat", {Value(VT_I4, 18), Value(VT_I4, 10000000), Value(VT_I4, 32)}));
  EXPECT_EQ(0, block.number(L"Frames")) << "a new format drops the samples";
}

TEST_F(AudioBlock, ReadsBackSingleSamples) {
  LateBound block = makeBlock(2, 8000, 32);
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {numbers({0.5, -1, 0.25, 0})}));
  EXPECT_EQ(-1, block.number(L"Sample", {Value(VT_I4, 0), Value(VT_I4, 1)}));
  EXPECT_EQ(0.25, block.number(L"Sample", {Value(VT_I4, 1), Value(VT_I4, 0)}));
  EXPECT_TRUE(std::isnan(block.number(L"Sample", {Value(VT_I4, 2), Value(VT_I4, 0)})));
  EXPECT_EQ(L"AudioBlock.Sample: there are 2 frames, counted from 0.", block.refusal);
  EXPECT_TRUE(std::isnan(block.number(L"Sample", {Value(VT_I4, 0), Value(VT_I4, -1)})));
  EXPECT_EQ(L"AudioBlock.Sample: there are 2 channels, counted from 0.", block.refusal);
}

TEST_F(AudioBlock, SaysOfASingleSampleThatThereIsOne) {
  LateBound block = makeBlock(1, 8000, 16);
  EXPECT_TRUE(std::isnan(block.number(L"Sample", {Value(VT_I4, 0), Value(VT_I4, 0)})));
  EXPECT_EQ(L"AudioBlock.Sample: there are 0 frames, counted from 0.", block.refusal);
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {numbers({0.5})}));
  EXPECT_TRUE(std::isnan(block.number(L"Sample", {Value(VT_I4, 1), Value(VT_I4, 0)})));
  EXPECT_EQ(L"AudioBlock.Sample: there is 1 frame, counted from 0.", block.refusal);
  EXPECT_TRUE(std::isnan(block.number(L"Sample", {Value(VT_I4, 0), Value(VT_I4, 1)})));
  EXPECT_EQ(L"AudioBlock.Sample: there is 1 channel, counted from 0.", block.refusal);
}

TEST_F(AudioBlock, IsOneObjectThroughAllItsInterfaces) {
  LateBound block = make(CLSID_AudioBlock);
  ComPtr<avhost::IMediaDataBuffer> buffer;
  ComPtr<IUnknown> one, other;
  ASSERT_EQ(S_OK, block.get()->QueryInterface(__uuidof(avhost::IMediaDataBuffer),
                                              reinterpret_cast<void**>(buffer.GetAddressOf())));
  buffer.As(&one);
  block.get()->QueryInterface(IID_PPV_ARGS(&other));
  EXPECT_EQ(one.Get(), other.Get());
  EXPECT_EQ(E_POINTER, buffer->GetBuffer(nullptr));
  EXPECT_EQ(E_POINTER, buffer->GetDataSize(nullptr));
  ComPtr<avhost::IPackedAudioData> packed;
  EXPECT_EQ(E_NOINTERFACE, block.get()->QueryInterface(__uuidof(avhost::IPackedAudioData),
                                                       reinterpret_cast<void**>(packed.GetAddressOf())));
  ComPtr<ISupportErrorInfo> support;
  ASSERT_EQ(S_OK, block.get()->QueryInterface(IID_PPV_ARGS(&support)));
  EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_IAudioBlock));
  EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_IDispatch));
}

TEST_F(AudioBlock, IsRefusedWithErrorInformationThroughTheVirtualTableToo) {
  ComPtr<IAudioBlock> block;
  ASSERT_EQ(S_OK, m_library.create(CLSID_AudioBlock, block.GetAddressOf()));
  EXPECT_EQ(E_INVALIDARG, block->SetFormat(2, 44100, 5));
  ComPtr<IErrorInfo> info;
  ASSERT_EQ(S_OK, GetErrorInfo(0, &info));
  BSTR text = nullptr;
  info->GetDescription(&text);
  EXPECT_STREQ(L"AudioBlock.SetFormat: samples must have 8, 16, 24 or 32 bits.", text);
  SysFreeString(text);
  EXPECT_EQ(E_POINTER, block->get_Frames(nullptr));
}

TEST_F(AudioBlock, GoesToAViewByName) {
  LateBound controls = make(CLSID_Controls);
  LateBound view = controls.object(L"CreateControl", {Value(VT_I4, 1)});
  ASSERT_TRUE(view);
  LateBound block = makeBlock(2, 32000, 32);
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {arrayOf(VT_R8, std::vector<double>(8192, 0.25))}));
  ASSERT_EQ(S_OK, view.put(L"DynamicRange", LONG{50}));
  ASSERT_EQ(S_OK, view.call(L"SendAudioData", {Value(block.get())}));
  EXPECT_EQ(186, view.number(L"DynamicRange")) << "what an accepted block of 32 bits sets";
}

}  // namespace
}  // namespace av::test
