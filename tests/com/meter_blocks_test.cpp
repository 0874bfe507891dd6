// Blocks through the door of the level meter, good ones and hostile ones, in a real container.

#include "host/meter_test.h"
#include "support/win/error_info.h"
#include "support/win/guarded_bytes.h"
#include "support/win/scripted_audio_data.h"
#include "support/win/wave_bytes.h"

#include <comdef.h>

#include <climits>
#include <functional>

namespace av::test {
namespace {

using support::AudioDataScript;
using support::GuardedBytes;
using support::ScriptedAudioData;
using support::WaveHeader;

std::vector<BYTE> bytesOf(const std::vector<std::int16_t>& samples) {
  const auto* first = reinterpret_cast<const BYTE*>(samples.data());
  return {first, first + samples.size() * sizeof samples[0]};
}

DWORD WINAPI runFunction(void* function) {
  (*static_cast<const std::function<void()>*>(function))();
  return 0;
}

/// On a thread that COM does not know, to its end, while this thread dispatches nothing.
void onAPlainThread(const std::function<void()>& work) {
  const HANDLE thread = CreateThread(nullptr, 0, &runFunction, const_cast<std::function<void()>*>(&work), 0, nullptr);
  ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, 30000));
  CloseHandle(thread);
}

/// The ticks are hidden, so that a picture stays the same until something is drawn on purpose.
class MeterBlocks : public MeterTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(MeterTest::SetUp());
    ASSERT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_FALSE));
    ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
    m_empty = picture();
  }

  HRESULT send(const std::vector<BYTE>& samples, const WAVEFORMATEX& format = meterFormat) {
    return m_meter->SendAudioData(avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size())).get());
  }

  /// What the meter shows of the lines that it has now.
  WindowPicture drawn() {
    EXPECT_EQ(S_OK, m_meter->Repaint());
    return picture();
  }

  /// The mutex is free when another thread gets a block through.
  void expectMutexIsFree() {
    IAudioVisualization4Type2* const raw = m_meter.Get();
    onAPlainThread([raw] { EXPECT_EQ(S_OK, raw->SendAudioData(raw)); });
  }

  /// After whatever went before, a good block still changes the lines.
  void expectTheNextGoodBlockIsShown() {
    expectMutexIsFree();
    m_amplitude = m_amplitude > 10000 ? 3000 : 30000;
    const WindowPicture before = drawn();
    EXPECT_EQ(S_OK, sendNoise(m_meter.Get(), 1024, m_amplitude));
    EXPECT_EQ(1024, windowSize());
    EXPECT_NE(before, drawn());
  }

  /// SendAudioData through the virtual table; a host's failure arrives as an exception (64-bit) or a result (32-bit).
  HRESULT sendHostile(IUnknown* data) {
    try {
      return m_meter->SendAudioData(data);
    } catch (const _com_error& error) {
      return error.Error();
    }
  }

  WindowPicture m_empty;
  int m_amplitude = 30000;
};

TEST_F(MeterBlocks, AreDrawnByTheNextTickAndNotBySendAudioData) {
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  EXPECT_EQ(m_empty, picture());
  EXPECT_TRUE(avhost::pumpUntil(5000, [&] { return picture() != m_empty; }));
  EXPECT_LT(1000, litPixels(picture()));
}

TEST_F(MeterBlocks, BeforeTheFirstOnlyTheBackgroundIsShown) {
  for (const std::uint32_t pixel : m_empty.pixels) ASSERT_EQ(0u, pixel);
  EXPECT_EQ(m_empty, drawn());
  EXPECT_EQ(S_OK, m_meter->_OnTimer());
  EXPECT_EQ(m_empty, picture());
}

TEST_F(MeterBlocks, BothInterfacesOfTheHostShowTheSame) {
  const std::vector<BYTE> samples = bytesOf(noise(1024));
  ASSERT_EQ(S_OK, send(samples));
  const WindowPicture separate = drawn();
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get(), 1024, 300));
  ASSERT_NE(separate, drawn());
  const std::vector<BYTE> packed = support::operator+(WaveHeader{.channels = 1}.bytes(), samples);
  EXPECT_EQ(S_OK, m_meter->SendAudioData(avhost::packedAudio(packed.data(), static_cast<LONG>(packed.size())).get()));
  EXPECT_EQ(separate, drawn());
}

