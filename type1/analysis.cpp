#include "type1/analysis.h"

#include "common/pcm_decode.h"
#include "common/sample_scale.h"
#include "dsp/levels.h"
#include "type1/smoothing.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <span>

namespace av::type1 {
namespace {

constexpr std::int32_t waveformType = 1;

constexpr bool isSpectrumType(std::int32_t visualizationType) noexcept {
  return visualizationType >= 2 && visualizationType <= 5;
}

}  // namespace

ViewAnalysis::ViewAnalysis(Lockable& drawingLock, ChannelSlots::Allocator allocator)
    : m_drawingLock(drawingLock),
      m_slots(drawingLock, allocator),
      m_tables(std::make_unique<Tables>(m_slots.windowSize())) {}

auto ViewAnalysis::accept(const AudioBlock& block, ViewSettings& settings) noexcept -> Outcome {
  const AudioFormatBlock& header = block.format;
  const auto frames = frameCount(header, block.sampleBytes);
  if (!isAcceptedFormatTag(header.wFormatTag) || !frames || block.samples == nullptr) return Outcome::dropped;

  const std::int32_t visualizationType = settings.visualizationType;
  const int oldChannels = m_channelCount;
  const int newChannels = std::min<int>(header.nChannels, maxChannels);
  const bool grew = newChannels > oldChannels;
  if (grew) m_slots.renew(oldChannels, newChannels, resetValue(visualizationType));
  storeFormat(header, settings);
  if (*frames < m_slots.windowSize()) return Outcome::stored;

  reset(settings, grew ? 0 : m_slots.windowSize());
  m_dataReceived = true;
  decode(block, visualizationType);
  if (isSpectrumType(visualizationType)) analyseSpectra(settings.fftWindowType);
  m_animating = true;
  return Outcome::analysed;
}

void ViewAnalysis::storeFormat(const AudioFormatBlock& header, ViewSettings& settings) noexcept {
  m_format = streamFormatOf(header);
  m_channelCount = std::min<int>(header.nChannels, maxChannels);
  m_sampleRateHz = header.nSamplesPerSec;
  const double fullScale = fullScaleValue(header.wBitsPerSample);
  if (fullScale != m_fullScale) {
    m_fullScale = fullScale;
    m_fullScaleDb = dynamicRangeDb(fullScale);
  }
  settings.dynamicRangeDb = m_fullScaleDb;
}

/// Depths that cannot be decoded leave the arrays as earlier blocks left them; the analysis goes on with those.
void ViewAnalysis::decode(const AudioBlock& block, std::int32_t visualizationType) noexcept {
  const auto eightBitRule =
      visualizationType == waveformType ? EightBitRule::invertedUnsigned : EightBitRule::signedAsStored;
  std::array<std::span<double>, maxChannels> targets;
  for (int channel = 0; channel < m_channelCount; ++channel)
    targets[static_cast<std::size_t>(channel)] = m_slots.analysis(channel);
  decodeChannels(block, static_cast<std::size_t>(m_slots.windowSize()), eightBitRule, targets);
}

void ViewAnalysis::analyseSpectra(int windowType) noexcept {
  for (int channel = 0; channel < m_channelCount; ++channel) {
    const std::span<double> values = m_slots.analysis(channel);
    if (values.empty()) continue;
    m_tables->transform.transform(values, m_tables->window.weights(windowType, values.size()));
    dsp::hartleyBinsToLevels(values, m_fullScale);
  }
}

bool ViewAnalysis::smoothingStep(const ViewSettings& settings) noexcept {
  if (!m_animating || settings.visualizationSmooth == 0) return false;
  // Cleared first, so that a block which arrives during the step arms the animation again.
  m_animating = false;
  // A block on another thread may be adding channels: their arrays must not go while they are read here.
  const std::lock_guard guard(m_drawingLock);
  bool converged = true;
  for (int channel = 0; channel < m_channelCount; ++channel) {
    const auto analysis = m_slots.analysis(channel);
    const auto display = m_slots.display(channel);
    if (analysis.empty() || display.empty()) break;
    if (!smoothToward(analysis, display)) converged = false;
  }
  if (!converged) m_animating = true;
  return true;
}

void ViewAnalysis::reset(const ViewSettings& settings, int fromIndex) noexcept {
  const double value = resetValue(settings.visualizationType);
  m_slots.allocateMissing(m_channelCount, value);
  m_slots.fill(m_channelCount, fromIndex, value);
}

void ViewAnalysis::resizeWindow(ViewSettings& settings) {
  const int windowSize = roundWindowSize(settings.fftWindowSize);
  if (windowSize != m_slots.windowSize()) {
    try {
      m_tables = std::make_unique<Tables>(windowSize);
    } catch (...) {
      settings.fftWindowSize = m_slots.windowSize();
      throw;
    }
  }
  m_slots.resize(windowSize, m_channelCount, resetValue(settings.visualizationType));
}

ViewSignal ViewAnalysis::signal() const noexcept {
  ViewSignal signal;
  signal.dataReceived = m_dataReceived;
  signal.channelCount = m_channelCount;
  signal.windowSize = m_slots.windowSize();
  signal.sampleRateHz = m_sampleRateHz;
  signal.fullScale = m_fullScale;
  for (int channel = 0; channel < maxChannels; ++channel) {
    signal.analysis[static_cast<std::size_t>(channel)] = m_slots.analysis(channel);
    signal.display[static_cast<std::size_t>(channel)] = m_slots.display(channel);
  }
  return signal;
}

}  // namespace av::type1
