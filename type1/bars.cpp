#include "type1/bars.h"

#include "type1/octave_axis.h"
#include "type1/plot_scale.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace av::type1 {
namespace {

/// The mean of the channels' levels, for bins from 1 to N/2 − 1.
class MeanSpectrum {
 public:
  MeanSpectrum(const ViewSettings& settings, const ViewSignal& signal) {
    const auto binCount = static_cast<std::size_t>(signal.windowSize / 2);
    for (std::size_t channel = 0; channel < signal.channelsInUse(); ++channel) {
      const std::span<const double> levels = signal.spectrum(channel, settings);
      if (levels.size() >= binCount) m_channels[m_count++] = levels.data();
    }
  }

  bool isEmpty() const { return m_count == 0; }

  double levelDb(std::size_t bin) const {
    double sum = 0;
    for (std::size_t i = 0; i < m_count; ++i) sum += m_channels[i][bin];
    return sum / static_cast<double>(m_count);
  }

 private:
  std::array<const double*, maxChannels> m_channels{};
  std::size_t m_count = 0;
};

/// Takes the columns of the plot from left to right.
class Columns {
 public:
  Columns(std::vector<ImageBlit>& bars, int image, const PlotScale& scale, const ViewLayout& layout)
      : m_bars(bars),
        m_part{image, {0, 0, 1, gradientHeightPx[static_cast<std::size_t>(image)]}, {}},
        m_scale(scale),
        m_left(layout.plotLeft) {}

  /// Column `x` of the plot, with `rows` of the plot above its bar.
  void add(int x, int rows) {
    m_part.to = {m_left + x, m_scale.top + rows, m_left + x + 1, m_scale.bottom};
    if (!m_part.to.isEmpty()) m_bars.push_back(m_part);
  }

 private:
  std::vector<ImageBlit>& m_bars;
  ImageBlit m_part;
  const PlotScale& m_scale;
  int m_left;
};

void addOnLinearAxis(Columns columns, const PlotScale& scale, const MeanSpectrum& spectrum, int windowSize,
                     int plotWidth) {
  const std::int64_t lastBin = windowSize / 2 - 1;
  for (int x = 0; x <= plotWidth; ++x) {
    const auto bin = static_cast<std::size_t>(std::max<std::int64_t>(x * lastBin / plotWidth, 1));
    columns.add(x, scale.aboveBar(spectrum.levelDb(bin)));
  }
}

void addOnOctaveAxis(Columns columns, const PlotScale& scale, const MeanSpectrum& spectrum, const OctaveAxis& axis,
                     const ViewLayout& layout) {
  int column = 0;
  int rows = scale.aboveBar(spectrum.levelDb(1));
  const auto addColumnsBefore = [&](int end) {
    for (; column < end; ++column) columns.add(column, rows);
  };
  axis.forEachBin([&](std::size_t bin, int x) {
    const int ofBin = std::min(x - layout.plotLeft, layout.plotWidth);
    const int rowsOfBin = scale.aboveBar(spectrum.levelDb(bin));
    if (ofBin > column) {
      addColumnsBefore(ofBin);
      rows = rowsOfBin;
    } else {
      rows = std::min(rows, rowsOfBin);
    }
  });
  addColumnsBefore(layout.plotWidth + 1);
}

}  // namespace

void addBars(std::vector<ImageBlit>& bars, const ViewSettings& settings, const ViewSignal& signal,
             const ViewLayout& layout) {
  const int type = settings.visualizationType;
  if (type < 3 || type > 5) return;
  const PlotScale scale(settings, layout);
  const MeanSpectrum spectrum(settings, signal);
  if (!scale.showsLevels() || spectrum.isEmpty() || signal.windowSize < 4 || layout.plotWidth < 1) return;
  const Columns columns(bars, type - 3, scale, layout);
  // Any other axis is the octave axis, as the pointer reads it.
  if (settings.fftViewType == 1) {
    addOnLinearAxis(columns, scale, spectrum, signal.windowSize, layout.plotWidth);
  } else {
    addOnOctaveAxis(columns, scale, spectrum, OctaveAxis(signal.windowSize, layout), layout);
  }
}

}  // namespace av::type1
