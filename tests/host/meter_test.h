#pragma once

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/late_bound_test.h"
#include "host/window_picture.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace av::test {

inline const NumberRow meterRows[] = {
    {L"LineType", 7, VT_I4, 0, 2},
    {L"LineInterval", 8, VT_I4, 1, 3},
    {L"LineCount", 9, VT_I4, 100, 20},
    {L"BackColor", 11, VT_UI4, 0, 0x00123456},
    {L"BorderColor", 13, VT_UI4, 0, 0x00FF0000},
    {L"LineLowColor", 14, VT_UI4, 0x0000FF00, 0x00000001},
    {L"LineMidColor", 15, VT_UI4, 0x0000FFFF, 0x00000200},
    {L"LineHighColor", 16, VT_UI4, 0x000000FF, 0x00030000},
    {L"BackLineLowColor", 17, VT_UI4, 0x00005500, 0x00000004},
    {L"BackLineMidColor", 18, VT_UI4, 0x00005555, 0x00000500},
    {L"BackLineHighColor", 19, VT_UI4, 0x00000055, 0x00060000},
    {L"TickDelayTime", 30, VT_I4, 200, 300},
    {L"TickReleaseTime", 31, VT_I4, 10, 20},
    {L"TickVisible", 32, VT_BOOL, 1, VARIANT_FALSE},
    {L"SpotHeight", 33, VT_I4, 2, 5},
    {L"SpotInterval", 34, VT_I4, 1, 2},
    {L"MidPoint", 35, VT_I4, 60, 30},
    {L"HighPoint", 36, VT_I4, 80, 50},
    {L"AlignmentY", 40, VT_I4, 0, 1},
    {L"AlignmentX", 41, VT_I4, 0, 1},
    {L"BorderType", 45, VT_I4, 0, 1},
    {L"BorderWidth", 46, VT_I4, 0, 4},
    {L"AutoRepaint", 50, VT_BOOL, VARIANT_TRUE, VARIANT_TRUE},  // what is put does not matter
    {L"AutoSize", 51, VT_BOOL, VARIANT_FALSE, VARIANT_TRUE},
    {L"FFTWindowSize", 60, VT_I4, 256, 4096},
    {L"FFTWindowType", 61, VT_I4, 3, 1},
    {L"FFTViewType", 62, VT_I4, 0, 1},
};

inline const NumberRow& meterRow(DISPID id) {
  for (const NumberRow& row : meterRows)
    if (row.dispId == id) return row;
  ADD_FAILURE() << "no row " << id;
  return meterRows[0];
}

inline constexpr WAVEFORMATEX meterFormat{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};

/// 16-bit noise of one channel, which lifts every band; the same for the same length.
inline std::vector<std::int16_t> noise(std::size_t frames, int amplitude = 30000) {
  std::vector<std::int16_t> samples(frames);
  std::uint32_t state = 12345;
  for (std::int16_t& sample : samples) {
    state = state * 1664525 + 1013904223;
    sample = static_cast<std::int16_t>(static_cast<int>(state >> 16) * amplitude / 32768 - amplitude);
  }
  return samples;
}

template <class Control>
HRESULT sendNoise(Control* control, std::size_t frames = 1024, int amplitude = 30000) {
  const std::vector<std::int16_t> samples = noise(frames, amplitude);
  return control->SendAudioData(
      avhost::audioFrames(meterFormat, samples.data(), static_cast<LONG>(samples.size() * 2)).get());
}

/// A test with a level meter of its own, not hosted yet.
class MeterTest : public LateBoundTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_meter = createMeter();
    ASSERT_TRUE(m_meter);
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    EXPECT_EQ(0u, m_meter ? m_meter.Reset() : 0u);
    DllTest::TearDown();
  }

  IDispatch* dispatch() override { return m_meter.Get(); }

  ComPtr<IAudioVisualization4Type2> createMeter() {
    return create<IAudioVisualization4Type2>(CLSID_CAudioVisualization4Type2);
  }

  /// In-place active, with a window of that client size, painted once.
  void activate(SIZE clientSizePx) {
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = clientSizePx, .positionPx = {0, 0}}));
    ASSERT_EQ(S_OK, m_container.host(m_meter.Get()));
    UpdateWindow(window());
  }

  HWND window() const { return m_container.controlWindow(); }
  WindowPicture picture() const { return pictureOf(window()); }

  /// Covers what the window shows; the next drawing shows it again. No message is dispatched.
  void smear() const {
    HDC target = GetDC(window());
    RECT client{};
    GetClientRect(window(), &client);
    FillRect(target, &client, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    ReleaseDC(window(), target);
  }
  bool isSmeared() const {
    const WindowPicture shown = picture();
    return std::all_of(shown.pixels.begin(), shown.pixels.end(), [](std::uint32_t pixel) { return pixel == 0xFFFFFF; });
  }

  LONG lineCount() {
    LONG value = -1;
    EXPECT_EQ(S_OK, m_meter->get_LineCount(&value));
    return value;
  }
  LONG windowSize() {
    LONG value = -1;
    EXPECT_EQ(S_OK, m_meter->get_FFTWindowSize(&value));
    return value;
  }

  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type2> m_meter;
};

/// How many pixels of a lit segment's colours a picture of a meter shows.
inline int litPixels(const WindowPicture& picture) {
  int count = 0;
  for (const std::uint32_t pixel : picture.pixels) count += pixel == 0x00FF00 || pixel == 0xFFFF00 || pixel == 0xFF0000;
  return count;
}

}  // namespace av::test