TEST_F(MeterBlocks, ANullBlockEmptiesTheMeterAtOnce) {
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ASSERT_NE(m_empty, drawn());
  EXPECT_EQ(S_OK, m_meter->SendAudioData(nullptr));
  EXPECT_EQ(m_empty, picture()) << "drawn by the call itself, without a line";
  EXPECT_EQ(1024, windowSize());
  avhost::pumpMessages(200);
  smear();
  avhost::pumpMessages(300);
  EXPECT_TRUE(isSmeared()) << "nothing is drawn until data comes";
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  EXPECT_TRUE(avhost::pumpUntil(5000, [&] { return !isSmeared(); }));
}

TEST_F(MeterBlocks, OneWithFewerFramesThanLinesEmptiesTheBarsAtOnce) {
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ASSERT_LT(1000, litPixels(drawn()));
  smear();
  EXPECT_EQ(S_OK, sendNoise(m_meter.Get(), 64));
  EXPECT_FALSE(isSmeared());
  EXPECT_EQ(0, litPixels(picture()));
  EXPECT_NE(m_empty, picture()) << "unlit bars are shown";
  EXPECT_EQ(64, windowSize());
}

TEST_F(MeterBlocks, OfAsManyFramesAsLinesIsAnalysed) {
  smear();
  EXPECT_EQ(S_OK, sendNoise(m_meter.Get(), 256));
  EXPECT_TRUE(isSmeared()) << "left to the tick";
  EXPECT_EQ(256, windowSize());
}

TEST_F(MeterBlocks, SetTheAnalysisLengthAsTheirFramesSay) {
  const struct {
    std::size_t frames;
    LONG length;
  } cases[] = {{1024, 1024}, {4096, 4096}, {512, 512}, {1000, 1000}, {1100, 1099}, {60000, 48000}, {1, 1}};
  for (const auto& one : cases) {
    ASSERT_EQ(S_OK, m_meter->put_FFTWindowSize(7));
    EXPECT_EQ(S_OK, sendNoise(m_meter.Get(), one.frames)) << one.frames;
    if (one.frames == 48000 || one.length == 48000) {
      EXPECT_NEAR(48000, windowSize(), 1);  // the last bits of pow and log decide
    } else {
      EXPECT_EQ(one.length, windowSize()) << one.frames;
    }
  }
}

TEST_F(MeterBlocks, UnsupportedFormatsChangeNothing) {
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  const WindowPicture before = drawn();
  ASSERT_EQ(S_OK, m_meter->put_FFTWindowSize(7));
  const std::vector<BYTE> samples = bytesOf(noise(1024, 300));
  for (const WORD tag : std::initializer_list<WORD>{0, 2, 3, 6, 0x55, 0xFFFF}) {
    WAVEFORMATEX format = meterFormat;
    format.wFormatTag = tag;
    EXPECT_EQ(S_OK, send(samples, format));
  }
  WAVEFORMATEX noChannels = meterFormat, fewBits = meterFormat;
  noChannels.nChannels = 0;
  fewBits.wBitsPerSample = 7;
  EXPECT_EQ(S_OK, send(samples, noChannels));
  EXPECT_EQ(S_OK, send(samples, fewBits));
  EXPECT_EQ(S_OK, m_meter->SendAudioData(m_meter.Get())) << "an object without the interfaces";
  EXPECT_EQ(7, windowSize());
  EXPECT_EQ(before, drawn());
  expectTheNextGoodBlockIsShown();
}

TEST_F(MeterBlocks, TheExtensibleTagAndAnyNumberOfChannelsAreTaken) {
  for (const WORD channels : std::initializer_list<WORD>{1, 2, 3, 18, 64}) {
    for (const WORD tag : std::initializer_list<WORD>{1, 0xFFFE}) {
      const WAVEFORMATEX format{tag, channels, 44100, 0, 0, 16, 0};
      ASSERT_EQ(S_OK, m_meter->put_FFTWindowSize(7));
      EXPECT_EQ(S_OK, send(std::vector<BYTE>(std::size_t{channels} * 1024 * 2, 0x55), format));
      EXPECT_EQ(1024, windowSize());
    }
  }
}

