// Blocks through the door of the finished spectrum analyser, good ones and hostile ones, in a real container.

#include "host/analyser_test.h"
#include "support/win/error_info.h"
#include "support/win/guarded_bytes.h"
#include "support/win/scripted_audio_data.h"
#include "support/win/wave_bytes.h"

#include <comdef.h>

#include <array>
#include <memory>
#include <random>

namespace av::test {
namespace {

using support::AudioDataScript;
using support::GuardedBytes;
using support::ScriptedAudioData;
using support::WaveHeader;

std::vector<BYTE> bytesOf(const std::vector<std::int16_t>& samples) {
  std::vector<BYTE> bytes;
  for (const std::int16_t sample : samples) {
    bytes.push_back(static_cast<BYTE>(sample & 0xFF));
    bytes.push_back(static_cast<BYTE>(sample >> 8 & 0xFF));
  }
  return bytes;
}

WAVEFORMATEX formatOf(WORD tag, WORD channels, WORD bits) { return {tag, channels, 44100, 0, 0, bits, 0}; }

/// Four plain columns in a window: each a quarter of the frequencies, one row a dB.
class AnalyserBlocks : public AnalyserTest {
 protected:
  void SetUp() override {
    AnalyserTest::SetUp();
    showFourPlainColumns();
  }

  HRESULT sendBytes(const std::vector<BYTE>& bytes, const WAVEFORMATEX& format) {
    return m_analyser->SendAudioData(avhost::audioFrames(format, bytes.data(), static_cast<LONG>(bytes.size())).get());
  }

  std::array<int, 4> litRows() const {
    return {columnShown(0).litRows, columnShown(1).litRows, columnShown(2).litRows, columnShown(3).litRows};
  }

  /// SendAudioData through the virtual table; a host's failure arrives as an exception (64-bit) or a result (32-bit).
  HRESULT sendHostile(IUnknown* data) {
    try {
      return m_analyser->SendAudioData(data);
    } catch (const _com_error& error) {
      return error.Error();
    }
  }

  /// After whatever went before, a good block still changes the picture.
  void expectTheNextGoodBlockIsDrawn() {
    EXPECT_EQ(S_OK, send(sineBlock(100)));
    EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());  // see AlignmentYComputesTheHeightsAnewAtOnce
    EXPECT_EQ(S_OK, send(sineBlock(150)));
    EXPECT_EQ((std::array{0, 0, 81, 0}), litRows());
  }

  void expectDropped(const std::vector<BYTE>& bytes, const WAVEFORMATEX& format) {
    smear();
    EXPECT_EQ(S_OK, sendBytes(bytes, format));
    EXPECT_TRUE(isSmeared()) << "tag " << format.wFormatTag << ", " << format.nChannels << " channels, "
                             << format.wBitsPerSample << " bits";
  }
};

TEST_F(AnalyserBlocks, EveryAcceptedBlockIsDrawnAtOnceWhateverAutoRepaintSays) {
  for (const VARIANT_BOOL value : {VARIANT_TRUE, VARIANT_FALSE}) {
    ASSERT_EQ(S_OK, m_analyser->put_AutoRepaint(value));
    smear();
    EXPECT_EQ(S_OK, send(sineBlock(100)));
    EXPECT_FALSE(isSmeared());
    EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());
    smear();
    const BYTE nothing[1]{};  // no frames is silence
    EXPECT_EQ(S_OK, m_analyser->SendAudioData(avhost::audioFrames(analyserMono16, nothing, 0).get()));
    EXPECT_FALSE(isSmeared());
    EXPECT_EQ((std::array{0, 0, 0, 0}), litRows());
  }
}

TEST_F(AnalyserBlocks, NullDrawsWhatIsThere) {
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  smear();
  EXPECT_EQ(S_OK, m_analyser->SendAudioData(nullptr));
  EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());
}

