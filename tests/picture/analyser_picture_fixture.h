#pragma once

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/dll_test.h"
#include "host/window_picture.h"
#include "support/analyser_model.h"
#include "support/analyser_picture.h"

#include <olectl.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <numbers>
#include <random>
#include <vector>

namespace av::test {

/// The finished analyser in a container's window and the model beside it, which gets everything that the analyser gets.
/// No message is dispatched, and ticks are switched on at the last moment, so that the picture stands still.
class AnalyserPictures : public DllTest {
 protected:
  static constexpr int fftLength = 512;

  void SetUp() override {
    DllTest::SetUp();
    m_analyser = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
    ASSERT_TRUE(m_analyser);
    m_settings.tickVisible = 0;
    ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_FALSE));
    putColours();
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    if (m_frame) DestroyWindow(m_frame);
    EXPECT_EQ(0u, m_analyser ? m_analyser.Reset() : 0u);
    DllTest::TearDown();
  }

  void open(int width, int height) {
    m_width = width;
    m_height = height;
    // A child, since top-level windows have a smallest width.
    m_frame = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 1000, 700, nullptr,
                              nullptr, nullptr, nullptr);
    ASSERT_TRUE(m_frame);
    ASSERT_EQ(S_OK, m_container.open({.clientSizePx = {width, height}, .parent = m_frame}));
    ASSERT_EQ(S_OK, m_container.host(m_analyser.Get()));
  }

  /// Ten colours that have nothing in common, in all channels.
  void putColours() {
    using Put = HRESULT (STDMETHODCALLTYPE IAudioVisualization4Type3::*)(OLE_COLOR);
    using Analyser = IAudioVisualization4Type3;
    using Settings = type3::AnalyserSettings;
    const struct {
      Put put;
      std::uint32_t Settings::*field;
      std::uint32_t colour;
    } rows[] = {{&Analyser::put_BackColor, &Settings::backColor, 0x3A2010},
                {&Analyser::put_LineLowColor, &Settings::lineLowColor, 0x6BC021},
                {&Analyser::put_LineMidColor, &Settings::lineMidColor, 0x12B5E3},
                {&Analyser::put_LineHighColor, &Settings::lineHighColor, 0x6D4EF0},
                {&Analyser::put_BackLineLowColor, &Settings::backLineLowColor, 0x213C0B},
                {&Analyser::put_BackLineMidColor, &Settings::backLineMidColor, 0x0A4254},
                {&Analyser::put_BackLineHighColor, &Settings::backLineHighColor, 0x20144B},
                {&Analyser::put_ScaleColor, &Settings::scaleColor, 0xE7D5F1},
                {&Analyser::put_BorderColor, &Settings::borderColor, 0x7788FF},
                {&Analyser::put_TickColor, &Settings::tickColor, 0xF7E3A9}};
    for (const auto& row : rows) {
      ASSERT_EQ(S_OK, (m_analyser.Get()->*row.put)(row.colour));
      m_settings.*row.field = row.colour;
    }
  }

  void putLook(LONG viewType, LONG alignmentY) {
    ASSERT_EQ(S_OK, m_analyser->put_ViewType(viewType));
    ASSERT_EQ(S_OK, m_analyser->put_AlignmentY(alignmentY));
    m_settings.viewType = viewType;
    m_settings.alignmentY = alignmentY;
  }
  void putGaps(LONG lineInterval, LONG spotHeight, LONG spotInterval) {
    ASSERT_EQ(S_OK, m_analyser->put_LineInterval(lineInterval));
    ASSERT_EQ(S_OK, m_analyser->put_SpotHeight(spotHeight));
    ASSERT_EQ(S_OK, m_analyser->put_SpotInterval(spotInterval));
    m_settings.lineIntervalPx = lineInterval;
    m_settings.spotHeightPx = spotHeight;
    m_settings.spotIntervalPx = spotInterval;
  }
  void putLineCount(LONG lineCount) {
    ASSERT_EQ(S_OK, m_analyser->put_LineCount(lineCount));
    m_settings.lineCount = lineCount;
    m_lines.assign(static_cast<std::size_t>(lineCount), {});
    m_bands.assign(static_cast<std::size_t>(lineCount), 0.0);
  }
  void putZones(LONG mid, LONG high) {
    ASSERT_EQ(S_OK, m_analyser->put_MidPoint(mid));
    ASSERT_EQ(S_OK, m_analyser->put_HighPoint(high));
    m_settings.midPointPercent = mid;
    m_settings.highPointPercent = high;
  }
  void putBorder(LONG type) {
    ASSERT_EQ(S_OK, m_analyser->put_BorderType(type));
    m_settings.borderType = type;
  }
  void putScales(bool x, bool y) {
    m_settings.scaleXVisible = x ? -1 : 0;
    m_settings.scaleYVisible = y ? -1 : 0;
    ASSERT_EQ(S_OK, m_analyser->put_ScaleXVisible(m_settings.scaleXVisible));
    ASSERT_EQ(S_OK, m_analyser->put_ScaleYVisible(m_settings.scaleYVisible));
  }
  void putAxis(LONG xScaleType, LONG alignmentX) {
    ASSERT_EQ(S_OK, m_analyser->put_XScaleType(xScaleType));
    ASSERT_EQ(S_OK, m_analyser->put_AlignmentX(alignmentX));
    m_settings.xScaleType = xScaleType;
    m_settings.alignmentX = alignmentX;
  }
  /// Draws the ticks; they begin to fall a second after they were raised, or later.
  void showTicks() {
    ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_TRUE));
    m_settings.tickVisible = -1;
  }
  void hideTicks() {
    ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_FALSE));
    m_settings.tickVisible = 0;
  }

  /// Power of the bins as sums over all samples, through the window that fresh analysers have.
  static std::vector<double> powerSpectrum(const std::vector<double>& samples) {
    const std::size_t n = samples.size();
    std::vector<double> weighted(n), power(n / 2);
    double meanSquare = 0;
    for (std::size_t i = 0; i < n; ++i) {
      const double hann =
          0.5 - 0.5 * std::cos(static_cast<double>(i) * 2 * std::numbers::pi / static_cast<double>(n - 1));
      weighted[i] = samples[i] * hann;
      meanSquare += hann * hann / static_cast<double>(n);
    }
    const auto binPower = [&](std::size_t k) {
      double real = 0, imaginary = 0;
      for (std::size_t i = 0; i < n; ++i) {
        const double turn = 2 * std::numbers::pi * static_cast<double>(k * i % n) / static_cast<double>(n);
        real += weighted[i] * std::cos(turn);
        imaginary += weighted[i] * std::sin(turn);
      }
      return (real * real + imaginary * imaginary) / meanSquare;
    };
    for (std::size_t k = 0; k < power.size(); ++k) power[k] = binPower(k);
    power[0] += binPower(n / 2);  // the first bin holds both ends
    return power;
  }

  /// A block of `fftLength` 16-bit mono samples.
  void send(const std::vector<std::int16_t>& samples) {
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
    const auto bytes = static_cast<LONG>(samples.size() * sizeof samples[0]);
    ASSERT_EQ(S_OK, m_analyser->SendAudioData(avhost::audioFrames(format, samples.data(), bytes).get()));
    computeBands(samples);
    updateModel();
  }
  /// The model's bands of a block.
  void computeBands(const std::vector<std::int16_t>& samples) {
    std::vector<double>& power = m_spectra[samples];  // sums take their time, and tests send the same blocks again
    if (power.empty()) power = powerSpectrum({samples.begin(), samples.end()});
    m_bands = bandBuffer(m_settings, fftLength, 44100, power, 32768);
  }
  /// The model's columns from its bands, in a column area of the current picture.
  void updateModel() { updateModel(m_height - xStrip(shown())); }
  void updateModel(int areaHeight) {
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
      m_lines[i].value = columnHeight(m_settings, m_bands[i], fftLength, areaHeight);
      m_lines[i].peak = std::max(m_lines[i].peak, m_lines[i].value);
    }
  }
  /// Columns and peaks of before are gone.
  void forgetPeaks() { putLineCount(m_settings.lineCount); }

  static std::vector<std::int16_t> noise(unsigned seed, int amplitude) {
    std::mt19937 random(seed);
    std::vector<std::int16_t> samples(fftLength);
    for (std::int16_t& sample : samples)
      sample = static_cast<std::int16_t>(static_cast<int>(random() % static_cast<unsigned>(2 * amplitude)) - amplitude);
    return samples;
  }

  WindowPicture shown() const { return pictureOf(m_container.controlWindow()); }

  /// What the control draws as a container asks for it, at `at` of a larger target.
  WindowPicture drawnAt(POINT at, SIZE size) {
    ComPtr<IViewObject> viewObject;
    EXPECT_EQ(S_OK, m_analyser.As(&viewObject));
    const WindowPicture whole = pictureDrawnBy({size.cx + at.x + 20, size.cy + at.y + 20}, [&](HDC target) {
      const RECTL bounds{at.x, at.y, at.x + size.cx, at.y + size.cy};
      EXPECT_EQ(S_OK, viewObject->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, &bounds, nullptr,
                                       nullptr, 0));
    });
    for (int y = 0; y < whole.height; ++y)
      for (int x = 0; x < whole.width; ++x)
        if (x < at.x || y < at.y || x >= at.x + size.cx || y >= at.y + size.cy) {
          EXPECT_EQ(0u, whole.at(x, y)) << "outside, " << x << ", " << y;
        }
    return cutOut(whole, {at.x, at.y, at.x + size.cx, at.y + size.cy});
  }

  static std::uint32_t rgb(std::uint32_t colour) {
    return (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
  }

  /// Sizes of the strips of a picture: their colour beside the border and away from the texts.
  int xStrip(const WindowPicture& picture) const {
    if (m_settings.scaleXVisible != -1) return 0;
    int rows = 1;
    while (rows < picture.height && picture.at(1, picture.height - 1 - rows) == rgb(m_settings.scaleColor)) ++rows;
    return rows > 1 ? rows : 0;  // one may be the border
  }
  int yStrip(const WindowPicture& picture) const {
    if (m_settings.scaleYVisible != -1) return 0;
    int columns = 1;
    while (columns < picture.width && picture.at(picture.width - 1 - columns, 1) == rgb(m_settings.scaleColor))
      ++columns;
    return columns > 1 ? columns : 0;
  }

  /// Compares all but the inside of the strips, where the texts are. The gradients of GDI may round either way.
  void expectAsReference(const WindowPicture& picture) const {
    const int strip = xStrip(picture), side = yStrip(picture);
    Bitmap expected = analyserPicture(m_settings, m_lines, picture.width, picture.height, strip, side);
    // Pens do not draw the last point of a line.
    if (m_settings.borderType >= 2) expected.set(picture.width - 1, 0, m_settings.borderType == 2 ? 0x14 : 0x10);
    const int tolerance = m_settings.viewType % 2;
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const bool edge = x == 0 || y == 0 || x == picture.width - 1 || y == picture.height - 1;
        const bool inStrip = x >= picture.width - side || y >= picture.height - strip;
        if (inStrip && !edge) continue;
        const std::uint32_t wanted = rgb(expected.at(x, y)), found = picture.at(x, y);
        for (int shift = 0; shift < 24; shift += 8) {
          ASSERT_LE(std::abs(static_cast<int>(wanted >> shift & 0xFF) - static_cast<int>(found >> shift & 0xFF)),
                    tolerance)
              << "(" << x << ", " << y << ") of " << picture.width << " x " << picture.height << ", view "
              << m_settings.viewType << ", mirrored " << m_settings.alignmentY << ", border " << m_settings.borderType
              << ", segments " << m_settings.spotHeightPx << " + " << m_settings.spotIntervalPx << ", columns "
              << m_settings.lineCount << " + " << m_settings.lineIntervalPx << std::hex << ": expected " << wanted
              << ", shown " << found;
        }
      }
    }
  }

  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type3> m_analyser;
  type3::AnalyserSettings m_settings;
  std::vector<LineInfo> m_lines = std::vector<LineInfo>(60);
  std::vector<double> m_bands = std::vector<double>(60);
  std::map<std::vector<std::int16_t>, std::vector<double>> m_spectra;
  int m_width = 0;
  int m_height = 0;
  HWND m_frame = nullptr;
};

}  // namespace av::test
