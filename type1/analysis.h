#pragma once

#include "common/audio_block.h"
#include "common/lockable.h"
#include "common/relaxed.h"
#include "common/stream_format.h"
#include "dsp/centred_windows.h"
#include "dsp/hartley.h"
#include "type1/channel_slots.h"
#include "type1/settings.h"
#include "type1/view_signal.h"

#include <cstdint>
#include <memory>

namespace av::type1 {

/// The data side of the view: turns blocks into the arrays that the drawing reads and animates them.
///
/// Threads. `accept`, `reset` and `resizeWindow` run one at a time (under the control's mutex), `smoothingStep` and
/// `signal` on the control thread. The analysis rewrites arrays without the drawing lock, so a picture may mix two blocks;
/// exchanging an array takes the lock. The drawing lock has to be recursive.
class ViewAnalysis {
 public:
  /// What became of a block.
  enum class Outcome {
    dropped,   ///< refused: nothing has changed
    stored,    ///< too short to be analysed: only format, full scale and dynamic range (and added channels) are new
    analysed,  ///< the arrays are new. With smoothing off a redraw request is due now
  };

  /// Allocates the tables of the default window size (std::bad_alloc), but no channel arrays.
  /// `allocator` allocates the channel arrays; another one than the default is for tests.
  explicit ViewAnalysis(Lockable& drawingLock, ChannelSlots::Allocator allocator = ChannelSlots::allocateOrNull);

  /// Analyses one block of interleaved PCM; only its first N frames are touched. Allocates only when channels are added.
  /// Overwrites `settings.dynamicRangeDb`, also for a block that is too short.
  Outcome accept(const AudioBlock& block,
                 ViewSettings& settings) noexcept;  // [audio thread, under the control's mutex]

  /// One step of the smoothing animation. Returns whether a redraw request is due.
  bool smoothingStep(const ViewSettings& settings) noexcept;  // [control thread]

  /// Sets the elements from `fromIndex` on of all arrays in use to the visualisation type's reset value, and allocates
  /// missing arrays.
  void reset(const ViewSettings& settings, int fromIndex = 0) noexcept;  // [under the control's mutex]

  /// Takes over `settings.fftWindowSize`: all arrays are freed, those in use allocated anew, at the reset value.
  /// std::bad_alloc where there is no room for the transform's tables: the setting goes back to the size in use then and
  /// nothing else has changed.
  void resizeWindow(ViewSettings& settings);  // [control thread, under the control's mutex]

  /// What the drawing reads. The views are valid while the drawing lock is held.
  ViewSignal signal() const noexcept;  // [under the drawing lock]

  const StreamFormat& format() const noexcept { return m_format; }  // [under the control's mutex]
  int windowSize() const noexcept { return m_slots.windowSize(); }
  bool dataReceived() const noexcept { return m_dataReceived; }
  bool animating() const noexcept { return m_animating; }

 private:
  /// What the transform needs for one N.
  struct Tables {
    explicit Tables(int windowSize) : transform(windowSize), window(static_cast<std::size_t>(windowSize)) {}
    dsp::HartleyTransform transform;
    dsp::CentredWindow window;
  };

  void storeFormat(const AudioFormatBlock& header, ViewSettings& settings) noexcept;
  void decode(const AudioBlock& block, std::int32_t visualizationType) noexcept;
  void analyseSpectra(int windowType) noexcept;

  Lockable& m_drawingLock;
  ChannelSlots m_slots;
  std::unique_ptr<Tables> m_tables;
  StreamFormat m_format;
  double m_fullScaleDb = ViewSettings().dynamicRangeDb;  ///< the dynamic range of `m_fullScale`
  // The drawing reads these while a block may be changing them.
  Relaxed<int> m_channelCount = 2;  ///< channels in use: those of the last accepted block, at most maxChannels
  Relaxed<std::uint32_t> m_sampleRateHz = std::uint32_t{44100};
  Relaxed<double> m_fullScale = 32767.0;
  Relaxed<bool> m_dataReceived = false;
  Relaxed<bool> m_animating = false;
};

/// The value of a reset array: type × −200 up to type 5, 0 from type 6 on. That it depends on the type is on purpose:
/// views that get no data show it.
constexpr double resetValue(std::int32_t visualizationType) noexcept {
  return visualizationType <= 5 ? visualizationType * -200.0 : 0.0;
}

}  // namespace av::type1
