#pragma once

#include "gfx/saturate.h"
#include "type1/layout.h"

#include <cmath>
#include <cstddef>

namespace av::type1 {

/// The octave axis of spectra: octave o, of the bins 2^o to 2^(o+1) − 1, spans from (o + 1)·w to (o + 2)·w, w being the
/// plot's width (and 2 pixels) over one octave more than there are. Left of w lies no bin.
class OctaveAxis {
 public:
  /// `windowSize`: N, at least 4.
  OctaveAxis(int windowSize, const ViewLayout& layout)
      : m_plotLeft(layout.plotLeft),
        m_octaveCount(truncToInt(std::log2(windowSize / 2) + 0.5)),
        m_octaveWidth((layout.plotWidth + 2.0) / (m_octaveCount + 1)) {}

  /// One behind the last bin: half the window, as windows are powers of two.
  // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): the logarithm of an int is below 31
  std::size_t binEnd() const { return std::size_t{1} << m_octaveCount; }

  /// Calls `visit(bin, x)` for every bin from 1 on, x being its pixel column; never one left of the column before. The
  /// last columns lie up to 2 pixels right of the plot.
  template <class Visit>
  void forEachBin(Visit visit) const {
    for (int octave = 0; octave < m_octaveCount; ++octave) {
      const std::size_t firstBin = std::size_t{1} << octave;
      for (std::size_t k = firstBin; k < 2 * firstBin; ++k) {
        visit(k, truncToInt(m_plotLeft + octave * m_octaveWidth +
                            static_cast<double>(k) * m_octaveWidth / static_cast<double>(firstBin) + 0.5));
      }
    }
  }

 private:
  int m_plotLeft;
  int m_octaveCount;
  double m_octaveWidth;
};

}  // namespace av::type1
