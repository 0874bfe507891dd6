#include "bench/contest.h"
#include "bench/no_lock.h"
#include "bench/pcm_noise.h"
#include "type1/analysis.h"
#include "type2/analysis.h"
#include "type3/analysis.h"

#include <memory>

namespace av::bench {
namespace {

constexpr int areaHeightPx = 400;
constexpr int longestAnalysis = 16384;

/// The view's spectra of the first `windowSize` of `frames` frames.
void addView(const std::string& name, int windowSize, int frames, int size) {
  struct Control {
    Control(int windowSize, int frames) : pcm(16, 2, frames) {
      settings.visualizationType = 2;
      settings.fftWindowType = 3;
      settings.fftWindowSize = windowSize;
      analysis.resizeWindow(settings);
    }
    PcmNoise pcm;
    NoLock lock;
    type1::ViewSettings settings;
    type1::ViewAnalysis analysis{lock};
  };
  const auto control = std::make_shared<Control>(windowSize, frames);
  add(name, "type1", static_cast<std::size_t>(size),
      [control] { control->analysis.accept(control->pcm.block(), control->settings); });
}

/// The meter's bands of all `frames` frames.
void addMeter(const std::string& name, int frames) {
  struct Control {
    explicit Control(int frames) : pcm(16, 2, frames) { lines.SetLineCount(100); }
    PcmNoise pcm;
    NoLock lock;
    LineList lines{lock};
    type2::MeterSettings settings;
    type2::MeterAnalysis analysis{lines};
  };
  const auto control = std::make_shared<Control>(frames);
  add(name, "type2", static_cast<std::size_t>(frames),
      [control] { control->analysis.accept(control->pcm.block(), control->settings, 0); });
}

/// The analyser's bands of the first `fftLength` of `frames` frames.
void addAnalyser(const std::string& name, int fftLength, int frames, int size) {
  struct Control {
    Control(int fftLength, int frames) : pcm(16, 2, frames) { analysis.setFftLength(fftLength); }
    PcmNoise pcm;
    NoLock lock;
    LineList columns{lock};
    type3::AnalyserSettings settings;
    type3::AnalyserAnalysis analysis{columns};
  };
  const auto control = std::make_shared<Control>(fftLength, frames);
  add(name, "type3", static_cast<std::size_t>(size),
      [control] { control->analysis.accept(control->pcm.block(), control->settings, areaHeightPx, 0); });
}

}  // namespace

/// How the time of a block grows: with the analysis length N, in blocks of N frames; and with the length of the block, for
/// an N of 1024. The meter has no N of its own: all of a block is analysed, up to 48000 frames.
void addGrowth() {
  for (int n = 128; n <= longestAnalysis; n *= 2) {
    addView("growth-with-N", n, n, n);
    addMeter("growth-with-N", n);
    addAnalyser("growth-with-N", n, n, n);
  }
  for (int frames = 1024; frames <= 65536; frames *= 2) {
    addView("growth-with-frames", 1024, frames, frames);
    addAnalyser("growth-with-frames", 1024, frames, frames);
  }
}

}  // namespace av::bench
