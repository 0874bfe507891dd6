#pragma once

#include "host/container.h"
#include "host/dll_test.h"
#include "host/window_picture.h"

#include <windows.h>

#include <mmreg.h>

#include <cstdint>
#include <vector>

namespace av::test {

/// A view of the finished DLL that a golden picture is taken of. It is put, fed and ticked by hand, and no message is
/// dispatched, so that the picture does not depend on how fast the machine is.
class GoldenStage {
 public:
  explicit GoldenStage(Microsoft::WRL::ComPtr<IAudioVisualization4Type1> view) : m_view(std::move(view)) {}
  GoldenStage(const GoldenStage&) = delete;
  GoldenStage& operator=(const GoldenStage&) = delete;
  ~GoldenStage();

  IAudioVisualization4Type1* operator->() const { return m_view.Get(); }

  /// Makes the view active in a window of this client size. A size that the screen does not hold is kept for `picture`,
  /// which then has the inactive view drawn as a container does.
  void open(SIZE sizePx);

  /// From here on blocks are not sent: for the picture without its curves.
  void mute() { m_muted = true; }

  /// A sound of voices that differ from channel to channel, over soft noise: one block of `frames` frames. `moment`
  /// picks where in the sound.
  void play(int bits = 16, int channels = 2, int frames = 1024, DWORD sampleRateHz = 44100, int moment = 0);

  /// A block of `bits` a sample in which every channel holds `value`, from −1 to 1.
  void playLevel(double value, int bits = 16, int channels = 2, int frames = 1024);

  /// Steps of the smoothing.
  void tick(int count);

  void font(const wchar_t* face, int points, bool bold = false, bool italic = false);

  WindowPicture picture();

 private:
  void send(const WAVEFORMATEX& format, const std::vector<std::uint8_t>& bytes);

  Microsoft::WRL::ComPtr<IAudioVisualization4Type1> m_view;
  SIZE m_sizePx{};
  bool m_muted = false;
  HWND m_frame = nullptr;
  avhost::Container m_container;
};

}  // namespace av::test