TEST_F(AnalyserBlocks, AnInactiveControlAsksItsContainerForARedraw) {
  const auto analyser = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
  avhost::ControlSite* const sink = new avhost::ControlSite(nullptr, {});
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, analyser.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, sink));
  EXPECT_EQ(S_OK, sendSamples(analyser.Get(), sineBlock(100)));
  EXPECT_EQ(1u, sink->viewChanges());
  EXPECT_EQ(S_OK, analyser->SendAudioData(nullptr));
  EXPECT_EQ(2u, sink->viewChanges());
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  EXPECT_EQ(0u, sink->Release());
}

TEST_F(AnalyserBlocks, ObjectsWithoutTheInterfacesAreDropped) {
  smear();
  EXPECT_EQ(S_OK, m_analyser->SendAudioData(m_analyser.Get()));
  EXPECT_TRUE(isSmeared());
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(AnalyserBlocks, UnsupportedFormatsChangeNothing) {
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  const std::vector<BYTE> bytes = bytesOf(noiseBlock());
  for (const WORD tag : std::initializer_list<WORD>{0, 2, 3, 6, 0x55, 0xFFFF})
    expectDropped(bytes, formatOf(tag, 1, 16));
  expectDropped(bytes, formatOf(WAVE_FORMAT_PCM, 0, 16));
  expectDropped(bytes, formatOf(WAVE_FORMAT_PCM, 1, 7));
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(AnalyserBlocks, TheExtensibleTagIsTakenAsIntegers) {
  EXPECT_EQ(S_OK, sendBytes(bytesOf(sineBlock(100)), formatOf(WAVE_FORMAT_EXTENSIBLE, 1, 16)));
  EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());
}

TEST_F(AnalyserBlocks, ChannelsAreMixedToTheirMean) {
  std::vector<std::int16_t> same, opposite, oneSilent;
  for (const std::int16_t sample : sineBlock(100)) {
    same.insert(same.end(), {sample, sample});
    opposite.insert(opposite.end(), {sample, static_cast<std::int16_t>(-sample)});
    oneSilent.insert(oneSilent.end(), {sample, 0});
  }
  const WAVEFORMATEX stereo = formatOf(WAVE_FORMAT_PCM, 2, 16);
  EXPECT_EQ(S_OK, send(same, stereo));
  EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());
  EXPECT_EQ(S_OK, send(opposite, stereo));
  EXPECT_EQ((std::array{0, 0, 0, 0}), litRows());
  EXPECT_EQ(S_OK, send(oneSilent, stereo));
  EXPECT_EQ((std::array{0, 75, 0, 0}), litRows());  // 6.02 dB lower: −24.85
}

TEST_F(AnalyserBlocks, FramesBeyondTheFftLengthDoNotCountAndMissingOnesAreSilent) {
  std::vector<std::int16_t> longer = sineBlock(100), noise = noiseBlock();
  longer.insert(longer.end(), noise.begin(), noise.end());
  EXPECT_EQ(S_OK, send(longer));
  EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());
  // Half of the sine, which the window fades in: a quarter of the power and some of it beside the bin.
  EXPECT_EQ(S_OK, send(sineBlock(50, 256)));
  EXPECT_LT(litRows()[1], 81);
  EXPECT_GT(litRows()[1], 70);
}

TEST_F(AnalyserBlocks, TwentyFourBitSamplesAreAConstantOfTheNumberOfFrames) {
  // 512 / 2^23 through the Hann window: 0.2282 · 512 / 2^23 = −97.1 dB, 2 rows of the lowest column, whatever they hold.
  const WAVEFORMATEX format = formatOf(WAVE_FORMAT_PCM, 1, 24);
  std::mt19937 random(4711);
  std::vector<BYTE> noise(3 * 512);
  for (BYTE& byte : noise) byte = static_cast<BYTE>(random());
  for (const std::vector<BYTE>& bytes : {std::vector<BYTE>(3 * 512), noise}) {
    EXPECT_EQ(S_OK, sendBytes(bytes, format));
    EXPECT_EQ((std::array{2, 0, 0, 0}), litRows());
  }
}

