// The spectrum analyser's analysis: blocks of any format one after the other, length, window, columns, settings and time
// changed between them, against the steps written down slowly, to the bit.

#include "fuzz/audio_input.h"
#include "fuzz/check.h"
#include "fuzz/property_tables.h"
#include "fuzz/targets.h"
#include "support/analyser_model.h"
#include "support/counting_lock.h"
#include "support/fft_oracle.h"
#include "type3/analysis.h"
#include "type3/column_heights.h"
#include "type3/mixdown.h"

#include <cmath>
#include <vector>

namespace av::fuzz {
namespace {

struct Analyser {
  test::CountingLock lock;
  LineList columns{lock};
  type3::AnalyserAnalysis analysis{columns};
  type3::AnalyserSettings settings;
  std::uint32_t nowMs = 0;
  int areaPx = 100;
};

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

/// The bands of a block by the plain operations.
std::vector<double> expectedBands(const Analyser& analyser, const test::Pcm& pcm) {
  const auto& transform = analyser.analysis.transform();
  auto mixed = test::mixedBlock(pcm, static_cast<std::size_t>(transform.length()));
  for (std::size_t i = 0; i < mixed.samples.size(); ++i) mixed.samples[i] *= transform.coefficients()[i];
  const auto power = test::literalPowerSpectrum(mixed.samples, transform.WindowPower());
  return test::bandBuffer(analyser.settings, transform.length(), pcm.format.nSamplesPerSec, power, mixed.fullScale);
}

/// Where the slow steps stay within int.
bool isWithinReason(const Analyser& analyser) {
  const auto& settings = analyser.settings;
  return settings.scaleYMax < 10000 && settings.scaleYMin < 10000 && settings.spotHeightPx < 10000 &&
         settings.spotIntervalPx < 10000;
}

void checkHeights(Analyser& analyser) {
  const auto bands = analyser.analysis.bands();
  const int length = analyser.analysis.transform().length();
  analyser.columns.withLines([&](std::span<const LineInfo> columns) {
    require(columns.size() == bands.size(), "there is a band a column");
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const int height = type3::columnHeightPx(bands[i], analyser.settings, length, analyser.areaPx);
      require(columns[i].value == height, "a column is as high as its band says");
      require(height >= 0, "no column is below the foot");
      if (isWithinReason(analyser)) {
        const int slowly = test::columnHeight(analyser.settings, bands[i], length, analyser.areaPx);
        require(height == slowly, "a height is that of the steps written down slowly");
      }
      if (analyser.settings.spotIntervalPx == 0) require(height <= analyser.areaPx, "no column leaves its area");
      require(columns[i].peak >= columns[i].value, "no peak is below its column");
    }
  });
}

bool isDecoded(int bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 32; }

void accept(Analyser& analyser, const test::Pcm& pcm) {
  AudioBlock block = pcm.block();
  if (pcm.bytes.empty()) block.samples = nullptr;
  const std::vector<double> before(analyser.analysis.bands().begin(), analyser.analysis.bands().end());
  const bool accepted = analyser.analysis.accept(block, analyser.settings, analyser.areaPx, analyser.nowMs);
  require(accepted == type3::isAnalysed(block), "blocks are analysed or dropped");
  const auto bands = analyser.analysis.bands();
  if (!accepted) {
    require(std::equal(bands.begin(), bands.end(), before.begin(), before.end(), same),
            "a dropped block changes nothing");
    return;
  }
  require(analyser.analysis.sampleRateHz() == pcm.format.nSamplesPerSec, "the rate is that of the block");
  checkHeights(analyser);
  if (!isDecoded(pcm.format.wBitsPerSample)) return;
  const auto expected = expectedBands(analyser, pcm);
  require(std::equal(bands.begin(), bands.end(), expected.begin(), expected.end(), same),
          "bands have the bits of the plain operations");
}

void changeTransform(Analyser& analyser, Input& input) {
  switch (input.ConsumeIntegralInRange<int>(0, 2)) {
    case 0: analyser.analysis.setFftLength(4 << input.ConsumeIntegralInRange<int>(0, 10)); break;
    case 1: {
      const std::int32_t type = anyLong(input);
      require(analyser.analysis.setWindowType(type) == (type >= 0 && type <= 10), "there are eleven windows");
      break;
    }
    default: {
      static constexpr float values[] = {1.0F, 4.0F, 10.0F, 0.999F, 10.001F, -1.0F, NAN, INFINITY, 2.5F};
      const float value = input.PickValueInArray(values);
      const bool kaiser = analyser.analysis.transform().windowType() == 10;
      require(analyser.analysis.setWindowParam(value) == (kaiser && !(value < 1 || value > 10)),
              "only Kaiser has a parameter, from 1 to 10");
      break;
    }
  }
}

void takeTurn(Analyser& analyser, Input& input) {
  analyser.nowMs += input.ConsumeBool() ? input.ConsumeIntegralInRange<std::uint32_t>(0, 2000)
                                        : input.ConsumeIntegral<std::uint32_t>();
  switch (input.ConsumeIntegralInRange<int>(0, 8)) {
    case 0: changeTransform(analyser, input); break;
    case 1:
      analyser.settings.lineCount = input.ConsumeIntegralInRange<std::int32_t>(4, 200);
      analyser.analysis.setLineCount(analyser.settings.lineCount);
      break;
    case 2: {
      const std::int32_t lines = analyser.settings.lineCount;
      putAnyProperties(input, analyser.settings, analyserRows, 4);
      // The shell makes columns and bands anew with each put of the count.
      if (lines != analyser.settings.lineCount) analyser.analysis.setLineCount(analyser.settings.lineCount);
      break;
    }
    case 3: {
      const int height = input.ConsumeIntegralInRange<int>(0, 32767);
      analyser.analysis.moveColumns(analyser.settings, analyser.areaPx, height);
      analyser.areaPx = height;
      break;
    }
    case 4:
      analyser.analysis.updateHeights(analyser.settings, analyser.areaPx, analyser.nowMs);
      checkHeights(analyser);
      break;
    case 5: analyser.analysis.tick(analyser.settings, analyser.nowMs); break;
    case 6: analyser.columns.FallStep([&] { return analyser.nowMs; }); break;
    default: accept(analyser, anyBlock(input, input.ConsumeBool() ? 70 : 1100, 3)); break;
  }
  require(analyser.lock.depth == 0, "the columns' lock is given back");
}

}  // namespace

void analyserAnalysis(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  Analyser analyser;
  for (int turns = 0; turns < 8 && input.remaining_bytes() > 0; ++turns) takeTurn(analyser, input);
}

}  // namespace av::fuzz