TEST_F(MeterBlocks, SamplesOf24BitsAreAcceptedAndNotRead) {
  ASSERT_EQ(S_OK, m_meter->put_FFTWindowSize(7));
  WAVEFORMATEX format = meterFormat;
  format.wBitsPerSample = 24;
  EXPECT_EQ(S_OK, send(std::vector<BYTE>(1024 * 3, 0x33), format));
  EXPECT_EQ(1024, windowSize());
  EXPECT_EQ(0, litPixels(drawn())) << "the silence before the first block was analysed again";
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

TEST_F(MeterBlocks, TheHostIsAskedInTheFixedOrder) {
  const std::vector<BYTE> bytes = bytesOf(noise(1024));
  const GuardedBytes samples(bytes), format(WaveHeader{.channels = 1}.bytes());
  const GuardedBytes packed(support::operator+(WaveHeader{.channels = 1}.bytes(), bytes));
  ScriptedAudioData data(bothInterfaces(packed, samples, format));
  EXPECT_EQ(S_OK, m_meter->SendAudioData(&data));
  EXPECT_EQ(
      (std::vector<std::string>{"query frame", "query packed", "packed GetBufferSize", "packed GetBuffer",
                                "packed GetBufferSize", "packed GetDataSize", "packed GetBuffer", "frame GetFormatSize",
                                "frame GetFormat", "frame GetBuffer", "frame GetDataSize"}),
      data.calls());
  EXPECT_EQ(0, data.references());
}

TEST_F(MeterBlocks, AMethodThatFailsAtAnyPositionLosesNothing) {
  const std::vector<BYTE> bytes = bytesOf(noise(1024, 20000));
  const GuardedBytes samples(bytes), format(WaveHeader{.channels = 1}.bytes());
  const GuardedBytes packed(support::operator+(WaveHeader{.channels = 1}.bytes(), bytes));
  constexpr int calls = 9;  // 5 of the packed and 4 of the separate interface
  for (int position = 0; position <= calls; ++position) {
    AudioDataScript script = bothInterfaces(packed, samples, format);
    script.failingCall = position;
    script.failure = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_ITF, 0x1234);
    ScriptedAudioData data(script);
    ASSERT_EQ(S_OK, m_meter->put_FFTWindowSize(7));
    EXPECT_EQ(position < calls ? script.failure : S_OK, sendHostile(&data)) << position;
    EXPECT_EQ(position < calls ? 7 : 1024, windowSize()) << position;
    EXPECT_EQ(0, data.references()) << position;
    expectTheNextGoodBlockIsShown();
  }
}

TEST_F(MeterBlocks, ErrorInformationOfTheHostTravelsWithTheFailure) {
  const GuardedBytes nothing({});
  AudioDataScript script = bothInterfaces(nothing, nothing, nothing);
  script.failingCall = 0;
  script.failure = E_ACCESSDENIED;
  script.declaresErrorInfoFor = {__uuidof(avhost::IPackedAudioData)};
  const auto info = support::makeErrorInfo(L"the device is gone", L"test host");
  script.errorInfo = info.Get();
  {
    ScriptedAudioData data(script);
#if defined(_WIN64)
    try {
      m_meter->SendAudioData(&data);
      ADD_FAILURE() << "no exception";
    } catch (const _com_error& error) {
      EXPECT_EQ(E_ACCESSDENIED, error.Error());
      EXPECT_STREQ(L"the device is gone", static_cast<const wchar_t*>(error.Description()));
    }
#else
    EXPECT_EQ(E_ACCESSDENIED, m_meter->SendAudioData(&data));
    BSTR text = nullptr;
    const auto taken = support::takeErrorInfo();
    ASSERT_TRUE(taken);
    taken->GetDescription(&text);
    EXPECT_STREQ(L"the device is gone", text);
    SysFreeString(text);
#endif
    EXPECT_EQ(0, data.references());
  }
  expectTheNextGoodBlockIsShown();
}

TEST_F(MeterBlocks, LateBoundHostsGetDispException) {
  const GuardedBytes nothing({});
  AudioDataScript script = bothInterfaces(nothing, nothing, nothing);
  script.failingCall = 0;
  script.failure = E_ACCESSDENIED;
  script.declaresErrorInfoFor = {__uuidof(avhost::IPackedAudioData)};
  const auto info = support::makeErrorInfo(L"the device is gone", L"test host");
  script.errorInfo = info.Get();
  ScriptedAudioData data(script);
  VARIANT argument;
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
  expectTheNextGoodBlockIsShown();
}