TEST_F(AnalyserBlocks, EightAndThirtyTwoBitsAreOnTheirOwnScale) {
  std::vector<BYTE> eight, thirtyTwo;
  for (const std::int16_t sample : sineBlock(100, 512, 32000)) {
    eight.push_back(static_cast<BYTE>(128 + std::lround(sample / 256.0)));
    for (const int byte : {0, 0, sample & 0xFF, sample >> 8 & 0xFF}) thirtyTwo.push_back(static_cast<BYTE>(byte));
  }
  EXPECT_EQ(S_OK, sendBytes(thirtyTwo, formatOf(WAVE_FORMAT_PCM, 1, 32)));
  EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());  // 20·log10(32000/32768/8) = −18.27
  EXPECT_EQ(S_OK, sendBytes(eight, formatOf(WAVE_FORMAT_PCM, 1, 8)));
  EXPECT_EQ(81, litRows()[1]);  // beside the noise of 8 bits
  EXPECT_LT(litRows()[3], 50);
}

TEST_F(AnalyserBlocks, OtherDepthsAreSilent) {
  for (const WORD bits : std::initializer_list<WORD>{9, 12, 15, 17, 20, 31, 33, 64}) {
    ASSERT_EQ(S_OK, send(sineBlock(100)));
    EXPECT_EQ(S_OK, sendBytes(bytesOf(noiseBlock(4096)), formatOf(WAVE_FORMAT_PCM, 1, bits)));
    EXPECT_EQ((std::array{0, 0, 0, 0}), litRows()) << bits;
  }
}

TEST_F(AnalyserBlocks, BothInterfacesOfTheHostDrawTheSamePicture) {
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  const WindowPicture separate = picture();
  ASSERT_EQ(S_OK, send(sineBlock(200)));
  const std::vector<BYTE> packed = support::operator+(WaveHeader{.channels = 1}.bytes(), bytesOf(sineBlock(100)));
  EXPECT_EQ(S_OK,
            m_analyser->SendAudioData(avhost::packedAudio(packed.data(), static_cast<LONG>(packed.size())).get()));
  EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());
}

AudioDataScript bothInterfaces(const GuardedBytes& packed, const GuardedBytes& samples, const GuardedBytes& format) {
  AudioDataScript script;
  script.offersFrameData = script.offersPackedData = true;
  script.packedData.buffers = {packed.data()};
  script.packedData.bufferSizes = script.packedData.dataSizes = {packed.size()};
  script.frameData.buffers = {samples.data()};
  script.frameData.dataSizes = {samples.size()};
  script.frameData.formats = {format.data()};
  script.frameData.formatSizes = {static_cast<ULONG>(format.size())};
  return script;
}

TEST_F(AnalyserBlocks, AMethodThatFailsAtAnyPositionLosesNothing) {
  const std::vector<BYTE> bytes = bytesOf(sineBlock(100));
  const GuardedBytes samples(bytes), format(WaveHeader{.channels = 1}.bytes());
  const GuardedBytes packed(support::operator+(WaveHeader{.channels = 1}.bytes(), bytes));
  constexpr int calls = 9;  // 5 of the packed and 4 of the separate interface
  for (int position = 0; position <= calls; ++position) {
    AudioDataScript script = bothInterfaces(packed, samples, format);
    script.failingCall = position;
    script.failure = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_ITF, 0x1234);
    ScriptedAudioData data(script);
    EXPECT_EQ(position < calls ? script.failure : S_OK, sendHostile(&data)) << position;
    EXPECT_EQ(0, data.references()) << position;
    expectTheNextGoodBlockIsDrawn();
  }
}

TEST_F(AnalyserBlocks, ErrorInformationOfTheHostTravelsWithTheFailure) {
  const GuardedBytes nothing({});
  AudioDataScript script = bothInterfaces(nothing, nothing, nothing);
  script.failingCall = 0;
  script.failure = E_ACCESSDENIED;
  script.declaresErrorInfoFor = {__uuidof(avhost::IPackedAudioData)};
  const auto info = support::makeErrorInfo(L"the device is gone", L"test host");
  script.errorInfo = info.Get();
  ScriptedAudioData data(script);
#if defined(_WIN64)
  try {
    m_analyser->SendAudioData(&data);
    ADD_FAILURE() << "no exception";
  } catch (const _com_error& error) {
    EXPECT_EQ(E_ACCESSDENIED, error.Error());
    EXPECT_STREQ(L"the device is gone", static_cast<const wchar_t*>(error.Description()));
  }
#else
  EXPECT_EQ(E_ACCESSDENIED, m_analyser->SendAudioData(&data));
  BSTR text = nullptr;
  const auto taken = support::takeErrorInfo();
  ASSERT_TRUE(taken);
  taken->GetDescription(&text);
  EXPECT_STREQ(L"the device is gone", text);
  SysFreeString(text);
#endif
  EXPECT_EQ(0, data.references());
}

