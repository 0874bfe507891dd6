#include "bench/contest.h"
#include "bench/literal_blocks.h"
#include "bench/no_lock.h"
#include "bench/pcm_noise.h"
#include "type1/analysis.h"
#include "type2/analysis.h"
#include "type3/analysis.h"

#include <memory>

namespace av::bench {
namespace {

constexpr int frames = 1024;
constexpr int areaHeightPx = 400;
constexpr int raisedCosine = 3;

std::vector<double> valuesOf(std::span<const LineInfo> lines) {
  std::vector<double> values;
  for (const LineInfo& line : lines) values.push_back(line.value);
  return values;
}

std::vector<double> valuesOf(LineList& list) {
  std::vector<double> values;
  list.withLines([&](std::span<LineInfo> lines) { values = valuesOf(std::span<const LineInfo>(lines)); });
  return values;
}

/// Linear spectra of two channels.
struct View {
  View() {
    settings.visualizationType = 2;
    settings.fftWindowType = raisedCosine;
    settings.visualizationSmooth = 0;
  }
  void block() { analysis.accept(pcm.block(), settings); }
  void literalBlock() { literal.block(pcm.block(), settings); }

  PcmNoise pcm{16, 2, frames};
  NoLock lock;
  type1::ViewSettings settings;
  type1::ViewAnalysis analysis{lock};
  LiteralView literal{frames};
};

struct Meter {
  Meter() { lines.SetLineCount(lineCount); }
  void block() { analysis.accept(pcm.block(), settings, 0); }
  void literalBlock() { literal.block(pcm.block(), settings, 0); }

  static constexpr int lineCount = 100;
  PcmNoise pcm{16, 2, frames};
  NoLock lock;
  LineList lines{lock};
  type2::MeterSettings settings;
  type2::MeterAnalysis analysis{lines};
  LiteralMeter literal{lineCount};
};

struct Analyser {
  static type3::AnalyserAnalysis ofThisLength(LineList& columns) {
    type3::AnalyserAnalysis analysis(columns);
    analysis.setFftLength(frames);
    return analysis;
  }
  void block() { analysis.accept(pcm.block(), settings, areaHeightPx, 0); }
  void literalBlock() { literal.block(pcm.block(), settings, areaHeightPx, 0); }

  PcmNoise pcm{16, 2, frames};
  NoLock lock;
  LineList columns{lock};
  type3::AnalyserSettings settings;
  type3::AnalyserAnalysis analysis = ofThisLength(columns);
  LiteralAnalyser literal{analysis.transform().coefficients(), analysis.transform().WindowPower(), settings.lineCount};
};

template <class Control>
void addContenders(const std::string& name, const std::shared_ptr<Control>& control) {
  add(name, "literal", frames, [control] { control->literalBlock(); });
  add(name, ours, frames, [control] { control->block(); });
}

}  // namespace

void addBlocks() {
  const auto view = std::make_shared<View>();
  view->block();
  view->literalBlock();
  const auto levels = view->analysis.signal().analysis[0];
  require(isNear(levels.first(frames / 2), view->literal.left().first(frames / 2), 1e-12), "view's levels");
  addContenders("block-type1", view);

  const auto meter = std::make_shared<Meter>();
  meter->block();
  meter->literalBlock();
  require(isNear(valuesOf(meter->lines), valuesOf(meter->literal.lines()), 1e-12), "meter's lines");
  addContenders("block-type2", meter);

  const auto analyser = std::make_shared<Analyser>();
  analyser->block();
  analyser->literalBlock();
  require(valuesOf(analyser->columns) == valuesOf(analyser->literal.columns()), "analyser's columns");
  addContenders("block-type3", analyser);
}

}  // namespace av::bench
