#pragma once

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/dll_test.h"
#include "host/window_picture.h"
#include "picture/bar_reference.h"
#include "support/view_model.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace av::test {

/// Height in pixels of the view's default scale font on a 96 DPI display. Measured here once more, with GDI+ alone.
int defaultScaleTextHeightPx();

/// Interleaved PCM of `bits` a sample.
using Bytes = std::vector<std::uint8_t>;

/// `sample(frame, channel)` is from −1 to 1 and is rounded to the depth's full scale. 8-bit bytes lie around 128.
template <class Sample>
Bytes pcm(int bits, int channels, int frames, Sample sample) {
  const double fullScale = std::pow(2.0, bits - 1) - 1;
  Bytes bytes;
  for (int frame = 0; frame < frames; ++frame) {
    for (int channel = 0; channel < channels; ++channel) {
      auto value = static_cast<std::int64_t>(std::llround(fullScale * sample(frame, channel)));
      if (bits == 8) value += 128;
      for (int byte = 0; byte < bits / 8; ++byte)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * byte) & 0xFF));
    }
  }
  return bytes;
}

/// A sine that differs from channel to channel.
inline Bytes sines(int bits, int channels, int frames, double amplitude = 0.8, double cycles = 5.3) {
  return pcm(bits, channels, frames, [=](int frame, int channel) {
    return amplitude / (1 + 0.2 * channel) *
           std::sin(2 * std::numbers::pi * (cycles + 1.7 * channel) * frame / frames + 0.4 * channel);
  });
}

inline Bytes noiseBytes(int bits, int channels, int frames, std::uint32_t seed) {
  std::mt19937 engine(seed);
  return pcm(bits, channels, frames, [&](int, int) { return static_cast<double>(engine() % 20001) / 10000.0 - 1.0; });
}

/// The finished control in a container's window and the model beside it, which gets everything that the control gets.
/// No message is dispatched unless a test says so: the picture stands still between a test's own ticks.
class ViewPictures : public DllTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_view = createView();
    ASSERT_TRUE(m_view);
    m_model.textHeightPx = defaultScaleTextHeightPx();
    ASSERT_GT(m_model.textHeightPx, 0);
    m_bars.emplace(m_library.module());
    m_model.drawBars = [this](Canvas& canvas, int type, const std::vector<BarColumn>& columns, int bottom) {
      m_bars->draw(canvas, type, columns, bottom);
    };
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    if (m_frame) DestroyWindow(m_frame);
    EXPECT_EQ(0u, m_view ? m_view.Reset() : 0u);
    m_bars.reset();
    DllTest::TearDown();
  }

  /// Sites and activates the control. Scale texts are made invisible: they are the scale's colour.
  void open(int width, int height) {
    ASSERT_EQ(S_OK, m_view->put_ScaleColor(0x00FF00));
    ASSERT_EQ(S_OK, m_view->put_TextColor(0x00FF00));
    m_model.scale = 0x00FF00;
    m_model.width = width;
    m_model.height = height;
    // A child, since top-level windows have a smallest width.
    m_frame = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 1000, 700, nullptr,
                              nullptr, nullptr, nullptr);
    ASSERT_TRUE(m_frame);
    ASSERT_EQ(S_OK, m_container.open({.clientSizePx = {width, height}, .parent = m_frame}));
    ASSERT_EQ(S_OK, m_container.host(m_view.Get()));
    m_model.layout();
    UpdateWindow(m_container.controlWindow());
  }

  void showScales(bool shown) {
    const VARIANT_BOOL value = shown ? VARIANT_TRUE : VARIANT_FALSE;
    ASSERT_EQ(S_OK, m_view->put_ScaleXVisible(value));
    ASSERT_EQ(S_OK, m_view->put_ScaleYVisible(value));
    m_model.scaleX = m_model.scaleY = shown;
    m_model.layout();
  }
  void showGrid(bool shown) {
    ASSERT_EQ(S_OK, m_view->put_GridVisible(shown ? VARIANT_TRUE : VARIANT_FALSE));
    m_model.gridVisible = shown;
    m_model.layout();
  }
  void putSmooth(bool on) {
    ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(on ? VARIANT_TRUE : VARIANT_FALSE));
    m_model.smooth = on;
    m_model.layout();
  }
  void putType(int type) {
    ASSERT_EQ(S_OK, m_view->put_VisualizationType(type));
    m_model.putType(type);
  }
  void putAxis(int viewType) {
    ASSERT_EQ(S_OK, m_view->put_FFTViewType(viewType));
    m_model.viewType = viewType;
    m_model.layout();
  }
  void putBorder(int type, std::uint32_t rgb) {
    ASSERT_EQ(S_OK, m_view->put_BorderType(type));
    ASSERT_EQ(S_OK, m_view->put_BorderColor((rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16));
    m_model.borderType = type;
    m_model.border = rgb;
  }
  void resize(int width, int height) {
    ASSERT_EQ(S_OK, m_container.resize({width, height}));
    m_model.width = width;
    m_model.height = height;
    m_model.layout();
  }
  void putScaleY(int lowest, int highest) {
    ASSERT_EQ(S_OK, m_view->put_ScaleYMin(lowest));
    ASSERT_EQ(S_OK, m_view->put_ScaleYMax(highest));
    m_model.scaleYMin = lowest;
    m_model.scaleYMax = highest;
    m_model.layout();
  }
  void putDynamicRange(int decibels) {
    ASSERT_EQ(S_OK, m_view->put_DynamicRange(decibels));
    m_model.dynamicRange = decibels;
    m_model.layout();
  }
  void putWindowSize(int size) {
    ASSERT_EQ(S_OK, m_view->put_FFTWindowSize(size));
    m_model.putWindowSize(size);
  }

  void send(int bits, int channels, const Bytes& bytes, DWORD rate = 44100) {
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, static_cast<WORD>(channels), rate, 0, 0, static_cast<WORD>(bits), 0};
    ASSERT_EQ(S_OK,
              m_view->SendAudioData(avhost::audioFrames(format, bytes.data(), static_cast<LONG>(bytes.size())).get()));
    m_model.block(bits, channels, rate, bytes);
  }

  void tick(int count = 1) {
    for (int i = 0; i < count; ++i) {
      ASSERT_EQ(S_OK, m_view->_OnTimer());
      m_model.tick();
    }
  }

  WindowPicture picture() const { return pictureOf(m_container.controlWindow()); }

  /// Empty when the window shows what the canvas holds, else the first difference and their number.
  static std::string differences(const Canvas& expected, const WindowPicture& shown) {
    if (shown.width != expected.width() || shown.height != expected.height()) return "another size";
    int count = 0;
    std::ostringstream text;
    for (int y = 0; y < shown.height; ++y) {
      for (int x = 0; x < shown.width; ++x) {
        const std::uint32_t wanted = expected.pixels()[static_cast<std::size_t>(y * shown.width + x)];
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

  void expectPicture(const char* what = "") { EXPECT_EQ("", differences(m_model.picture(), picture())) << what; }

  HWND m_frame = nullptr;
  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type1> m_view;
  ViewModel m_model;
  std::optional<BarReference> m_bars;
};

}  // namespace av::test
