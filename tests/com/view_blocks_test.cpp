// Blocks through the door of the finished control, good ones and hostile ones, in a real container.

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/dll_test.h"
#include "host/window_picture.h"
#include "support/win/error_info.h"
#include "support/win/guarded_bytes.h"
#include "support/win/scripted_audio_data.h"
#include "support/win/wave_bytes.h"

#include <comdef.h>

#include <climits>
#include <cmath>
#include <memory>
#include <numbers>
#include <thread>

namespace av::test {
namespace {

using support::AudioDataScript;
using support::GuardedBytes;
using support::ScriptedAudioData;
using support::WaveHeader;

std::vector<BYTE> sineFrames(int frames, int channels, double amplitude, double cycles = 8) {
  std::vector<BYTE> bytes;
  for (int i = 0; i < frames; ++i) {
    const auto sample = static_cast<std::int16_t>(
        std::lround(amplitude * 32767 * std::sin(2 * std::numbers::pi * cycles * i / frames)));
    for (int c = 0; c < channels; ++c) {
      bytes.push_back(static_cast<BYTE>(sample & 0xFF));
      bytes.push_back(static_cast<BYTE>(sample >> 8 & 0xFF));
    }
  }
  return bytes;
}

constexpr WAVEFORMATEX stereo16{WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};

class ViewBlocks : public DllTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_view = createView();
    ASSERT_TRUE(m_view);
    // Drawn with every block, so that a test sees at once what a block did.
    ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_FALSE));
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {300, 200}}));
    ASSERT_EQ(S_OK, m_container.host(m_view.Get()));
    UpdateWindow(m_container.controlWindow());
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    EXPECT_EQ(0u, m_view ? m_view.Reset() : 0u);
    DllTest::TearDown();
  }

  WindowPicture picture() const { return pictureOf(m_container.controlWindow()); }

  HRESULT send(const std::vector<BYTE>& samples, const WAVEFORMATEX& format = stereo16) {
    return m_view->SendAudioData(avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size())).get());
  }

  /// The mutex is free when another thread gets a block through.
  void expectMutexIsFree() {
    ComPtr<IAudioVisualization4Type1> view = m_view;
    std::thread other([&] { EXPECT_EQ(S_OK, view->SendAudioData(nullptr)); });
    other.join();
  }

  /// After whatever went before, a good block still changes the picture.
  void expectTheNextGoodBlockIsDrawn() {
    expectMutexIsFree();
    m_loudness = m_loudness > 0.5 ? 0.3 : 0.9;
    const WindowPicture before = picture();
    EXPECT_EQ(S_OK, send(sineFrames(1024, 2, m_loudness)));
    EXPECT_NE(before, picture());
  }

  /// SendAudioData through the virtual table; a host's failure arrives as an exception (64-bit) or a result (32-bit).
  HRESULT sendHostile(IUnknown* data) {
    try {
      return m_view->SendAudioData(data);
    } catch (const _com_error& error) {
      return error.Error();
    }
  }

  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type1> m_view;
  double m_loudness = 0.9;
};

TEST_F(ViewBlocks, NoCurveIsDrawnBeforeTheFirstAnalysedBlock) {
  const WindowPicture before = picture();
  EXPECT_EQ(S_OK, send(sineFrames(1023, 2, 0.9)));  // one frame short of the window
  EXPECT_EQ(before, picture());
  EXPECT_EQ(S_OK, send(sineFrames(1024, 2, 0.9)));
  EXPECT_NE(before, picture());
}

TEST_F(ViewBlocks, BothInterfacesOfTheHostDrawTheSamePicture) {
  const std::vector<BYTE> samples = sineFrames(1024, 2, 0.7);
  ASSERT_EQ(S_OK, send(samples));
  const WindowPicture separate = picture();
  ASSERT_EQ(S_OK, send(sineFrames(1024, 2, 0.2)));
  ASSERT_NE(separate, picture());
  const std::vector<BYTE> packed = support::operator+(WaveHeader{}.bytes(), samples);
  EXPECT_EQ(S_OK, m_view->SendAudioData(avhost::packedAudio(packed.data(), static_cast<LONG>(packed.size())).get()));
  EXPECT_EQ(separate, picture());
}

