// What no well-behaved host does: headers made of noise, properties at the ends of their range, everything at once.

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/dll_test.h"
#include "host/window_picture.h"
#include "support/win/guarded_bytes.h"
#include "support/win/scripted_audio_data.h"
#include "support/win/wave_bytes.h"

#include <atomic>
#include <climits>
#include <random>
#include <thread>

namespace av::test {
namespace {

using support::AudioDataScript;
using support::GuardedBytes;
using support::ScriptedAudioData;
using support::WaveHeader;

constexpr WAVEFORMATEX stereo16{WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};

class HostileHost : public DllTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_view = createView();
    ASSERT_TRUE(m_view);
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {300, 200}}));
    ASSERT_EQ(S_OK, m_container.host(m_view.Get()));
    UpdateWindow(m_container.controlWindow());
  }
  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    EXPECT_EQ(0u, m_view ? m_view.Reset() : 0u);
    DllTest::TearDown();
  }

  /// Whatever went before: the defaults again, a silent block and a loud one, and the two look different.
  void expectItStillDraws() {
    ASSERT_EQ(S_OK, m_view->put_FFTWindowSize(1024));
    ASSERT_EQ(S_OK, m_view->put_VisualizationType(1));
    ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_FALSE));
    ASSERT_EQ(S_OK, m_view->put_ScaleYMin(0));
    ASSERT_EQ(S_OK, m_view->put_ScaleYMax(100));
    std::vector<std::int16_t> samples(2048);
    send(samples);
    const WindowPicture silent = pictureOf(m_container.controlWindow());
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::int16_t>(i * 31);
    send(samples);
    EXPECT_NE(silent, pictureOf(m_container.controlWindow()));
    LONG range = 0;
    EXPECT_EQ(S_OK, m_view->get_DynamicRange(&range));
    EXPECT_EQ(90, range);
  }
  void send(const std::vector<std::int16_t>& samples) {
    EXPECT_EQ(S_OK, m_view->SendAudioData(
                        avhost::audioFrames(stereo16, samples.data(), static_cast<LONG>(2 * samples.size())).get()));
  }

  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type1> m_view;
};

TEST_F(HostileHost, HeadersMadeOfNoiseReadNothingBehindTheDeclaredBytes) {
  std::mt19937 random(20261121);
  const auto oneOf = [&](std::initializer_list<unsigned> choices) {
    return choices.begin()[random() % choices.size()];
  };
  for (int round = 0; round < 1500; ++round) {
    ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(random() % 8 ? VARIANT_TRUE : VARIANT_FALSE));
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
      ASSERT_EQ(S_OK, m_view->put_VisualizationType(static_cast<LONG>(random() % 11) - 1));
      ASSERT_EQ(S_OK, m_view->put_FFTWindowSize(64 << random() % 4));
      ASSERT_EQ(S_OK, m_view->put_FFTViewType(static_cast<LONG>(random() % 4)));
    }
    ScriptedAudioData data(script);
    ASSERT_EQ(S_OK, m_view->SendAudioData(&data)) << round;
    ASSERT_EQ(0, data.references()) << round;
    if (round % 10 == 0) {
      EXPECT_EQ(S_OK, m_view->_OnTimer());
    }
  }
  expectItStillDraws();
}

