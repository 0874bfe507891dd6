#pragma once

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/late_bound_test.h"
#include "host/window_picture.h"

#include <mmreg.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>
#include <vector>

namespace av::test {

/// The rows that are read and put as a number.
inline const NumberRow analyserRows[] = {
    {L"ScaleXVisible", 6, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"ScaleYVisible", 7, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"ScaleYMax", 8, VT_I4, 100, 80},
    {L"ScaleYMin", 9, VT_I4, 0, 10},
    {L"FFTLength", 10, VT_I4, 512, 2048},
    {L"BackColor", 11, VT_UI4, 0, 0x00123456},
    {L"BackLineHighColor", 12, VT_UI4, 0x00000055, 0x00000001},
    {L"BackLineMidColor", 13, VT_UI4, 0x00005555, 0x00000200},
    {L"BackLineLowColor", 14, VT_UI4, 0x00005500, 0x00030000},
    {L"LineHighColor", 15, VT_UI4, 0x000000FF, 0x00000004},
    {L"LineMidColor", 16, VT_UI4, 0x0000FFFF, 0x00000500},
    {L"LineLowColor", 17, VT_UI4, 0x0000FF00, 0x00060000},
    {L"MidPoint", 18, VT_I4, 60, 30},
    {L"HighPoint", 19, VT_I4, 80, 50},
    {L"LineInterval", 20, VT_I4, 2, 1},
    {L"SpotInterval", 21, VT_I4, 1, 3},
    {L"SpotHeight", 22, VT_I4, 2, 5},
    {L"LineCount", 23, VT_I4, 60, 20},
    {L"TickVisible", 24, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"DynamicRange", 25, VT_I4, 96, 60},
    {L"ScaleColor", 27, VT_UI4, static_cast<LONG>(GetSysColor(COLOR_BTNFACE)), 0x0000FFFF},
    {L"BorderColor", 28, VT_UI4, 0, 0x00FF0000},
    {L"BorderType", 29, VT_I4, 0, 2},
    {L"FFTWindowType", 30, VT_I4, 2, 10},
    {L"AutoRepaint", 35, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"XScaleType", 36, VT_I4, 0, 1},
    {L"TickColor", 37, VT_UI4, 0x00FFFF00, 0x00070707},
    {L"AlignmentX", 38, VT_I4, 0, 1},
    {L"AlignmentY", 39, VT_I4, 0, 1},
    {L"ViewType", 40, VT_I4, 0, 3},
    {L"AutoSize", 41, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
};

inline const NumberRow* analyserRow(DISPID id) {
  for (const NumberRow& row : analyserRows)
    if (row.dispId == id) return &row;
  return nullptr;
}

inline constexpr DISPID analyserScaleFontId = 26;
inline constexpr DISPID fftWindowCountId = 31;
inline constexpr DISPID fftWindowNameId = 32;
inline constexpr DISPID hasWindowParamId = 33;
inline constexpr DISPID fftWindowParamId = 34;

inline constexpr WAVEFORMATEX analyserMono16{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};

/// A 16-bit sine of `cyclesPerBlock` whole cycles in `frames` frames: all of it in one bin and, by the window, its
/// neighbours.
inline std::vector<std::int16_t> sineBlock(double cyclesPerBlock, std::size_t frames = 512, double amplitude = 30000) {
  std::vector<std::int16_t> samples(frames);
  for (std::size_t i = 0; i < frames; ++i) {
    const double turns = cyclesPerBlock * static_cast<double>(i) / static_cast<double>(frames);
    samples[i] = static_cast<std::int16_t>(std::lround(amplitude * std::sin(2 * std::numbers::pi * turns)));
  }
  return samples;
}

template <class Control>
HRESULT sendSamples(Control* control, const std::vector<std::int16_t>& samples,
                    const WAVEFORMATEX& format = analyserMono16) {
  return control->SendAudioData(
      avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * 2)).get());
}

