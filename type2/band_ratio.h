#pragma once

namespace av::type2 {

/// The ratio of neighbouring band limits in the logarithmic layouts, remembered from block to block.
class BandRatio {
 public:
  /// `lastBin` to the power of `sides` ÷ (`lineCount` − 1).
  double of(int lastBin, int lineCount, int sides) noexcept {
    if (lastBin != m_lastBin || lineCount != m_lineCount || sides != m_sides) compute(lastBin, lineCount, sides);
    return m_ratio;
  }

 private:
  void compute(int lastBin, int lineCount, int sides) noexcept;

  int m_lastBin = -1;
  int m_lineCount = 0;
  int m_sides = 0;
  double m_ratio = 0.0;
};

}  // namespace av::type2
