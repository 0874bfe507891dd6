#pragma once

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/dll_test.h"
#include "host/message_pump.h"
#include "support/win/accessibility.h"

#include <mmreg.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace av::test {

/// One of the three controls in a window, as a screen reader finds it there.
class HeardControl {
 public:
  HeardControl(avhost::ControlLibrary& library, int type) : m_type(type) {
    static const CLSID classes[] = {CLSID_CAudioVisualization4Type1, CLSID_CAudioVisualization4Type2,
                                    CLSID_CAudioVisualization4Type3};
    EXPECT_EQ(S_OK, library.create(classes[type - 1], m_control.GetAddressOf()));
  }
  HeardControl(const HeardControl&) = delete;
  HeardControl& operator=(const HeardControl&) = delete;
  ~HeardControl() { end(); }

  void host(const avhost::Ambients& ambients = {}) {
    ASSERT_EQ(S_OK, m_container.open(
                        {.title = L"host", .clientSizePx = {240, 160}, .positionPx = {0, 0}, .ambients = ambients}));
    ASSERT_EQ(S_OK, m_container.host(m_control.Get()));
    ASSERT_TRUE(window());
  }
  /// Windows and control go; false if the container or somebody else still holds the control.
  bool end() {
    const bool left = m_container.close() == 0;
    return (!m_control || m_control.Reset() == 0) && left;
  }

  HWND window() const { return m_container.controlWindow(); }
  avhost::Container& container() { return m_container; }
  IAudioVisualizationTemplate* get() const { return m_control.Get(); }
  Microsoft::WRL::ComPtr<IAccessible> accessible() const { return accessibleOf(window()); }

  /// The plainest picture of a spectrum: no smoothing, windows without slopes.
  void showPlainSpectra() {
    if (m_type == 1) {
      ASSERT_EQ(S_OK, as<IAudioVisualization4Type1>()->put_VisualizationType(2));
      ASSERT_EQ(S_OK, as<IAudioVisualization4Type1>()->put_VisualizationSmooth(VARIANT_FALSE));
    } else if (m_type == 2) {
      ASSERT_EQ(S_OK, as<IAudioVisualization4Type2>()->put_FFTWindowType(0));
    } else {
      ASSERT_EQ(S_OK, as<IAudioVisualization4Type3>()->put_FFTWindowType(0));
      ASSERT_EQ(S_OK, as<IAudioVisualization4Type3>()->put_FFTLength(512));
    }
  }

  /// A block of 1024 frames, 32 kHz, 16 bits, of two channels: a sine of `hz` of that amplitude (1: full scale) on both.
  void hear(double amplitude, double hz = 1000) {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < 1024; ++i) {
      const double sample = 32767 * amplitude * std::sin(2 * std::numbers::pi * hz * i / 32000);
      samples.insert(samples.end(), 2, static_cast<std::int16_t>(std::lround(sample)));
    }
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, 2, 32000, 128000, 4, 16, 0};
    const auto bytes = static_cast<LONG>(samples.size() * sizeof samples[0]);
    ASSERT_EQ(S_OK, m_control->SendAudioData(avhost::audioFrames(format, samples.data(), bytes).get()));
  }

  template <class Interface>
  Microsoft::WRL::ComPtr<Interface> as() {
    Microsoft::WRL::ComPtr<Interface> face;
    EXPECT_EQ(S_OK, m_control.As(&face));
    return face;
  }

 private:
  int m_type;
  Microsoft::WRL::ComPtr<IAudioVisualizationTemplate> m_control;
  avhost::Container m_container;
};

/// A test with a control of each class, hosted side by side: what holds for one of them holds for all.
class AccessibilityTest : public DllTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    for (const int type : {1, 2, 3}) m_controls.push_back(std::make_unique<HeardControl>(m_library, type));
  }
  void TearDown() override {
    for (const auto& control : m_controls) EXPECT_TRUE(control->end());
    m_controls.clear();
    DllTest::TearDown();
  }

  void hostAll(const avhost::Ambients& ambients = {}) {
    for (const auto& control : m_controls) ASSERT_NO_FATAL_FAILURE(control->host(ambients));
  }
  void showPlainSpectra() {
    for (const auto& control : m_controls) ASSERT_NO_FATAL_FAILURE(control->showPlainSpectra());
  }
  void allHear(double amplitude) {
    for (const auto& control : m_controls) control->hear(amplitude);
  }

  using Objects = std::vector<ComPtr<IAccessible>>;
  Objects objects() const {
    Objects all;
    for (const auto& control : m_controls) {
      all.push_back(control->accessible());
      EXPECT_TRUE(all.back());
    }
    return all;
  }
  /// What each of them says.
  using Texts = std::vector<std::wstring>;
  static Texts texts(const Objects& all, std::wstring (*ask)(IAccessible&)) {
    Texts said;
    for (const auto& object : all) said.push_back(object ? ask(*object.Get()) : L"(no object)");
    return said;
  }

  std::vector<std::unique_ptr<HeardControl>> m_controls;
};

inline const std::vector<std::wstring> silentTexts(3, L"silence");
inline const std::vector<std::wstring> failedTexts(3, L"(failed)");

}  // namespace av::test