TEST_F(ViewBlocks, EveryAcceptedBlockOverwritesTheDynamicRange) {
  const struct {
    WORD bits;
    LONG decibels;
  } depths[] = {{8, 42}, {16, 90}, {24, 138}, {32, 186}};
  for (const auto& depth : depths) {
    ASSERT_EQ(S_OK, m_view->put_DynamicRange(60));
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 48000, 0, 0, depth.bits, 0};
    const std::vector<BYTE> tooShort(64);
    EXPECT_EQ(S_OK, send(tooShort, format));
    LONG value = 0;
    EXPECT_EQ(S_OK, m_view->get_DynamicRange(&value));
    EXPECT_EQ(depth.decibels, value);
  }
}

TEST_F(ViewBlocks, UnsupportedFormatsChangeNothing) {
  ASSERT_EQ(S_OK, send(sineFrames(1024, 2, 0.9)));
  const WindowPicture before = picture();
  ASSERT_EQ(S_OK, m_view->put_DynamicRange(60));
  ASSERT_EQ(S_OK, m_view->put_DynamicRange(60));
  const WindowPicture at60 = picture();
  const std::vector<BYTE> samples = sineFrames(1024, 2, 0.3);
  for (const WORD tag : std::initializer_list<WORD>{0, 2, 3, 6, 0x55, 0xFFFF}) {
    WAVEFORMATEX format = stereo16;
    format.wFormatTag = tag;
    EXPECT_EQ(S_OK, send(samples, format));
  }
  WAVEFORMATEX noChannels = stereo16, fewBits = stereo16;
  noChannels.nChannels = 0;
  fewBits.wBitsPerSample = 7;
  EXPECT_EQ(S_OK, send(samples, noChannels));
  EXPECT_EQ(S_OK, send(samples, fewBits));
  LONG range = 0;
  EXPECT_EQ(S_OK, m_view->get_DynamicRange(&range));
  EXPECT_EQ(60, range);
  EXPECT_EQ(at60, picture());
  EXPECT_NE(before, at60);
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(ViewBlocks, ANullArgumentAndObjectsWithoutTheInterfacesAreDropped) {
  ASSERT_EQ(S_OK, send(sineFrames(1024, 2, 0.9)));
  const WindowPicture before = picture();
  EXPECT_EQ(S_OK, m_view->SendAudioData(nullptr));
  EXPECT_EQ(S_OK, m_view->SendAudioData(m_view.Get()));
  EXPECT_EQ(before, picture());
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(ViewBlocks, AnyNumberOfChannelsIsTaken) {
  for (const WORD channels : std::initializer_list<WORD>{1, 2, 3, 17, 18, 19, 64}) {
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, channels, 44100, 0, 0, 16, 0};
    EXPECT_EQ(S_OK, send(sineFrames(1024, channels, 0.5), format)) << channels;
    EXPECT_EQ(S_OK, m_view->put_VisualizationType(channels % 2 ? 2 : 1));
  }
  expectTheNextGoodBlockIsDrawn();
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

TEST_F(ViewBlocks, AMethodThatFailsAtAnyPositionLosesNothing) {
  const std::vector<BYTE> bytes = sineFrames(1024, 2, 0.6);
  const GuardedBytes samples(bytes), format(WaveHeader{}.bytes());
  const GuardedBytes packed(support::operator+(WaveHeader{}.bytes(), bytes));
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

TEST_F(ViewBlocks, ErrorInformationOfTheHostTravelsWithTheFailure) {
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
      m_view->SendAudioData(&data);
      ADD_FAILURE() << "no exception";
    } catch (const _com_error& error) {
      EXPECT_EQ(E_ACCESSDENIED, error.Error());
      EXPECT_STREQ(L"the device is gone", static_cast<const wchar_t*>(error.Description()));
    }
#else
    EXPECT_EQ(E_ACCESSDENIED, m_view->SendAudioData(&data));
    BSTR text = nullptr;
    const auto taken = support::takeErrorInfo();
    ASSERT_TRUE(taken);
    taken->GetDescription(&text);
    EXPECT_STREQ(L"the device is gone", text);
    SysFreeString(text);
#endif
    EXPECT_EQ(0, data.references());
  }
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(ViewBlocks, LateBoundHostsGetDispException) {
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
  DISPPARAMS arguments{&argument, nullptr, 1, 0};
  EXCEPINFO exception{};
  EXPECT_EQ(DISP_E_EXCEPTION, m_view->Invoke(0xaae62, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &arguments,
                                             nullptr, &exception, nullptr));
  EXPECT_EQ(E_ACCESSDENIED, exception.scode);
  EXPECT_STREQ(L"the device is gone", exception.bstrDescription);
  EXPECT_STREQ(L"test host", exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrHelpFile);
  EXPECT_EQ(0, data.references());
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(ViewBlocks, LiesAboutSizesReadNothingBehindTheDeclaredBytes) {
  const std::vector<BYTE> bytes = sineFrames(1024, 2, 0.6);
  const GuardedBytes packed(support::operator+(WaveHeader{}.bytes(), bytes));
  WaveHeader hugeExtra;
  hugeExtra.extraBytes = 65535;
  const GuardedBytes hugeHeader(support::operator+(hugeExtra.bytes(), bytes));
  const GuardedBytes onlyHeader(WaveHeader{}.bytes());
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
    for (const LONG bufferSize : {LONG{INT_MIN}, -1L, 0L, 17L, 18L}) {
      AudioDataScript script;
      script.offersPackedData = true;
      script.packedData.buffers = {nullptr};
      script.packedData.bufferSizes = {bufferSize};
      ScriptedAudioData data(script);
      EXPECT_EQ(S_OK, sendHostile(&data)) << bufferSize;
    }
    expectTheNextGoodBlockIsDrawn();
  }
}

TEST_F(ViewBlocks, NullPointersBehindTheSeparateInterfaceDropTheBlock) {
  const GuardedBytes samples(sineFrames(1024, 2, 0.6)), format(WaveHeader{}.bytes()), nothing({});
  for (const bool nullFormat : {false, true}) {
    AudioDataScript script = bothInterfaces(nothing, samples, format);
    script.offersPackedData = false;
    (nullFormat ? script.frameData.formats : script.frameData.buffers) = {nullptr};
    ScriptedAudioData data(script);
    const WindowPicture before = picture();
    EXPECT_EQ(S_OK, sendHostile(&data));
    EXPECT_EQ(before, picture());
    EXPECT_EQ(0, data.references());
  }
  expectTheNextGoodBlockIsDrawn();
}

TEST_F(ViewBlocks, TheHostMayReleaseTheControlFromInsideABlock) {
  /// Lets go of the control when the control asks for its interfaces.
  struct Releasing final : IUnknown {
    STDMETHODIMP QueryInterface(REFIID, void** object) override {
      *object = nullptr;
      if (container) container->close();
      if (view) view->Reset();
      return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    avhost::Container* container = nullptr;
    ComPtr<IAudioVisualization4Type1>* view = nullptr;
  } data;
  data.container = &m_container;
  data.view = std::addressof(m_view);  // & would release it
  IAudioVisualization4Type1* raw = m_view.Get();
  EXPECT_EQ(S_OK, raw->SendAudioData(&data));
  EXPECT_FALSE(m_view);
}

TEST_F(ViewBlocks, BlocksFromAnotherThreadAreAnalysed) {
  ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_TRUE));
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(2));
  const WindowPicture before = picture();
  IAudioVisualization4Type1* raw = m_view.Get();
  std::thread audio([&] {
    const std::vector<BYTE> samples = sineFrames(1024, 2, 0.9);
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(S_OK, raw->SendAudioData(
                          avhost::audioFrames(stereo16, samples.data(), static_cast<LONG>(samples.size())).get()));
      Sleep(5);
    }
  });
  const bool drawn = avhost::pumpUntil(5000, [&] { return picture() != before; });
  audio.join();
  EXPECT_TRUE(drawn);
}

TEST_F(ViewBlocks, SmoothingDrawsOnTheTimersTicks) {
  ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_TRUE));
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(2));
  const WindowPicture before = picture();
  ASSERT_EQ(S_OK, send(sineFrames(1024, 2, 0.9)));
  EXPECT_EQ(before, picture());  // left to the timer
  EXPECT_TRUE(avhost::pumpUntil(5000, [&] { return picture() != before; }));
}

}  // namespace
}  // namespace av::test