TEST_F(MeterBlocks, LiesAboutSizesReadNothingBehindTheDeclaredBytes) {
  const std::vector<BYTE> bytes = bytesOf(noise(1024, 20000));
  const GuardedBytes packed(support::operator+(WaveHeader{.channels = 1}.bytes(), bytes));
  WaveHeader hugeExtra{.channels = 1};
  hugeExtra.extraBytes = 65535;
  const GuardedBytes hugeHeader(support::operator+(hugeExtra.bytes(), bytes));
  const GuardedBytes onlyHeader(WaveHeader{.channels = 1}.bytes());
  for (const GuardedBytes* buffer : {&packed, &hugeHeader, &onlyHeader}) {
    for (const LONG dataSize : {LONG{INT_MIN}, -1L, 0L, 17L, 18L, 19L, 20L, 65552L, 65553L, LONG{INT_MAX}}) {
      AudioDataScript script;
      script.offersPackedData = true;
      script.packedData.buffers = {buffer->data()};
      script.packedData.bufferSizes = {buffer->size()};
      script.packedData.dataSizes = {dataSize};
      ScriptedAudioData data(script);
      EXPECT_EQ(S_OK, sendHostile(&data)) << dataSize;
      EXPECT_EQ(0, data.references());
    }
    expectTheNextGoodBlockIsShown();
  }
}

TEST_F(MeterBlocks, NullPointersBehindTheSeparateInterfaceDropTheBlock) {
  const GuardedBytes samples(bytesOf(noise(1024))), format(WaveHeader{.channels = 1}.bytes()), nothing({});
  for (const bool nullFormat : {false, true}) {
    AudioDataScript script = bothInterfaces(nothing, samples, format);
    script.offersPackedData = false;
    (nullFormat ? script.frameData.formats : script.frameData.buffers) = {nullptr};
    ScriptedAudioData data(script);
    ASSERT_EQ(S_OK, m_meter->put_FFTWindowSize(7));
    EXPECT_EQ(S_OK, sendHostile(&data));
    EXPECT_EQ(7, windowSize());
    EXPECT_EQ(0, data.references());
  }
  expectTheNextGoodBlockIsShown();
}

/// Does something to the meter when it is asked for its interfaces, which it has none of.
class MeddlingBlock final : public IUnknown {
 public:
  explicit MeddlingBlock(std::function<void()> deed) : m_deed(std::move(deed)) {}
  virtual ~MeddlingBlock() = default;
  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    if (m_deed) std::exchange(m_deed, nullptr)();
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }

 private:
  std::function<void()> m_deed;
};

TEST_F(MeterBlocks, TheHostMayReleaseTheControlFromInsideABlock) {
  MeddlingBlock data([&] {
    m_container.close();
    m_meter.Reset();
  });
  IAudioVisualization4Type2* const raw = m_meter.Get();
  EXPECT_EQ(S_OK, raw->SendAudioData(&data));
  EXPECT_FALSE(m_meter);
}

TEST_F(MeterBlocks, TheHostMayPutEveryPropertyFromInsideABlock) {
  MeddlingBlock data([&] {
    for (const NumberRow& row : meterRows) EXPECT_EQ(S_OK, invokePut(row.dispId, Value(row.type, row.otherValue)));
    EXPECT_EQ(S_OK, sendNoise(m_meter.Get()));
    EXPECT_EQ(S_OK, m_meter->SendAudioData(nullptr));
  });
  EXPECT_EQ(S_OK, m_meter->SendAudioData(&data));
  EXPECT_EQ(20, lineCount());
  expectTheNextGoodBlockIsShown();
}

TEST_F(MeterBlocks, DrawThemselvesOnTheThreadThatBringsThem) {
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ASSERT_EQ(S_OK, m_meter->Repaint());
  IAudioVisualization4Type2* const raw = m_meter.Get();
  smear();
  onAPlainThread([raw] { EXPECT_EQ(S_OK, sendNoise(raw, 64)); });
  EXPECT_FALSE(isSmeared());
  smear();
  onAPlainThread([raw] { EXPECT_EQ(S_OK, raw->SendAudioData(nullptr)); });
  EXPECT_EQ(m_empty, picture());
}

}  // namespace
}  // namespace av::test
