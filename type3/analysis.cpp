#include "type3/analysis.h"

#include "type3/column_heights.h"
#include "type3/mixdown.h"

#include <algorithm>
#include <cstddef>

namespace av::type3 {

AnalyserAnalysis::AnalyserAnalysis(LineList& columns) : m_columns(columns) {
  m_plan.reserve(mostLines);
  planBands(m_plan, m_planAxis);
  setFftLength(m_transform.length());
  setLineCount(AnalyserSettings().lineCount);
}

void AnalyserAnalysis::setFftLength(std::int32_t length) {
  dsp::AlignedDoubles samples(static_cast<std::size_t>(length));
  dsp::AlignedDoubles power(static_cast<std::size_t>(length) / 2);
  m_transform.SetLength(length);
  m_samples.swap(samples);
  m_power.swap(power);
}

bool AnalyserAnalysis::setWindowType(std::int32_t type) noexcept {
  if (type < 0 || static_cast<std::size_t>(type) >= dsp::WindowTable.size()) return false;
  m_transform.SetWindowType(static_cast<std::uint32_t>(type));
  return true;
}

void AnalyserAnalysis::setLineCount(std::int32_t count) {
  std::vector<double> bands(static_cast<std::size_t>(count));
  m_columns.SetLineCount(count);
  m_bands.swap(bands);
}

bool AnalyserAnalysis::accept(const AudioBlock& block, const AnalyserSettings& settings, int areaHeightPx,
                              std::uint32_t nowMs) {
  if (!isAnalysed(block)) return false;
  const double fullScale = mixDown(block, m_samples);
  m_transform.ComputePowerSpectrum(m_samples, m_power);

  m_sampleRateHz = block.format.nSamplesPerSec;
  const BandAxis wanted = axis(settings);
  if (wanted != m_planAxis) {
    planBands(m_plan, wanted);
    m_planAxis = wanted;
  }
  foldBands(m_bands, wanted, m_plan, m_power, fullScale);
  updateHeights(settings, areaHeightPx, nowMs);
  m_fallOff.blockArrived(nowMs);
  return true;
}

void AnalyserAnalysis::updateHeights(const AnalyserSettings& settings, int areaHeightPx, std::uint32_t nowMs) noexcept {
  m_columns.withLines([&](std::span<LineInfo> columns) {
    writeColumnHeights(columns, m_bands, settings, m_transform.length(), areaHeightPx, nowMs);
  });
}

void AnalyserAnalysis::moveColumns(const AnalyserSettings& settings, int fromHeightPx, int toHeightPx) noexcept {
  m_columns.withLines([&](std::span<LineInfo> columns) {
    type3::moveColumns(columns, m_bands, settings, m_transform.length(), fromHeightPx, toHeightPx);
  });
}

bool AnalyserAnalysis::tick(const AnalyserSettings& settings, std::uint32_t nowMs) noexcept {
  auto step = FallOff::Step::none;
  m_columns.withLines(
      [&](std::span<LineInfo> columns) { step = m_fallOff.tick(columns, isTrue(settings.autoRepaint), nowMs); });
  if (step == FallOff::Step::ended) std::ranges::fill(m_bands, 0.0);
  return step != FallOff::Step::none;
}

}  // namespace av::type3
