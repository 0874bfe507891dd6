#pragma once

#include "type3/bands.h"
#include "type3/layout.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace av::type3 {

/// Where frequencies stand in the column area: over the column whose band holds their bin, as far into the column as they
/// lie in the band. It follows the bands that are really computed, so it is right also where a logarithmic axis is a linear
/// one in fact (its low bands are a bin wide each) and where there are more columns than bins.
class FrequencyAxis {
 public:
  FrequencyAxis(const BandAxis& axis, const ColumnGeometry& geometry);

  bool isMirrored() const noexcept { return m_axis.mirrored; }
  bool isLogarithmic() const noexcept { return m_axis.logarithmic; }

  /// Half the sample rate, in Hz.
  double nyquistHz() const noexcept { return m_rateHz / 2; }
  /// Width of a bin in Hz.
  double binHz() const noexcept { return m_rateHz / m_axis.fftLength; }
  /// Width in pixels of the columns that `nyquistHz` spans: all, or a half of a mirrored spectrum.
  double widthPx() const noexcept { return static_cast<double>(m_geometry.stepPx) * m_axis.lineCount / sides(); }

  /// Where a frequency (0 or more, in Hz) stands, in pixels from the control's left edge; in the right half of a mirrored
  /// spectrum. A frequency whose bin no band holds stands between its neighbours. Empty beyond the last bin.
  std::optional<double> place(double hz) const noexcept;

  /// The same place in the left half of a mirrored spectrum.
  double reflected(double place) const noexcept { return 2 * centre() - place; }

  /// The centre of all columns: 0 Hz of a mirrored spectrum.
  double centre() const noexcept {
    return (m_geometry.leftPx + m_geometry.columnLeft(m_geometry.count - 1) + columnWidthPx()) / 2;
  }

 private:
  /// What a column stands for, in bins. Bands that share bins meet in the middle of them.
  struct Span {
    int column;
    double from;
    double to;
  };

  /// As far as there is one to see.
  double columnWidthPx() const noexcept { return std::max(m_geometry.widthPx, 0); }
  int sides() const noexcept { return m_axis.mirrored ? 2 : 1; }

  BandAxis m_axis;
  ColumnGeometry m_geometry;
  double m_rateHz;
  std::vector<Span> m_spans;  ///< of the columns that have bins, from the lowest band up
};

}  // namespace av::type3
