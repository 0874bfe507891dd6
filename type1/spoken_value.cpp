#include "type1/spoken_value.h"

#include "common/spoken_numbers.h"
#include "dsp/correlation.h"
#include "type1/channel_pairs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

namespace av::type1 {
namespace {

constexpr double noLevel = -std::numeric_limits<double>::infinity();

/// One part of what is said: of a channel, a pair of channels, or of all of them together.
struct Part {
  std::u16string whose;  ///< ends in ": ", or empty
  std::u16string words;  ///< empty: silence
};

/// "silence" alone where all parts are silent.
std::u16string joined(const std::vector<Part>& parts) {
  if (std::ranges::all_of(parts, [](const Part& part) { return part.words.empty(); }))
    return std::u16string(spokenSilence);
  std::u16string text;
  for (const Part& part : parts) {
    if (!text.empty()) text += u"; ";
    text += part.whose;
    text += part.words.empty() ? spokenSilence : std::u16string_view(part.words);
  }
  return text;
}

std::u16string channelName(std::size_t channel, std::size_t channels) {
  if (channels == 1) return {};
  if (channels == 2) return channel == 0 ? u"left: " : u"right: ";
  return u"channel " + spokenCount(static_cast<unsigned>(channel + 1)) + u": ";
}

std::u16string waveformWords(std::span<const double> samples, double fullScale) {
  double largest = 0;
  for (const double sample : samples) largest = std::max(largest, std::fabs(sample));
  const double levelDb = 20 * std::log10(largest / fullScale);
  return isAudible(levelDb) ? u"peak " + spokenLevel(levelDb) : std::u16string();
}

/// The highest of the bins that hold a level.
class HighestBin {
 public:
  void offer(std::size_t bin, double levelDb) noexcept {
    if (!(levelDb > m_levelDb)) return;
    m_levelDb = levelDb;
    m_bin = bin;
  }

  std::u16string words(const ViewSignal& signal) const {
    if (!isAudible(m_levelDb)) return {};
    const double binHz = static_cast<double>(signal.sampleRateHz) / signal.windowSize;
    return u"peak " + spokenLevel(m_levelDb) + u" at " + spokenFrequency(static_cast<double>(m_bin) * binHz);
  }

 private:
  double m_levelDb = noLevel;
  std::size_t m_bin = 0;
};

/// One behind the last bin of a channel that is drawn.
std::size_t binEnd(std::span<const double> levels, const ViewSignal& signal) {
  return std::min(levels.size(), static_cast<std::size_t>(std::max(signal.windowSize / 2, 0)));
}

std::u16string spectrumWords(std::span<const double> levels, const ViewSignal& signal) {
  HighestBin highest;
  for (std::size_t bin = 1; bin < binEnd(levels, signal); ++bin) highest.offer(bin, levels[bin]);
  return highest.words(signal);
}

template <class Words>
std::u16string ofEachChannel(const ViewSignal& signal, Words&& words) {
  std::vector<Part> parts;
  const std::size_t channels = signal.channelsInUse();
  for (std::size_t channel = 0; channel < channels; ++channel)
    parts.push_back({channelName(channel, channels), words(channel)});
  return joined(parts);
}

std::u16string ofTheMeanSpectrum(const ViewSettings& settings, const ViewSignal& signal) {
  std::vector<std::span<const double>> channels;
  std::size_t end = 0;
  for (std::size_t channel = 0; channel < signal.channelsInUse(); ++channel) {
    const auto levels = signal.spectrum(channel, settings);
    if (levels.empty()) continue;
    channels.push_back(levels);
    end = binEnd(levels, signal);  // arrays of one view are equally long
  }
  HighestBin highest;
  for (std::size_t bin = 1; bin < end; ++bin) {
    double sum = 0;
    for (const auto levels : channels) sum += levels[bin];
    highest.offer(bin, sum / static_cast<double>(channels.size()));
  }
  return joined({{{}, highest.words(signal)}});
}

bool isSilent(std::span<const double> samples) {
  return std::ranges::all_of(samples, [](double sample) { return sample == 0; });
}

std::u16string ofEachPair(const ViewSignal& signal) {
  std::vector<Part> parts;
  const std::size_t pairs = pairCount(signal);
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    const auto first = static_cast<unsigned>(pair + 1);
    Part part;
    if (pairs > 1) part.whose = u"channels " + spokenCount(first) + u" and " + spokenCount(first + 1) + u": ";
    const PairSamples samples(signal, pair);
    if (!isSilent(samples.left) || !isSilent(samples.right))
      part.words = u"correlation " + spokenCorrelation(dsp::correlation(samples.left, samples.right));
    parts.push_back(part);
  }
  return joined(parts);
}

}  // namespace

std::u16string spokenValue(const ViewSettings& settings, const ViewSignal& signal) {
  const std::int32_t type = settings.visualizationType;
  if (type < 1 || type > 7) return u"nothing shown";
  if (!signal.dataReceived) return std::u16string(spokenSilence);
  if (type == 1) {
    return ofEachChannel(
        signal, [&](std::size_t channel) { return waveformWords(signal.analysis[channel], signal.fullScale); });
  }
  if (type == 2) {
    return ofEachChannel(
        signal, [&](std::size_t channel) { return spectrumWords(signal.spectrum(channel, settings), signal); });
  }
  return type <= 5 ? ofTheMeanSpectrum(settings, signal) : ofEachPair(signal);
}

std::u16string spokenDescription(const ViewSettings& settings) {
  switch (settings.visualizationType) {
    case 1: return u"Waveform of the sound, a line for each channel";
    case 2: return u"Frequency spectrum of the sound, a line for each channel";
    case 3:
    case 4:
    case 5: return u"Frequency spectrum of the sound as bars, the mean of all channels";
    case 6:
    case 7: return u"Stereo image of the sound, each channel against the next";
    default: return u"Nothing is drawn";
  }
}

}  // namespace av::type1
