// Blocks as no host should send them, to each of the three controls: every format tag, impossible depths, channels, rates
// and sizes, memory that is gone a moment later, buffers whose methods call the control again.

#include "host/any_control_test.h"
#include "support/win/guarded_bytes.h"
#include "support/win/scripted_audio_data.h"
#include "support/win/wave_bytes.h"

#include <climits>
#include <memory>

namespace av::test {
namespace {

using support::AudioDataScript;
using support::GuardedBytes;
using support::ScriptedAudioData;
using support::WaveHeader;

constexpr WAVEFORMATEX mono16{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};

/// Frame data that does something whenever one of its methods is called.
class Meddling final : public avhost::AudioFrameData {
 public:
  Meddling(const std::vector<std::int16_t>& samples, std::function<void(int)> deed)
      : AudioFrameData(mono16, samples.data(), static_cast<LONG>(2 * samples.size())), m_deed(std::move(deed)) {}
  HRESULT STDMETHODCALLTYPE GetBuffer(BYTE** buffer) override { return called(), AudioFrameData::GetBuffer(buffer); }
  HRESULT STDMETHODCALLTYPE GetDataSize(LONG* bytes) override { return called(), AudioFrameData::GetDataSize(bytes); }
  HRESULT STDMETHODCALLTYPE GetFormat(BYTE** format) override { return called(), AudioFrameData::GetFormat(format); }
  HRESULT STDMETHODCALLTYPE GetFormatSize(ULONG* bytes) override {
    return called(), AudioFrameData::GetFormatSize(bytes);
  }

 private:
  ~Meddling() override = default;
  void called() { m_deed(m_calls++); }

  std::function<void(int)> m_deed;
  int m_calls = 0;
};
constexpr int meddlingCalls = 4;

class HostileBlocks : public AnyControlTest {
 protected:
  void SetUp() override {
    AnyControlTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(activate({400, 160}));
  }

  HRESULT sendAs(const WAVEFORMATEX& format, const std::vector<BYTE>& bytes) {
    return m_audio->SendAudioData(avhost::audioFrames(format, bytes.data(), static_cast<LONG>(bytes.size())).get());
  }

  /// A window of any size, which the last test has left as it likes.
  void expectTheNextGoodBlockIsDrawn() {
    const Look look = looks();
    put(look.property, look.values.front());
    ASSERT_EQ(S_OK, send(std::vector<std::int16_t>(2048)));
    const WindowPicture silent = shown();
    ASSERT_EQ(S_OK, sendNoise());
    EXPECT_FALSE(silent == shown());
  }

