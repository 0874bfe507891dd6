#pragma once

#include "common/audio_block.h"
#include "common/line_list.h"
#include "common/relaxed.h"
#include "common/stream_format.h"
#include "dsp/centred_windows.h"
#include "dsp/radix4_hartley.h"
#include "type2/analysis_length.h"
#include "type2/band_fold.h"
#include "type2/band_ratio.h"
#include "type2/settings.h"

#include <array>
#include <cstdint>
#include <memory>

namespace av::type2 {

/// The data side of the level meter: turns blocks into the values of the lines.
///
/// Threads. `accept` and `clear` run one at a time, under the control's mutex; they take the line list's lock themselves
/// while they write lines.
class MeterAnalysis {
 public:
  /// What became of a block.
  enum class Outcome {
    dropped,   ///< refused: nothing has changed
    tooShort,  ///< fewer frames than lines: the lines are empty now. A redraw is due at once
    analysed,  ///< the lines have new values, which the next tick draws
  };

  /// `lines` outlives this object. Allocates all that blocks will ever need (std::bad_alloc).
  explicit MeterAnalysis(LineList& lines);

  /// Mixes a block of interleaved PCM to mono, windows and transforms it, and folds the levels into the lines.
  /// A depth that is not decoded here (anything but 8, 16 and 32 bits) leaves the buffer as the last block's analysis
  /// left it, and that is analysed again. Overwrites `settings.fftWindowSize` with the analysis length. Allocates nothing.
  // [audio thread, under the control's mutex]
  Outcome accept(const AudioBlock& block, MeterSettings& settings, std::uint32_t nowMs) noexcept;

  /// Empties the lines and shows none of them until the next block.
  // [audio thread, under the control's mutex]
  void clear(std::uint32_t nowMs) noexcept;

  /// Whether there are lines to draw: from the first accepted block on, until `clear`. [any thread]
  bool hasData() const noexcept { return m_hasData; }

  /// Where the bands of the last analysed block lie. [any thread]
  MeterAxis axis() const noexcept { return {m_layout, m_analysedLength, m_sampleRateHz}; }

  const StreamFormat& format() const noexcept { return m_format; }  // [under the control's mutex]

 private:
  using Transform = dsp::Radix4Hartley;
  /// Begins with a cache line, so that no vector lies across two.
  struct alignas(64) Buffer : std::array<double, Transform::bufferLength> {};

  void analyse(const AudioBlock& block, const MeterSettings& settings, std::size_t length,
               std::uint32_t nowMs) noexcept;

  LineList& m_lines;
  StreamFormat m_format;
  Relaxed<bool> m_hasData = false;
  Relaxed<BandLayout> m_layout = BandLayout::linear;
  Relaxed<int> m_analysedLength = 0;
  Relaxed<std::uint32_t> m_sampleRateHz = std::uint32_t{44100};
  std::unique_ptr<Buffer> m_buffer =
      std::make_unique<Buffer>();  ///< samples, their transform and their levels, in place
  dsp::CentredWindow m_window{Transform::maxLength};
  Transform m_transform;
  std::int32_t m_frames = 0;  ///< of the last block
  int m_length = 0;           ///< the analysis length of so many frames
  BandRatio m_bandRatio;
};

}  // namespace av::type2