/// 16-bit noise that lifts every band; always the same.
inline std::vector<std::int16_t> noiseBlock(std::size_t frames = 512, int amplitude = 30000) {
  std::vector<std::int16_t> samples(frames);
  std::uint32_t state = 4711;
  for (std::int16_t& sample : samples) {
    state = state * 1664525 + 1013904223;
    sample = static_cast<std::int16_t>(static_cast<int>(state >> 16) * amplitude / 32768 - amplitude);
  }
  return samples;
}

/// A test with a spectrum analyser of its own, not hosted yet.
class AnalyserTest : public LateBoundTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_analyser = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
    ASSERT_TRUE(m_analyser);
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    EXPECT_EQ(0u, m_analyser ? m_analyser.Reset() : 0u);
    DllTest::TearDown();
  }

  IDispatch* dispatch() override { return m_analyser.Get(); }

  /// In-place active, with a window of that client size, painted once.
  void activate(SIZE clientSizePx) {
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = clientSizePx, .positionPx = {0, 0}}));
    ASSERT_EQ(S_OK, m_container.host(m_analyser.Get()));
    UpdateWindow(window());
  }

  HWND window() const { return m_container.controlWindow(); }
  WindowPicture picture() const { return pictureOf(window()); }

  HRESULT send(const std::vector<std::int16_t>& samples, const WAVEFORMATEX& format = analyserMono16) {
    return sendSamples(m_analyser.Get(), samples, format);
  }

  /// A put through the virtual table of the row with that identifier.
  HRESULT putLong(DISPID id, LONG value) {
    HRESULT result = E_UNEXPECTED;
    forEachAccessor(INVOKE_PROPERTYPUT, [&](DISPID member, void* slot) {
      using Put = HRESULT(STDMETHODCALLTYPE*)(void*, LONG);
      if (member == id) result = (*static_cast<Put*>(slot))(m_analyser.Get(), value);
    });
    return result;
  }

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

  /// Without scales, four columns 20 pixels wide in 80 × 100 pixels, one row a segment: a column's height in pixels is
  /// its level, one a dB.
  void showFourPlainColumns() {
    ASSERT_EQ(S_OK, m_analyser->put_ScaleXVisible(VARIANT_FALSE));
    ASSERT_EQ(S_OK, m_analyser->put_ScaleYVisible(VARIANT_FALSE));
    ASSERT_EQ(S_OK, m_analyser->put_LineCount(4));
    ASSERT_EQ(S_OK, m_analyser->put_LineInterval(0));
    ASSERT_EQ(S_OK, m_analyser->put_SpotInterval(0));
    for (const DISPID id : {15, 16, 17}) ASSERT_EQ(S_OK, invokePut(id, Value(VT_UI4, litColour)));
    for (const DISPID id : {12, 13, 14}) ASSERT_EQ(S_OK, invokePut(id, Value(VT_UI4, unlitColour)));
    ASSERT_EQ(S_OK, m_analyser->put_TickColor(tickColour));
    activate({80, 100});
  }
  static constexpr LONG litColour = 0x00FF00;
  static constexpr LONG unlitColour = 0x202020;
  static constexpr LONG tickColour = 0x0000FF;  // red, 0xFF0000 in pictures

  /// Lit rows and the highest row of the tick (−1: none) of column `i` of those four, without any other tick.
  struct Column {
    int litRows = 0;
    int tickTop = -1;
    friend bool operator==(const Column&, const Column&) = default;
  };
  Column columnShown(int i) const {
    const WindowPicture shown = picture();
    Column column;
    for (int y = 0; y < shown.height; ++y) {
      const std::uint32_t pixel = shown.at(i * 20 + 10, y);
      column.litRows += pixel == 0x00FF00;
      if (pixel == 0xFF0000 && column.tickTop < 0) column.tickTop = y;
    }
    return column;
  }

  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type3> m_analyser;
};

}  // namespace av::test