TEST_F(AnalyserBlocks, LateBoundHostsGetDispException) {
  const GuardedBytes nothing({});
  AudioDataScript script = bothInterfaces(nothing, nothing, nothing);
  script.failingCall = 0;
  script.failure = E_ACCESSDENIED;
  script.declaresErrorInfoFor = {__uuidof(avhost::IPackedAudioData)};
  const auto info = support::makeErrorInfo(L"the device is gone", L"test host");
  script.errorInfo = info.Get();
  ScriptedAudioData data(script);
  VARIANT argument;
  VariantInit(&argument);
  V_VT(&argument) = VT_UNKNOWN;
  V_UNKNOWN(&argument) = &data;
  EXCEPINFO exception{};
  EXPECT_EQ(DISP_E_EXCEPTION, invoke(0xaae62, DISPATCH_METHOD, &argument, 1, nullptr, &exception));
  EXPECT_EQ(E_ACCESSDENIED, exception.scode);
  EXPECT_STREQ(L"the device is gone", exception.bstrDescription);
  EXPECT_STREQ(L"test host", exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrHelpFile);
  EXPECT_EQ(0, data.references());
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(AnalyserBlocks, NullPointersBehindTheSeparateInterfaceDropTheBlock) {
  const GuardedBytes samples(bytesOf(sineBlock(100))), format(WaveHeader{.channels = 1}.bytes()), nothing({});
  for (const bool nullFormat : {false, true}) {
    AudioDataScript script = bothInterfaces(nothing, samples, format);
    script.offersPackedData = false;
    (nullFormat ? script.frameData.formats : script.frameData.buffers) = {nullptr};
    ScriptedAudioData data(script);
    smear();
    EXPECT_EQ(S_OK, sendHostile(&data));
    EXPECT_TRUE(isSmeared());
    EXPECT_EQ(0, data.references());
  }
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(AnalyserBlocks, HeadersMadeOfNoiseReadNothingBehindTheDeclaredBytes) {
  std::mt19937 random(20261121);
  const auto oneOf = [&](std::initializer_list<unsigned> choices) {
    return choices.begin()[random() % choices.size()];
  };
  for (int round = 0; round < 1000; ++round) {
    WaveHeader header;
    header.tag = oneOf({1, 1, 1, 65534, 3, 0});
    header.channels = oneOf({0, 1, 2, 3, 18, 19, 255, 65535});
    header.bits = oneOf({0, 7, 8, 9, 12, 16, 17, 20, 24, 25, 31, 32, 33, 64, 1025, 65535});
    header.sampleRateHz = oneOf({0, 1, 44100, 0x7FFFFFFF, 0xFFFFFFFF});
    header.extraBytes = oneOf({0, 0, 0, 1, 22, 162, 163, 65535});
    std::vector<BYTE> bytes = header.bytes();
    const std::size_t follow = oneOf({0, 1, 5, 63, 64, 255, 4096, 4097, 100000});
    while (bytes.size() < 18 + follow) bytes.push_back(static_cast<BYTE>(random()));
    const GuardedBytes packed(bytes);
    AudioDataScript script;
    script.offersPackedData = true;
    script.packedData.buffers = {packed.data()};
    script.packedData.bufferSizes = {packed.size()};
    script.packedData.dataSizes = {static_cast<LONG>(
        oneOf({0x80000000, 0xFFFFFFFF, 0, 17, 18, 19, 81, static_cast<unsigned>(packed.size()), 0x7FFFFFFF}))};

    const GuardedBytes format(std::vector<BYTE>(bytes.begin(), bytes.begin() + oneOf({0, 1, 14, 16, 18})));
    const GuardedBytes samples(std::vector<BYTE>(bytes.begin() + 18, bytes.end()));
    if (random() % 2) {
      script.offersFrameData = true;
      script.frameData.formats = {format.data()};
      script.frameData.formatSizes = {static_cast<ULONG>(format.size())};
      script.frameData.buffers = {samples.data()};
      script.frameData.dataSizes = {static_cast<LONG>(random() % 2 ? samples.size() : samples.size() / 3)};
    }
    if (round % 50 == 0) {
      ASSERT_EQ(S_OK, m_analyser->put_FFTLength(4 << random() % 12));
      ASSERT_EQ(S_OK, m_analyser->put_XScaleType(static_cast<LONG>(random() % 2)));
      ASSERT_EQ(S_OK, m_analyser->put_AlignmentX(static_cast<LONG>(random() % 2)));
      ASSERT_EQ(S_OK, m_analyser->put_LineCount(static_cast<LONG>(4 + random() % 197)));
      ASSERT_EQ(S_OK, m_analyser->put_ScaleXVisible(random() % 2 ? VARIANT_TRUE : VARIANT_FALSE));
    }
    ScriptedAudioData data(script);
    ASSERT_EQ(S_OK, m_analyser->SendAudioData(&data)) << round;
    ASSERT_EQ(0, data.references()) << round;
    if (round % 10 == 0) {
      EXPECT_EQ(S_OK, m_analyser->_OnTimer());
    }
  }
  ASSERT_EQ(S_OK, m_analyser->put_FFTLength(512));
  ASSERT_EQ(S_OK, m_analyser->put_XScaleType(0));
  ASSERT_EQ(S_OK, m_analyser->put_AlignmentX(0));
  ASSERT_EQ(S_OK, m_analyser->put_LineCount(4));
  ASSERT_EQ(S_OK, m_analyser->put_ScaleXVisible(VARIANT_FALSE));
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(AnalyserBlocks, TheHostMayReleaseTheControlFromInsideABlock) {
  /// Lets go of the control when the control asks for its interfaces.
  struct Releasing final : IUnknown {
    STDMETHODIMP QueryInterface(REFIID, void** object) override {
      *object = nullptr;
      if (container) container->close();
      if (analyser) analyser->Reset();
      return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    avhost::Container* container = nullptr;
    ComPtr<IAudioVisualization4Type3>* analyser = nullptr;
  } data;
  data.container = &m_container;
  data.analyser = std::addressof(m_analyser);  // & would release it
  IAudioVisualization4Type3* raw = m_analyser.Get();
  EXPECT_EQ(S_OK, raw->SendAudioData(&data));
  EXPECT_FALSE(m_analyser);
}

TEST_F(AnalyserBlocks, AHostThatChangesTheControlWhileItsBufferIsAskedGetsTheNewSettings) {
  /// Puts properties from within its own answer.
  class Meddling final : public IUnknown {
   public:
    Meddling(IUnknown* inner, IAudioVisualization4Type3* analyser) : m_inner(inner), m_analyser(analyser) {}
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
      EXPECT_EQ(S_OK, m_analyser->put_LineCount(200));
      EXPECT_EQ(S_OK, m_analyser->put_FFTLength(4096));
      EXPECT_EQ(S_OK, sendSamples(m_analyser, noiseBlock()));
      EXPECT_EQ(S_OK, m_analyser->put_FFTLength(512));
      EXPECT_EQ(S_OK, m_analyser->put_LineCount(4));
      return m_inner->QueryInterface(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

   private:
    IUnknown* m_inner;
    IAudioVisualization4Type3* m_analyser;
  };
  const std::vector<std::int16_t> samples = sineBlock(100);
  const auto inner = avhost::audioFrames(analyserMono16, samples.data(), static_cast<LONG>(samples.size() * 2));
  Meddling data(inner.get(), m_analyser.Get());
  EXPECT_EQ(S_OK, m_analyser->SendAudioData(&data));
  EXPECT_EQ((std::array{0, 81, 0, 0}), litRows());
}

}  // namespace
}  // namespace av::test
