#include "type2/band_fold.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <limits>

namespace av::type2 {
namespace {

/// The levels from bin 1 to bin M, and what becomes of the lines.
class Fold {
 public:
  Fold(std::span<const double> levels, std::span<LineInfo> lines, std::uint32_t nowMs, BandRatio& ratio) noexcept
      : m_levels(levels),
        m_lines(lines),
        m_nowMs(nowMs),
        m_ratio(ratio),
        m_lastBin(static_cast<int>(levels.size()) - 1) {}

  void linear() const {
    const double step = lastBin() / lineCount();
    forEachMeanUpward(lines(), step, [this](int i, double mean) { write(i, mean); });
  }

  void linearMirrored() const {
    const double step = 2.0 * lastBin() / (lineCount() + 1.0);
    forEachMeanUpward(half(), step, [this](int i, double mean) { writeBothSides(i, mean); });
  }

  void logarithmic() const {
    const double ratio = m_ratio.of(m_lastBin, lines(), 1);
    write(0, level(1));
    for (int i = 1; i < lines(); ++i) write(i, logarithmicBand(ratio, i));
  }

  void logarithmicMirrored() const {
    const double ratio = m_ratio.of(m_lastBin, lines(), 2);
    writeBothSides(0, level(1));
    for (int i = 1; i < half(); ++i) writeBothSides(i, logarithmicBand(ratio, i));
  }

  void nothing() const {
    for (int i = 0; i < lines(); ++i) write(i, std::numeric_limits<double>::quiet_NaN());
  }

 private:
  int lines() const noexcept { return static_cast<int>(m_lines.size()); }
  int half() const noexcept { return (lines() + 1) / 2; }
  double lineCount() const noexcept { return static_cast<double>(m_lines.size()); }
  double lastBin() const noexcept { return m_lastBin; }
  double level(int bin) const noexcept { return m_levels[static_cast<std::size_t>(std::min(bin, m_lastBin))]; }

  /// Calls `use(i, mean)` for the bands i from 0 to `count` − 1: each has ⌊`step`⌋ bins from bin ⌊i·`step` + 1⌋ upward.
  /// The mean of no bins is no number. The last band ends at bin ⌊`count`·`step`⌋ at most, which is no bin above M.
  template <class Use>
  void forEachMeanUpward(int count, double step, Use use) const noexcept {
    constexpr int most = 128;
    int firsts[most];
    double means[most];
    const int width = static_cast<int>(step);
    for (int done = 0; done < count; done += most) {
      const int some = std::min(count - done, most);
      // One loop after the other: the compiler makes vectors of the first and the third one.
      for (int i = 0; i < some; ++i) firsts[i] = static_cast<int>((done + i) * step + 1.0);
      for (int i = 0; i < some; ++i) means[i] = sumUpward(firsts[i], width);
      for (int i = 0; i < some; ++i) means[i] /= width;
      for (int i = 0; i < some; ++i) use(done + i, means[i]);
    }
  }

  double sumUpward(int first, int count) const noexcept {
    assert(first + count <= m_lastBin + 1 || count == 0);
    const double* const bins = m_levels.data() + first;
    double sum = 0.0;
    for (int i = 0; i < count; ++i) sum += bins[i];
    return sum;
  }

  /// The mean of the bins from r^(i−1) to r^i, counted downward from one bin above: the shift belongs to the layout.
  double logarithmicBand(double ratio, int i) const noexcept {
    const double upper = power(ratio, i);
    const int top = std::max(static_cast<int>(upper), i);
    const int count = std::max(static_cast<int>(upper - power(ratio, i - 1)), 1);
    double sum = 0.0;
    for (int k = 0; k < count; ++k) sum += level(top + 1 - k);
    return sum / count;
  }

  /// Whole power by repeated squaring, whose bits decide the band limits; std::pow has others.
  static double power(double base, int exponent) noexcept {
    double result = 1.0;
    for (; exponent > 0; exponent /= 2) {
      if (exponent % 2 != 0) result *= base;
      base *= base;
    }
    return result;
  }

  void write(int line, double value) const noexcept {
    writeLine(m_lines[static_cast<std::size_t>(line)], value, m_nowMs);
  }

  /// An odd count has one line in the centre, which is written twice for i = 0.
  void writeBothSides(int i, double value) const noexcept {
    write(lines() / 2 + i, value);
    write((lines() - 1) / 2 - i, value);
  }

  std::span<const double> m_levels;
  std::span<LineInfo> m_lines;
  std::uint32_t m_nowMs;
  BandRatio& m_ratio;
  int m_lastBin;
};

}  // namespace

BandLayout bandLayout(std::int32_t fftViewType, std::int32_t alignmentY) noexcept {
  switch (std::int64_t{fftViewType} * 2 | std::int64_t{alignmentY}) {
    case 1: return BandLayout::linearMirrored;
    case 2: return BandLayout::logarithmic;
    case 3: return BandLayout::logarithmicMirrored;
    default: return BandLayout::linear;
  }
}

void foldBands(BandLayout layout, std::span<const double> levels, std::span<LineInfo> lines, std::uint32_t nowMs,
               BandRatio& ratio) {
  if (lines.empty()) return;
  const Fold fold(levels, lines, nowMs, ratio);
  if (levels.size() < 2) return fold.nothing();
  switch (layout) {
    case BandLayout::linear: return fold.linear();
    case BandLayout::linearMirrored: return fold.linearMirrored();
    case BandLayout::logarithmic: return fold.logarithmic();
    case BandLayout::logarithmicMirrored: return fold.logarithmicMirrored();
  }
}

}  // namespace av::type2