TEST_F(HostileHost, PropertiesAtTheEndsOfTheirRangeAreStoredAndDrawn) {
  std::mt19937 random(4711);
  const auto anyLong = [&] {
    constexpr LONG ends[] = {INT_MIN, INT_MIN + 1, -1000000, -101, -1,  0,     1,       2,           5,      49,
                             50,      51,          99,       100,  101, 32767, 1000000, INT_MAX - 1, INT_MAX};
    return ends[random() % std::size(ends)];
  };
  std::vector<std::int16_t> samples(2048);
  for (std::int16_t& sample : samples) sample = static_cast<std::int16_t>(random());
  for (int round = 0; round < 1500; ++round) {
    LONG value = anyLong();
    LONG read = 0;
    switch (random() % 9) {
      case 0:
        ASSERT_EQ(S_OK, m_view->put_ScaleYMin(value));
        ASSERT_EQ(S_OK, m_view->get_ScaleYMin(&read));
        break;
      case 1:
        ASSERT_EQ(S_OK, m_view->put_ScaleYMax(value));
        ASSERT_EQ(S_OK, m_view->get_ScaleYMax(&read));
        break;
      case 2:
        ASSERT_EQ(S_OK, m_view->put_DynamicRange(value));
        ASSERT_EQ(S_OK, m_view->get_DynamicRange(&read));
        break;
      case 3:
        ASSERT_EQ(S_OK, m_view->put_BorderType(value));
        ASSERT_EQ(S_OK, m_view->get_BorderType(&read));
        break;
      case 4:
        ASSERT_EQ(S_OK, m_view->put_FFTViewType(value));
        ASSERT_EQ(S_OK, m_view->get_FFTViewType(&read));
        break;
      case 5:
        ASSERT_EQ(S_OK, m_view->put_FFTWindowType(value));
        ASSERT_EQ(S_OK, m_view->get_FFTWindowType(&read));
        break;
      case 6:
        value = random() % 2 ? value : static_cast<LONG>(random() % 10);
        ASSERT_EQ(S_OK, m_view->put_VisualizationType(value));
        ASSERT_EQ(S_OK, m_view->get_VisualizationType(&read));
        break;
      case 7:
        ASSERT_EQ(S_OK, m_view->put_FFTWindowSize(value));
        ASSERT_EQ(S_OK, m_view->get_FFTWindowSize(&read));
        ASSERT_TRUE(read >= 64 && read <= 16384 && (read & (read - 1)) == 0) << value;
        read = value;
        break;
      default:
        send(samples);
        ASSERT_EQ(S_OK, m_view->_OnTimer());
        read = value;
        break;
    }
    ASSERT_EQ(value, read) << round;
  }
  expectItStillDraws();
}

TEST_F(HostileHost, AnyWindowSizeIsSurvived) {
  std::vector<std::int16_t> samples(2048, 1000);
  send(samples);
  for (const SIZE& size :
       {SIZE{0, 0}, SIZE{1, 1}, SIZE{2, 2}, SIZE{1, 500}, SIZE{500, 1}, SIZE{3000, 3}, SIZE{3, 3000}, SIZE{300, 200}}) {
    SetWindowPos(m_container.controlWindow(), nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
    InvalidateRect(m_container.controlWindow(), nullptr, FALSE);
    UpdateWindow(m_container.controlWindow());
    send(samples);
    ASSERT_EQ(S_OK, m_view->put_ScaleYMax(100));
  }
  ASSERT_EQ(S_OK, m_container.resize({301, 200}));
  expectItStillDraws();
}

TEST_F(HostileHost, AnAudioThreadMayPushBlocksWhileEverythingElseChanges) {
  std::atomic<bool> end{false};
  std::atomic<int> blocks{0};
  IAudioVisualization4Type1* const raw = m_view.Get();
  std::thread audio([&] {
    const std::vector<BYTE> bytes(18 * 2 * 16384, 77);
    for (int i = 0; !end; ++i) {
      const WORD channels = static_cast<WORD>(1 + i % 18);
      const WAVEFORMATEX format{WAVE_FORMAT_PCM, channels, 44100, 0, 0, static_cast<WORD>(i % 3 ? 16 : 8), 0};
      EXPECT_EQ(S_OK, raw->SendAudioData(
                          avhost::audioFrames(format, bytes.data(), static_cast<LONG>(2 * channels * 2048)).get()));
      ++blocks;
    }
  });
  std::mt19937 random(99);
  const DWORD start = GetTickCount();
  int rounds = 0;
  for (; GetTickCount() - start < 2500 || blocks < 20; ++rounds) {
    ASSERT_LT(GetTickCount() - start, 60000u) << "the two threads wait for each other";
    EXPECT_EQ(S_OK, m_view->put_VisualizationType(1 + static_cast<LONG>(random() % 7)));
    EXPECT_EQ(S_OK, m_view->put_FFTWindowSize(64 << random() % 5));
    EXPECT_EQ(S_OK, m_view->put_VisualizationSmooth(random() % 2 ? VARIANT_TRUE : VARIANT_FALSE));
    EXPECT_EQ(S_OK, m_container.resize({200 + static_cast<LONG>(random() % 200), 150}));
    if (rounds % 7 == 0) {
      ComPtr<IFontDisp> font;
      EXPECT_EQ(S_OK, m_view->get_ScaleFont(&font));
      EXPECT_EQ(S_OK, m_view->putref_ScaleFont(font.Get()));
    }
    if (rounds % 11 == 0) {  // out of the window and back
      // A block may be telling the site of a new picture at this moment, and hold it until it has.
      m_container.releaseControl();
      EXPECT_EQ(S_OK, m_container.host(m_view.Get()));
    }
    avhost::pumpMessages(0);
  }
  end = true;
  audio.join();
  EXPECT_GT(rounds, 5);
  expectItStillDraws();
}

}  // namespace
}  // namespace av::test
