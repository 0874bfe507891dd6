#pragma once

#include "common/audio_block.h"
#include "common/line_list.h"
#include "dsp/aligned_doubles.h"
#include "dsp/spectrum_analyzer.h"
#include "type3/bands.h"
#include "type3/fall_off.h"
#include "type3/settings.h"

#include <cstdint>
#include <span>
#include <vector>

namespace av::type3 {

/// The data side of the spectrum analyser: turns blocks into the heights of the columns.
///
/// Takes no lock but the line list's, and that only while it writes columns: everything is called on one thread.
// [control thread]
class AnalyserAnalysis {
 public:
  /// Ready for blocks of 512 samples and the default settings; `columns` outlives this object and gets its columns.
  /// Throws std::bad_alloc.
  explicit AnalyserAnalysis(LineList& columns);

  /// The window, its parameter and the transform's length as hosts read them.
  const dsp::CSpectrumAnalyzer& transform() const noexcept { return m_transform; }

  /// `length`: see isFftLength; others must not come here. The bands stay as they are. Throws std::bad_alloc, or
  /// std::length_error where no vector can be so long, with nothing changed.
  void setFftLength(std::int32_t length);

  /// False, with nothing changed, for a window outside 0 to 10.
  bool setWindowType(std::int32_t type) noexcept;

  /// False, with nothing changed, where the current window does not take the value.
  bool setWindowParam(float value) noexcept { return m_transform.SetWindowParam(static_cast<double>(value)); }

  /// Columns and bands anew, all silent; `count` from 4 to 200. Throws std::bad_alloc, with nothing changed.
  void setLineCount(std::int32_t count);

  /// The rate of the last accepted block; 44100 before the first.
  std::uint32_t sampleRateHz() const noexcept { return m_sampleRateHz; }

  /// What the frequency scale is labelled by.
  BandAxis axis(const AnalyserSettings& settings) const noexcept {
    return bandAxis(settings, m_transform.length(), m_sampleRateHz);
  }

  /// Analyses a block and writes the columns' heights in a column area of `areaHeightPx`. False, with nothing changed, for
  /// a block that is dropped (see isAnalysed); otherwise a redraw is due. Allocates nothing.
  /// **Ends the process where the transform's length is 0, 1 or 2.**
  bool accept(const AudioBlock& block, const AnalyserSettings& settings, int areaHeightPx, std::uint32_t nowMs);

  /// Writes the heights of the last block's bands anew, for settings or an area that have changed.
  void updateHeights(const AnalyserSettings& settings, int areaHeightPx, std::uint32_t nowMs) noexcept;

  /// Writes them for a column area of another height, with the peaks where they belong in it; see moveColumns.
  void moveColumns(const AnalyserSettings& settings, int fromHeightPx, int toHeightPx) noexcept;

  /// A timer tick: lets columns fall when no block has come for a while. Returns whether a redraw is due.
  bool tick(const AnalyserSettings& settings, std::uint32_t nowMs) noexcept;

  /// One amplitude a column; see foldBands.
  std::span<const double> bands() const noexcept { return m_bands; }
  /// What those bands were folded for, and the bins of each; see planBands.
  const BandAxis& foldedAxis() const noexcept { return m_planAxis; }
  std::span<const BinRange> foldedPlan() const noexcept { return m_plan; }

 private:
  LineList& m_columns;
  dsp::CSpectrumAnalyzer m_transform;
  dsp::AlignedDoubles m_samples;
  dsp::AlignedDoubles m_power;
  std::vector<double> m_bands;
  BandAxis m_planAxis;  ///< what `m_plan` was made for
  std::vector<BinRange> m_plan;
  FallOff m_fallOff;
  std::uint32_t m_sampleRateHz = 44100;
};

}  // namespace av::type3
