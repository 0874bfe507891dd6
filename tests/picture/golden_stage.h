#pragma once

#include "host/container.h"
#include "host/dll_test.h"
#include "host/window_picture.h"

#include <windows.h>

#include <mmreg.h>

#include <cstdint>
#include <vector>

namespace av::test {

/// A control of the finished DLL that a golden picture is taken of. It is put, fed and ticked by hand, and no message is
/// dispatched, so that the picture does not depend on how fast the machine is.
class ControlStage {
 public:
  explicit ControlStage(Microsoft::WRL::ComPtr<IAudioVisualizationTemplate> control) : m_control(std::move(control)) {}
  ControlStage(const ControlStage&) = delete;
  ControlStage& operator=(const ControlStage&) = delete;
  ~ControlStage();

  /// Makes the control active in a window of this client size. A size that the screen does not hold is kept for
  /// `picture`, which then has the inactive control drawn as a container does.
  void open(SIZE sizePx);

  /// From here on blocks are not sent: for the picture without its curves.
  void mute() { m_muted = true; }

  /// A sound of voices that differ from channel to channel, over soft noise: one block of `frames` frames. `moment`
  /// picks where in the sound.
  void play(int bits = 16, int channels = 2, int frames = 1024, DWORD sampleRateHz = 44100, int moment = 0);

  /// A block of `bits` a sample in which every channel holds `value`, from −1 to 1.
  void playLevel(double value, int bits = 16, int channels = 2, int frames = 1024);

  /// Ticks of the repaint timer: in the view, steps of the smoothing.
  void tick(int count);

  WindowPicture picture();

 protected:
  Microsoft::WRL::ComPtr<IAudioVisualizationTemplate> m_control;

  void send(const WAVEFORMATEX& format, const std::vector<std::uint8_t>& bytes);

  /// A sound with hills and valleys over the whole scale, 16-bit mono; `moment` says where the hills stand.
  void playHills(double moment, int frames, DWORD sampleRateHz = 44100);

 private:
  SIZE m_sizePx{};
  bool m_muted = false;
  HWND m_frame = nullptr;
  avhost::Container m_container;
};

/// With a view on it.
class GoldenStage : public ControlStage {
 public:
  explicit GoldenStage(const Microsoft::WRL::ComPtr<IAudioVisualization4Type1>& view) : ControlStage(view) {}

  IAudioVisualization4Type1* operator->() const { return static_cast<IAudioVisualization4Type1*>(m_control.Get()); }

  void font(const wchar_t* face, int points, bool bold = false, bool italic = false);
};

/// With a level meter on it, whose peaks are held for days from its second block on.
class GoldenMeterStage : public ControlStage {
 public:
  explicit GoldenMeterStage(const Microsoft::WRL::ComPtr<IAudioVisualization4Type2>& meter) : ControlStage(meter) {}

  IAudioVisualization4Type2* operator->() const { return static_cast<IAudioVisualization4Type2*>(m_control.Get()); }

  /// A sound with hills and valleys over the whole scale, after another one whose hills stand elsewhere and leave peaks.
  void playWithPeaks(int frames = 1024);
};

/// With a spectrum analyser on it.
class GoldenAnalyserStage : public ControlStage {
 public:
  explicit GoldenAnalyserStage(const Microsoft::WRL::ComPtr<IAudioVisualization4Type3>& analyser)
      : ControlStage(analyser) {}

  IAudioVisualization4Type3* operator->() const { return static_cast<IAudioVisualization4Type3*>(m_control.Get()); }

  /// A sound with hills and valleys over the whole scale, after another one whose hills stand elsewhere and leave ticks.
  /// Ticks stand until the last moment, and then for a second.
  void playWithPeaks(DWORD sampleRateHz = 44100);
};

}  // namespace av::test
