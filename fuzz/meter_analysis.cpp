// The level meter's analysis: blocks of any format one after the other, settings, lines and time changed between them,
// against the steps written down slowly, to the bit.

#include "dsp/levels.h"
#include "fuzz/audio_input.h"
#include "fuzz/check.h"
#include "fuzz/property_tables.h"
#include "fuzz/targets.h"
#include "support/counting_lock.h"
#include "support/meter_model.h"
#include "type2/analysis.h"

#include <cmath>
#include <vector>

namespace av::fuzz {
namespace {

using Outcome = type2::MeterAnalysis::Outcome;

/// The two halves of the system that a meter is checked against: the slow analysis and the rule of the peaks.
struct Meter {
  test::CountingLock lock;
  LineList lines{lock};
  type2::MeterAnalysis analysis{lines};
  type2::MeterSettings settings;
  test::MeterModel model;
  std::vector<LineInfo> expected;
  std::uint32_t nowMs = 0;

  void setLineCount(std::int32_t count) {
    lines.SetLineCount(count);
    expected.assign(static_cast<std::size_t>(count), LineInfo());
  }

  void write(std::size_t line, double value) {
    LineInfo& info = expected[line];
    info.value = value;
    if (value > info.peak) {
      info.peak = value;
      info.peakTime = nowMs;
    }
  }
};

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

void checkLines(Meter& meter) {
  require(meter.lines.count() == static_cast<std::int32_t>(meter.expected.size()), "there are as many lines as put");
  meter.lines.withLines([&](std::span<const LineInfo> lines) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const LineInfo& expected = meter.expected[i];
      require(same(lines[i].value, expected.value), "a line has the value of its band");
      require(same(lines[i].peak, expected.peak) && lines[i].peakTime == expected.peakTime, "a peak follows its line");
      require(lines[i].holdMs == expected.holdMs, "a line holds its peak as long as it was told");
      require(std::isnan(lines[i].value) || lines[i].value >= -91.000001, "no line is below the floor");
    }
  });
}

/// The logarithms are the library's, so that everything after them has its bits; they are checked here.
void toLevels(std::span<double> transform, double fullScale) {
  std::vector<double> slowly(transform.begin(), transform.end());
  test::literalLevels(slowly, fullScale);
  dsp::hartleyBinsToLevels(transform, fullScale, -91);
  for (std::size_t i = 0; i < slowly.size(); ++i) {
    // 20·log10 of what doubles can hold is below 6166, whose last place is 1e-12.
    require(same(transform[i], slowly[i]) || std::fabs(transform[i] - slowly[i]) < 1e-11, "a level is its logarithm");
  }
}

void accept(Meter& meter, const test::Pcm& pcm) {
  AudioBlock block = pcm.block();
  if (pcm.bytes.empty()) block.samples = nullptr;
  const std::int32_t sizeBefore = meter.settings.fftWindowSize;
  const Outcome outcome = meter.analysis.accept(block, meter.settings, meter.nowMs);

  const int tag = pcm.format.wFormatTag;
  const int bits = pcm.format.wBitsPerSample;
  if ((tag != 1 && tag != 0xFFFE) || pcm.format.nChannels == 0 || bits < 8 || pcm.bytes.empty()) {
    require(outcome == Outcome::dropped && meter.settings.fftWindowSize == sizeBefore, "refused blocks change nothing");
    return;
  }
  const std::size_t frameBytes = static_cast<std::size_t>(pcm.format.nChannels) * static_cast<std::size_t>(bits / 8);
  const auto frames = static_cast<int>(pcm.bytes.size() / frameBytes);
  const int length = meter.settings.fftWindowSize;
  require(length == frames || (length == frames - 1 && frames > 1), "all frames are analysed, or all but one");
  require(meter.analysis.hasData(), "there is something to show");
  if (length < meter.lines.count()) {
    require(outcome == Outcome::tooShort, "blocks need a frame a line");
    for (std::size_t i = 0; i < meter.expected.size(); ++i) meter.write(i, -91);
    return;
  }
  require(outcome == Outcome::analysed, "blocks of enough frames are analysed");
  const std::int64_t mode = std::int64_t{meter.settings.fftViewType} * 2 | std::int64_t{meter.settings.alignmentY};
  const auto bands =
      meter.model.bands(pcm, static_cast<std::size_t>(length), meter.settings.fftWindowType, meter.lines.count(),
                        mode >= 0 && mode <= 3 ? static_cast<int>(mode) : 0, toLevels);
  for (std::size_t i = 0; i < bands.size(); ++i) meter.write(i, bands[i]);
}

void fall(Meter& meter) {
  meter.lines.FallStep([&] { return meter.nowMs; });
  for (LineInfo& line : meter.expected) {
    if (line.holdMs <= static_cast<std::int32_t>(meter.nowMs - line.peakTime)) line.peak -= 1;
    if (line.value > line.peak) {
      line.peak = line.value;
      line.peakTime = meter.nowMs;
    }
  }
}

void takeTurn(Meter& meter, Input& input) {
  meter.nowMs += input.ConsumeBool() ? input.ConsumeIntegralInRange<std::uint32_t>(0, 2000)
                                     : input.ConsumeIntegral<std::uint32_t>();
  switch (input.ConsumeIntegralInRange<int>(0, 7)) {
    case 0: meter.setLineCount(input.ConsumeIntegralInRange<std::int32_t>(3, 200)); break;
    case 1: {
      const std::int32_t holdMs = anyLong(input);
      meter.lines.SetHoldTime(holdMs);
      for (LineInfo& line : meter.expected) line.holdMs = holdMs;
      break;
    }
    case 2: putAnyProperties(input, meter.settings, meterRows, 4); break;
    case 3: fall(meter); break;
    case 4:
      meter.settings.fftWindowType = input.ConsumeIntegralInRange<int>(-1, 5);
      meter.settings.fftViewType = input.ConsumeIntegralInRange<int>(0, 2);
      meter.settings.alignmentY = input.ConsumeIntegralInRange<int>(0, 2);
      if (input.ConsumeIntegralInRange<int>(0, 9) == 0) {
        meter.analysis.clear(meter.nowMs);
        require(!meter.analysis.hasData(), "a cleared meter shows nothing");
        for (std::size_t i = 0; i < meter.expected.size(); ++i) meter.write(i, -91);
      }
      break;
    default: {
      // Long blocks are rare: the slow steps take their time.
      static constexpr int mostFrames[] = {20, 80, 300, 600, 1100};
      accept(meter,
             anyBlock(input, input.ConsumeIntegralInRange<int>(0, 60) == 0 ? 5000 : input.PickValueInArray(mostFrames),
                      3));
      break;
    }
  }
  checkLines(meter);
  require(meter.lock.depth == 0, "the lines' lock is given back");
}

}  // namespace

void meterAnalysis(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  Meter meter;
  meter.setLineCount(input.ConsumeIntegralInRange<std::int32_t>(3, 40));
  for (int turns = 0; turns < 8 && input.remaining_bytes() > 0; ++turns) takeTurn(meter, input);
}

}  // namespace av::fuzz
