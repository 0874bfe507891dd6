#include "picture/golden_stage.h"

#include "host/audio_buffers.h"

#include <gtest/gtest.h>

#include <olectl.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <string>

namespace av::test {

ControlStage::~ControlStage() {
  EXPECT_EQ(0u, m_container.close());
  if (m_frame) DestroyWindow(m_frame);
  EXPECT_EQ(0u, m_control ? m_control.Reset() : 0u);
}

void ControlStage::open(SIZE sizePx) {
  m_sizePx = sizePx;
  const SIZE screen{GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  if (sizePx.cx > screen.cx || sizePx.cy > screen.cy) return;
  // A child, since top-level windows have a smallest width.
  m_frame = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, screen.cx, screen.cy,
                            nullptr, nullptr, nullptr, nullptr);
  ASSERT_TRUE(m_frame);
  ASSERT_EQ(S_OK, m_container.open({.clientSizePx = sizePx, .parent = m_frame}));
  ASSERT_EQ(S_OK, m_container.host(m_control.Get()));
}

void ControlStage::play(int bits, int channels, int frames, DWORD sampleRateHz, int moment) {
  std::mt19937 engine(static_cast<std::uint32_t>(1 + moment));
  const double fullScale = std::pow(2.0, bits - 1) - 1;
  std::vector<std::uint8_t> bytes;
  for (int frame = 0; frame < frames; ++frame) {
    // Short blocks and all rates show the same few periods.
    const double turns = 2 * std::numbers::pi * (moment + static_cast<double>(frame) / std::min(frames, 1024));
    for (int channel = 0; channel < channels; ++channel) {
      double value = 0;
      for (int partial = 1; partial <= 12; ++partial)
        value += std::sin(turns * partial * (4.3 + 1.4 * channel) + 0.5 * channel) / (partial * partial);
      value *= 0.55 / (1 + 0.25 * channel);
      value += 0.004 * (static_cast<double>(engine() % 20001) / 10000 - 1);
      auto sample = static_cast<std::int64_t>(std::llround(fullScale * value));
      if (bits == 8) sample += 128;
      for (int byte = 0; byte < bits / 8; ++byte)
        bytes.push_back(static_cast<std::uint8_t>(sample >> (8 * byte) & 0xFF));
    }
  }
  const WAVEFORMATEX format{
      WAVE_FORMAT_PCM, static_cast<WORD>(channels), sampleRateHz, 0, 0, static_cast<WORD>(bits), 0};
  send(format, bytes);
}

void ControlStage::playLevel(double value, int bits, int channels, int frames) {
  const double fullScale = std::pow(2.0, bits - 1) - 1;
  const auto sample = static_cast<std::int64_t>(std::llround(fullScale * value)) + (bits == 8 ? 128 : 0);
  std::vector<std::uint8_t> bytes;
  for (int i = 0; i < frames * channels; ++i) {
    for (int byte = 0; byte < bits / 8; ++byte) bytes.push_back(static_cast<std::uint8_t>(sample >> (8 * byte) & 0xFF));
  }
  const WAVEFORMATEX format{WAVE_FORMAT_PCM, static_cast<WORD>(channels), 44100, 0, 0, static_cast<WORD>(bits), 0};
  send(format, bytes);
}

void ControlStage::send(const WAVEFORMATEX& format, const std::vector<std::uint8_t>& bytes) {
  if (m_muted) return;
  ASSERT_EQ(S_OK,
            m_control->SendAudioData(avhost::audioFrames(format, bytes.data(), static_cast<LONG>(bytes.size())).get()));
}

void ControlStage::tick(int count) {
  for (int i = 0; i < count; ++i) ASSERT_EQ(S_OK, m_control->_OnTimer());
}

void GoldenStage::font(const wchar_t* face, int points, bool bold, bool italic) {
  std::wstring name = face;
  FONTDESC description{};
  description.cbSizeofstruct = sizeof description;
  description.lpstrName = name.data();
  description.cySize.int64 = points * 10000;
  description.sWeight = bold ? FW_BOLD : FW_NORMAL;
  description.sCharset = DEFAULT_CHARSET;
  description.fItalic = italic;
  Microsoft::WRL::ComPtr<IFontDisp> font;
  ASSERT_EQ(S_OK, OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(font.GetAddressOf())));
  ASSERT_EQ(S_OK, (*this)->putref_ScaleFont(font.Get()));
}

void ControlStage::playHills(double moment, int frames, DWORD sampleRateHz) {
  const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, sampleRateHz, sampleRateHz * 2, 2, 16, 0};
  std::mt19937 engine(7);
  std::vector<double> sum(static_cast<std::size_t>(frames));
  // A partial a bin; every one half a turn and more away from the one before.
  for (int bin = 1; bin < frames / 2; ++bin) {
    const double part = 2.0 * bin / frames;
    const double levelDb = -22 - 40 * part + 14 * std::sin(18 * part + moment) + 5 * std::sin(97 * part + 3 * moment);
    const double phase = static_cast<double>(engine() % 62832) / 10000;
    const double turn = 2 * std::numbers::pi * bin / frames;
    for (std::size_t n = 0; n < sum.size(); ++n)
      sum[n] += std::pow(10.0, levelDb / 20) * std::sin(turn * static_cast<double>(n) + phase);
  }
  std::vector<std::uint8_t> bytes;
  for (const double value : sum) {
    const long sample = std::clamp(std::lround(16000 * value), -32768l, 32767l);
    bytes.push_back(static_cast<std::uint8_t>(sample & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(sample >> 8 & 0xFF));
  }
  send(format, bytes);
}

void GoldenMeterStage::playWithPeaks(int frames) {
  ASSERT_EQ(S_OK, (*this)->put_TickDelayTime(1000000000));
  for (const double moment : {2.2, 0.0}) playHills(moment, frames);
}

void GoldenAnalyserStage::playWithPeaks(DWORD sampleRateHz) {
  LONG length = 0, lineCount = 0;
  ASSERT_EQ(S_OK, (*this)->get_FFTLength(&length));
  ASSERT_EQ(S_OK, (*this)->get_LineCount(&lineCount));
  // Columns that are made by a put hold their ticks for a second, and those that are switched off do not fall.
  ASSERT_EQ(S_OK, (*this)->put_LineCount(lineCount));
  ASSERT_EQ(S_OK, (*this)->put_TickVisible(VARIANT_FALSE));
  for (const double moment : {2.2, 0.0}) playHills(moment, length, sampleRateHz);
  ASSERT_EQ(S_OK, (*this)->put_TickVisible(VARIANT_TRUE));
}

WindowPicture ControlStage::picture() {
  if (m_frame) {
    InvalidateRect(m_container.controlWindow(), nullptr, FALSE);
    UpdateWindow(m_container.controlWindow());
    return pictureOf(m_container.controlWindow());
  }
  Microsoft::WRL::ComPtr<IViewObject> viewObject;
  EXPECT_EQ(S_OK, m_control.As(&viewObject));
  return pictureDrawnBy(m_sizePx, [&](HDC target) {
    const RECTL bounds{0, 0, m_sizePx.cx, m_sizePx.cy};
    EXPECT_EQ(S_OK,
              viewObject->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, &bounds, nullptr, nullptr, 0));
  });
}

}  // namespace av::test