  /// Through both interfaces, with sizes that are lies where lies are bounded.
  void sendInEveryForm(const WaveHeader& header, const std::vector<BYTE>& samples) {
    const std::vector<BYTE> head = header.bytes();
    const GuardedBytes packed(support::operator+(head, samples)), format(head), separate(samples);
    for (const LONG size : {LONG{INT_MIN}, -1l, 0l, 17l, 18l, 19l, packed.size(), packed.size() + 1, LONG{INT_MAX}}) {
      AudioDataScript script;
      script.offersPackedData = true;
      script.packedData.buffers = {packed.data()};
      script.packedData.bufferSizes = {packed.size()};
      script.packedData.dataSizes = {size};
      sendScript(script);
    }
    for (const LONG size : {LONG{INT_MIN}, -1l, 0l, 1l, separate.size() / 3, separate.size()}) {
      AudioDataScript script;
      script.offersFrameData = true;
      script.frameData.buffers = {separate.data()};
      script.frameData.dataSizes = {size};
      script.frameData.formats = {format.data()};
      script.frameData.formatSizes = {static_cast<ULONG>(format.size())};
      sendScript(script);
    }
  }
  void sendScript(const AudioDataScript& script) {
    ScriptedAudioData data(script);
    ASSERT_EQ(S_OK, m_audio->SendAudioData(&data));
    ASSERT_EQ(0, data.references());
  }
};

TEST_P(HostileBlocks, OfAllFormatTagsTwoAreTaken) {
  ASSERT_EQ(S_OK, sendNoise());
  const WindowPicture loud = shown();
  const std::vector<BYTE> silence(4096);
  WAVEFORMATEX format = mono16;
  for (unsigned tag = 0; tag <= 0xFFFF; ++tag) {
    if (tag == WAVE_FORMAT_PCM || tag == WAVE_FORMAT_EXTENSIBLE) continue;
    format.wFormatTag = static_cast<WORD>(tag);
    ASSERT_EQ(S_OK, sendAs(format, silence)) << tag;
    if (tag % 4096 == 4095) {
      ASSERT_TRUE(loud == shown()) << "a tag up to " << tag << " was taken";
    }
  }
  ASSERT_TRUE(loud == shown());
  for (const WORD tag : {WORD{WAVE_FORMAT_PCM}, WORD{WAVE_FORMAT_EXTENSIBLE}}) {
    format.wFormatTag = tag;
    ASSERT_EQ(S_OK, sendNoise());
    ASSERT_EQ(S_OK, sendAs(format, silence));
    EXPECT_FALSE(loud == shown()) << tag;
  }
}

TEST_P(HostileBlocks, AnyDepthChannelCountRateAndSizeReadsNothingBehindTheDeclaredBytes) {
  if (isView()) put(L"VisualizationSmooth", -1);  // pictures of that many blocks take minutes
  if (isView()) put(L"FFTWindowSize", 64);
  const std::vector<BYTE> samples = support::countedBytes(2047);
  WaveHeader header;
  for (header.bits = 0; header.bits <= 64; ++header.bits) {
    for (const unsigned channels : {0u, 1u, 2u, 18u, 19u, 65535u}) {
      header.channels = channels;
      header.sampleRateHz = (header.bits + channels) % 2 ? 0 : 0xFFFFFFFF;
      ASSERT_NO_FATAL_FAILURE(sendInEveryForm(header, samples)) << header.bits << " bits, " << channels << " channels";
    }
    ASSERT_EQ(S_OK, m_audio->_OnTimer());
  }
  if (isView()) put(L"VisualizationSmooth", 0);
  expectTheNextGoodBlockIsDrawn();
}

TEST_P(HostileBlocks, FramesOf65535ChannelsAreReadToTheLastByteAndNoFurther) {
  if (isView()) put(L"FFTWindowSize", 64);
  if (isMeter()) put(L"LineCount", 10);
  WaveHeader header;
  header.channels = 65535;
  header.bits = 8;
  const std::vector<BYTE> samples(65535u * 64, 200);
  const GuardedBytes format(header.bytes()), bytes(samples), packed(support::operator+(header.bytes(), samples));
  AudioDataScript script;
  script.offersFrameData = true;
  script.frameData.buffers = {bytes.data()};
  script.frameData.dataSizes = {bytes.size()};
  script.frameData.formats = {format.data()};
  script.frameData.formatSizes = {18};
  sendScript(script);
  AudioDataScript inOne;
  inOne.offersPackedData = true;
  inOne.packedData.buffers = {packed.data()};
  inOne.packedData.bufferSizes = inOne.packedData.dataSizes = {packed.size()};
  sendScript(inOne);
  expectTheNextGoodBlockIsDrawn();
}

TEST_P(HostileBlocks, BuffersMayBeGoneTheMomentThatTheCallReturns) {
  for (const LONG value : looks().values) {
    put(looks().property, value);
    for (const unsigned bits : {8u, 16u, 24u, 32u}) {
      WaveHeader header;
      header.bits = bits;
      auto data = std::make_unique<GuardedBytes>(support::countedBytes(2048 * 2 * bits / 8));
      auto format = std::make_unique<GuardedBytes>(header.bytes());
      AudioDataScript script;
      script.offersFrameData = true;
      script.frameData.buffers = {data->data()};
      script.frameData.dataSizes = {data->size()};
      script.frameData.formats = {format->data()};
      script.frameData.formatSizes = {18};
      sendScript(script);
      data.reset();  // pages that nobody may touch any more
      format.reset();
      shown();
      drawn({290, 70});
    }
  }
  expectTheNextGoodBlockIsDrawn();
}

TEST_P(HostileBlocks, EveryMethodOfABufferMaySendBlocksPutPropertiesAndResize) {
  const std::vector<std::int16_t> samples(2048, 12000);
  const Look look = looks();
  for (int position = 0; position < meddlingCalls; ++position) {
    for (const LONG value : look.values) {
      int deeds = 0;
      const auto meddle = [&](int call) {
        if (call != position) return;
        ++deeds;
        EXPECT_EQ(S_OK, sendNoise());
        put(look.property, value);
        put(isAnalyser() ? L"FFTLength" : L"FFTWindowSize", value % 2 ? 256 : 1024);
        if (!isView()) put(L"LineCount", 20 + value);
        EXPECT_EQ(S_OK, m_container.resize({400 + value, 160}));
        EXPECT_EQ(S_OK, m_audio->_OnTimer());
        EXPECT_EQ(S_OK, m_audio->SendAudioData(nullptr));
      };
      const avhost::Block block(new Meddling(samples, meddle));
      EXPECT_EQ(S_OK, m_audio->SendAudioData(block.get()));
      EXPECT_EQ(1, deeds);
    }
  }
  expectTheNextGoodBlockIsDrawn();
}

TEST_P(HostileBlocks, EveryMethodOfABufferMayReleaseTheControl) {
  const std::vector<std::int16_t> samples(2048, 12000);
  for (int position = 0; position < meddlingCalls; ++position) {
    const avhost::Block block(new Meddling(samples, [&](int call) {
      if (call != position) return;
      m_container.close();
      m_control.Reset();
      m_audio.Reset();
    }));
    IAudioVisualizationTemplate* const raw = m_audio.Get();
    EXPECT_EQ(S_OK, raw->SendAudioData(block.get()));
    ASSERT_FALSE(m_audio) << "call " << position << " never came";
    EXPECT_EQ(S_OK, m_library.canUnloadNow());
    m_control = create<IOleObject>(classId());
    m_audio = as<IAudioVisualizationTemplate>();
    ASSERT_NO_FATAL_FAILURE(activate({400, 160}));
  }
  expectTheNextGoodBlockIsDrawn();
}

INSTANTIATE_TEST_SUITE_P(, HostileBlocks, eachControl);

}  // namespace
}  // namespace av::test
