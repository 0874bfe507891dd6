#include "type2/analysis.h"

#include "common/mono_mix.h"
#include "common/sample_scale.h"
#include "dsp/levels.h"
#include "type2/band_fold.h"

#include <algorithm>
#include <span>

namespace av::type2 {
namespace {

/// 24 bits, which the other controls decode, are none of these: hosts have always seen the meter stand still there.
constexpr bool isMeteredDepth(int bitsPerSample) noexcept {
  return bitsPerSample == 8 || bitsPerSample == 16 || bitsPerSample == 32;
}

}  // namespace

MeterAnalysis::MeterAnalysis(LineList& lines) : m_lines(lines) {}

auto MeterAnalysis::accept(const AudioBlock& block, MeterSettings& settings, std::uint32_t nowMs) noexcept -> Outcome {
  const AudioFormatBlock& header = block.format;
  const auto frames = frameCount(header, block.sampleBytes);
  if (!isAcceptedFormatTag(header.wFormatTag) || !frames || block.samples == nullptr) return Outcome::dropped;

  m_format = streamFormatOf(header);
  m_hasData = true;
  if (*frames != m_frames) {
    m_frames = *frames;
    m_length = analysisLength(*frames);
  }
  const int length = m_length;
  settings.fftWindowSize = length;
  if (length < m_lines.count()) {
    m_lines.ResetLines(nowMs);
    return Outcome::tooShort;
  }
  analyse(block, settings, static_cast<std::size_t>(length), nowMs);
  return Outcome::analysed;
}

void MeterAnalysis::analyse(const AudioBlock& block, const MeterSettings& settings, std::size_t length,
                            std::uint32_t nowMs) noexcept {
  const std::span<double, Transform::bufferLength> buffer(m_buffer->data(), Transform::bufferLength);
  const std::span<double> values = buffer.first(length);
  const int bits = block.format.wBitsPerSample;
  if (isMeteredDepth(bits)) mixToMono(block, EightBitRule::signedAsStored, values);
  m_transform.transform(buffer, static_cast<int>(length), m_window.weights(settings.fftWindowType, length));
  dsp::hartleyBinsToLevels(values, fullScaleValue(bits), emptyLineValue);

  const auto levels = values.first(std::max<std::size_t>(length / 2, 1));
  const BandLayout layout = bandLayout(settings.fftViewType, settings.alignmentY);
  m_layout = layout;
  m_analysedLength = static_cast<int>(length);
  m_sampleRateHz = block.format.nSamplesPerSec;
  m_lines.withLines([&](std::span<LineInfo> lines) { foldBands(layout, levels, lines, nowMs, m_bandRatio); });
}

void MeterAnalysis::clear(std::uint32_t nowMs) noexcept {
  m_hasData = false;
  m_lines.ResetLines(nowMs);
}

}  // namespace av::type2
