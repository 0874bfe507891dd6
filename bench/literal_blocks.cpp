#include "bench/literal_blocks.h"

#include "bench/literal_decode.h"
#include "bench/literal_hartley.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace av::bench {

void LiteralView::block(const AudioBlock& block, type1::ViewSettings& settings) {
  const double fullScale = std::pow(2.0, block.format.wBitsPerSample - 1) - 1;
  settings.dynamicRangeDb = 20.0 * std::log10(fullScale);
  const std::array<std::span<double>, 2> channels{std::span(m_left), std::span(m_right)};
  literalDecode(block, channels, false);
  for (const std::span<double> values : channels) {
    literalCentredWindow(values, settings.fftWindowType);
    literalHartley(values);
    literalLevels(values, fullScale, -200.0, -std::numeric_limits<double>::infinity());
  }
}

void LiteralMeter::block(const AudioBlock& block, type2::MeterSettings& settings, std::uint32_t nowMs) {
  const int frames = block.sampleBytes / block.format.nChannels / (block.format.wBitsPerSample / 8);
  const auto length = static_cast<std::size_t>(std::pow(4.0, std::log(static_cast<double>(frames)) / std::log(4.0)));
  settings.fftWindowSize = static_cast<std::int32_t>(length);
  const std::span<double> values = std::span(m_buffer).first(length);
  literalMix(block, values, false);
  literalCentredWindow(values, settings.fftWindowType);
  literalRadix4Hartley(m_buffer, length);
  literalLevels(values, std::pow(2.0, block.format.wBitsPerSample - 1) - 1, -91.0, -91.0);

  const auto lastBin = static_cast<double>(length / 2 - 1);
  const double step = lastBin / static_cast<double>(m_lines.size());
  const auto count = static_cast<std::size_t>(step);
  for (std::size_t i = 0; i < m_lines.size(); ++i) {
    const auto first = static_cast<std::size_t>(static_cast<double>(i) * step + 1.0);
    double sum = 0;
    for (std::size_t bin = first; bin < first + count; ++bin) sum += values[bin];
    writeLine(m_lines[i], sum / static_cast<double>(count), nowMs);
  }
}

void LiteralAnalyser::block(const AudioBlock& block, const type3::AnalyserSettings& settings, int areaHeightPx,
                            std::uint32_t nowMs) {
  std::ranges::fill(m_samples, 0.0);
  literalMix(block, m_samples, true);
  m_spectrum.compute(m_samples, m_power);
  fold(std::pow(2.0, block.format.wBitsPerSample - 1), block.format.nSamplesPerSec);
  for (std::size_t i = 0; i < m_columns.size(); ++i)
    writeLine(m_columns[i], heightPx(m_bands[i], settings, areaHeightPx), nowMs);
}

void LiteralAnalyser::fold(double fullScale, std::uint32_t sampleRateHz) {
  const auto half = static_cast<double>(m_power.size());
  const double nyquist = sampleRateHz * 0.5;
  const double step = (nyquist / static_cast<double>(m_bands.size())) / (nyquist / half);
  std::size_t bin = 0;
  for (std::size_t band = 0; band < m_bands.size(); ++band) {
    const double end = std::nearbyint(static_cast<double>(band + 1) * step);
    double sum = 0;
    int count = 0;
    for (; static_cast<double>(bin) < end && bin < m_power.size(); ++bin, ++count) sum += m_power[bin];
    const auto mean = static_cast<float>(sum / count);
    m_bands[band] = static_cast<double>(std::sqrt(mean)) / fullScale;
  }
}

int LiteralAnalyser::heightPx(double band, const type3::AnalyserSettings& settings, int areaHeightPx) const {
  const double topDb = -settings.scaleYMin;
  const double bottomDb = -settings.scaleYMax;
  double level = bottomDb;
  if (band > 0) {
    const auto relative = static_cast<float>(band / static_cast<double>(m_samples.size()) * 2.0);
    level = 20.0 * static_cast<double>(static_cast<float>(std::log10(static_cast<double>(relative))));
  }
  level = std::clamp(level, bottomDb, topDb);
  const int q = static_cast<int>(level - bottomDb);
  const int height = static_cast<int>(q / (topDb - bottomDb) * areaHeightPx);
  const int pitch = settings.spotHeightPx + settings.spotIntervalPx;
  const int segments = (height + pitch - 1) / pitch;
  return segments > 0 ? segments * pitch - settings.spotIntervalPx : 0;
}

}  // namespace av::bench
