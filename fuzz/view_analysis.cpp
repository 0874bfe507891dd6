// The view's analysis: blocks of any format one after the other, settings changed and animation steps taken between them.
// Two of them take the same way and have to end with the same bits.

#include "common/sample_scale.h"
#include "fuzz/audio_input.h"
#include "fuzz/check.h"
#include "fuzz/property_tables.h"
#include "fuzz/targets.h"
#include "support/counting_lock.h"
#include "support/pcm_oracle.h"
#include "type1/analysis.h"

#include <bit>
#include <cmath>
#include <vector>

namespace av::fuzz {
namespace {

using type1::ViewAnalysis;
using Outcome = ViewAnalysis::Outcome;

/// Allocations of channel arrays that fail: bit i of `mask` is the i-th one of a turn.
std::uint64_t failingAllocations = 0;

double* allocateOrFail(std::size_t count) noexcept {
  const bool fails = failingAllocations & 1;
  failingAllocations >>= 1;
  return fails ? nullptr : type1::ChannelSlots::allocateOrNull(count);
}

struct View {
  test::CountingLock lock;
  type1::ViewSettings settings;
  ViewAnalysis analysis{lock, allocateOrFail};
};

bool isDecoded(int bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 32; }
bool isSpectrum(int type) { return type >= 2 && type <= 5; }

double weight(int type, std::size_t index, std::size_t length) {
  const double n = static_cast<double>(length);
  const double u = (2.0 * static_cast<double>(index) - n) / n;  // −1 to 1 around the apex
  const double cosine = std::cos(u * 3.14159265358979323846);
  switch (type) {
    case 1: return 1 - u * u;
    case 2: return 1 - std::fabs(u);
    case 3: return 0.5 + 0.5 * cosine;
    case 4: return double{0.54F} + double{0.46F} * cosine;
    default: return 1;
  }
}

/// Parseval: all bins together hold the energy of the windowed samples, less what 0 Hz and half the sample rate have.
void checkEnergy(std::span<const double> levels, const std::vector<double>& samples, int windowType, double fullScale) {
  double energy = 0;
  double sum = 0;
  double alternating = 0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double sample = samples[i] * weight(windowType, i, samples.size());
    energy += sample * sample;
    sum += sample;
    alternating += i % 2 == 0 ? sample : -sample;
  }
  const double n = static_cast<double>(samples.size());
  const double expected = 2 * (n * energy - sum * sum - alternating * alternating) / (n * n);
  double power = 0;
  for (std::size_t k = 1; k < samples.size() / 2; ++k) {
    require(std::isfinite(levels[k]) && levels[k] < 6.1, "a level is a number, and hardly more than 6 dB");
    if (levels[k] != -200) power += std::pow(10, levels[k] / 10);
  }
  power *= fullScale * fullScale;
  // Both sums err by a few 1e-16 of the whole energy a term.
  require(std::fabs(power - expected) <= 1e-12 * n * (energy / n + 1e-30), "the bins hold the energy of the samples");
}

void checkChannels(const View& view, const test::Pcm& pcm) {
  const int type = view.settings.visualizationType;
  const int bits = pcm.format.wBitsPerSample;
  if (!isDecoded(bits)) return;
  const auto signal = view.analysis.signal();
  const auto frames = static_cast<std::size_t>(signal.windowSize);
  for (int channel = 0; channel < signal.channelCount; ++channel) {
    const auto values = signal.analysis[static_cast<std::size_t>(channel)];
    if (values.empty()) continue;  // there was no memory for it
    const auto samples = oracle::decodedChannel(pcm.bytes, pcm.format.nChannels, bits, channel, frames, type == 1);
    if (isSpectrum(type)) {
      checkEnergy(values, samples, view.settings.fftWindowType, std::exp2(bits - 1) - 1);
    } else {
      require(std::equal(values.begin(), values.end(), samples.begin(), samples.end()), "samples are kept as they are");
    }
  }
}

/// What has to become of a block, from the outside.
Outcome expectedOutcome(const test::Pcm& pcm, int windowSize) {
  const int bytesPerSample = pcm.format.wBitsPerSample / 8;
  const int tag = pcm.format.wFormatTag;
  if ((tag != 1 && tag != 0xFFFE) || pcm.format.nChannels == 0 || bytesPerSample == 0 || pcm.bytes.empty())
    return Outcome::dropped;
  const std::size_t frameBytes =
      static_cast<std::size_t>(pcm.format.nChannels) * static_cast<std::size_t>(bytesPerSample);
  return pcm.bytes.size() / frameBytes < static_cast<std::size_t>(windowSize) ? Outcome::stored : Outcome::analysed;
}

void accept(View& view, const test::Pcm& pcm) {
  const StreamFormat formatBefore = view.analysis.format();
  const double rangeBefore = view.settings.dynamicRangeDb;
  AudioBlock block = pcm.block();
  if (pcm.bytes.empty()) block.samples = nullptr;
  const Outcome outcome = view.analysis.accept(block, view.settings);
  require(outcome == expectedOutcome(pcm, view.analysis.windowSize()), "blocks are dropped, stored or analysed");
  if (outcome == Outcome::dropped) {
    require(view.analysis.format() == formatBefore && double{view.settings.dynamicRangeDb} == rangeBefore,
            "a dropped block changes nothing");
    return;
  }
  const auto signal = view.analysis.signal();
  require(signal.channelCount == std::min<int>(pcm.format.nChannels, 18), "eighteen channels are used at most");
  require(signal.sampleRateHz == pcm.format.nSamplesPerSec, "the sample rate is that of the block");
  // That of 16 bits is a constant at first, which a library's logarithm may miss by the last bit.
  const double rangeDb = view.settings.dynamicRangeDb;
  const double expectedDb = dynamicRangeDb(fullScaleValue(pcm.format.wBitsPerSample));
  require(rangeDb == expectedDb || std::fabs(rangeDb - expectedDb) < 1e-13, "the dynamic range is that of the depth");
  if (outcome == Outcome::analysed) checkChannels(view, pcm);
}

/// Displayed levels go from where they were towards the analysed ones and never beyond.
void step(View& view) {
  const auto signal = view.analysis.signal();
  std::array<std::vector<double>, type1::maxChannels> before;
  for (std::size_t c = 0; c < before.size(); ++c) before[c].assign(signal.display[c].begin(), signal.display[c].end());
  const bool animated = view.analysis.animating() && view.settings.visualizationSmooth != 0;
  require(view.analysis.smoothingStep(view.settings) == animated, "a step redraws while something moves");
  for (std::size_t c = 0; c < before.size(); ++c) {
    for (std::size_t i = 0; i < before[c].size(); ++i) {
      const double now = signal.display[c][i];
      const double target = signal.analysis[c].empty() ? now : signal.analysis[c][i];
      if (!animated || 2 * i >= before[c].size())
        require(std::bit_cast<std::uint64_t>(now) == std::bit_cast<std::uint64_t>(before[c][i]), "nothing else moves");
      else if (std::isfinite(before[c][i]) && std::isfinite(target))
        require(now >= std::min(before[c][i], target) && now <= std::max(before[c][i], target),
                "a displayed level stays between where it was and where it goes");
    }
  }
}

void takeTurn(View& view, Input& input) {
  failingAllocations = input.ConsumeIntegralInRange<int>(0, 9) == 0 ? input.ConsumeIntegral<std::uint64_t>() : 0;
  switch (input.ConsumeIntegralInRange<int>(0, 6)) {
    case 0: {
      static constexpr std::int32_t types[] = {1, 2, 3, 6, 7, 0, 5, 8, -1};
      view.settings.visualizationType = input.PickValueInArray(types);
      view.settings.fftWindowType = input.ConsumeIntegralInRange<int>(-1, 6);
      view.analysis.reset(view.settings);
      break;
    }
    case 1: {
      const std::int32_t limit = input.ConsumeIntegralInRange<int>(0, 40) == 0 ? 16384 : 512;
      applyPut(type1::rule::fftWindowSize, view.settings, input.ConsumeIntegralInRange<std::int32_t>(0, limit));
      view.analysis.resizeWindow(view.settings);
      require(view.analysis.windowSize() == int{view.settings.fftWindowSize}, "the window has the size that was put");
      break;
    }
    case 2: view.settings.visualizationSmooth = anyBoolean(input); break;
    case 3: step(view); break;
    default: {
      const bool enough = input.ConsumeIntegralInRange<int>(0, 3) > 0;
      const int frames = view.analysis.windowSize();
      accept(view, anyBlock(input, enough ? frames + 7 : frames / 2, frames > 1024 ? 2 : 19));
      break;
    }
  }
  require(view.lock.depth == 0, "the drawing lock is given back");
}

void requireEqual(const View& a, const View& b) {
  const auto left = a.analysis.signal();
  const auto right = b.analysis.signal();
  const auto same = [](std::span<const double> x, std::span<const double> y) {
    return std::equal(x.begin(), x.end(), y.begin(), y.end(), [](double u, double v) {
      return std::bit_cast<std::uint64_t>(u) == std::bit_cast<std::uint64_t>(v);
    });
  };
  for (std::size_t c = 0; c < type1::maxChannels; ++c) {
    require(same(left.analysis[c], right.analysis[c]) && same(left.display[c], right.display[c]),
            "the same blocks have the same result");
  }
}

}  // namespace

void viewAnalysis(Bytes bytes) {
  View once;
  View again;
  for (View* const view : {&once, &again}) {
    failingAllocations = 0;
    Input input(bytes.data(), bytes.size());
    applyPut(type1::rule::fftWindowSize, view->settings, 64 << input.ConsumeIntegralInRange<int>(0, 3));
    view->analysis.resizeWindow(view->settings);
    view->settings.fftWindowType = input.ConsumeIntegralInRange<int>(0, 4);
    view->settings.visualizationType = input.ConsumeIntegralInRange<int>(1, 7);
    for (int turns = 0; turns < 8 && input.remaining_bytes() > 0; ++turns) takeTurn(*view, input);
  }
  requireEqual(once, again);
}

}  // namespace av::fuzz
