#pragma once

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/dll_test.h"
#include "host/window_picture.h"
#include "support/meter_model.h"
#include "support/meter_picture.h"
#include "support/pcm.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace av::test {

/// The finished meter in a container's window and the model beside it, which gets everything that the meter gets.
/// No message is dispatched and peaks are held for days: the picture stands still.
class MeterPictures : public DllTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_meter = create<IAudioVisualization4Type2>(CLSID_CAudioVisualization4Type2);
    ASSERT_TRUE(m_meter);
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    if (m_frame) DestroyWindow(m_frame);
    EXPECT_EQ(0u, m_meter ? m_meter.Reset() : 0u);
    DllTest::TearDown();
  }

  /// Sites and activates the meter with `lineCount` lines.
  void open(int width, int height, int lineCount) {
    // A child, since top-level windows have a smallest width.
    m_frame = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 1000, 700, nullptr,
                              nullptr, nullptr, nullptr);
    ASSERT_TRUE(m_frame);
    ASSERT_EQ(S_OK, m_container.open({.clientSizePx = {width, height}, .parent = m_frame}));
    ASSERT_EQ(S_OK, m_container.host(m_meter.Get()));
    putLineCount(lineCount);
  }

  void putLineCount(int lineCount) {
    ASSERT_EQ(S_OK, m_meter->put_LineCount(lineCount));
    LONG taken = 0;
    ASSERT_EQ(S_OK, m_meter->get_LineCount(&taken));
    ASSERT_EQ(lineCount, taken);
    m_lines.assign(static_cast<std::size_t>(lineCount), {});
    ASSERT_EQ(S_OK, m_meter->put_TickDelayTime(1000000000));
  }
  void putMode(int lineType, int alignmentX = 0) {
    ASSERT_EQ(S_OK, m_meter->put_LineType(lineType));
    ASSERT_EQ(S_OK, m_meter->put_AlignmentX(alignmentX));
    m_settings.lineType = lineType;
    m_settings.alignmentX = alignmentX;
  }
  void putSegments(int height, int interval) {
    ASSERT_EQ(S_OK, m_meter->put_SpotHeight(height));
    ASSERT_EQ(S_OK, m_meter->put_SpotInterval(interval));
    m_settings.spotHeightPx = height;
    m_settings.spotIntervalPx = interval;
  }
  void putLineInterval(int interval) {
    ASSERT_EQ(S_OK, m_meter->put_LineInterval(interval));
    m_settings.lineInterval = interval;
  }
  void putZones(int mid, int high) {
    ASSERT_EQ(S_OK, m_meter->put_MidPoint(mid));
    ASSERT_EQ(S_OK, m_meter->put_HighPoint(high));
    m_settings.midPointPercent = mid;
    m_settings.highPointPercent = high;
  }
  void putTicks(bool visible) {
    ASSERT_EQ(S_OK, m_meter->put_TickVisible(visible ? VARIANT_TRUE : VARIANT_FALSE));
    m_settings.tickVisible = visible ? -1 : 0;
  }
  void putBorder(int type, int width, std::uint32_t rgb) {
    ASSERT_EQ(S_OK, m_meter->put_BorderType(type));
    ASSERT_EQ(S_OK, m_meter->put_BorderWidth(width));
    ASSERT_EQ(S_OK, m_meter->put_BorderColor(swapped(rgb)));
    m_settings.borderType = type;
    m_settings.borderWidthPx = width;
    m_settings.borderColor = 0xFF000000 | rgb;
  }
  /// Seven colours that have nothing in common, in all channels.
  void putColours() {
    const std::uint32_t rgb[] = {0x10203A, 0x21C06B, 0xE3B512, 0xF04E6D, 0x0B3C21, 0x54420A, 0x4B1420};
    ASSERT_EQ(S_OK, m_meter->put_BackColor(swapped(rgb[0])));
    ASSERT_EQ(S_OK, m_meter->put_LineLowColor(swapped(rgb[1])));
    ASSERT_EQ(S_OK, m_meter->put_LineMidColor(swapped(rgb[2])));
    ASSERT_EQ(S_OK, m_meter->put_LineHighColor(swapped(rgb[3])));
    ASSERT_EQ(S_OK, m_meter->put_BackLineLowColor(swapped(rgb[4])));
    ASSERT_EQ(S_OK, m_meter->put_BackLineMidColor(swapped(rgb[5])));
    ASSERT_EQ(S_OK, m_meter->put_BackLineHighColor(swapped(rgb[6])));
    Argb* const fields[] = {&m_settings.backColor,        &m_settings.lineLowColor,     &m_settings.lineMidColor,
                            &m_settings.lineHighColor,    &m_settings.backLineLowColor, &m_settings.backLineMidColor,
                            &m_settings.backLineHighColor};
    for (std::size_t i = 0; i < std::size(rgb); ++i) *fields[i] = 0xFF000000 | rgb[i];
  }

  /// A block of 16-bit mono samples, as many as are analysed: a power of 4, at least as many as there are lines.
  void send(const std::vector<std::int16_t>& samples) {
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
    const auto bytes = static_cast<LONG>(samples.size() * sizeof samples[0]);
    ASSERT_EQ(S_OK, m_meter->SendAudioData(avhost::audioFrames(format, samples.data(), bytes).get()));
    Pcm pcm;
    pcm.format.nChannels = 1;
    pcm.format.wBitsPerSample = 16;
    for (const std::int16_t sample : samples) {
      pcm.bytes.push_back(static_cast<std::uint8_t>(sample & 0xFF));
      pcm.bytes.push_back(static_cast<std::uint8_t>(sample >> 8 & 0xFF));
    }
    LONG window = 0;
    ASSERT_EQ(S_OK, m_meter->get_FFTWindowType(&window));
    const auto bands = m_model.bands(pcm, samples.size(), window, static_cast<int>(m_lines.size()), 0);
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
      m_lines[i].value = bands[i];
      if (bands[i] > m_lines[i].peak) m_lines[i].peak = bands[i];
    }
  }
  void sendSilence() { send(std::vector<std::int16_t>(m_lines.size() < 16 ? 16 : 256)); }
  /// A quarter of the sample rate in full scale, every second sample 0: without a window exactly 0 dB in band 4 of the 7
  /// that a block of 16 frames has, and −91 dB in the others.
  void sendFullScale() {
    ASSERT_EQ(7u, m_lines.size());
    ASSERT_EQ(S_OK, m_meter->put_FFTWindowType(0));
    send({32767, 0, -32767, 0, 32767, 0, -32767, 0, 32767, 0, -32767, 0, 32767, 0, -32767, 0});
    ASSERT_EQ(0.0, m_lines[3].value);
    ASSERT_EQ(-91.0, m_lines[2].value);
  }
  /// A loud block and then a softer one, so that peaks stand above levels. Levels lie all over the scale.
  void sendSounds(std::uint32_t seed = 1) {
    std::mt19937 random(seed);
    for (const double loudness : {1.0, 0.03}) {
      std::vector<std::int16_t> samples(256);
      for (int partial = 1; partial < 128; partial += 2) {
        const double amplitude = 9000 * loudness * std::pow(10.0, -static_cast<double>(random() % 70) / 20);
        const double phase = static_cast<double>(random() % 628) / 100;
        for (std::size_t n = 0; n < samples.size(); ++n) {
          const double turn = 2 * std::numbers::pi * partial * static_cast<double>(n) / 256;
          samples[n] = static_cast<std::int16_t>(
              std::clamp(samples[n] + std::lround(amplitude * std::sin(turn + phase)), -32767l, 32767l));
        }
      }
      send(samples);
    }
  }

  /// What the window shows now.
  WindowPicture picture() {
    EXPECT_EQ(S_OK, m_meter->Repaint());
    return pictureOf(m_container.controlWindow());
  }

  /// Empty when the window shows these pixels, else the first differences and their number.
  static std::string differences(const PixelGrid& expected, const WindowPicture& shown) {
    std::ostringstream text;
    if (shown.width != expected.width() || shown.height != expected.height()) {
      text << "shows " << shown.width << " x " << shown.height << " pixels";
      return text.str();
    }
    int count = 0;
    for (int y = 0; y < shown.height; ++y) {
      for (int x = 0; x < shown.width; ++x) {
        const std::uint32_t wanted = expected.at(x, y) & 0xFFFFFF;
        if (shown.at(x, y) == wanted) continue;
        if (count++ < 4)
          text << "(" << x << ", " << y << ") shows " << std::hex << shown.at(x, y) << " for " << wanted << std::dec
               << "; ";
      }
    }
    if (count == 0) return {};
    text << count << " pixels differ";
    return text.str();
  }

  /// Bars or dots of the model's lines, to the pixel.
  void expectBars(const std::string& what = "") {
    const WindowPicture shown = picture();
    EXPECT_EQ("", differences(meterBars(m_settings, m_lines, shown.width, shown.height), shown)) << what;
  }

  static OLE_COLOR swapped(std::uint32_t rgb) { return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16; }

  HWND m_frame = nullptr;
  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type2> m_meter;
  type2::MeterSettings m_settings;
  std::vector<LineInfo> m_lines;
  MeterModel m_model;
};

}  // namespace av::test
