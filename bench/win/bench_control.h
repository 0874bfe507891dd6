#pragma once

#include "host/audio_buffers.h"
#include "host/create.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <wrl/client.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace av::bench {

using Microsoft::WRL::ComPtr;

/// Ends the program with a line on the error output where `succeeded` is not so.
void need(bool succeeded, const char* what);

/// The finished library, loaded from the program's folder.
class Library {
 public:
  Library();
  /// What a row of the results is named after: "frame-type1" and "frame-type1-waveform", "-bars", "-balance" are the
  /// view's looks, "frame-type2" the level meter, "frame-type3" the spectrum analyser; their defaults otherwise.
  [[nodiscard]] ComPtr<IAudioVisualizationTemplate> create(const std::string& shown) const;
  [[nodiscard]] HMODULE module() const { return m_library.module(); }

 private:
  avhost::ControlLibrary m_library;
};

/// A recording as blocks of a fixed number of frames; after its end it begins again.
class Recording {
 public:
  /// Reads a WAV file.
  Recording(const char* path, std::size_t blockFrames);
  /// Sends the block at the position.
  void sendTo(IAudioVisualizationTemplate& control) const;
  /// Goes on to the next block.
  void advance();
  void rewind() { m_next = 0; }

 private:
  WAVEFORMATEX m_format{};
  std::vector<std::uint8_t> m_samples;
  std::size_t m_blockBytes = 0;
  std::size_t m_next = 0;
};

/// A control that is not active, drawn into a 32-bit picture of 800 × 400 pixels in memory.
class Offscreen {
 public:
  explicit Offscreen(const ComPtr<IAudioVisualizationTemplate>& control);
  ~Offscreen();
  Offscreen(const Offscreen&) = delete;
  Offscreen& operator=(const Offscreen&) = delete;

  /// The next block, a tick of the repaint timer, and the picture that follows from them.
  void frame(Recording& recording);
  /// A number that differs where pictures do.
  [[nodiscard]] std::uint64_t fingerprint() const;

 private:
  ComPtr<IAudioVisualizationTemplate> m_control;
  ComPtr<IViewObject> m_view;
  HDC m_context;
  HBITMAP m_bitmap;
  HGDIOBJ m_before;
  void* m_bits = nullptr;
};

/// Processor time of this process so far, of the program and the system on its behalf, in milliseconds. Wine counts in
/// steps of 10 ms.
double processorTimeMs();

}  // namespace av::bench
