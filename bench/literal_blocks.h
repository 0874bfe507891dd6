#pragma once

#include "bench/literal_power_spectrum.h"
#include "common/audio_block.h"
#include "common/line_list.h"
#include "type1/settings.h"
#include "type2/settings.h"
#include "type3/settings.h"

#include <array>
#include <span>
#include <vector>

namespace av::bench {

/// What each control does with a block, by its plain operations: weights, factors, levels and band limits are computed
/// where they are used, with the maths library's functions. Each object does one kind of block, the one that the
/// benchmark sends, and its memory is kept from block to block.

/// The view: two channels to levels.
class LiteralView {
 public:
  explicit LiteralView(std::size_t windowSize) : m_left(windowSize), m_right(windowSize) {}

  void block(const AudioBlock& block, type1::ViewSettings& settings);
  std::span<const double> left() const { return m_left; }

 private:
  std::vector<double> m_left;
  std::vector<double> m_right;
};

/// The level meter: mixed to mono, levels, linear bands.
class LiteralMeter {
 public:
  explicit LiteralMeter(int lineCount) : m_lines(static_cast<std::size_t>(lineCount)) {}

  void block(const AudioBlock& block, type2::MeterSettings& settings, std::uint32_t nowMs);
  std::span<const LineInfo> lines() const { return m_lines; }

 private:
  std::vector<double> m_buffer = std::vector<double>(49152);
  std::vector<LineInfo> m_lines;
};

/// The spectrum analyser: mixed to mono, power spectrum, linear bands, heights.
class LiteralAnalyser {
 public:
  LiteralAnalyser(std::span<const double> window, double windowPower, int lineCount)
      : m_spectrum(window, windowPower),
        m_samples(window.size()),
        m_power(window.size() / 2),
        m_bands(static_cast<std::size_t>(lineCount)),
        m_columns(static_cast<std::size_t>(lineCount)) {}

  void block(const AudioBlock& block, const type3::AnalyserSettings& settings, int areaHeightPx, std::uint32_t nowMs);
  std::span<const LineInfo> columns() const { return m_columns; }

 private:
  void fold(double fullScale, std::uint32_t sampleRateHz);
  int heightPx(double band, const type3::AnalyserSettings& settings, int areaHeightPx) const;

  LiteralPowerSpectrum m_spectrum;
  std::vector<double> m_samples;
  std::vector<double> m_power;
  std::vector<double> m_bands;
  std::vector<LineInfo> m_columns;
};

}  // namespace av::bench
